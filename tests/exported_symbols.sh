#!/bin/sh
# The shared library shows exactly the listed functions, and the public headers declare them.
# usage: exported_symbols.sh LIBRARY LIST HEADER...
set -eu
library=$1 list=$2
shift 2

names=$(grep '^ZEL_' "$list" | sort)
shown=$(nm -D --defined-only "$library" | awk '$2 != "A" { sub(/@.*/, "", $3); print $3 }' | sort)
declared=$(grep -oh '\bZEL_[A-Za-z0-9_]*(' "$@" | tr -d '(' | sort -u)

status=0
check() {
  if [ "$2" != "$names" ]; then
    echo "$1 differs from the list of exports:"
    for name in $2 $names; do echo "$name"; done | sort | uniq -u
    status=1
  fi
}
check "The library's symbol table" "$shown"
check "The public headers" "$declared"
exit $status
