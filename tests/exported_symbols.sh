#!/bin/sh
# The shared library shows exactly the listed functions.
# usage: exported_symbols.sh LIBRARY LIST
set -eu
library=$1 list=$2

symbols=$(nm -D --defined-only "$library")
shown=$(printf '%s\n' "$symbols" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort)
names=$(grep '^ZEL_' "$list" | sort)
if [ "$shown" != "$names" ]; then
  echo "The library's symbol table differs from the list of exports:"
  for name in $shown $names; do echo "$name"; done | sort | uniq -u
  exit 1
fi
