#!/bin/sh
# Tests the Python package with a library, where there is a Python with NumPy, SciPy and pytest.
# usage: run.sh LIBRARY WORK_FOLDER
set -eu
here=$(cd "$(dirname "$0")" && pwd)
library=$1 work=$2

for python in python3 /usr/bin/python3; do
  if "$python" -c "import numpy, scipy, pytest" 2>/dev/null; then
    "$python" "$here/../generate.py" "$work"
    cd "$work"
    export ORLUNE_PTK_LIBRARY="$library" PYTHONPATH="$work" PYTHONDONTWRITEBYTECODE=1
    exec "$python" -m pytest -q -p no:cacheprovider "$here"
  fi
done
echo "skipped: there is no Python with numpy, scipy and pytest"
exit 77
