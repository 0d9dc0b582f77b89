#!/bin/sh
# Recipes as a person uses them: what is told of mistakes, verdicts, reports, records, and what
# happens to pictures and runs that come to grief.
# usage: orlune_run_test.sh ORLUNE SCENES_FOLDER RECIPES_FOLDER WORK_FOLDER
set -u
orlune=$1 scenes=$2 recipes=$3 work=$4
here=$(cd "$(dirname "$0")" && pwd)
. "$here/journey.sh"
ln -s "$scenes" scenes
cp "$recipes"/*.toml .

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
# Every size within 0.05 pixels of the truth: 0.0025 millimetres.
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

# ---- pictures that are drawn on are kept, others go from step to step: both are looked at alike

cat >kept.toml <<'END'
[[step]]
do = "inspect"
name = "raw"
range = "0:120"
scale = 0.5
unit = "mm"
measures = "AreaPixels,AreaCalibrated,GrayMean"
[[step]]
do = "filter"
name = "smooth"
steps = "median 5"
[[step]]
do = "inspect"
name = "parts"
dark = true
keep = "AreaPixels>=500"
measures = "AreaPixels,Perimeter,NumberOfHoles"
[[step]]
do = "filter"
name = "edges"
on = "smooth"
steps = "edges sobel 4"
[[step]]
do = "inspect"
name = "outlines"
measures = "AreaCalibrated,FeretMaximum"
[[step]]
do = "gauge"
name = "widths"
on = "original"
follow-step = "parts"
master = "scenes/trays/tray1.bmp"
line = "1,60,200,60"
[[step]]
do = "filter"
on = "original"
steps = "median 3"
[[step]]
do = "inspect"
measures = "AreaPixels"
END
run 1 run kept.toml --csv moved.csv scenes/trays/*.bmp
run 1 run kept.toml --csv drawn.csv --annotate kept scenes/trays/*.bmp
same moved.csv drawn.csv

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
mistake 3 "'keep': is an empty list" <<'END'
[[step]]
do = "inspect"
keep = []
END
mistake 1 "'name': is empty" <<'END'
name = ""
[[step]]
do = "inspect"
END
mistake 2 "the value of 'do' is none of" <<'END'
[[step]]
do = 3
END
mistake 1 "the step says nothing of 'what'" <<'END'
[[step]]
do = "read"
END
mistake 3 "write [[step.lines]]" <<'END'
[[step]]
do = "gauge"
lines = 3
END
mistake 3 "the line has no 'line'" <<'END'
[[step]]
do = "gauge"
[[step.lines]]
name = "width"
END
mistake 1 "the step match needs template" <<'END'
[[step]]
do = "match"
END
mistake 1 "the step read barcode needs kind" <<'END'
[[step]]
do = "read"
what = "barcode"
END
mistake 1 "the step read meter needs setup" <<'END'
[[step]]
do = "read"
what = "meter"
END
"$orlune" gauge --line 320,40,320,440 --save lines.json scenes/washers.bmp >out 2>err
mistake 4 "'band' is said by the set-up file" <<'END'
[[step]]
do = "gauge"
setup = "lines.json"
band = 3
END
mistake 4 "'lines' is said by the set-up file" <<'END'
[[step]]
do = "gauge"
setup = "lines.json"
[[step.lines]]
line = [1, 2, 3, 40]
END
mistake 4 "'line' and 'lines' do not go together" <<'END'
[[step]]
do = "gauge"
line = [1, 2, 3, 40]
[[step.lines]]
line = [1, 2, 3, 40]
END
mistake 3 "'original' is the picture as it was read" <<'END'
[[step]]
do = "inspect"
name = "original"
END
mistake 4 "it has no objects of a colour" <<'END'
[[step]]
do = "filter"
steps = "median 3"
[[step]]
do = "inspect"
hue = "340:20"
END
mistake 4 "no mask can go with the step rotate" <<'END'
[[step]]
do = "filter"
steps = "rotate 10"
mask = "scenes/washers.bmp"
END
mistake 4 "'master' is for lines that follow the part" <<'END'
[[step]]
do = "gauge"
line = [1, 2, 3, 40]
master = "scenes/washers.bmp"
END
mistake 3 "none.bmp" <<'END'
[[step]]
do = "inspect"
mask = "none.bmp"
END
mistake 4 "none.json" <<'END'
[[step]]
do = "read"
what = "lcd"
setup = "none.json"
END
mistake 8 "the part was not found" <<'END'
[[step]]
do = "inspect"
keep = "AreaPixels<0"
[[step]]
do = "gauge"
line = "1,2,30,4"
follow-step = "inspect"
master = "scenes/washers.bmp"
END
run 0 run --help
in_out "--time-limit SECONDS (60)"
run 2 run --time-limit -1 one.toml scenes/washers.bmp
in_err "--time-limit"
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

# ---- a picture that changes while it is read is whole or has a reason

i=0
mkdir changing
while [ $i -lt 40 ]; do
  ln -s ../changes.bmp "changing/c$i.bmp"
  i=$((i + 1))
done
cp scenes/washers.bmp changes.bmp
while :; do
  head -c 4000 scenes/washers.bmp >changes.bmp
  cat scenes/washers.bmp >changes.bmp
done &
writer=$!
what="a picture that changes"
"$orlune" run one.toml -j 2 --csv changing.csv changing/*.bmp >out 2>err
status=$?
kill $writer
wait $writer 2>/dev/null
[ $status -eq 0 ] || [ $status -eq 3 ] || fail "$what: exit status $status"
[ "$(grep -c ',,,picture,' changing.csv)" -eq 40 ] || fail "$what: not 40 pictures in the report"
if grep ',,,picture,.*,error$' changing.csv | grep -vE 'is cut|is empty|no TIFF'; then fail "$what: another reason"; fi

# ---- verdicts for whoever waits for them

mkfifo verdicts
run 0 run one.toml --verdicts verdicts pictures/p1.bmp
in_out "1 verdict found no reader at verdicts"
run 2 run one.toml --verdicts nowhere pictures/p1.bmp
in_err "--verdicts nowhere: there is no such pipe"
# Also one that holds the pipe open and never reads, until it is full.
mkdir many
i=0
while [ $i -lt 500 ]; do
  echo nothing >"many/a-picture-of-a-long-name-$i-so-that-its-verdicts-fill-the-pipe-that-nobody-reads-after-some-hundreds.bmp"
  i=$((i + 1))
done
{ : >holds; exec sleep 60; } 0<>verdicts &
reader=$!
until_true test -e holds
run 3 run one.toml --verdicts verdicts many/*.bmp
grep -q '[0-9]* verdicts found no reader' out || fail "$what: a full pipe took all"
kill $reader
rm -r many

cat >told.sh <<'END'
#!/bin/sh
printf '%s|%s|%s|%s|%s|%s\n' $# "$1" "$2" "$ORLUNE_VERDICT" "$ORLUNE_FILE" "$ORLUNE_RECIPE" >>told
case $2 in
  *p2*) exit 4 ;;
  *p4*) sleep 61 & echo $! >>naps; sleep 61 & echo $! >>naps; wait ;;
  *p5*) kill -9 $$ ;;
esac
cat # nothing to be read
END
chmod +x told.sh
cp scenes/washers.bmp 'pictures/a b; $(c).bmp'
run 3 run one.toml --call ./told.sh --call-limit 3 pictures/p1.bmp pictures/p2.bmp pictures/p3.bmp \
  pictures/p4.bmp pictures/p5.bmp 'pictures/a b; $(c).bmp'
in_file told '2|passed|pictures/p1.bmp|passed|pictures/p1.bmp|one'
in_file told '2|error|pictures/p3.bmp|error|pictures/p3.bmp|one'
in_file told '2|passed|pictures/a b; $(c).bmp|passed|'
in_err "orlune: ./told.sh for pictures/p2.bmp: ended with status 4"
in_err "pictures/p4.bmp: took longer than 3 seconds, and was ended"
in_err "pictures/p5.bmp: was ended by signal 9"
in_out "3 calls of ./told.sh failed"
[ "$(wc -l <naps)" = 2 ] || fail "$what: not two naps"
for nap in $(cat naps); do
  if grep -aq sleep "/proc/$nap/cmdline" 2>/dev/null; then fail "$what: what the call started goes on"; fi
done
run 3 run one.toml --call ./none pictures/p1.bmp
in_err "./none for pictures/p1.bmp: cannot be called: No such file"
run 0 run one.toml --call true --call-limit 0 pictures/p1.bmp

# ---- pictures that come into a folder

mkdir camera
cp scenes/washers.bmp camera/first.bmp
run 2 run one.toml --watch camera --csv camera/report.csv
in_err "the folder that is watched"
run 2 run one.toml --watch camera --verdicts camera/pipe
in_err "the folder that is watched"
"$orlune" run one.toml --watch camera --db camera.db --csv camera.csv --verdicts verdicts >watched 2>err &
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
# A hard link is whole at once, or as soon as its writer has closed the file by its other name.
cp scenes/washers.bmp part.bmp
ln part.bmp camera/hard.bmp
told "camera/hard.bmp: passed"
{ head -c 100000 scenes/washers.bmp; until [ -e linked ]; do sleep 0.05; done; sleep 0.3
  tail -c +100001 scenes/washers.bmp; } >growing.bmp &
until_true test -s growing.bmp
ln growing.bmp camera/growing.bmp && : >linked
told "camera/growing.bmp: passed"
# A reader of verdicts may come, go, and come again. It opens the pipe for writing too, which does not wait
# for the other end, so that it can tell when it is there.
{ : >first_reader; exec cat >first_reader; } 0<>verdicts &
reader=$!
until_true test -e first_reader
cp scenes/washers.bmp camera/read.bmp
told "camera/read.bmp: passed"
until_true grep -q "^passed.camera/read.bmp" first_reader || fail "orlune run --watch: no verdict in the pipe"
kill $reader
wait $reader 2>/dev/null
cp scenes/washers.bmp camera/unread.bmp
told "camera/unread.bmp: passed"
{ : >second_reader; exec cat >second_reader; } 0<>verdicts &
reader=$!
until_true test -e second_reader
cp scenes/washers.bmp camera/again.bmp
told "camera/again.bmp: passed"
until_true grep -q "^passed.camera/again.bmp" second_reader || fail "orlune run --watch: no second reader"
cp scenes/washers.bmp camera/.hidden.bmp
echo nothing >camera/none.bmp
told "camera/none.bmp: error"
kill -TERM $program
wait $program
[ $? -eq 143 ] || fail "orlune run --watch: another exit status after a signal than 143"
kill $reader
wait $reader 2>/dev/null
lines watched 12
[ "$(grep -c ',,,picture,' camera.csv)" -eq 10 ] || fail "orlune run --watch: not ten pictures in the report"
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
in_out "11 pictures, 10 passed, 0 failed, 1 without a verdict"
# A folder that goes away ends the watch, and takes no report with it.
mkdir away
cp scenes/washers.bmp away/first.bmp
"$orlune" run one.toml --watch away --csv away.csv --json-lines away.json --html away.html >watched 2>err &
program=$!
told "away/first.bmp: passed"
rm -r away
wait $program
[ $? -eq 3 ] || fail "orlune run --watch: another exit status without its folder than 3"
grep -q "away: No such file" err || fail "orlune run --watch: no word of the folder that is gone"
grep -q ',,,picture,.*passed$' away.csv || fail "orlune run --watch: the CSV report is lost"
lines away.json 1
in_file away.html "</html>"

# ---- files and folders that may not be read, for one who is not root

# No function: in the background it would be a shell around the program, which a signal ends alone.
as_other=env
[ "$(id -u)" -ne 0 ] || as_other="setpriv --reuid=65534 --regid=65534 --clear-groups"
chmod 777 .
mkdir closed shut
cp scenes/washers.bmp closed/in.bmp
cp scenes/washers.bmp shut/mine.bmp
cp scenes/washers.bmp shut/shut.bmp
chmod 000 closed shut/shut.bmp
chmod 755 shut
touch -d '1 hour ago' shut/mine.bmp shut/shut.bmp
if $as_other test -r one.toml -a -x "$orlune" 2>/dev/null && $as_other "$orlune" --version >/dev/null 2>&1; then
  what="what may not be read"
  $as_other "$orlune" run one.toml shut/mine.bmp closed/in.bmp shut/shut.bmp >out 2>err
  [ $? -eq 3 ] || fail "$what: another exit status than 3"
  in_out "shut/mine.bmp: passed"
  in_out "closed/in.bmp: error: it may not be read: Permission denied"
  in_out "shut/shut.bmp: error: it may not be read: Permission denied"
  $as_other "$orlune" run one.toml --watch closed >out 2>err
  [ $? -eq 3 ] || fail "$what: another exit status of a watch than 3"
  in_err "closed: Permission denied"
  # Nobody tells whether another one's file is being written: it is whole once it is quiet.
  { head -c 100000 scenes/washers.bmp; sleep 1; tail -c +100001 scenes/washers.bmp; } >shut/begun.bmp &
  $as_other "$orlune" run one.toml --watch shut >watched 2>err &
  program=$!
  told "shut/mine.bmp: passed"
  told "shut/shut.bmp: error: it may not be read: Permission denied"
  cp scenes/washers.bmp shut/new.bmp
  told "shut/new.bmp: passed"
  { head -c 100000 scenes/washers.bmp; sleep 0.5; tail -c +100001 scenes/washers.bmp; } >shut/slow.bmp
  told "shut/slow.bmp: passed"
  told "shut/begun.bmp: passed"
  kill -TERM $program
  wait $program
  [ $? -eq 143 ] || fail "$what: another exit status of a watch that is ended than 143"
else
  echo "skipped: there is no other user to read as"
fi
chmod 755 closed

# ---- nothing that is read is written over, and what is asked for is not passed over

: >empty.bmp
run 2 run one.toml empty.bmp --db empty.bmp
in_err "that is a picture to be looked at"
[ ! -s empty.bmp ] || fail "$what: made a database of the picture"
mkdir -p watching
run 2 run one.toml --watch watching --db watching/run.db
[ ! -e watching/run.db ] || fail "$what: made a database in the folder"
run 0 run one.toml --explain-on scenes/washers.bmp --out explained
for kept in 00-original 01-inspect; do
  cp scenes/washers.bmp explained/$kept.bmp
  run 2 run one.toml --explain-on explained/$kept.bmp --out explained
  in_err "that is the picture to be looked at"
  same explained/$kept.bmp scenes/washers.bmp
done
run 3 run one.toml --explain-on missing.bmp --out explained
! grep -q explained out || fail "$what: tells of pictures that are not there"
sed 's/^do = .*/&\nname = "a\/b"/' one.toml >slash.toml
run 0 run slash.toml --explain-on scenes/washers.bmp --out slashed
[ -s slashed/01-a-b.bmp ] || fail "$what: no slashed/01-a-b.bmp"
for option in --db --csv --json-lines --html --annotate --watch --verdicts --call; do
  run 2 run one.toml scenes/washers.bmp $option ""
  in_err "$option: the name is empty"
done
for option in --time-limit --call-limit; do
  for limit in -1 nan 1e7 soon; do
    run 2 run one.toml scenes/washers.bmp $option $limit
    in_err "$option: "
  done
done
# Who waits for verdicts does not take it for one that they cannot be told.
if [ -c /dev/full ]; then
  "$orlune" run one.toml scenes/washers.bmp >/dev/full 2>err
  [ $? -eq 3 ] || fail "orlune run >/dev/full: another status than 3"
fi
odd=$(printf 'washers.bmp: passed\nother.bmp')
cp scenes/washers.bmp "$odd"
run 0 run one.toml "$odd"
in_out "washers.bmp: passed?other.bmp: passed"

# A recipe may come from a pipe, and one that nobody writes keeps the program only until it is ended.
mkfifo recipe.pipe
cat one.toml >recipe.pipe &
run 0 run recipe.pipe scenes/washers.bmp
"$orlune" run recipe.pipe scenes/washers.bmp >out 2>err &
program=$!
sleep 0.3
kill -TERM $program
ended() { ! kill -0 $program; }
until_true ended || fail "orlune run: does not end while it waits for its recipe"
kill -KILL $program 2>/dev/null
wait $program
[ $? -eq 143 ] || fail "orlune run: another exit status than 143"

tell_failures
