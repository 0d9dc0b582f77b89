#!/bin/sh
# Plants changes in a copy of the headers: tools/check_abi.sh has to complain of each that breaks programs, and of no
# other.
# usage: interface_changes.sh
set -eu
root=$(cd "$(dirname "$0")/.." && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p "$work/tests/data" "$work/tools"
cp -r "$root/python" "$work"
cp -r "$root/tests/data/abi" "$work/tests/data"
cp "$root/tools/check_abi.sh" "$root/tools/interface_source.py" "$work/tools"

# changed STATUS HEADER EXPRESSION: the status of the check after sed has changed a header.
changed() {
  rm -rf "$work/include"
  cp -r "$root/include" "$work"
  sed -i "$3" "$work/include/orlune_ptk/$2"
  if cmp -s "$root/include/orlune_ptk/$2" "$work/include/orlune_ptk/$2"; then
    echo "$2 has nothing that $3 changes"
    exit 1
  fi
  status=0
  "$work/tools/check_abi.sh" >"$work/log" 2>&1 || status=$?
  if [ "$status" -eq 77 ]; then
    cat "$work/log"
    exit 77
  fi
  if [ "$status" -ne "$1" ] || { [ "$1" -eq 1 ] && ! grep -q "breaks programs" "$work/log"; }; then
    cat "$work/log"
    echo "check_abi.sh gave $status, not $1, after $3 in $2"
    exit 1
  fi
}

changed 1 operators.h '/ZEL_Add(/s/float constant/double constant/'
changed 1 types.h '/typedef struct ApiRect/,/}/s/top, left/left, top/'
changed 1 thresholds.h 's/AUTOB_CLUSTERING = 0/AUTOB_CLUSTERING = 7/'
changed 1 drawing.h 's/\(define TEXT_LINE_BYTES\) .*/\1 300/'
changed 0 thresholds.h 's/AUTOB_CLUSTERING = 0,/& AUTOB_ANOTHER = 77,/'
changed 0 operators.h 's/float constant/float number/'
