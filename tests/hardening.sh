#!/usr/bin/env bash
# The shared library is linked so that its tables of addresses cannot be written once it is loaded,
# and compiled so that an overrun of its stack or of a known buffer ends the program.
# usage: hardening.sh LIBRARY
set -euo pipefail
library=$1

dynamic=$(readelf --wide --dynamic "$library")
headers=$(readelf --wide --program-headers "$library")
symbols=$(readelf --wide --dyn-syms "$library")

status=0
requires() {
  if ! grep -qE "$2" <<<"$3"; then
    echo "$library: $1 is missing"
    status=1
  fi
}
requires "binding at loading" 'FLAGS.*(BIND_NOW|NOW)' "$dynamic"
requires "the part that is read-only after loading" 'GNU_RELRO' "$headers"
requires "the guard of the stack" '__stack_chk_fail' "$symbols"
requires "checks of buffers" '__[a-z]+_chk(@| |$)' "$symbols"
if grep -E 'GNU_STACK' <<<"$headers" | grep -q 'RWE'; then
  echo "$library: the stack can be executed"
  status=1
fi
exit $status
