#!/bin/sh
# Holds the public interface to what it was at the last release: functions and the types of their parameters, layouts
# of records, values of enumerators and limits. Programs that were built then go on working. What is added breaks
# nobody and is not told. The headers are compared, not a library, to which the compiler and the list of exports
# hold them; so this takes a second.
# With --write the interface becomes the one of the release, which is done once with each.
# usage: check_abi.sh [--write]
set -eu
cd "$(dirname "$0")/.."
description=tests/data/abi/liborlune_ptk.so.1.abi
for program in abidw abidiff; do
  if ! command -v $program >/dev/null; then
    echo "check_abi: skipped, there is no $program (Debian package abigail-tools)"
    exit 77
  fi
done

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
python3 -B tools/interface_source.py >"$work/interface.c"
"${CC:-cc}" -std=c11 -w -g -O0 -shared -fPIC -Iinclude -Wl,-soname,liborlune_ptk.so.1 "$work/interface.c" \
  -o "$work/interface.so"
abidw --no-corpus-path --no-comp-dir-path --no-show-locs --no-architecture --no-elf-needed \
  --no-write-default-sizes "$work/interface.so" >"$work/interface.abi"

if [ "${1:-}" = --write ]; then
  mkdir -p "$(dirname $description)"
  cp "$work/interface.abi" $description
elif ! abidiff --no-added-syms $description "$work/interface.abi"; then
  echo "check_abi: this breaks programs that were built with the last release" >&2
  exit 1
fi
