#!/bin/bash
# Downloads the Debian packages of packages.txt and unpacks them, a folder each: tools/fonts/get_faces.sh DEST.
# Nothing is installed, so that nobody's desktop fills with fonts. Quick when all is there.
set -u
list=$(cd "$(dirname "$0")" && pwd)/packages.txt
destination=${1:?the folder to unpack into}
stamp=$destination/stamp
sum=$(sha256sum <"$list")
[ "$(cat "$stamp" 2>/dev/null)" = "$sum" ] && exit 0

fail() {
  echo "The fonts of the tests can't be had: $1" >&2
  exit 1
}
command -v apt-get >/dev/null && command -v dpkg-deb >/dev/null || fail "there is no apt-get and dpkg-deb here"
mapfile -t packages < <(sed 's/#.*//' "$list" | awk 'NF { print $1 }')
mkdir -p "$(dirname "$destination")" || fail "no folder for them"
fresh=$(mktemp -d "$destination.XXXXXX") || fail "no folder for them"
trap 'rm -rf "$fresh"' EXIT
mkdir "$fresh/debs"
echo "Downloading ${#packages[@]} packages of fonts for the tests, about 150 MB ..." >&2
download() { (cd "$fresh/debs" && apt-get download "${packages[@]}") >"$fresh/log" 2>&1 </dev/null; }
if ! download; then
  # Perhaps the lists are missing or old; only root can bring them.
  [ "$(id -u)" -eq 0 ] && apt-get update >/dev/null 2>&1 </dev/null
  download || fail "$(grep -m 1 '^E:' "$fresh/log" || echo 'apt-get download failed')"
fi
for deb in "$fresh"/debs/*.deb; do
  name=$(basename "$deb")
  dpkg-deb -x "$deb" "$fresh/${name%%_*}" || fail "$name can't be unpacked"
done
rm -rf "$fresh/debs" "$fresh/log" "$destination"
echo "$sum" >"$fresh/stamp"
chmod 755 "$fresh"
mv "$fresh" "$destination" || fail "$destination can't be written"
