#!/bin/bash
# Installs the packages that are missing: tools/setup.sh run|test. Says what and why first. For the tests it
# also brings the fonts that they look names up in; without them that one test is skipped, but not in CI.
set -u
here=$(cd "$(dirname "$0")" && pwd)
for_whom=${1:-test}

missing=()
while read -r name who why; do
  case $name in '' | '#'*) continue ;; esac
  [ "$who" = test ] && [ "$for_whom" = run ] && continue
  if [ "$(dpkg-query -W -f='${db:Status-Status}' "$name" 2>/dev/null)" != installed ]; then
    missing+=("$name")
    reasons+="  $(printf '%-20s' "$name") $why"$'\n'
  fi
done <"$here/packages.txt"
get_faces() { [ "$for_whom" = run ] || "$here/fonts/get_faces.sh" "$here/../build/faces" || [ -z "${CI:-}" ]; }
if [ ${#missing[@]} -eq 0 ]; then
  get_faces
  exit
fi

if ! command -v apt-get >/dev/null; then
  echo "This needs the packages below, and there is no apt-get to install them with:" >&2
  printf '%s' "$reasons" >&2
  exit 1
fi
as_root=()
if [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    echo "Ask your administrator to run: apt-get install ${missing[*]}" >&2
    exit 1
  fi
  as_root=(sudo)
fi
echo "These Debian packages are missing and will be installed:" >&2
printf '%s' "$reasons" >&2
log=$(mktemp)
trap 'rm -f "$log"' EXIT
if ! { "${as_root[@]}" apt-get update && "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
  apt-get install -y --no-install-recommends "${missing[@]}"; } </dev/null >"$log" 2>&1; then
  tail -n 15 "$log" >&2
  echo "The packages could not be installed; the lines above say why." >&2
  exit 1
fi
get_faces
