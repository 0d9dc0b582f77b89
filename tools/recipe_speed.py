#!/usr/bin/env python3
"""Measures how fast recipes run, and writes the section on it into docs/recipes.md.

usage: recipe_speed.py BUILD_FOLDER [ROUNDS]

Needs the targets orlune, orlune_scenes and recipe_loop of a release build, and a machine of two processors or more.
Of the rounds the fastest counts, since other programs can only slow a run down; each compares runs side by side.
"""

import contextlib
import os
import platform
import select
import shutil
import sqlite3
import statistics
import subprocess
import sys
import tempfile
import time
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent
PAGE = ROOT / "docs/recipes.md"
BEGIN, END = "<!-- written by tools/recipe_speed.py -->", "<!-- until here -->"
# What tools/orlune/recipe/recipe_loop.c does by calls.
RECIPE = """name = "speed"
[[step]]
do = "filter"
steps = "median 5"
[[step]]
do = "inspect"
dark = true
keep = "AreaPixels>=300"
measures = "AreaPixels,Perimeter,NumberOfHoles"
"""
SMALL, LARGE = 0.77, 2.5  # of the scenes' sides: 0.1 and 1.08 megapixels
MANY, HUGE = 2000, 10000
OVERHEAD_ROUNDS = 4  # times those of the others, for the median of a small difference
ARRIVALS = 30


class Cost(NamedTuple):
    wall: float  # seconds
    processor: float  # seconds, with all children
    resident: float  # largest of the parent alone, in MB
    own: float  # seconds of the parent alone


def resident(process: int) -> float:
    with contextlib.suppress(OSError):
        for line in Path(f"/proc/{process}/status").read_text().splitlines():
            if line.startswith("VmHWM"):
                return int(line.split()[1]) / 1024
    return 0.0


def processor_time(process: int) -> float:
    with contextlib.suppress(OSError):
        fields = Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()
        return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")
    return 0.0


def cost_of(command: list[str]) -> Cost:
    begun = time.monotonic()
    run = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    most = own = 0.0
    while True:
        done, status, usage = os.wait4(run.pid, os.WNOHANG)
        if done:
            break
        most, own = max(most, resident(run.pid)), max(own, processor_time(run.pid))
        time.sleep(0.005)
    run.returncode = os.waitstatus_to_exitcode(status)
    if run.returncode != 0:
        sys.exit(f"{command[0]} ended with status {run.returncode}")
    return Cost(time.monotonic() - begun, usage.ru_utime + usage.ru_stime, most, own)


class Overhead(NamedTuple):
    """Medians of processor time a picture in microseconds, and by how much a recipe needs more in the same round."""

    recipe: float
    on_one: float  # a loop on one thread, as workers work
    on_all: float  # on as many as the library takes by itself
    beyond_one: float
    beyond_all: float


class Bench:
    def __init__(self, build: Path, rounds: int) -> None:
        self.orlune = str(build / "tools/orlune")
        self.loop = str(build / "tools/recipe_loop")
        self.rounds = rounds
        subprocess.run([build / "tools/orlune_scenes", "scenes", "scenes.csv"], check=True)
        Path("speed.toml").write_text(RECIPE)
        self.small, self.large = self.scaled("small", SMALL), self.scaled("large", LARGE)

    def scaled(self, folder: str, factor: float) -> list[str]:
        scenes = [f"scenes/trays/tray{i}.bmp" for i in range(1, 7)]
        steps = f"resample {factor}"
        subprocess.run(
            [self.orlune, "filter", "--quiet", "--steps", steps, "--format", "bmp", "--out", folder, *scenes],
            check=True,
        )
        return [f"{folder}/tray{i}.bmp" for i in range(1, 7)]

    def files(self, count: int) -> list[str]:
        """Names of so many pictures; what they lead to is read and worked on for each name."""
        folder = Path(f"many{count}")
        if not folder.exists():
            folder.mkdir()
            for i in range(count):
                (folder / f"p{i:05}.bmp").symlink_to(f"../{self.small[i % len(self.small)]}")
        return [str(folder / f"p{i:05}.bmp") for i in range(count)]

    def run(self, workers: int, count: int, *options: str) -> list[str]:
        return [self.orlune, "run", "speed.toml", "-j", str(workers), "--quiet", *options, *self.files(count)]

    def workers(self) -> tuple[Cost, Cost]:
        pairs = [(cost_of(self.run(1, MANY, "--csv", "one.csv")), cost_of(self.run(2, MANY, "--csv", "two.csv")))
                 for _ in range(self.rounds)]  # fmt: skip
        if Path("one.csv").read_bytes() != Path("two.csv").read_bytes():
            sys.exit("two workers find something else than one")
        return min(one for one, _ in pairs), min(two for _, two in pairs)

    def overhead(self) -> Overhead:
        loop = [self.loop, *self.files(MANY)]
        told = subprocess.run(loop, check=True, capture_output=True, text=True).stdout.split()[0]
        subprocess.run(self.run(1, MANY, "--csv", "one.csv"), check=True)
        kept = Path("one.csv").read_text().count(",AreaPixels,")
        if int(told) != kept:
            sys.exit(f"the loop keeps {told} particles, the recipe {kept}")
        alone = ["env", "ORLUNE_PTK_THREADS=1", *loop]
        commands = (self.run(1, MANY), alone, loop)
        rounds = [[cost_of(command).processor for command in commands] for _ in range(OVERHEAD_ROUNDS * self.rounds)]
        recipe, on_one, on_all = (statistics.median(costs) / MANY * 1e6 for costs in zip(*rounds, strict=True))
        return Overhead(
            recipe,
            on_one,
            on_all,
            beyond_one=statistics.median(recipe / one for recipe, one, _ in rounds) - 1,
            beyond_all=statistics.median(recipe / every for recipe, _, every in rounds) - 1,
        )

    def memory(self) -> dict[int, Cost]:
        costs = {}
        for count in (200, MANY, HUGE):
            Path(f"run{count}.db").unlink(missing_ok=True)
            costs[count] = cost_of(self.run(2, count, "--csv", "report.csv", "--db", f"run{count}.db"))
            told = Path("report.csv").read_text().count(",,,picture,")
            with contextlib.closing(sqlite3.connect(f"run{count}.db")) as records:
                recorded = records.execute("SELECT count(verdict), count(DISTINCT file) FROM pictures").fetchone()
            if (told, *recorded) != (count,) * 3:
                sys.exit(f"{told} of {count} pictures told, {recorded} recorded")
        return costs

    def arrivals(self) -> list[tuple[float, float]]:
        """From the instant that a picture is moved into the folder: until its verdict, and what it computed."""
        folder = Path("camera")
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        Path("watch.db").unlink(missing_ok=True)
        command = [self.orlune, "run", "speed.toml", "--watch", str(folder), "--db", "watch.db"]
        watch = subprocess.Popen(command, stdout=subprocess.PIPE)
        assert watch.stdout is not None
        time.sleep(1)
        waits = {}
        for i in range(ARRIVALS):
            shutil.copy(self.large[i % len(self.large)], "next.bmp")
            arrived = time.monotonic()
            os.rename("next.bmp", folder / f"a{i}.bmp")
            if not select.select([watch.stdout], [], [], 30)[0]:
                sys.exit("no verdict within half a minute")
            os.read(watch.stdout.fileno(), 65536)
            waits[f"{folder}/a{i}.bmp"] = time.monotonic() - arrived
        watch.terminate()
        watch.wait()
        with contextlib.closing(sqlite3.connect("watch.db")) as records:
            computed = dict(records.execute("SELECT file, seconds FROM pictures").fetchall())
        return [(waits[file], computed[file]) for file in waits]


def processor() -> str:
    for line in Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return platform.machine()


def section(bench: Bench) -> str:
    load = os.getloadavg()[0]
    one, two = bench.workers()
    overhead = bench.overhead()
    memory = bench.memory()
    beyond = sorted((told - computed) * 1000 for told, computed in bench.arrivals())
    computed = statistics.median(computed for _, computed in bench.arrivals()) * 1000
    few, many, huge = (memory[count].resident for count in memory)
    return f"""| | measured | aim |
|---|---|---|
| {MANY} pictures of 0.1 megapixel, two workers against one | {one.wall / two.wall:.2f} times as fast: {one.wall:.2f} s, {two.wall:.2f} s | 1.8 |
| processor time of the program itself, whose workers do the rest | {two.own / two.processor * 100:.0f} % | below 10 % |
| processor time against the same functions called in a loop on one thread | {overhead.beyond_one * 100:+.0f} %: {overhead.recipe:.0f} us and {overhead.on_one:.0f} us a picture | below +10 % |
| the same, the loop on as many threads as the library takes by itself | {overhead.beyond_all * 100:+.0f} %: {overhead.recipe:.0f} us and {overhead.on_all:.0f} us a picture | below +10 % |
| most memory of the program with 200, {MANY} and {HUGE} pictures | {few:.1f}, {many:.1f} and {huge:.1f} MB | the same |
| {HUGE} pictures in one run, recorded with `--db` | {memory[HUGE].wall:.1f} s, {memory[HUGE].processor:.1f} s of processor time | all of them |
| from arrival to verdict with `--watch` and `--db`, 1.1 megapixels, beyond {computed:.0f} ms of computing | {statistics.median(beyond):.0f} ms, at most {beyond[-1]:.0f} ms of {ARRIVALS} | 50 ms |

Fastest of {bench.rounds} rounds, of the loop and its recipe the median of {OVERHEAD_ROUNDS * bench.rounds} pairs, on {os.cpu_count()} processors ({processor()}) with {load:.0f} other processes that wanted to run.
The recipe is a median of 5 x 5 and an `inspect` step with a condition and three measures. Times on the clock say
little where others want the processors; processor time says what a run costs in any case.
"""


def main() -> None:
    if len(sys.argv) < 2:
        sys.exit(__doc__)
    build = Path(sys.argv[1]).absolute()
    with tempfile.TemporaryDirectory(prefix="recipe_speed") as folder:
        os.chdir(folder)
        text = section(Bench(build, int(sys.argv[2]) if len(sys.argv) > 2 else 5))
    page = PAGE.read_text()
    before, _, rest = page.partition(BEGIN)
    _, _, after = rest.partition(END)
    PAGE.write_text(f"{before}{BEGIN}\n{text}{END}{after}")
    print(text)


if __name__ == "__main__":
    main()
