#!/bin/sh
# Runs of recipes that are killed at any instant: nothing is lost, and nothing is done twice.
# usage: orlune_resume_test.sh ORLUNE SCENES_FOLDER WORK_FOLDER [KILLS]
set -u
orlune=$1 scenes=$2 work=$3 kills=${4:-12}
rm -rf "$work"
mkdir -p "$work/pictures"
cd "$work" || exit 1
failures=0
fail() {
  echo "FAILED: $1"
  failures=$((failures + 1))
}
sql() {
  python3 -c 'import sqlite3, sys
for row in sqlite3.connect(sys.argv[1]).execute(sys.argv[2]): print(*row, sep="|")' "$1" "$2"
}

cat >parts.toml <<'END'
name = "parts"
[[step]]
do = "inspect"
dark = true
keep = "AreaPixels>=500"
measures = "AreaPixels,Perimeter"
count = 11
END
i=100
while [ $i -lt 160 ]; do
  ln -s "$scenes/washers.bmp" "pictures/p$i.bmp"
  i=$((i + 1))
done
echo nothing >pictures/p130.bmp.tmp && mv pictures/p130.bmp.tmp pictures/p131a.bmp

"$orlune" run -j 2 parts.toml --quiet --csv whole.csv --json-lines whole.json pictures/*.bmp 2>/dev/null
[ $? -eq 3 ] || fail "the whole run"

# The records of a run that went on to its end tell the same as its reports.
start=$(date +%s%N)
"$orlune" run -j 2 parts.toml --quiet --db whole.db --csv recorded.csv pictures/*.bmp
took=$((($(date +%s%N) - start) / 1000000))
cmp -s whole.csv recorded.csv || fail "recording changes the reports"
[ "$(sql whole.db 'SELECT count(*), count(finished) FROM runs')" = "1|1" ] || fail "one finished run"
[ "$(sql whole.db "SELECT count(*) FROM pictures WHERE verdict = 'passed'")" = 60 ] || fail "60 passed"
[ "$(sql whole.db "SELECT count(*) FROM results WHERE name = 'Perimeter'")" = 660 ] || fail "660 values"
[ "$(sql whole.db 'PRAGMA user_version')" = 1 ] || fail "the version of the tables"

# killed at instants spread over the run, a worker in every third case, and resumed until it is whole
n=0
while [ $n -lt "$kills" ]; do
  n=$((n + 1))
  db=kill$n.db
  "$orlune" run -j 2 parts.toml --quiet --db $db pictures/*.bmp 2>/dev/null &
  run=$!
  sleep "$(awk "BEGIN { print $took * $n / ($kills + 1) / 1000 }")"
  if [ $((n % 3)) -eq 0 ]; then
    worker=$(pgrep -P $run | head -1)
    [ -z "$worker" ] || kill -9 "$worker" 2>/dev/null
    wait $run
  else
    kill -9 $run 2>/dev/null
    wait $run 2>/dev/null
    # A power cut: what a copy of the folder at this instant holds.
    mkdir copy$n && cp kill$n.db* copy$n/ 2>/dev/null
    [ ! -e copy$n/$db ] || db=copy$n/$db
    "$orlune" run -j 2 parts.toml --quiet --db $db --resume --csv resumed.csv --json-lines resumed.json \
      pictures/*.bmp
    [ $? -eq 3 ] || fail "kill $n: the exit status of the resumed run"
    cmp -s whole.csv resumed.csv || fail "kill $n: another CSV report than that of the whole run"
    cmp -s whole.json resumed.json || fail "kill $n: other JSON lines than those of the whole run"
  fi
  twice=$(sql $db 'SELECT count(*) - count(DISTINCT file) FROM pictures')
  [ "$twice" = 0 ] || fail "kill $n: $twice pictures are there twice"
  [ "$(sql $db 'SELECT count(*), count(verdict) FROM pictures')" = "61|61" ] || fail "kill $n: pictures"
  [ "$(sql $db 'SELECT count(*) FROM runs WHERE finished IS NOT NULL')" = 1 ] || fail "kill $n: runs"
  [ "$(sql $db 'PRAGMA integrity_check')" = ok ] || fail "kill $n: the records are damaged"
  if [ $((n % 3)) -ne 0 ]; then
    [ "$(sql $db "SELECT count(*) FROM results WHERE name = 'Perimeter'")" = 660 ] || fail "kill $n: values"
  fi
done

# Resumed without files, with more of them, and with another recipe
"$orlune" run parts.toml --db whole.db --resume --quiet --csv again.csv
[ $? -eq 3 ] || fail "a whole run resumed"
cmp -s whole.csv again.csv || fail "a whole run tells the same again"
ln -s "$scenes/washers.bmp" pictures/q.bmp
"$orlune" run parts.toml --db whole.db --resume --quiet pictures/*.bmp
[ "$(sql whole.db 'SELECT count(*) FROM pictures')" = 62 ] || fail "one more picture"
echo '# changed' >>parts.toml
"$orlune" run parts.toml --db whole.db --resume --quiet 2>err
[ $? -eq 2 ] || fail "another recipe is resumed"
grep -q "recipe has changed" err || fail "no word of the other recipe"

# What is no file of records, and a full disk
echo "no records" >text.db
"$orlune" run parts.toml --db text.db --quiet pictures/q.bmp 2>err
[ $? -eq 3 ] || fail "a file that is no database"
grep -q "text.db" err || fail "no word of the file that is no database"
"$orlune" run parts.toml --db /dev/full --quiet pictures/q.bmp 2>err
[ $? -ne 0 ] || fail "a full device takes records"
sh -c 'ulimit -f 120; trap "" XFSZ; exec "$0" run parts.toml --db small.db --quiet pictures/*.bmp' "$orlune" 2>err
[ $? -eq 3 ] || fail "a full disk"
grep -q "small.db" err || fail "no word of the full disk"
"$orlune" run parts.toml --db small.db --resume --quiet pictures/*.bmp
[ "$(sql small.db 'SELECT count(*), count(verdict) FROM pictures')" = "62|62" ] || fail "after a full disk"

[ "$failures" -eq 0 ] || { echo "$failures failures"; exit 1; }
