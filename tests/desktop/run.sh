#!/bin/sh
# Runs a test that starts an X server and asks other programs, if these are there.
# usage: run.sh PROGRAM ARGUMENT...
set -eu
for needed in Xvfb xclip; do
  if ! command -v "$needed" >/dev/null; then
    echo "$needed is not installed"
    exit 77
  fi
done
exec "$@"
