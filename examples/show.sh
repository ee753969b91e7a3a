#!/bin/bash
# Shows the main job on the bundled example: show.sh KESTRANE EXAMPLES. All of it happens in a home of its
# own that is gone afterwards; your own library is not touched.
set -u
kestrane=$1
examples=$2
home=$(mktemp -d) || exit 1
export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_STATE_HOME=$home/state \
  XDG_CACHE_HOME=$home/cache XDG_RUNTIME_DIR=$home/run
mkdir -m 0700 "$XDG_RUNTIME_DIR"
trap '"$kestrane" agent stop >/dev/null 2>&1; rm -rf "$home"' EXIT

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }
[ -t 1 ] || say() { printf '\n%s\n' "$*"; }
show() {
  say "\$ kestrane ${*/#$examples\//}"
  "$kestrane" "$@"
}
# Asks as any application that starts now would.
cat >"$home/proof" <<'PROOF'
for name in HarbourGrid-Regular HarbourGrid-Bold LanternGrid-Regular; do
  fc-match --format='%{postscriptname}\t%{file}\n' ":postscriptname=$name" |
    { IFS="$(printf '\t')" read -r got file; printf '  %-20s %s (%s)\n' "$name" "${file#"$HOME"/}" "$got"; }
done
PROOF

echo "A poster asks for three fonts that this system does not have. They lie in a folder of fonts."
show fonts "$examples/poster.psd" || exit 1
show library add "$examples/fonts" || exit 1
say "What an application gets for these names now:"
sh "$home/proof"
say "The poster is opened, and the same question asked while it is open:"
"$kestrane" open "$examples/poster.psd" -- sh "$home/proof" || exit 1
say "And after it was closed:"
sh "$home/proof"
say "Now your own: ./run library add FOLDER, then ./run open FILE.psd"
