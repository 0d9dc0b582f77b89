#!/bin/sh
# Holds a list of particles to the truth of a scene: every part is found once and alone, within 1.5
# pixels of its place, with its area to half a pixel along its outline, and nothing else is found.
# usage: compare_truth.sh OUTLINES.csv SCENE FOUND.csv [COLOUR]
#   OUTLINES.csv by orlune_scenes; FOUND.csv by orlune inspect --fill-holes --csv FOUND.csv
#   --measures AreaPixels,CentreOfMassX,CentreOfMassY
set -eu
awk -F, -v scene="$2" -v colour="${4:-}" '
  function distance(x, y) { return sqrt(x * x + y * y) }
  FNR == 1 { next }
  NR == FNR {
    if ($1 != scene || (colour != "" && $7 != colour)) next
    parts++; area[parts] = $3; perimeter[parts] = $4; x[parts] = $5; y[parts] = $6
    next
  }
  { found++
    for (i = 1; i <= parts; i++) {
      if (distance($4 - x[i], $5 - y[i]) > 1.5) continue
      met[i]++
      off = $3 > area[i] ? $3 - area[i] : area[i] - $3
      if (off > perimeter[i] / 2) { print "part " i ": area " $3 ", truly " area[i]; wrong++ }
      if (off / area[i] > worst) worst = off / area[i]
    }
  }
  END {
    for (i = 1; i <= parts; i++) {
      if (met[i] != 1) { print "part " i " at " x[i] "," y[i] ": found " met[i] + 0 " times"; wrong++ }
    }
    if (found != parts) { print found + 0 " particles, truly " parts + 0 " parts"; wrong++ }
    if (parts == 0 || wrong) exit 1
    printf "%s: each of the %d %s%sparts is found alone; areas are off by at most %.1f %%\n",
      scene, parts, colour, colour == "" ? "" : " ", 100 * worst
  }' "$1" "$3"
