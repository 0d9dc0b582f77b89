"""Kills recorded runs of a recipe at random instants and resumes them: nothing may be lost or done twice.

usage: kill_runs.py ORLUNE RECIPE KILLS WHOLE_CSV WHOLE_JSON FILE...

WHOLE_CSV and WHOLE_JSON are the reports of a run of the same pictures that nobody killed. Every kill hits a
process that lives: a run that ends too early for it is begun again.
"""

import os
import random
import shutil
import signal
import sqlite3
import subprocess
import sys
import time
from contextlib import closing
from pathlib import Path

ORLUNE, RECIPE, KILLS, WHOLE_CSV, WHOLE_JSON, *FILES = sys.argv[1:]
SEED = 16
LOST = "the process that worked on it was ended"
failures = 0


def fail(text: str) -> None:
    global failures
    failures += 1
    print(f"FAILED: {text}")


def start(database: Path, *options: str) -> subprocess.Popen:
    command = [ORLUNE, "run", "-j", "2", "--quiet", "--db", str(database), *options, RECIPE, *FILES]
    return subprocess.Popen(command, stderr=subprocess.DEVNULL)


def workers_of(process: int) -> list[int]:
    try:
        return [int(child) for child in Path(f"/proc/{process}/task/{process}/children").read_text().split()]
    except OSError:
        return []


def lives(process: int) -> bool:
    try:
        return Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0] not in "ZX"
    except OSError:
        return False


def kill(run: subprocess.Popen, worker: bool, chance: random.Random) -> bool:
    """Kills the run, or one of its workers; False where there was none to be killed."""
    if not worker:
        run.send_signal(signal.SIGKILL)
        return run.wait() == -signal.SIGKILL
    candidates = [child for child in workers_of(run.pid) if lives(child)]
    if not candidates:
        return False
    try:
        os.kill(chance.choice(candidates), signal.SIGKILL)
    except ProcessLookupError:
        return False
    return True


def rows(database: Path, statement: str) -> list:
    with closing(sqlite3.connect(database)) as records:
        return records.execute(statement).fetchall()


def pending(database: Path) -> int:
    """Pictures without a verdict; all of them where there are no records yet."""
    try:
        return len(FILES) - rows(database, "SELECT count(verdict) FROM pictures")[0][0]
    except (sqlite3.Error, IndexError):
        return len(FILES)


def check_records(name: str, database: Path) -> None:
    counts = rows(database, "SELECT count(*), count(DISTINCT file), count(verdict) FROM pictures")[0]
    if counts != (len(FILES),) * 3:
        fail(f"{name}: pictures, different ones, verdicts: {counts}, not {len(FILES)}")
    finished = rows(database, "SELECT count(*), count(finished) FROM runs")
    if finished != [(1, 1)]:
        fail(f"{name}: runs and finished ones: {finished}")
    if rows(database, "PRAGMA integrity_check") != [("ok",)]:
        fail(f"{name}: the records are damaged")


def resume(name: str, database: Path) -> None:
    run = start(database, "--resume", "--csv", "resumed.csv", "--json-lines", "resumed.json")
    if run.wait() != 3:
        fail(f"{name}: exit status {run.returncode} of the resumed run, not 3")
    for whole, resumed in ((WHOLE_CSV, "resumed.csv"), (WHOLE_JSON, "resumed.json")):
        if Path(whole).read_bytes() != Path(resumed).read_bytes():
            fail(f"{name}: {resumed} is not that of the whole run")


def without_lost(report: str, lost: list[str]) -> list[str]:
    return [line for line in Path(report).read_text().splitlines() if line.split(",")[0] not in lost]


def check_lost_worker(name: str, run: subprocess.Popen, database: Path) -> None:
    """A worker takes the picture that it worked on with it, and no other."""
    if run.wait() != 3:
        fail(f"{name}: exit status {run.returncode}, not 3")
    lost = [file for (file,) in rows(database, f"SELECT file FROM pictures WHERE reason = '{LOST}'")]
    if len(lost) > 1:
        fail(f"{name}: {len(lost)} pictures are lost with one worker")
    if without_lost("killed.csv", lost) != without_lost(WHOLE_CSV, lost):
        fail(f"{name}: the pictures of the other workers have other values")


def kill_one(number: int, took: float, chance: random.Random) -> bool:
    """A round; tells whether the kill left pictures to be done."""
    worker = number % 3 == 0
    while True:
        name = f"kill {number} of {'a worker' if worker else 'the run'}"
        database = Path(f"kill{number}.db")
        begun = time.monotonic()
        run = start(database, "--csv", "killed.csv")
        time.sleep(max(0.0, begun + chance.random() * took - time.monotonic()))
        hit = kill(run, worker, chance)
        if hit:
            break
        run.wait()
        for left in Path().glob(f"{database}*"):
            left.unlink()
    if worker:
        check_lost_worker(name, run, database)
        check_records(name, database)
        return True
    # A power cut leaves what a copy of the folder at this instant holds.
    copy = Path(f"copy{number}")
    copy.mkdir()
    for left in Path().glob(f"{database}*"):
        shutil.copy(left, copy)
    database = copy / database if number % 2 == 0 else database
    left = pending(database)
    resume(name, database)
    check_records(name, database)
    return left > 0


def main() -> None:
    chance = random.Random(SEED)
    begun = time.monotonic()
    start(Path("timed.db")).wait()
    took = time.monotonic() - begun
    unfinished = sum(kill_one(number, took, chance) for number in range(1, int(KILLS) + 1))
    print(f"{KILLS} kills, {unfinished} of them of runs that had pictures left")
    if unfinished < int(KILLS) // 2:
        fail("most kills came when all was done")
    if failures:
        sys.exit(f"{failures} failures")


main()
