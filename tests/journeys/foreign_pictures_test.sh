#!/bin/sh
# Runs the test of other programs' pictures where there is a python3.
# usage: foreign_pictures_test.sh ORLUNE WORK_FOLDER
command -v python3 >/dev/null || {
  echo "skipped: there is no python3"
  exit 77
}
exec python3 "$(dirname "$0")/foreign_pictures_test.py" "$@"
