#!/bin/sh
# A program with another toolkit's main loop hears of the clicks in its own window and in the library's.
# usage: gtk_host_test.sh GTK_HOST WORK_FOLDER
set -u
program=$1 work=$2
for needed in Xvfb xdotool; do
  command -v "$needed" >/dev/null || { echo "$needed is not installed"; exit 77; }
done
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1

server="" host=""
stop() {
  for process in $host $server; do kill "$process" 2>/dev/null; done
}
trap stop EXIT
# until_true COMMAND...: waits for it, at most half a minute
until_true() {
  for _ in $(seq 300); do
    "$@" >/dev/null 2>&1 && return 0
    kill -0 "$host" 2>/dev/null || break
    sleep 0.1
  done
  "$@" >/dev/null 2>&1 && return 0
  if grep -q "is not there" out; then
    cat out
    exit 77
  fi
  echo "FAILED: waited for: $*"
  sed 's/^/  out: /' out
  exit 1
}
# Fails also where other windows go while it looks.
finds() {
  found=$(xdotool search --onlyvisible --name "^$1\$" | head -n 1)
  [ -n "$found" ]
}
says() { grep -q -x -e "$1" out; }
click() {
  until_true finds "$1"
  xdotool mousemove --window "$found" "$2" "$3" click 1
}

# Without -noreset it begins anew when its last program ends, and sends away who comes meanwhile.
Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>display 2>server.log &
server=$!
host=$server
: >out
until_true grep -q . display
DISPLAY=:$(cat display)
# Nothing of the person's own desktop is to be looked for.
export DISPLAY GDK_BACKEND=x11 NO_AT_BRIDGE=1 GSETTINGS_BACKEND=memory DBUS_SESSION_BUS_ADDRESS=disabled:
for order in before after; do
  "$program" "$order" >out 2>err &
  host=$!
  until_true finds host
  until_true finds image
  click image 20 30
  until_true says "the image at 20, 30"
  click host 100 50
  until_true says "the button"
  click image 120 70
  until_true says "the image at 120, 70"
  click host 100 50
  until_true says "the end"
  wait "$host"
  status=$?
  [ "$status" -eq 0 ] || { echo "FAILED: exit status $status"; exit 1; }
done
