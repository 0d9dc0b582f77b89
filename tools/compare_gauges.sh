#!/bin/sh
# Holds what was gauged to the truth of a scene: every size of every picture is there, and off by at
# most so many pixels.
# usage: compare_gauges.sh TRUTH.csv FOUND.csv PIXEL_SIZE [MOST_PIXELS]
#   TRUTH.csv by orlune_scenes, in pixels; FOUND.csv by orlune gauge --csv, PIXEL_SIZE its --scale
set -eu
awk -F, -v pixel="$3" -v most="${4:-0.1}" '
  FNR == 1 { next }
  NR == FNR { truth[$1 "," $2] = $3; sizes++; next }
  { parts = split($1, path, "/"); name = path[parts] "," $2
    if (!(name in truth) || $3 == "") { print name ": not found, or unknown"; wrong++; next }
    off = $3 / pixel - truth[name]
    if (off < 0) off = -off
    if (off > most) { print name ": " $3 / pixel " pixels, truly " truth[name]; wrong++ }
    if (off > worst) worst = off
    met[name] = 1; found++
  }
  END {
    for (name in truth) if (!(name in met)) { print name ": not gauged"; wrong++ }
    if (sizes == 0 || found != sizes || wrong) exit 1
    printf "all %d sizes are off by at most %.3f pixels\n", sizes, worst
  }' "$1" "$2"
