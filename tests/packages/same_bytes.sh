#!/bin/sh
# Builds the packages of the last commit twice and compares them byte by byte: in folders of different names, with
# other numbers of jobs, another time zone, language and umask, from files of other times, and with no cache of
# objects, so that a path or a time that gets into any file is seen. It takes as long as two builds from nothing.
# usage: same_bytes.sh [OPTION OF CMAKE...]
set -eu
cd "$(dirname "$0")/../.."
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH CCACHE_DISABLE=1
unset CMAKE_C_COMPILER_LAUNCHER CMAKE_CXX_COMPILER_LAUNCHER

first=$work/one
second=$work/another/and/a/longer/name
mkdir -p "$first" "$second"
git archive HEAD | tar -x -C "$first"
(umask 077 && git archive HEAD | tar -x -m --no-same-permissions -C "$second")
(umask 022 && CMAKE_BUILD_PARALLEL_LEVEL=2 TZ=UTC "$first/tools/packages.sh" "$@" >"$work/first.log" 2>&1) || {
  tail -50 "$work/first.log"
  exit 1
}
(umask 077 && CMAKE_BUILD_PARALLEL_LEVEL=3 TZ=Asia/Tokyo LANG=C "$second/tools/packages.sh" "$@" >"$work/second.log" 2>&1) || {
  tail -50 "$work/second.log"
  exit 1
}

status=0
for package in "$first"/dist/*.deb; do
  cmp "$package" "$second/dist/$(basename "$package")" || status=1
done
[ "$(ls "$first/dist")" = "$(ls "$second/dist")" ] || status=1
[ "$status" -eq 0 ] && sha256sum "$first"/dist/*.deb | sed "s|$first/dist/||"
exit $status
