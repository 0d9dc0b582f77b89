# What the journeys through the command line share: sourced, with $orlune and $work set. Makes $work anew
# and goes there; the output of the last command is in the files out and err.
# shellcheck shell=sh
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
: >out
: >err
failures=0
what="the journey"

fail() {
  printf 'FAILED: %.400s\n' "$1"
  sed 's/^/  out: /' out | head -20
  sed 's/^/  err: /' err | head -20
  failures=$((failures + 1))
}
# run STATUS ARGUMENT...: runs the program and checks its exit status
run() {
  expected=$1
  shift
  what="orlune $*"
  "$orlune" "$@" >out 2>err
  status=$?
  [ "$status" -eq "$expected" ] || fail "$what: exit status $status, not $expected"
}
in_out() { grep -qF -e "$1" out || fail "$what: no '$1' on standard output"; }
in_err() { grep -qF -e "$1" err || fail "$what: no '$1' on standard error"; }
in_file() { grep -qF -e "$2" "$1" || fail "$what: no '$2' in $1"; }
same() { cmp -s "$1" "$2" || fail "$what: $1 and $2 differ"; }
lines() { [ "$(wc -l <"$1")" -eq "$2" ] || fail "$what: $1 has $(wc -l <"$1") lines, not $2"; }
# until_true COMMAND...: waits for it, at most ten seconds
until_true() {
  tries=0
  until "$@" >/dev/null 2>&1; do
    tries=$((tries + 1))
    [ $tries -lt 200 ] || return 1
    sleep 0.05
  done
}
# sql FILE STATEMENT: its rows, with | between the columns
sql() {
  python3 -c 'import sqlite3, sys
for row in sqlite3.connect(sys.argv[1]).execute(sys.argv[2]): print(*row, sep="|")' "$1" "$2"
}
# end of the journey
tell_failures() {
  [ "$failures" -eq 0 ] && exit 0
  echo "$failures failures"
  exit 1
}
