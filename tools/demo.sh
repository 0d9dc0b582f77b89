#!/bin/sh
# The demonstration: builds the tools, makes picture files of scenes whose contents are known,
# inspects and filters them, and leaves the annotated and the filtered pictures and the reports in
# demo/.
set -eu
cd "$(dirname "$0")/.."
tools/setup.sh
cmake --preset release
cmake --build --preset release --target orlune orlune_scenes

orlune=build/release/tools/orlune
rm -rf demo && mkdir demo
echo
echo "== Scenes, with the particles that are truly there"
build/release/tools/orlune_scenes demo/scenes demo/truth.csv demo/outlines.csv

# Shows a command as one would type it, and runs it in demo/.
show() {
  printf '\n$ orlune'
  for word in "$@"; do
    case $word in
      *'>'* | *' '*) printf ' "%s"' "$word" ;;
      *) printf ' %s' "$word" ;;
    esac
  done
  echo
  (cd demo && "../$orlune" "$@")
}
show info scenes/chips.tif
show inspect --dark --scale 0.05 --unit mm --annotate annotated scenes/washers.bmp
show inspect --keep "AreaPixels>=500" --annotate annotated --csv particles.csv --json particles.json \
  scenes/pins.tif scenes/chips.tif scenes/mixed.orln

# Parts that touch come apart, and each is measured alone.
measures=AreaPixels,CentreOfMassX,CentreOfMassY
show inspect --fill-holes --separate 21 --measures $measures --csv apart.csv --annotate annotated/apart \
  scenes/mixed.orln
tools/compare_truth.sh demo/outlines.csv mixed.orln demo/apart.csv
show inspect --hue 200:260 --saturation 35: --fill-holes --measures $measures --csv blue.csv \
  --annotate annotated scenes/tokens.bmp
tools/compare_truth.sh demo/outlines.csv tokens.bmp demo/blue.csv blue

show filter --steps "median 5; edges sobel 4; maximum 3" --format bmp --out filtered scenes/mixed.orln
show filter --steps "plane saturation" --format bmp --out filtered scenes/tokens.bmp

# A shaft gauged along lines that follow it. The last one is worn, and does not pass.
cp examples/shaft.json demo
shafts=$(cd demo && ls scenes/shafts/*.bmp)
# shellcheck disable=SC2086 # the names are words of their own
show gauge --setup shaft.json --csv shafts.csv --annotate annotated/shafts $shafts || [ $? -eq 1 ]
tools/compare_gauges.sh demo/scenes/shafts/truth.csv demo/shafts.csv 0.05
# shellcheck disable=SC2086
show match --dark --annotate annotated/shafts scenes/shafts/shaft1.bmp $shafts

# Gauges: a dial told by pictures of its needle at both ends, and a display by a picture of all eights.
show calibrate meter --base 160,160 --radius 112 --high 10 --unit bar -o dial.json \
  scenes/gauges/empty.bmp scenes/gauges/full.bmp
show read meter --setup dial.json --annotate annotated/gauges scenes/gauges/dial1.bmp scenes/gauges/dial2.bmp
show calibrate lcd --region 26,24,280,96 --light --points -o display.json scenes/gauges/eights.bmp
show read lcd --setup display.json --annotate annotated/gauges --csv displays.csv \
  scenes/gauges/display1.bmp scenes/gauges/display2.bmp

# Bar codes, found wherever they lie.
show read barcode --kind interleaved scenes/labels/upright.bmp scenes/labels/turned.bmp

# Recipes: what a line would ask of each picture, and what is wrong with some of them. The exit status
# says that some failed.
cp examples/recipes/*.toml demo/
show calibrate lcd --region 106,344,280,96 --light --points -o scale.json scenes/packages/eights.bmp
show run --check tray.toml
for recipe in tray shaft package; do
  # shellcheck disable=SC2046 # the names are words of their own
  show run -j auto $recipe.toml --html $recipe.html --csv $recipe.csv --annotate annotated/$recipe \
    $(cd demo && ls scenes/${recipe}s/$recipe[0-9].bmp) || [ $? -eq 1 ]
done

echo
echo "The reports of the recipes are demo/tray.html, demo/shaft.html and demo/package.html."
echo "The pictures are in demo/scenes, the annotated ones in demo/annotated,"
echo "the filtered ones in demo/filtered; demo/particles.csv and demo/particles.json hold the lists."
