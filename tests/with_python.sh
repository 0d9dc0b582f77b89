#!/bin/sh
# usage: with_python.sh MODULE PROGRAM ARGUMENT...
# Runs a program by a Python that has the module; without one it is skipped.
module=$1
shift
for python in python3 /usr/bin/python3; do
  if "$python" -c "import $module" 2>/dev/null; then exec "$python" "$@"; fi
done
echo "skipped: there is no Python with $module (Debian: python3-$module)"
exit 77
