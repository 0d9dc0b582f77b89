#!/bin/sh
# Makes the Debian packages in dist/. The same sources give the same bytes, in whatever folder they lie; all times in
# the packages are that of the last commit, or SOURCE_DATE_EPOCH.
# usage: packages.sh [OPTION OF CMAKE...]
set -eu
cd "$(dirname "$0")/.."
: "${SOURCE_DATE_EPOCH:=$(git log -1 --format=%ct 2>/dev/null || stat -c %Y CHANGELOG.md)}"
export SOURCE_DATE_EPOCH
umask 022
cmake --preset packages "$@"
cmake --build --preset packages
rm -rf build/packages/dist
LC_ALL=C.UTF-8 cpack --config build/packages/CPackConfig.cmake -B build/packages/dist

# CPack counts folders as the file system does, and calls ldconfig beside the trigger that does it: packed again
# without these, and with one time for all files.
mkdir -p dist
rm -f dist/*.deb
for package in build/packages/dist/*.deb; do
  contents=build/packages/dist/contents
  rm -rf "$contents"
  dpkg-deb -R "$package" "$contents"
  for script in "$contents"/DEBIAN/post*; do
    if grep -qs ldconfig "$script"; then rm "$script"; fi
  done
  size=$(find "$contents/usr" -printf '%y %s\n' |
    awk '{ kilobytes += $1 == "f" ? int(($2 + 1023) / 1024) : 1 } END { print kilobytes }')
  sed -i "s/^Installed-Size: .*/Installed-Size: $size/" "$contents/DEBIAN/control"
  find "$contents" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
  dpkg-deb --root-owner-group --threads-max=1 -Zxz -b "$contents" dist
done
