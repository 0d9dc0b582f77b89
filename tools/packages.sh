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
mkdir -p dist
rm -f dist/*.deb
cp build/packages/dist/*.deb dist/
