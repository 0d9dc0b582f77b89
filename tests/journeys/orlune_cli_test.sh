#!/bin/sh
# The command line as a person uses it: exit statuses, messages, reports, and what goes where.
# usage: orlune_cli_test.sh ORLUNE SCENES_FOLDER WORK_FOLDER VERSION
set -u
orlune=$1 scenes=$2 work=$3 version=$4
root=$(cd "$(dirname "$0")/../.." && pwd)
compare=$root/tools/compare_truth.sh
here=$(cd "$(dirname "$0")" && pwd)
. "$here/journey.sh"
not_in() { if grep -qF -e "$2" "$1"; then fail "$what: '$2' in $1"; fi; }
silent() { if [ -s "$1" ]; then fail "$what: $1 is not empty"; fi; }

# Help and version
run 0 --version
[ "$(cat out)" = "orlune $version" ] || fail "the version is not $version"
run 0 --help
in_out "Examples:"
in_out "inspect"
run 0 inspect --help
in_out "--keep"
in_out "clustering"
run 0 filter --help
in_out "--steps"
in_out "median SIZE"
in_out "METHOD: differentiation, gradient, prewitt, roberts, sigma or sobel"
in_out "TOLERANCE: 0 to 100"
run 2
in_out "Usage:"
run 0 measures
in_out "HeywoodCircularity"
in_out "FeretMaximum"
in_out "LibraryOrientation"
run 0 help
in_out "Usage:"
run 0 help inspect
in_out "--keep"
in_out "otsu        where the variance"
run 0 -V
[ "$(cat out)" = "orlune $version" ] || fail "the version is not $version"
run 2 help nothing

# Use that makes no sense is explained, and nothing is done
run 2 inspect
in_err "FILE"
run 2 frobnicate
in_err "frobnicate"
run 2 fliter
in_err "did you mean filter?"
run 2 inspect --anotate x "$scenes/washers.bmp"
in_err "did you mean --annotate?"
run 2 inspect --method otzu "$scenes/washers.bmp"
in_err "did you mean otsu?"
run 2 inspect --region 1,2,3 "$scenes/washers.bmp"
run 2 inspect -j 0 "$scenes/washers.bmp"
run 2 inspect --keep "AreaPixel>=50" "$scenes/washers.bmp"
in_err "did you mean AreaPixels?"
silent out
run 2 inspect --keep "AreaPixels" "$scenes/washers.bmp"
in_err "has no comparison"
run 2 inspect --keep "AreaPixels>=many" "$scenes/washers.bmp"
in_err "'many' is not a number"
run 2 inspect --method best "$scenes/washers.bmp"
in_err "clustering"
run 2 inspect --range 10 "$scenes/washers.bmp"
in_err "MIN:MAX"
run 2 inspect --range 1:2 --dark "$scenes/washers.bmp"
run 2 inspect --range 1:2 --method entropy "$scenes/washers.bmp"
run 2 inspect --light --dark "$scenes/washers.bmp"
run 2 inspect --connectivity 6 "$scenes/washers.bmp"
run 2 inspect --measures AreaPixels,Foo "$scenes/washers.bmp"
run 2 inspect --scale 0 "$scenes/washers.bmp"
run 2 inspect --rows many "$scenes/washers.bmp"

# What files hold
run 0 info "$scenes/washers.bmp" "$scenes/pins.tif" "$scenes/chips.tif" "$scenes/mixed.orln"
in_out "BMP"
in_out "640 x 480"
in_out "801 x 601"
in_out "16-bit gray"
in_out "native"
silent err

# The scenes' particles are found
run 0 inspect --dark "$scenes/washers.bmp"
in_out "11 particles"
in_out "1 picture inspected"
silent err
run 0 inspect --keep "AreaPixels>=200" "$scenes/pins.tif" "$scenes/chips.tif" "$scenes/mixed.orln"
in_out "3 pictures inspected"
in_out "68 particles found"
run 0 inspect --dark --keep "NumberOfHoles=2" "$scenes/washers.bmp"
in_out "11 particles, 1 kept"
run 0 inspect --dark --keep "NumberOfHoles>=1,NumberOfHoles<2" --keep "Left>=0" "$scenes/washers.bmp"
in_out "11 particles, 10 kept"
run 0 inspect --dark --quiet "$scenes/washers.bmp"
silent out
run 0 inspect --dark --rows 2 "$scenes/washers.bmp"
in_out "and 9 more"
run 0 inspect --range 1300: --keep "AreaPixels>=200" "$scenes/chips.tif"
in_out "20 kept"
run 0 inspect --range=-5:5 "$scenes/washers.bmp"

# Parts that touch come apart, and each is found as it truly is
measures=AreaPixels,CentreOfMassX,CentreOfMassY
held() {
  "$compare" "$scenes/outlines.csv" "$@" >compared || {
    cat compared
    fail "$what: not the truth of $1 ${3:-}"
  }
}
run 0 inspect --fill-holes --measures $measures --csv joined.csv "$scenes/mixed.orln"
in_out "30 particles"
if "$compare" "$scenes/outlines.csv" mixed.orln joined.csv >compared; then fail "parts that touch are apart"; fi
for neck in 13 21 45; do
  run 0 inspect --fill-holes --separate $neck --measures $measures --csv apart.csv "$scenes/mixed.orln"
  in_out "fill-holes; separate $neck; 32 particles"
  held mixed.orln apart.csv
done

# Objects of a colour
for hues in "red 340:20" "yellow 30:80" "green 90:160" "blue 200:260"; do
  run 0 inspect --hue "${hues#* }" --saturation 35: --fill-holes --measures $measures --csv hue.csv \
    "$scenes/tokens.bmp"
  held tokens.bmp hue.csv "${hues% *}"
done
in_out "objects: hue 200 to 260 degrees, saturation 35 to 100 %, as given"
run 0 inspect --hue=-20:20 --saturation 35: --lightness 5:95 --fill-holes --measures $measures --csv hue.csv \
  "$scenes/tokens.bmp"
held tokens.bmp hue.csv red
run 1 inspect --hue 200:260 "$scenes/washers.bmp"
in_err "the picture is gray"
run 2 inspect --hue 200 "$scenes/tokens.bmp"
in_err "is no range of hues"
run 2 inspect --saturation 101: "$scenes/tokens.bmp"
run 2 inspect --hue 200:260 --dark "$scenes/tokens.bmp"
run 2 inspect --open 4 "$scenes/washers.bmp"
in_err "an odd number of pixels"

# A bad file among good ones: it is named with message and number, the others go on
printf 'this is no picture at all' >text.bmp
head -c 3000 "$scenes/washers.bmp" >short.bmp
: >empty.tif
run 1 inspect --dark "$scenes/washers.bmp" missing.tif text.bmp short.bmp empty.tif . \
  "$scenes/washers.bmp"
in_err "missing.tif: there is no such file"
in_err "text.bmp: this is no TIFF, PNG, JPEG, BMP or native picture"
in_err "short.bmp: the BMP file is cut: its 640 x 480 pixels take 307200 bytes, and there are 1922"
in_err "empty.tif: the file is empty"
in_err "this is a folder"
in_out "2 pictures inspected, 5 could not be"
[ "$(grep -c '11 particles' out)" -eq 2 ] || fail "the good files did not go on"
run 1 info missing.tif "$scenes/pins.tif"
in_err "missing.tif"
in_out "801 x 601"

# Reports
run 0 inspect --dark --csv list.csv --json list.json --measures AreaPixels,NumberOfHoles,Perimeter \
  "$scenes/washers.bmp"
[ "$(head -1 list.csv)" = "File,Number,AreaPixels,NumberOfHoles,Perimeter" ] || fail "head of the CSV"
[ "$(wc -l <list.csv)" -eq 12 ] || fail "lines of the CSV"
[ "$(awk -F, 'NF != 5' list.csv | wc -l)" -eq 0 ] || fail "columns of the CSV"
[ "$(awk -F, 'NR > 1 { holes += $4 } END { print holes }' list.csv)" -eq 12 ] || fail "holes in the CSV"
[ "$(grep -c '{"number"' list.json)" -eq 11 ] || fail "particles in the JSON"
if command -v python3 >/dev/null; then
  python3 -m json.tool list.json >/dev/null || fail "the JSON is not well-formed"
fi
run 0 inspect --dark --csv - "$scenes/washers.bmp"
[ "$(wc -l <out)" -eq 12 ] || fail "the CSV is not alone on standard output"
in_err "1 picture inspected"
run 1 inspect --json - --quiet missing.tif
in_out '"error": {"message": "there is no such file"}'
run 1 inspect --csv no/such/folder/list.csv "$scenes/washers.bmp"
in_err "no/such/folder/list.csv"
if [ -e /dev/full ]; then
  run 1 inspect --dark --csv /dev/full "$scenes/washers.bmp"
  in_err "/dev/full: cannot be written: the disk is full"
  for command in "info $scenes/washers.bmp" "inspect $scenes/washers.bmp" measures help; do
    # shellcheck disable=SC2086 # words of their own
    "$orlune" $command >/dev/full 2>err
    [ $? -eq 1 ] || fail "$command: a full standard output is no failure"
    in_err "standard output cannot be written"
    # shellcheck disable=SC2086
    "$orlune" $command >&- 2>err
    [ $? -eq 1 ] || fail "$command: a closed standard output is no failure"
  done
  run 1 convert "$scenes/washers.bmp" --format png /dev/full
  in_err "the disk is full"
fi
# A disk that is full: nothing of the picture is left, and the former one stays
if [ "$(id -u)" -eq 0 ] && mkdir -p small && mount -t tmpfs -o size=64k tmpfs small 2>/dev/null; then
  echo former >small/a.bmp
  run 1 convert "$scenes/washers.bmp" small/a.bmp
  in_err "small/a.bmp: cannot be written: the disk is full"
  [ "$(cat small/a.bmp)" = former ] || fail "a picture that was written before is lost"
  run 1 convert "$scenes/washers.bmp" small/a.orln
  run 1 inspect --dark --annotate small "$scenes/washers.bmp"
  [ "$(ls small)" = a.bmp ] || fail "something half written is left"
  umount small
else
  echo "skipped: a full disk (nothing can be mounted here)"
fi
# A reader that has seen enough
"$orlune" measures 2>err | head -1 >out
silent err
"$orlune" inspect --dark "$scenes/washers.bmp" "$scenes/washers.bmp" 2>err | head -1 >out
silent err
# Outputs are no inputs, and no two outputs are one file
cp "$scenes/washers.bmp" own.bmp
run 2 inspect --csv own.bmp own.bmp
in_err "that is a picture to be inspected"
run 2 inspect --csv - --json - own.bmp
run 2 inspect --csv both --json ./both own.bmp
in_err "that is the CSV report"
mkdir -p marks
cp own.bmp marks/own-annotated.bmp
run 2 inspect --annotate marks own.bmp marks/own-annotated.bmp
in_err "that is a picture to be inspected"
run 2 convert own.bmp ./own.bmp
cmp -s own.bmp "$scenes/washers.bmp" || fail "an input was written over"
# Names that a spreadsheet would take for formulas
cp own.bmp "=own.bmp"
run 0 inspect --dark --quiet --csv - =own.bmp
in_out "./=own.bmp,1,"

# Annotated pictures, also of files with the same name in different folders
mkdir -p other
cp "$scenes/washers.bmp" other/washers.bmp
run 0 inspect --dark --annotate marked/here "$scenes/washers.bmp" other/washers.bmp
[ -s marked/here/washers-annotated.bmp ] || fail "no annotated picture"
[ -s marked/here/washers-annotated-2.bmp ] || fail "no second annotated picture"
run 0 info marked/here/washers-annotated.bmp
in_out "24-bit colour"
in_out "640 x 480"
run 1 inspect --dark --annotate "$scenes/washers.bmp" "$scenes/washers.bmp"
in_err "the folder cannot be made"

# Conversions
for ending in tif png bmp; do
  run 0 convert "$scenes/pins.tif" pins.orln
  run 0 convert pins.orln "back.$ending"
  run 0 convert "back.$ending" back.orln
  cmp -s pins.orln back.orln || fail "$ending and back is another picture"
done
run 0 convert "$scenes/chips.tif" chips.orln
run 0 convert chips.orln chips.png
run 0 convert chips.png chips-back.orln
cmp -s chips.orln chips-back.orln || fail "16-bit PNG and back is another picture"
run 0 convert "$scenes/washers.bmp" washers.orln
run 0 convert --format bmp washers.orln washers.picture
run 0 convert washers.picture washers-back.orln
cmp -s washers.orln washers-back.orln || fail "BMP to native and back is another picture"
"$orlune" convert - --format png - <"$scenes/washers.bmp" >piped.png 2>err || fail "no picture through pipes"
run 0 inspect --dark piped.png
in_out "11 particles"
run 0 convert --type u8 --stretch "$scenes/chips.tif" chips.bmp
run 0 info chips.bmp
in_out "8-bit gray"
in_out "0 to 255"
run 0 convert --type u8 "$scenes/chips.tif" limited.tif
in_err "are limited to 0 to 255"
run 0 convert --type rgb "$scenes/washers.bmp" washers-rgb.tif
run 0 info washers-rgb.tif
in_out "24-bit colour"
run 0 convert --type complex "$scenes/washers.bmp" washers-complex.orln
run 0 inspect --dark washers-complex.orln
in_out "11 particles"
run 0 convert --type sgl "$scenes/chips.tif" chips-float.orln
run 0 inspect --keep "AreaPixels>=200" chips-float.orln
in_out "20 kept"
run 0 convert "$scenes/pins.tif" pins.bmp
silent err
run 0 inspect --keep "AreaPixels>=200" pins.bmp
in_out "18 kept"
run 2 convert "$scenes/chips.tif" chips-deep.bmp
in_err "--type u8"
run 2 convert "$scenes/pins.tif" pins.jpg
in_err "--format"
run 1 convert missing.tif out.bmp
in_err "missing.tif: there is no such file"
run 1 convert "$scenes/washers.bmp" no/such/folder/out.tif
in_err "no/such/folder/out.tif: cannot be written: there is no such folder"

# Filters: chains on several files, of which each goes into the folder under its own name
chain="median 5; edges sobel 4"
run 0 filter --steps "$chain" "$scenes/washers.bmp" "$scenes/mixed.orln" --out filtered/here
in_out "washers.bmp: BMP, 640 x 480, 8-bit gray; filtered: filtered/here/washers.bmp"
in_out "2 pictures filtered"
in_out "megapixels in"
in_out "median "
in_out "edges "
silent err
run 0 filter --quiet --steps "median 5" "$scenes/washers.bmp" -o median.orln
silent out
"$orlune" filter --steps "median 5" --format png -o - "$scenes/washers.bmp" >median.png 2>err ||
  fail "no filtered picture through a pipe"
run 0 convert median.png median-back.orln
cmp -s median.orln median-back.orln || fail "a filtered picture through a pipe is another one"
run 0 filter --steps "edges sobel 4" median.orln -o two-steps.bmp
cmp -s two-steps.bmp filtered/here/washers.bmp || fail "a chain is not its steps one by one"
cmp -s two-steps.bmp "$scenes/washers.bmp" && fail "the filters did nothing"
run 0 filter --steps "median 5" "$scenes/chips.tif" -o chips-median.tif
run 0 info chips-median.tif
in_out "16-bit gray"
run 0 inspect --keep "AreaPixels>=200" chips-median.tif
in_out "20 kept"
run 0 filter --steps "median 3" --format bmp "$scenes/pins.tif" --out filtered
silent err
run 0 filter --steps "maximum 3" --mask "$scenes/washers.bmp" "$scenes/washers.bmp" -o masked.bmp
run 1 filter --steps "maximum 3" --mask "$scenes/pins.tif" "$scenes/washers.bmp" -o not-masked.bmp
in_err "the mask of 801 x 601 pixels does not fit"
run 1 filter --steps "maximum 3" --mask missing.tif "$scenes/washers.bmp" -o not-masked.bmp
in_err "missing.tif: there is no such file"
[ ! -e not-masked.bmp ] || fail "filtered without the mask"

# Steps that take colours come first
run 0 filter --steps "equalize; scale saturation 50" "$scenes/tokens.bmp" -o toned.png
run 0 info toned.png
in_out "24-bit colour"
run 0 filter --steps "select 200:260 35:; fillholes" "$scenes/tokens.bmp" -o blue.bmp
run 0 inspect --range 1: --measures $measures --csv blue.csv blue.bmp
held tokens.bmp blue.csv blue
run 2 filter --steps "median 3; plane hue" "$scenes/tokens.bmp" -o never.bmp
in_err "step 2, plane: the picture is gray by then"
run 1 filter --steps "plane hue" "$scenes/washers.bmp" -o never.bmp
in_err "the picture is gray, and the step plane takes colours"
[ ! -e never.bmp ] || fail "a picture of no colours"

# Those that cannot be read or written are named, and the others go on
run 1 filter --steps "minimum 3" missing.tif text.bmp "$scenes/washers.bmp" --out filtered/some
in_err "missing.tif: there is no such file"
in_err "text.bmp: this is no TIFF"
in_out "1 picture filtered, 2 could not be"
[ -s filtered/some/washers.bmp ] || fail "the good file did not go on"
[ ! -e filtered/some/missing.tif ] || fail "a picture of no file"
run 1 filter --steps "median 3" --format bmp "$scenes/chips.tif" "$scenes/pins.tif" --out filtered/some
in_err "filtered/some/chips.bmp: BMP holds u8 and rgb pixels, not u16"
in_out "1 picture filtered, 1 could not be"
run 1 filter --steps "median 3" "$scenes/washers.bmp" -o no/such/folder/out.bmp
in_err "no/such/folder/out.bmp: cannot be written: there is no such folder"
run 1 filter --steps "median 3" "$scenes/washers.bmp" --out text.bmp
in_err "text.bmp: the folder cannot be made"

# No picture that is read is written over, and no two pictures go to one file
run 2 filter --steps "median 3" other/washers.bmp --out other
in_err "that is a picture to be filtered"
run 2 filter --steps "median 3" other/washers.bmp -o other/../other/washers.bmp
in_err "that is a picture to be filtered"
run 2 filter --steps "median 3" --mask other/washers.bmp "$scenes/washers.bmp" -o other/washers.bmp
in_err "that is the mask"
cmp -s other/washers.bmp "$scenes/washers.bmp" || fail "a picture was written over"
run 2 filter --steps "median 3" other/washers.bmp "$scenes/washers.bmp" --out filtered/twice
in_err "that is the result of other/washers.bmp"
[ ! -e filtered/twice ] || fail "something was done"

# Filters that make no sense
run 2 filter "$scenes/washers.bmp" --out filtered
in_err "--steps"
run 2 filter --steps "median 3" "$scenes/washers.bmp"
in_err "--out FOLDER"
run 2 filter --steps "median 3" "$scenes/washers.bmp" --out filtered -o one.bmp
run 2 filter --steps "median 3" "$scenes/washers.bmp" "$scenes/pins.tif" -o one.bmp
in_err "-o is for one file"
run 2 filter --steps "median 3" "$scenes/washers.bmp" -o washers.jpg
in_err "--format"
run 2 filter --steps "median 3; medan 5" "$scenes/washers.bmp" --out filtered/never
in_err "step 2, 'medan': no such step; did you mean median?"
run 2 filter --steps "median 0" "$scenes/washers.bmp" --out filtered/never
in_err "step 1, median: the size must be 1 to 1000, or WIDTHxHEIGHT, not '0'"
run 2 filter --steps "edges sobl" "$scenes/washers.bmp" --out filtered/never
in_err "did you mean sobel?"
[ ! -e filtered/never ] || fail "something was done"

# Many files at a time tell the same in the same order
tables() { grep -v 'megapixels in' "$1"; }
set -- "$scenes/washers.bmp" missing.tif "$scenes/pins.tif" text.bmp "$scenes/mixed.orln"
run 1 inspect --csv one.csv --json one.json --annotate one --labels one "$@"
tables out >one.txt
cp err one.err
run 1 inspect -j 3 --csv three.csv --json three.json --annotate three --labels three "$@"
tables out | sed 's/ in three$/ in one/' >three.txt
cmp -s one.txt three.txt || fail "three workers tell other tables"
cmp -s one.err err || fail "three workers tell other failures"
cmp -s one.csv three.csv || fail "three workers make another CSV"
cmp -s one.json three.json || fail "three workers make another JSON"
diff -r one three >/dev/null || fail "three workers make other pictures"
[ -s one/pins-labels.tif ] || fail "no label picture"
run 0 filter -j 2 --quiet --steps "median 3" --out jobs "$scenes/washers.bmp" "$scenes/pins.tif"
[ -s jobs/pins.tif ] || fail "no filtered picture of a worker"

# Ctrl-C leaves whole files and a true count. So many pictures take seconds; it comes after the first ones.
set --
i=0
while [ $i -lt 2000 ]; do
  set -- "$@" "$scenes/mixed.orln"
  i=$((i + 1))
done
what="an interrupted inspection"
"$orlune" inspect --csv stopped.csv --json stopped.json "$@" >out 2>err &
process=$!
half_written() { find . -name 'stopped.*.??????' -size +0 | grep .; }
until_true half_written || fail "$what: nothing is inspected"
kill -TERM $process
wait $process
status=$?
[ $status -eq 143 ] || fail "$what: exit status $status, not 143"
in_out "Stopped after"
grep -q '"complete": false' stopped.json || fail "$what: the JSON is not whole"
listed=$(grep -c '"file"' stopped.json)
in_out "$listed pictures inspected"
[ -s stopped.csv ] || fail "$what: no CSV"
if half_written; then fail "$what: half written files are left"; fi

# Pages, regions, masks
run 0 inspect --dark --region 0,0,320,240 "$scenes/washers.bmp"
in_out "3 particles"
run 1 inspect --region 9999,0,5,5 "$scenes/washers.bmp"
in_err "the region lies outside the picture of 640 x 480"
run 0 inspect --range 300:400 "$scenes/washers.bmp"
in_out "no pixel lies in the range: the picture's values are 43 to 229"
run 1 inspect "$scenes/pins.tif#2"
in_err "the TIFF file has 1 page; there is no #2"
run 0 info --json "$scenes/chips.tif"
in_out '"byteOrder": "big-endian"'

# Windows need a display
DISPLAY="" run 1 view "$scenes/washers.bmp"
in_err "there is no display"
silent out
DISPLAY=:none run 1 view "$scenes/washers.bmp"
in_err "there is no display"
run 0 view --help
in_out "save a marked copy"

# Manual pages and completions are made of the same list of options
for command in "" inspect filter convert info; do
  # shellcheck disable=SC2086
  run 0 manual $command
  in_out ".SH OPTIONS"
  if command -v man >/dev/null; then
    cp out page.1
    MANWIDTH=90 man --warnings -l ./page.1 >page.txt 2>err || fail "man cannot show the page of '$command'"
    silent err
  fi
done
for shell in bash zsh fish; do
  run 0 completions $shell
  in_out "annotate"
  cp out "completions.$shell"
  if command -v $shell >/dev/null && [ $shell != fish ]; then
    $shell -n "completions.$shell" || fail "$shell does not take its completions"
  fi
done
if command -v bash >/dev/null; then
  what="completion"
  bash -c '. ./completions.bash; COMP_WORDS=(orlune inspect --me); COMP_CWORD=2; _orlune; echo "${COMPREPLY[@]}"
           COMP_WORDS=(orlune inspect --method ot); COMP_CWORD=3; _orlune; echo "${COMPREPLY[@]}"' >out 2>err
  in_out "--method --measures"
  in_out "otsu"
fi

# A progress bar on a terminal, and none in a pipe
many="$scenes/washers.bmp $scenes/washers.bmp $scenes/washers.bmp $scenes/washers.bmp"
# shellcheck disable=SC2086 # the names are words of their own
run 0 inspect --dark $many
not_in out "files/s"
not_in err "files/s"
not_in err "of 4"
if script -qec true /dev/null >out 2>&1 </dev/null; then  # not where no terminal can be made
  what="orlune on a terminal"
  script -qec "'$orlune' inspect --dark $many" /dev/null >out 2>err </dev/null
  in_out "1 of 4"
  in_out "files/s"
  in_out " left"
fi

# Gauges: a set-up file of what pictures show, and what other pictures say by it
gauges=$scenes/gauges
run 0 calibrate meter --base 160,160 --radius 112 --high 10 --unit bar -o dial.json \
  "$gauges/empty.bmp" "$gauges/full.bmp"
silent err
run 0 read meter --setup dial.json --csv - "$gauges/dial1.bmp" "$gauges/dial2.bmp"
awk -F, 'NR == 2 && ($2 - 2.75) ^ 2 < 0.05 ^ 2 { right++ }
         NR == 3 && ($2 - 6.4) ^ 2 < 0.05 ^ 2 && $3 == "bar" { right++ }
         END { exit right != 2 }' out || fail "$what: not 2.75 and 6.4 bar"
run 0 read meter --setup dial.json --annotate marked --json dials.json "$gauges/dial1.bmp"
in_out "dial1.bmp: 2."
[ -s marked/dial1-read.bmp ] || fail "$what: no annotated picture"
grep -q '"unit": "bar"' dials.json || fail "$what: no unit in the JSON report"
run 0 calibrate meter --base 160,160 --start 81,239 --end 239,239 -o places.json
run 0 read meter --setup places.json "$gauges/full.bmp"
in_out "100 %"
run 2 calibrate meter --base 160,160 --start 160,160 --end 239,239 -o none.json
run 2 calibrate meter --base 160,160 -o none.json "$gauges/empty.bmp"
in_err "--radius"
run 2 calibrate meter --base 160 --start 1,2 --end 3,4 -o none.json
[ ! -e none.json ] || fail "a set-up of what is no meter"

run 0 calibrate lcd --region 26,24,280,96 --light --points -o display.json "$gauges/eights.bmp"
run 0 read lcd --setup display.json --csv displays.csv "$gauges/display1.bmp" "$gauges/display2.bmp"
in_out "display1.bmp: 127.5"
in_out "display2.bmp: 3.064"
grep -q 'display2.bmp,3.064,3064,4$' displays.csv || fail "$what: wrong CSV report"
# A picture that cannot be read is told, and the others are read
run 1 read lcd --setup display.json --json - "$gauges/dial1.bmp" missing.bmp "$gauges/eights.bmp"
in_out '"text": "8888"'
in_out '"failed": 2'
in_err "missing.bmp"
run 2 read lcd --setup dial.json "$gauges/eights.bmp"
in_err "no set-up of a lcd"
run 2 read meter --setup missing.json "$gauges/dial1.bmp"
in_err "missing.json"
printf '{"gauge": "lcd", "digits": [[1, 2, 3]]}' >odd.json
run 2 read lcd --setup odd.json "$gauges/eights.bmp"
in_err "two or four corners"
printf '{"gauge": "lcd", "digits": [[1, 2' >odd.json
run 2 read lcd --setup odd.json "$gauges/eights.bmp"
in_err "no set-up"
run 2 read lcd --setup display.json --csv display.json "$gauges/eights.bmp"
run 1 calibrate lcd --region 0,0,30,30 --light -o none.json "$gauges/eights.bmp"
run 2 calibrate lcd --region 0,0,30,30 -o none.json
run 2 read gauge --setup display.json "$gauges/eights.bmp"

# Bar codes: found in the whole picture, however they are turned, or read in a region
labels=$scenes/labels
run 0 read barcode --kind interleaved --csv codes.csv --json codes.json "$labels/upright.bmp" "$labels/turned.bmp"
in_out "20261122"
in_out "0417"
grep -q 'upright.bmp,interleaved,"20261122",' codes.csv || fail "$what: wrong CSV report"
grep -q '"0417"' codes.json || fail "$what: wrong JSON report"
run 0 read barcode --kind interleaved -j 2 --quiet --csv - "$labels/upright.bmp" "$labels/turned.bmp"
cmp -s out codes.csv || fail "$what: another report with two workers"
run 0 read barcode --kind interleaved --quiet --annotate marked "$labels/turned.bmp"
cmp -s marked/turned-read.bmp "$labels/turned.bmp" && fail "nothing is marked"
run 0 info marked/turned-read.bmp
run 1 read barcode --kind interleaved "$gauges/empty.bmp" "$labels/upright.bmp"
in_out "20261122"
run 1 read barcode --kind ean13 "$labels/upright.bmp"
run 1 read barcode --kind interleaved --region 0,0,60,60 "$labels/upright.bmp"
run 0 read barcode --kind interleaved --region 100,100,280,120 --csv - --quiet "$labels/upright.bmp"
awk -F, 'NR == 2 && $4 >= 100 && $5 >= 100 && $6 > 180 && $6 <= 280 { right++ } END { exit right != 1 }' out ||
  fail "$what: not found where it lies"
run 2 read barcode "$labels/upright.bmp"
in_err "--kind"
run 2 read barcode --kind interleaved --setup dial.json "$labels/upright.bmp"
in_err "--setup"
run 2 read meter --setup dial.json --validate "$gauges/dial1.bmp"
in_err "--validate"
run 2 read barcode --kind code11 "$labels/upright.bmp"

# Lines that follow a shaft: five pass, and the worn one fails; all sizes are true
shafts=$scenes/shafts
run 1 gauge --setup "$root/examples/shaft.json" --master "$shafts/shaft1.bmp" --csv sizes.csv --json sizes.json \
  --annotate gauged "$shafts"/shaft[1-6].bmp
in_out "shaft5.bmp: passed"
in_out "shaft6.bmp: failed"
in_out "6 pictures gauged"
in_out "5 passed, 1 failed"
"$root/tools/compare_gauges.sh" "$shafts/truth.csv" sizes.csv 0.05 >compared || { cat compared; fail "$what: untrue"; }
grep -q '"rejected": 1, "failed": 0, "complete": true' sizes.json || fail "$what: wrong JSON report"
grep -q 'shaft6.bmp,body,4.9.*,mm,failed,' sizes.csv || fail "$what: wrong CSV report"
[ -s gauged/shaft6-gauged.bmp ] || fail "$what: no annotated picture"
run 1 gauge -j 2 --quiet --setup "$root/examples/shaft.json" --master "$shafts/shaft1.bmp" --csv - "$shafts"/shaft[1-6].bmp
cmp -s out sizes.csv || fail "$what: another report with two workers"
# A set-up that is saved says the same
run 0 gauge --line head=155,180,155,300 --line body=240,160,240,320 --object dark --scale 0.05 --unit mm \
  --follow dark --master "$shafts/shaft1.bmp" --save saved.json --quiet --csv first.csv "$shafts/shaft3.bmp"
run 0 gauge --setup saved.json --quiet --csv second.csv "$shafts/shaft3.bmp"
cmp -s first.csv second.csv || fail "$what: another report than before"
run 0 gauge --line 155,180,155,300 --object dark --min 59.9 --max 60.1 "$shafts/shaft1.bmp"
in_out "passed (59.9:60.1)"
run 1 gauge --line 155,180,155,300 --object dark --min 60.1 "$shafts/shaft1.bmp"
run 1 gauge --line 155,10,155,100 --object dark "$shafts/shaft1.bmp"
in_out "not found"
run 0 gauge --line 155,180,155,300 --measure edges --min 2 --max 2 "$shafts/shaft1.bmp"
run 1 gauge --line 155,180,155,300 "$shafts/shaft1.bmp" missing.bmp
in_err "missing.bmp"
in_out "1 picture could not be read"
run 2 gauge "$shafts/shaft1.bmp"
in_err "--line"
run 2 gauge --line 1,2,3 "$shafts/shaft1.bmp"
in_err "is no line"
run 2 gauge --line 1,2,30,40 --measure spam "$shafts/shaft1.bmp"
in_err "did you mean span?"
run 2 gauge --line 1,2,30,40 --follow dark "$shafts/shaft1.bmp"
in_err "--master"
run 2 gauge --line 1,2,30,40 --master "$shafts/shaft1.bmp" "$shafts/shaft1.bmp"
run 2 gauge --line 1,2,30,40 --min 3 --max 2 "$shafts/shaft1.bmp"
run 2 gauge --line 1,2,30,40 --threshold 0 "$shafts/shaft1.bmp"
run 2 gauge --setup saved.json --band 9 "$shafts/shaft1.bmp"
in_err "--band"
run 2 gauge --setup missing.json "$shafts/shaft1.bmp"
in_err "missing.json"
run 2 gauge --setup display.json "$shafts/shaft1.bmp"
in_err "not 'lines'"
run 2 gauge --setup saved.json --csv saved.json "$shafts/shaft1.bmp"
cp "$shafts/shaft1.bmp" kept.bmp
run 2 gauge --line 155,180,155,300 --save kept.bmp kept.bmp
cmp -s kept.bmp "$shafts/shaft1.bmp" || fail "$what: wrote over a picture"
run 1 gauge --line 1,2,30,40 --follow dark --master missing.bmp "$shafts/shaft1.bmp"
in_err "missing.bmp"
run 1 gauge --line 1,2,30,40 --save no/such/folder.json "$shafts/shaft1.bmp"
in_err "no/such/folder.json"

# Shapes: the shaft is found however it is turned, and by how much
run 0 match --dark --csv shapes.csv --json shapes.json --annotate matched "$shafts/shaft1.bmp" "$shafts"/shaft[1-6].bmp
in_out "6 matches found"
awk -F, '$1 ~ /shaft3/ && $5 > -27.6 && $5 < -27.4 && $6 == 1 && $8 > 900 { right++ } END { exit right != 1 }' shapes.csv ||
  fail "$what: wrong CSV report"
grep -q '"searched": 6, "matches": 6, "failed": 0' shapes.json || fail "$what: wrong JSON report"
[ -s matched/shaft6-matched.bmp ] || fail "$what: no annotated picture"
run 1 match --dark "$shafts/shaft1.bmp" "$scenes/washers.bmp" "$shafts/shaft2.bmp"
in_out "washers.bmp: 0 matches"
in_out "1 match found"
run 1 match --dark missing.bmp "$shafts/shaft1.bmp"
in_err "missing.bmp"
run 2 match --tolerance -1 "$shafts/shaft1.bmp" "$shafts/shaft1.bmp"
run 2 match "$shafts/shaft1.bmp"
run 0 match --dark --scales 0.9:1.1 --quiet "$shafts/shaft1.bmp" "$shafts/shaft4.bmp"
silent out

# ---- what a script leaves empty, and what is no number

for option in --csv --json --annotate --labels --mask; do
  run 2 inspect $option "" "$scenes/washers.bmp"
  in_err "$option: the name is empty"
done
run 2 inspect "" "$scenes/washers.bmp"
run 2 filter --steps "median 3" --out "" "$scenes/washers.bmp"
in_err "--out: the name is empty"
run 2 convert "$scenes/washers.bmp" ""
for rows in -3 1e30 2.5 nan; do
  run 2 inspect --rows $rows "$scenes/washers.bmp"
  in_err "--rows: '$rows' is"
done
run 2 inspect --measures "" "$scenes/washers.bmp"
in_err "a name is missing"
run 2 filter --steps "shift 0.5 0" -o shifted.bmp "$scenes/washers.bmp"
in_err "-1000000 to 1000000"

# A name neither begins a line of its own nor moves the terminal.
odd=$(printf 'line\n\033[31mred\177.bmp')
cp "$scenes/washers.bmp" "$odd"
plain='line??[31mred?.bmp'
run 0 inspect "$odd"
in_out "$plain: BMP"
run 0 info "$odd"
in_out "$plain: BMP"
run 0 filter --steps "median 3" --out odd "$odd"
in_out "$plain: BMP"
in_out "filtered: odd/$plain"
run 0 match "$odd" "$odd"
in_out "$plain: "
run 1 gauge --line 1,1,50,50 --object any "$odd"
in_out "$plain: "
rm "$odd"
run 1 info "$odd"
in_err "$plain: there is no such file"

# A file that may not grow as far as it should is told, and nothing of it stays.
mkdir may-not-grow
(
  ulimit -f 8
  exec "$orlune" filter --steps "median 3" -o may-not-grow/out.bmp "$scenes/washers.bmp"
) >out 2>err
[ $? -eq 1 ] || fail "orlune filter with a limit on files: another status than 1"
in_err "may-not-grow/out.bmp: cannot be written"
[ -z "$(ls may-not-grow)" ] || fail "orlune filter with a limit on files: leaves $(ls may-not-grow)"

tell_failures
