#!/bin/sh
# Makes the pictures of `orlune view` in docs/, on a display that nobody sees: an area and a line are
# drawn with the tools, as a person would. Needs the demonstration's scenes (tools/demo.sh) and the
# Debian packages xvfb, openbox, xdotool and imagemagick.
# usage: screenshots.sh [FOLDER]
set -eu
cd "$(dirname "$0")/.."
folder=${1:-docs}
orlune=$PWD/build/release/tools/orlune
scene=demo/scenes/washers.bmp
for needed in "$orlune" "$scene"; do
  [ -e "$needed" ] || { echo "screenshots: $needed is missing: run tools/demo.sh" >&2; exit 1; }
done
for program in Xvfb openbox xdotool import; do
  command -v "$program" >/dev/null || { echo "screenshots: $program is not installed" >&2; exit 1; }
done

work=$(mktemp -d)
started=""
stop() {
  for process in $started; do kill "$process" 2>/dev/null || true; done
  rm -rf "$work"
}
trap stop EXIT

Xvfb -displayfd 3 -screen 0 1280x800x24 -nolisten tcp -noreset 3>"$work/display" 2>"$work/server" &
started="$!"
for _ in $(seq 100); do
  [ -s "$work/display" ] && break
  sleep 0.1
done
DISPLAY=:$(cat "$work/display")
export DISPLAY
openbox >/dev/null 2>&1 &
started="$started $!"

# window NAME: the number of the window of that title, once it is there.
window() {
  xdotool search --sync --onlyvisible --name "$1" | head -n 1
}
# tool COLUMN ROW: chooses a tool by its cell.
tool() {
  xdotool mousemove --window "$(window '^Tools$')" $((24 * $1 + 14)) $((24 * $2 + 14)) click 1
}
# drag X1 Y1 X2 Y2: with the button down over the picture.
drag() {
  xdotool mousemove --window "$picture" "$1" "$2" mousedown 1 sleep 0.2
  xdotool mousemove --window "$picture" $((($1 + $3) / 2)) $((($2 + $4) / 2)) sleep 0.2
  xdotool mousemove --window "$picture" "$3" "$4" sleep 0.2 mouseup 1 sleep 0.5
}

"$orlune" view --dark "$scene" &
viewer=$!
started="$started $viewer"
picture=$(window washers)
window '^Measures$' >/dev/null
sleep 1

tool 2 0 # the rectangle
drag 170 90 560 400
xdotool windowactivate --sync "$picture" key x sleep 0.5
import -window root -crop 1180x520+10+15 +repage "$folder/view_region.png"

xdotool key x sleep 0.2
tool 1 0 # the line
drag 20 150 560 120
import -window root -crop 1180x520+10+15 +repage "$folder/view_line.png"

xdotool windowactivate --sync "$picture" key q
wait "$viewer"
echo "screenshots: $folder/view_region.png and $folder/view_line.png"
