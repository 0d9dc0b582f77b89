#!/bin/sh
# Recipes as a person uses them: what is told of mistakes, verdicts, reports, records, and what
# happens to pictures and runs that come to grief.
# usage: orlune_run_test.sh ORLUNE SCENES_FOLDER RECIPES_FOLDER WORK_FOLDER
set -u
orlune=$1 scenes=$2 recipes=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
cd "$work" || exit 1
ln -s "$scenes" scenes
cp "$recipes"/*.toml .
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
in_file() { grep -qF -e "$2" "$1" || fail "$what: no '$2' in $1"; }
same() { cmp -s "$1" "$2" || fail "$what: $1 and $2 differ"; }
lines() { [ "$(wc -l <"$1")" -eq "$2" ] || fail "$what: $1 has $(wc -l <"$1") lines, not $2"; }

# mistake LINE TEXT, of the recipe on standard input
mistake() {
  cat >wrong.toml
  run 2 run --check wrong.toml
  in_err "wrong.toml:$1: "
  in_err "$2"
  run 2 run wrong.toml scenes/trays/tray1.bmp
  in_err "wrong.toml:$1: "
}

# ---- the recipes of the demonstration find the truth

# verdicts FOLDER: those of the CSV report are those of the truth
verdicts() {
  sed -n 's/^.*\/\([^/]*\),,,picture,.*,\([a-z]*\)$/\1,\2/p' report.csv >found.csv
  cut -d, -f1,2 "scenes/$1/truth.csv" | sed 1d | grep -v eights >true.csv
  same found.csv true.csv
}
run 0 run --check tray.toml
in_out "keep = AreaPixels>=500"
in_out "count = 8"
run 1 run tray.toml --csv report.csv --json-lines report.json --html report.html --annotate marked \
  scenes/trays/*.bmp
verdicts trays
in_out "tray4.bmp: failed: washers: 7 particles, not 8"
in_out "tray5.bmp: failed: washers: particle"
in_out "6 pictures, 3 passed, 3 failed, 0 without a verdict"
lines report.json 6
[ -s marked/tray1-result.bmp ] || fail "$what: no marked/tray1-result.bmp"
[ "$(grep -c 'data:image/png;base64,iVBOR' report.html)" -eq 6 ] || fail "$what: no six thumbnails"
if grep -qE '(src|href)="?https?:' report.html; then fail "$what: the report needs a network"; fi

run 1 run shaft.toml --csv report.csv scenes/shafts/shaft?.bmp
in_out "shaft5.bmp: passed"
in_out "shaft6.bmp: failed: diameters: body is 4.9"
in_out "6 pictures, 5 passed, 1 failed"
# Every diameter within 0.02 pixels of the truth, a thousandth of a millimetre.
awk -F, 'NR == FNR { truth[$1 "," $2] = $3; next }
  $2 == "diameters" { sub(/.*\//, "", $1); n++; d = $5 / 0.05 - truth[$1 "," $4]
                      if (d > 0.05 || d < -0.05) { print $1, $4, d; exit 1 } }
  END { if (n != 36) exit 1 }' scenes/shafts/truth.csv report.csv >out || fail "shafts and their truth"

run 0 calibrate lcd --region 106,344,280,96 --light --points -o scale.json scenes/packages/eights.bmp
run 1 run package.toml --csv report.csv scenes/packages/package?.bmp
verdicts packages
in_out "package3.bmp: failed: code: '19870604' does not match 2026[0-9]{4}"
in_out "package4.bmp: failed: weight: 238.9 is not within 248:252"

# ---- a step of a recipe finds what the command finds

cat >one.toml <<'END'
[[step]]
do = "inspect"
dark = true
keep = "AreaPixels>=500"
measures = "AreaPixels,Perimeter"
END
run 0 run one.toml --csv step.csv scenes/washers.bmp
run 0 inspect --dark --keep "AreaPixels>=500" --measures AreaPixels,Perimeter --csv command.csv \
  scenes/washers.bmp
awk -F, '$4 == "AreaPixels" { a = $5 } $4 == "Perimeter" { print $1 "," $3 "," a "," $5 }' step.csv >of_step
sed 1d command.csv >of_command
same of_step of_command
run 0 filter --steps "median 5; edges sobel 4" --format bmp --out filtered scenes/washers.bmp
cat >two.toml <<'END'
[[step]]
do = "filter"
steps = "median 5; edges sobel 4"
END
run 0 run two.toml --explain-on scenes/washers.bmp --out steps
in_out "passed"
run 0 convert --type rgb filtered/washers.bmp coloured.bmp
same coloured.bmp steps/01-filter.bmp
[ -s steps/00-original.bmp ] || fail "$what: no steps/00-original.bmp"

# ---- mistakes have their lines

mistake 3 "did you mean dark?" <<'END'
[[step]]
do = "inspect"
drak = true
END
mistake 3 "'dark': is true or false" <<'END'
[[step]]
do = "inspect"
dark = "yes"
END
mistake 3 "'range': takes a text or a number" <<'END'
[[step]]
do = "inspect"
range = true
END
mistake 3 "'method': 'otzu' is none of" <<'END'
[[step]]
do = "inspect"
method = "otzu"
END
mistake 4 "'method' and 'range' do not go together" <<'END'
[[step]]
do = "inspect"
range = "1:2"
method = "otsu"
END
mistake 4 "'keep': " <<'END'
name = "wrong"
[[step]]
do = "inspect"
keep = ["AreaPixels>=50", "AreaPixel<9"]
END
mistake 3 "'count': '1.5' is no number of objects" <<'END'
[[step]]
do = "inspect"
count = 1.5
END
mistake 2 "did you mean inspect?" <<'END'
[[step]]
do = "inspct"
END
mistake 1 "the step says nothing of 'do'" <<'END'
[[step]]
dark = true
END
mistake 1 "did you mean scale?" <<'END'
scal = 0.1
[[step]]
do = "inspect"
END
mistake 1 "the recipe has no [[step]]" <<'END'
name = "empty"
END
mistake 1 "write [[step]]" <<'END'
step = 3
END
mistake 2 "Error while parsing" <<'END'
name = "wrong"
scale = 0.1.2
END
mistake 3 "'steps': step 2, edges: " <<'END'
[[step]]
do = "filter"
steps = "median 3; edges sobbel 4"
END
mistake 1 "the step filter needs steps" <<'END'
[[step]]
do = "filter"
END
mistake 1 "the step gauge needs line, lines or setup" <<'END'
[[step]]
do = "gauge"
END
mistake 3 "'line': '1,2,3' is no line" <<'END'
[[step]]
do = "gauge"
line = [1, 2, 3]
END
mistake 6 "did you mean band?" <<'END'
[[step]]
do = "gauge"
[[step.lines]]
line = [1, 2, 3, 40]
name = "width"
bnad = 3
END
mistake 4 "'parts' is no earlier step that finds particles" <<'END'
[[step]]
do = "gauge"
line = "1,2,30,4"
follow-step = "parts"
master = "scenes/washers.bmp"
[[step]]
do = "inspect"
name = "parts"
END
mistake 1 "need 'master'" <<'END'
[[step]]
do = "gauge"
line = "1,2,30,4"
follow = "dark"
END
mistake 5 "there is no such file" <<'END'
[[step]]
do = "gauge"
line = "1,2,30,4"
follow = "dark"
master = "scenes/none.bmp"
END
mistake 3 "'later' is no earlier filter step" <<'END'
[[step]]
do = "inspect"
on = "later"
[[step]]
do = "filter"
name = "later"
steps = "median 3"
END
mistake 6 "two steps have the name 'parts'" <<'END'
[[step]]
do = "inspect"
name = "parts"
[[step]]
do = "inspect"
name = "parts"
END
mistake 6 "the picture is gray by then" <<'END'
[[step]]
do = "filter"
steps = "median 3"
[[step]]
do = "filter"
steps = "plane saturation"
END
mistake 5 "is no regular expression" <<'END'
[[step]]
do = "read"
what = "barcode"
kind = "ean8"
expect = "["
END
mistake 3 "did you mean barcode?" <<'END'
[[step]]
do = "read"
what = "barcod"
END
mistake 3 "none.png" <<'END'
[[step]]
do = "match"
template = "none.png"
END
mistake 3 "none.json" <<'END'
[[step]]
do = "gauge"
setup = "none.json"
END
run 2 run none.toml scenes/washers.bmp
in_err "none.toml"
run 2 run one.toml
in_err "give the pictures"
run 2 run --resume one.toml
in_err "--db"
run 2 run one.toml --explain-on scenes/washers.bmp
in_err "go together"
run 2 run one.toml --csv scenes/washers.bmp scenes/washers.bmp
in_err "that is a picture to be looked at"

# ---- a broken picture, and one that takes too long, cost themselves alone

mkdir pictures
i=0
while [ $i -lt 12 ]; do
  cp scenes/washers.bmp "pictures/p$i.bmp"
  i=$((i + 1))
done
head -c 4000 scenes/washers.bmp >pictures/p3.bmp
echo nothing >pictures/p7.bmp
for jobs in 1 3; do
  run 3 run one.toml -j $jobs --csv broken$jobs.csv pictures/p?.bmp pictures/p1?.bmp
  in_out "12 pictures, 10 passed, 0 failed, 2 without a verdict"
  grep -q '^pictures/p3.bmp,,,picture,,.*error$' broken$jobs.csv || fail "$what: p3 is no error"
done
same broken1.csv broken3.csv
mkfifo never
sleep 60 >never &
writer=$!
run 3 run one.toml --time-limit 4 pictures/p1.bmp - pictures/p2.bmp <never
kill $writer
in_out "-: error: it took longer than 4 seconds"
in_out "3 pictures, 2 passed, 0 failed, 1 without a verdict"

# ---- pictures that come into a folder

mkdir camera
cp scenes/washers.bmp camera/first.bmp
run 2 run one.toml --watch camera --csv camera/report.csv
in_err "the folder that is watched"
"$orlune" run one.toml --watch camera --db camera.db --csv camera.csv >watched 2>err &
program=$!
# told TEXT: waits until a verdict is told
told() {
  i=0
  while ! grep -qF -e "$1" watched; do
    i=$((i + 1))
    [ $i -lt 200 ] || { fail "orlune run --watch: no '$1'"; break; }
    sleep 0.05
  done
}
told "camera/first.bmp: passed"
cp scenes/washers.bmp part.bmp
mv part.bmp camera/moved.bmp
told "camera/moved.bmp: passed"
# Half of a picture is none, until the other half is there.
{ head -c 100000 scenes/washers.bmp; sleep 0.5; tail -c +100001 scenes/washers.bmp; } >camera/slow.bmp
told "camera/slow.bmp: passed"
ln -s ../scenes/washers.bmp camera/link.bmp
told "camera/link.bmp: passed"
cp scenes/washers.bmp camera/.hidden.bmp
echo nothing >camera/none.bmp
told "camera/none.bmp: error"
kill -TERM $program
wait $program
[ $? -eq 143 ] || fail "orlune run --watch: another exit status after a signal than 143"
lines watched 6
[ "$(grep -c ',,,picture,' camera.csv)" -eq 5 ] || fail "orlune run --watch: not five pictures in the report"
# What came while nobody looked is looked at, and nothing again.
cp scenes/washers.bmp camera/later.bmp
"$orlune" run one.toml --watch camera --db camera.db --resume >watched 2>err &
program=$!
told "camera/later.bmp: passed"
sleep 0.3
kill -TERM $program
wait $program
[ "$(grep -c 'camera/first.bmp' watched)" -eq 1 ] || fail "orlune run --watch --resume: first.bmp again"
run 3 run one.toml --db camera.db --resume
in_out "6 pictures, 5 passed, 0 failed, 1 without a verdict"

[ "$failures" -eq 0 ] || { echo "$failures failures"; exit 1; }
