#!/bin/sh
# Holds the packages in a folder to the rules of Debian, and installs, uses and removes them in a clean root: the
# smallest system, made of Debian's packages, so it needs a network.
# usage: run.sh FOLDER
set -eu
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
packages=$(cd "$1" && pwd)
work=$(mktemp -d)
chmod 755 "$work"
trap 'rm -rf "$work"' EXIT

# The library has the symbols that its package tells of, each with its version.
dpkg-deb -x "$packages"/liborlune-ptk1_*.deb "$work/library"
dpkg-deb -e "$packages"/liborlune-ptk1_*.deb "$work/control"
mkdir "$work/debian"
printf 'Source: orlune-ptk\n\nPackage: liborlune-ptk1\nArchitecture: any\n' >"$work/debian/control"
(cd "$work" && dpkg-gensymbols -c4 -v1.0.0 -pliborlune-ptk1 -Icontrol/symbols -Plibrary -Oseen)
cmp "$work/control/symbols" "$work/seen"

# Problems of a package in a distribution, which this is none of, are those of its archive.
lintian --fail-on error --suppress-tags initial-upload-closes-no-bugs "$packages"/*.deb

cp -r "$root/tests/consumer" "$here/inside.sh" "$packages" "$work"
mmdebstrap --quiet --variant=apt --format=null \
  --customize-hook="copy-in $work/consumer $work/inside.sh $work/$(basename "$packages") /srv" \
  --customize-hook="chroot \"\$1\" sh /srv/inside.sh /srv/$(basename "$packages") /srv/consumer" \
  "$(. /etc/os-release && echo "$VERSION_CODENAME")"
