#!/bin/bash
# Configures and builds a preset: tools/build.sh PRESET [TARGET...]. Quiet, but for a progress line on a
# terminal; the last lines of the log when a step fails.
set -u
cd "$(dirname "$0")/.." || exit 1
preset=$1
shift
folder=build/$preset
mkdir -p "$folder" || exit 1
log=$folder/build.log
: >"$log"

fail() {
  [ -t 2 ] && printf '\r\033[K' >&2
  grep -n -m 5 -E 'error|Error|FAILED' "$log" >&2
  tail -n 12 "$log" >&2
  echo "$1 failed; the whole log is $log" >&2
  exit 1
}

if [ ! -f "$folder/build.ninja" ]; then
  [ -t 2 ] && printf 'configuring %s' "$preset" >&2
  cmake --preset "$preset" >"$log" 2>&1 </dev/null || fail "Configuring $preset"
fi
ninja -C "$folder" "$@" >>"$log" 2>&1 </dev/null &
ninja=$!
trap 'kill $ninja 2>/dev/null; [ -t 2 ] && printf "\r\033[K" >&2; exit 130' INT TERM
if [ -t 2 ]; then
  while kill -0 "$ninja" 2>/dev/null; do
    step=$(grep -o -E '^\[[0-9]+/[0-9]+\]' "$log" | tail -n 1)
    [ -n "$step" ] && printf '\r\033[Kbuilding %s %s' "$preset" "$step" >&2
    sleep 0.2
  done
  printf '\r\033[K' >&2
fi
wait "$ninja" || fail "Building $preset"
