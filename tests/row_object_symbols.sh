#!/bin/sh
# Row routines are compiled once for each processor level. An object of theirs may define nothing
# that the linker could merge with, or take for, the code of another level: no weak symbols, and
# external ones only in the level's own namespace.
# usage: row_object_symbols.sh OBJECT...
set -eu
if [ $# -eq 0 ]; then
  echo "row_object_symbols.sh: no objects to look at"
  exit 2
fi
status=0
for object in "$@"; do
  symbols=$(nm --defined-only "$object")
  bad=$(printf '%s\n' "$symbols" | awk '$2 ~ /[WwVvu]/ || ($2 ~ /[A-Z]/ && $3 !~ /^_ZN3zel(5plain|8baseline|2v3|2v4|4neon)/)')
  if [ -n "$bad" ]; then
    printf '%s defines:\n%s\n' "$object" "$bad"
    status=1
  fi
  if ! printf '%s\n' "$symbols" | grep -q ' [A-Z] _ZN3zel'; then
    echo "$object defines no table"
    status=1
  fi
done
exit $status
