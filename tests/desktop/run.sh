#!/bin/sh
# Runs a test that needs other programs, if these are there.
# usage: run.sh "NEEDED..." PROGRAM ARGUMENT...
set -eu
for needed in $1; do
  if ! command -v "$needed" >/dev/null; then
    echo "$needed is not installed"
    exit 77
  fi
done
shift
exec "$@"
