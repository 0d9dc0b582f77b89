#!/bin/sh
# Holds the manual pages of section 3 to the list of exports: each function has a page with all parts, and each page
# that another one names is there. Where groff is installed, it has nothing to warn of.
# usage: manual_pages.sh LIST FOLDER
set -eu
names=$(grep '^ZEL_' "$1")
cd "$2"

status=0
complain() {
  echo "$1"
  status=1
}

for name in $names; do
  if [ ! -f "$name.3" ]; then
    complain "$name has no page"
    continue
  fi
  for part in NAME SYNOPSIS DESCRIPTION FAILURES "SEE ALSO"; do
    grep -qx ".SH $part" "$name.3" || complain "$name.3 has no part $part"
  done
  grep -q "^$name \\\\- ." "$name.3" || complain "$name.3 does not tell in a line what $name is"
done

for page in $(sed -nE 's/\\fB(ZEL_[A-Za-z0-9_]+|orlune_ptk[a-z_]*)\\fR\(3\)/\n\1\n/gp' ./*.3 | grep -xE '[A-Za-z0-9_]+' | sort -u); do
  [ -f "$page.3" ] || complain "there is no page $page.3, which another one names"
done

if command -v groff >/dev/null; then
  groff -man -ww -z -Tutf8 ./*.3 2>groff.log || true
  if [ -s groff.log ]; then
    cat groff.log
    status=1
  fi
fi
exit $status
