#!/bin/sh
# usage: page_blocks_test.sh BUILD SCENES_FOLDER WORK_FOLDER
# Without a Python with NumPy, or the program sqlite3, it is skipped.
if command -v sqlite3 >/dev/null; then
  for python in python3 /usr/bin/python3; do
    if "$python" -c "import numpy" 2>/dev/null; then
      exec "$python" "$(dirname "$0")/page_blocks_test.py" "$@"
    fi
  done
fi
echo "skipped: there is no Python with numpy, or no sqlite3 (Debian: python3-numpy, sqlite3)"
exit 77
