#!/bin/sh
# Runs of recipes that are killed at any instant: nothing is lost, and nothing is done twice.
# usage: orlune_resume_test.sh ORLUNE SCENES_FOLDER WORK_FOLDER [KILLS]
set -u
orlune=$1 scenes=$2 work=$3 kills=${4:-50}
here=$(cd "$(dirname "$0")" && pwd)
. "$here/journey.sh"
mkdir pictures

cat >parts.toml <<'END'
name = "parts"
[[step]]
do = "filter"
steps = "median 5"
[[step]]
do = "inspect"
dark = true
keep = "AreaPixels>=500"
measures = "AreaPixels,Perimeter"
count = 8
END
i=100
while [ $i -lt 130 ]; do
  ln -s "$scenes/trays/tray1.bmp" "pictures/p$i.bmp"
  i=$((i + 1))
done
echo nothing >pictures/p115a.bmp

run 3 run -j 2 parts.toml --quiet --csv whole.csv --json-lines whole.json pictures/*.bmp

# The records of a run that went on to its end tell the same as its reports.
run 3 run -j 2 parts.toml --quiet --db whole.db --csv recorded.csv pictures/*.bmp
same whole.csv recorded.csv
[ "$(sql whole.db 'SELECT count(*), count(finished) FROM runs')" = "1|1" ] || fail "one finished run"
[ "$(sql whole.db "SELECT count(*) FROM pictures WHERE verdict = 'passed'")" = 30 ] || fail "30 passed"
[ "$(sql whole.db "SELECT count(*) FROM results WHERE name = 'Perimeter'")" = 240 ] || fail "240 values"
[ "$(sql whole.db 'PRAGMA user_version')" = 1 ] || fail "the version of the tables"

# killed at random instants, a worker in every third case, and resumed until it is whole
python3 "$here/kill_runs.py" "$orlune" parts.toml "$kills" whole.csv whole.json pictures/*.bmp >out 2>err ||
  fail "runs that are killed"

# Resumed without files, with more of them, and with another recipe
run 3 run parts.toml --db whole.db --resume --quiet --csv again.csv
same whole.csv again.csv
ln -s "$scenes/trays/tray1.bmp" pictures/q.bmp
run 3 run parts.toml --db whole.db --resume --quiet pictures/*.bmp
[ "$(sql whole.db 'SELECT count(*) FROM pictures')" = 32 ] || fail "one more picture"
cp parts.toml other.toml
echo '# changed' >>other.toml
run 2 run other.toml --db whole.db --resume --quiet
in_err "recipe has changed"

# Only listed, for others to work on
run 0 run parts.toml --db listed.db --only-list pictures/*.bmp
[ "$(sql listed.db 'SELECT count(*), count(verdict) FROM pictures')" = "32|0" ] || fail "a list of pictures"
run 3 run parts.toml --db listed.db --resume --quiet
[ "$(sql listed.db 'SELECT count(*), count(verdict) FROM pictures')" = "32|32" ] || fail "a list worked on"
run 2 run parts.toml --only-list pictures/*.bmp
in_err "--db"

# What is no file of records, and a full disk
echo "no records" >text.db
run 3 run parts.toml --db text.db --quiet pictures/q.bmp
in_err "text.db"
run 3 run parts.toml --db /dev/full --quiet pictures/q.bmp
in_err "/dev/full"
sh -c 'ulimit -f 120; trap "" XFSZ; exec "$0" run parts.toml --db small.db --quiet pictures/*.bmp' "$orlune" 2>err
[ $? -eq 3 ] || fail "a file that may not grow"
in_err "small.db"
run 3 run parts.toml --db small.db --resume --quiet pictures/*.bmp
[ "$(sql small.db 'SELECT count(*), count(verdict) FROM pictures')" = "32|32" ] || fail "after a full disk"
same_size() { [ "$(sql "$1" 'SELECT count(*) FROM measurements')" = "$(sql "$2" 'SELECT count(*) FROM measurements')" ]; }
same_size small.db whole.db || fail "other values after a full disk"

# A disk of its own that is full: what was recorded stays, and no report is there in part.
cat >full_disk.sh <<'END'
mount -t tmpfs -o size=96k none disk || exit 77
"$1" run parts.toml --db disk/run.db --quiet --csv report.csv pictures/*.bmp 2>err
[ $? -eq 3 ] || exit 11
cp disk/run.db* . 2>/dev/null
rm disk/run.db*
"$1" run parts.toml --html disk/report.html --quiet pictures/*.bmp 2>>err
[ $? -eq 3 ] || exit 12
[ -z "$(ls disk)" ] || exit 13
"$1" run parts.toml --annotate disk --quiet --csv marked.csv pictures/*.bmp 2>>err
[ $? -eq 3 ] || exit 14
[ -s marked.csv ] || exit 15
END
mkdir disk
what="a full disk"
unshare --mount --map-root-user sh full_disk.sh "$orlune" >out 2>err.unshare
case $? in
  0)
    in_err "disk/run.db"
    in_err "disk is full"
    in_file marked.csv "disk is full"
    run 3 run parts.toml --db run.db --resume --quiet pictures/*.bmp
    [ "$(sql run.db 'SELECT count(*), count(verdict) FROM pictures')" = "32|32" ] || fail "$what: resumed"
    ;;
  1 | 77) echo "skipped: no disk can be mounted for the test" ;;
  *) fail "$what" ;;
esac
tell_failures
