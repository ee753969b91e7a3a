#!/bin/bash
# clang-tidy over our own sources, two at a time: tools/tidy.sh BUILD_FOLDER [FILE...]
set -u
cd "$(dirname "$0")/.." || exit 1
build=$1
shift
files=("$@")
[ $# -eq 0 ] && mapfile -t files < <(git ls-files -- 'src/*.cpp' 'agent/*.cpp' 'frameworks/*.cpp' \
  'bundle/*.cpp' 'host/*.cpp' 'tools/*.cpp')
# The compiler's own warnings are the build's affair.
printf '%s\n' "${files[@]}" |
  xargs -P 2 -n 4 clang-tidy --quiet -p "$build" --extra-arg=-Wno-everything 2> >(
    grep -v -E 'warnings? generated|Suppressed|Use -header-filter' >&2)
