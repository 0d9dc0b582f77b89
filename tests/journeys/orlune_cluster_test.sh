#!/bin/sh
# usage: orlune_cluster_test.sh ORLUNE SCENES_FOLDER PYTHON_FOLDER WORK_FOLDER
# Without a Python with Dask distributed it is skipped.
for python in python3 /usr/bin/python3; do
  if "$python" -c "import distributed" 2>/dev/null; then
    exec "$python" "$(dirname "$0")/orlune_cluster_test.py" "$@"
  fi
done
echo "skipped: there is no Python with distributed (Debian: python3-distributed)"
exit 77
