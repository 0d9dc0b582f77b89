"""A recipe on a cluster of processes, of which one is killed in the middle: the records are those of one machine.

usage: orlune_cluster_test.py ORLUNE SCENES_FOLDER PYTHON_FOLDER WORK_FOLDER
"""

import os
import shutil
import signal
import sqlite3
import subprocess
import sys
import time
from contextlib import closing
from pathlib import Path

ORLUNE, SCENES, PYTHON, WORK = (Path(argument).absolute() for argument in sys.argv[1:5])
RECIPE = """name = "parts"
[[step]]
do = "inspect"
dark = true
keep = "AreaPixels>=500"
measures = "AreaPixels,Perimeter"
count = 8
"""
# The program as it is, but for its first chunk: that waits until its worker is killed. What the cluster has
# collected is kept before the program tells it, and does what is missing.
STALLING = """#!/bin/sh
for word; do
  [ "$word" != --resume ] || cp spread.db collected.db
  [ "$word" != --resume ] && [ "$word" != --only-list ] || exec "{orlune}" "$@"
done
if mkdir stalled 2>/dev/null; then
  echo $PPID $$ >stalled/worker.part && mv stalled/worker.part stalled/worker
  exec sleep 60
fi
exec "{orlune}" "$@"
"""
TABLES = (
    "SELECT recipe, recipe_text, program, finished IS NULL FROM runs",
    "SELECT number, CAST(file AS BLOB), verdict, reason FROM pictures ORDER BY number",
    "SELECT number, name, steps.verdict, steps.reason FROM steps JOIN pictures ON picture = pictures.id"
    " ORDER BY number, steps.id",
    "SELECT CAST(file AS BLOB), step, object, name, value, text, unit, verdict FROM results ORDER BY 1, 2, 4, 3",
)


def run(*command: object) -> int:
    return subprocess.run([str(word) for word in command], env=environment(), check=False).returncode


def environment() -> dict[str, str]:
    return {**os.environ, "PYTHONPATH": str(PYTHON), "PYTHONDONTWRITEBYTECODE": "1"}


def contents(database: str) -> list[list[tuple]]:
    with closing(sqlite3.connect(database)) as records:
        return [records.execute(statement).fetchall() for statement in TABLES]


def check(holds: bool, text: str) -> None:
    if not holds:
        sys.exit(f"FAILED: {text}")


def same(first: str, second: str) -> None:
    check(Path(first).read_bytes() == Path(second).read_bytes(), f"{first} and {second} differ")


def worker_that_stalls() -> list[int]:
    """The processes of the worker and of what it waits for."""
    for _ in range(600):
        if Path("stalled/worker").exists():
            return [int(word) for word in Path("stalled/worker").read_text().split()]
        time.sleep(0.05)
    sys.exit("FAILED: no worker began a chunk within half a minute")


def make_pictures() -> list[bytes]:
    Path("pictures").mkdir()
    files = []
    for i in range(40):
        # Names of files need not be texts.
        name = f"pictures/p{i:02}".encode() + (b"\xff.bmp" if i % 7 == 0 else b".bmp")
        os.symlink(SCENES / f"trays/tray{i % 6 + 1}.bmp", name)
        files.append(name)
    Path("pictures/broken.bmp").write_text("nothing")
    return [*files, b"pictures/broken.bmp"]


def main() -> None:
    shutil.rmtree(WORK, ignore_errors=True)
    WORK.mkdir(parents=True)
    os.chdir(WORK)
    Path("parts.toml").write_text(RECIPE)
    Path("stalling").write_text(STALLING.format(orlune=ORLUNE))
    Path("stalling").chmod(0o755)
    files = [os.fsdecode(name) for name in make_pictures()]
    reports = ("--csv", "{}.csv", "--json-lines", "{}.json", "--html", "{}.html")

    def told(name: str) -> list[str]:
        return [word.format(name) for word in reports]

    status = subprocess.run(
        [ORLUNE, "run", "--quiet", "--db", "whole.db", *told("whole"), "parts.toml", *files], check=False
    ).returncode
    check(status == 3, f"status {status} of the run on one machine")

    cluster = [sys.executable, "-m", "orlune_run", "--quiet", "--chunk", "4"]
    spread = subprocess.Popen(
        [*cluster, "--local", "2", "--program", WORK / "stalling", "--db", "spread.db", *told("spread"),
         "parts.toml", *files],
        env=environment(),
    )  # fmt: skip
    # What the worker waits for outlives it, and whoever reads the output of this test would wait for that.
    for process in worker_that_stalls():
        os.kill(process, signal.SIGKILL)
    check(spread.wait(timeout=120) == 3, f"status {spread.returncode} of the run on the cluster")
    check(None not in [row[2] for row in contents("collected.db")[1]], "the dead worker's chunk was not repeated")
    for ending in ("csv", "json", "html"):
        same(f"whole.{ending}", f"spread.{ending}")
    for one, other in zip(contents("whole.db"), contents("spread.db")):
        check(one == other, f"records differ: {one[:2]} and {other[:2]}")

    # A whole run resumed, with one picture more, on processes that are begun for it.
    os.symlink(SCENES / "trays/tray1.bmp", "pictures/q.bmp")
    status = run(*cluster, "--local", "1", "--program", ORLUNE, "--db", "spread.db", "--resume", "parts.toml",
                 "pictures/q.bmp")  # fmt: skip
    check(status == 3, f"status {status} of the resumed run")
    check(len(contents("spread.db")[1]) == len(files) + 1, "the picture that came is not in the records")

    # Mistakes are told as the program tells them.
    Path("wrong.toml").write_text("scal = 1\n")
    check(run(*cluster, "--program", ORLUNE, "wrong.toml", "pictures/q.bmp") == 2, "a mistake in a recipe")
    check(run(*cluster, "--program", WORK / "none", "parts.toml", "pictures/q.bmp") == 3, "a program that is not there")
    check(run(*cluster, "parts.toml", "-") == 2, "the standard input")


if __name__ == "__main__":
    main()
