#!/bin/sh
# The viewer as a person uses it, on a display that nobody sees: windows by their titles, a region
# drawn with the mouse, keys, and a display that goes.
# usage: orlune_view_test.sh ORLUNE SCENES_FOLDER WORK_FOLDER
set -u
orlune=$1 scenes=$2 work=$3
for program in Xvfb xdotool; do
  command -v "$program" >/dev/null || { echo "$program is not installed"; exit 77; }
done
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1

server="" viewer=""
stop() {
  for process in $viewer $server; do kill "$process" 2>/dev/null; done
}
trap stop EXIT
fail() {
  echo "FAILED: $1"
  sed 's/^/  out: /' out
  sed 's/^/  err: /' err
  exit 1
}
# until_true COMMAND...: waits for it, at most half a minute
until_true() {
  for _ in $(seq 300); do
    "$@" >/dev/null 2>&1 && return 0
    sleep 0.1
  done
  fail "waited for: $*"
}
window() { xdotool search --onlyvisible --name "$1" | head -n 1; }
shows() { [ -n "$(window "$1")" ]; }
says() { grep -q -e "$1" out; }
ended() { ! kill -0 "$viewer" 2>/dev/null; }
press() { xdotool windowfocus "$(window washers)" key "$1"; }

start_server() {
  : >out
  : >err
  rm -f display
  # Without -noreset it begins anew when its last program ends, and sends away who comes meanwhile.
  Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>display 2>server.log &
  server=$!
  until_true grep -q . display
  DISPLAY=:$(cat display)
  export DISPLAY
  until_true xdotool getdisplaygeometry
}
start_viewer() {
  : >out
  : >err
  "$orlune" view --dark --out marked "$scenes/washers.bmp" >out 2>err &
  viewer=$!
  until_true shows washers
  until_true shows Measures
  until_true shows Tools
}

start_server
start_viewer
until_true press w
until_true says "11 particles"

# The tool at the start is the rectangle.
picture=$(window washers)
xdotool mousemove --window "$picture" 170 90 mousedown 1 sleep 0.2 \
  mousemove --window "$picture" 300 200 sleep 0.2 mousemove --window "$picture" 500 300 sleep 0.2 mouseup 1
# A key is pressed again until its answer comes: what was drawn may not have been measured yet.
answers() {
  press "$1" && sleep 0.3 && says "$2"
}
until_true answers o "--region 170,90,33[01],21[01]"
# Once nothing happens it sleeps until a person does something: its turns at the processor end.
turns() { awk '/^voluntary/ { print $2 }' "/proc/$viewer/status"; }
turns_in_half_a_second() {
  before=$(turns)
  sleep 0.5
  echo $(($(turns) - before))
}
sleeps() { [ "$(turns_in_half_a_second)" -eq 0 ]; }
until_true sleeps
until_true press s
until_true test -s marked/washers-marked.png
until_true press q
until_true ended
wait "$viewer"
status=$?
[ "$status" -eq 0 ] || fail "exit status $status"
[ ! -s err ] || fail "complaints"

# The program ends well when the display goes, whether it sleeps then ...
display_goes() {
  kill "$server"
  until_true ended
  wait "$viewer"
  status=$?
  [ "$status" -eq 1 ] || fail "exit status $status without a display"
  grep -q "the display is gone" err || fail "nothing is said"
}
start_viewer
until_true sleeps
display_goes
# ... or follows the mouse, and sees its windows end first. While it waits for news it has far fewer
# turns.
start_server
start_viewer
follows_mouse() {
  xdotool mouseup 1 mousemove --window "$(window washers)" 170 90 mousedown 1
  [ "$(turns_in_half_a_second)" -gt 15 ]
}
until_true follows_mouse
display_goes
