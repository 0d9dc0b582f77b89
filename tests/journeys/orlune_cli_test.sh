#!/bin/sh
# The command line as a person uses it: exit statuses, messages, reports, and what goes where.
# usage: orlune_cli_test.sh ORLUNE SCENES_FOLDER WORK_FOLDER VERSION
set -u
orlune=$1 scenes=$2 work=$3 version=$4
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
failures=0

fail() {
  echo "FAILED: $1"
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
[ "$(grep -c '^ *[0-9]' out)" -eq 50 ] || fail "the measures are not 50"

# Use that makes no sense is explained, and nothing is done
run 2 inspect
in_err "FILE"
run 2 frobnicate
in_err "frobnicate"
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

# A bad file among good ones: it is named with message and number, the others go on
printf 'this is no picture at all' >text.bmp
head -c 3000 "$scenes/washers.bmp" >short.bmp
: >empty.tif
run 1 inspect --dark "$scenes/washers.bmp" missing.tif text.bmp short.bmp empty.tif . \
  "$scenes/washers.bmp"
in_err "missing.tif: unable to get info (ZEL_ReadFile returned -510)"
in_err "text.bmp: file type not supported (ZEL_ReadFile returned -509)"
in_err "short.bmp: file type not supported (ZEL_ReadFile returned -509)"
in_err "empty.tif:"
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
in_out '"error": {"number": -510, "message": "unable to get info'
run 1 inspect --csv no/such/folder/list.csv "$scenes/washers.bmp"
in_err "no/such/folder/list.csv"
if [ -e /dev/full ]; then
  run 1 inspect --dark --csv /dev/full "$scenes/washers.bmp"
  in_err "/dev/full: could not be written to its end"
fi

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
run 0 convert "$scenes/pins.tif" pins.orln
run 0 convert pins.orln back.tif
cmp -s "$scenes/pins.tif" back.tif || fail "TIFF to native and back is another file"
run 0 convert "$scenes/washers.bmp" washers.orln
run 0 convert --format bmp washers.orln washers.picture
cmp -s "$scenes/washers.bmp" washers.picture || fail "BMP to native and back is another file"
run 0 convert --type u8 --stretch "$scenes/chips.tif" chips.bmp
run 0 info chips.bmp
in_out "8-bit gray"
in_out "0 to 255"
run 0 convert --type u8 "$scenes/chips.tif" limited.tif
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
in_err "24 bits"
run 0 inspect --keep "AreaPixels>=200" pins.bmp
in_out "18 kept"
run 2 convert "$scenes/chips.tif" chips-deep.bmp
in_err "--type u8"
run 2 convert --type u8 "$scenes/pins.tif" pins8.bmp
in_err "--type rgb"
run 2 convert "$scenes/pins.tif" pins.jpg
in_err "--format"
run 1 convert missing.tif out.bmp
in_err "missing.tif: unable to get info"
run 1 convert "$scenes/washers.bmp" no/such/folder/out.tif
in_err "no/such/folder/out.tif: invalid parameter"

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
run 0 filter --steps "edges sobel 4" median.orln -o two-steps.bmp
cmp -s two-steps.bmp filtered/here/washers.bmp || fail "a chain is not its steps one by one"
cmp -s two-steps.bmp "$scenes/washers.bmp" && fail "the filters did nothing"
run 0 filter --steps "median 5" "$scenes/chips.tif" -o chips-median.tif
run 0 info chips-median.tif
in_out "16-bit gray"
run 0 inspect --keep "AreaPixels>=200" chips-median.tif
in_out "20 kept"
run 0 filter --steps "median 3" --format bmp "$scenes/pins.tif" --out filtered
in_err "filtered/pins.bmp: written with 24 bits"
run 0 filter --steps "maximum 3" --mask "$scenes/washers.bmp" "$scenes/washers.bmp" -o masked.bmp
run 1 filter --steps "maximum 3" --mask "$scenes/pins.tif" "$scenes/washers.bmp" -o not-masked.bmp
in_err "the mask of 801 x 601 pixels does not fit"
run 1 filter --steps "maximum 3" --mask missing.tif "$scenes/washers.bmp" -o not-masked.bmp
in_err "missing.tif: unable to get info"
[ ! -e not-masked.bmp ] || fail "filtered without the mask"

# Those that cannot be read or written are named, and the others go on
run 1 filter --steps "minimum 3" missing.tif text.bmp "$scenes/washers.bmp" --out filtered/some
in_err "missing.tif: unable to get info (ZEL_ReadFile returned -510)"
in_err "text.bmp: file type not supported (ZEL_ReadFile returned -509)"
in_out "1 picture filtered, 2 could not be"
[ -s filtered/some/washers.bmp ] || fail "the good file did not go on"
[ ! -e filtered/some/missing.tif ] || fail "a picture of no file"
run 1 filter --steps "median 3" --format bmp "$scenes/chips.tif" "$scenes/pins.tif" --out filtered/some
in_err "filtered/some/chips.bmp: BMP holds u8 and rgb pixels, not i16"
in_out "1 picture filtered, 1 could not be"
run 1 filter --steps "median 3" "$scenes/washers.bmp" -o no/such/folder/out.bmp
in_err "no/such/folder/out.bmp: invalid parameter"
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

[ "$failures" -eq 0 ] || { echo "$failures failures"; exit 1; }
echo "all as it should be"
