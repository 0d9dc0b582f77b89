#!/bin/sh
# The results of the session are the same at every processor level and for any number of workers.
# usage: same_digest.sh SESSION_DIGEST LEVEL...
set -eu
program=$1
shift
first=$(ORLUNE_PTK_THREADS=1 "$program")
status=0
for level in "$@"; do
  for threads in 1 2 3 5; do
    digest=$(ORLUNE_PTK_LEVEL=$level ORLUNE_PTK_THREADS=$threads "$program")
    if [ "$digest" != "$first" ]; then
      printf 'level %s with %s workers:\n%s\ninstead of\n%s\n' "$level" "$threads" "$digest" "$first"
      status=1
    fi
  done
done
exit $status
