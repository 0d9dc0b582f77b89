"""Carries a recipe out on many machines: chunks of its pictures on the workers of a Dask cluster.

usage: python -m orlune_run [--cluster ADDRESS | --local N] [OPTION...] RECIPE FILE...

Each chunk is a run of the program `orlune run` with records of its own, which are put into those of the whole run
as they come; a chunk whose worker dies is worked on by another one. At the end the program itself tells the reports
from the records, and works on what no worker could do: they are the same as those of a run on one machine.

The machines need the program, and see the recipe, its files and the pictures by the same names. Dask distributed is
the only thing that is needed beside Python (Debian: python3-distributed).
"""

# mypy: disable-error-code="no-untyped-call"
# Dask tells the types of some of its functions only.

from __future__ import annotations

import argparse
import os
import sqlite3
import subprocess
import sys
import tempfile
from collections.abc import Iterator, Sequence
from contextlib import closing, contextmanager
from pathlib import Path
from typing import Any, NamedTuple

BAD_USE, NO_VERDICT = 2, 3  # exit statuses of the program
MOST_IN_A_CHUNK = 64
CHUNKS_A_WORKER = 8
ROUNDS = 3  # in which a chunk is given to the cluster


class RunFailure(Exception):
    """What ends a run, with the program's exit status."""

    def __init__(self, text: str, status: int = NO_VERDICT) -> None:
        super().__init__(text)
        self.status = status


class Work(NamedTuple):
    """What a worker needs to know to work on any chunk: the first arguments of work_on."""

    program: str
    recipe: str
    folder: str  # from which the names of files count
    options: tuple[str, ...]


class Chunk(NamedTuple):
    """Pictures of the run by their numbers and names, as the records have both."""

    numbers: tuple[int, ...]
    files: tuple[bytes, ...]


# ---- on the workers


def work_on(
    program: str, recipe: str, folder: str, options: tuple[str, ...], files: tuple[bytes, ...]
) -> bytes:
    """The records of a run of its own on these files, as the bytes of an SQLite file."""
    with tempfile.TemporaryDirectory(prefix="orlune_run") as scratch:
        records = os.path.join(scratch, "chunk.db")
        # Thumbnails are made where a report asks for them; the report itself is not needed.
        reports = ["--html", os.path.join(scratch, "chunk.html")] if "--html" in options else []
        others = [option for option in options if option != "--html"]
        command = [program, "run", "--quiet", "--db", records, *reports, *others, "--", recipe]
        done = subprocess.run(
            [*command, *files], cwd=folder, stdin=subprocess.DEVNULL, stderr=subprocess.PIPE, check=False
        )
        said = done.stderr.decode(errors="replace").strip()
        if not os.path.exists(records):
            raise RunFailure(said or f"{program} ended with status {done.returncode}")
        with closing(sqlite3.connect(records)) as chunk:
            told = chunk.execute("SELECT count(verdict) FROM pictures").fetchone()[0]
        if told != len(files):
            raise RunFailure(said or f"{program} ended with status {done.returncode} before its last picture")
        return Path(records).read_bytes()


# ---- where all comes together


class Records:
    """The run in an SQLite file whose tables the program has made."""

    def __init__(self, path: str, recipe: str) -> None:
        self._path = path
        self._database = sqlite3.connect(path, timeout=10, isolation_level=None)
        self._database.execute("PRAGMA foreign_keys = ON")
        self._database.execute("PRAGMA synchronous = NORMAL")
        row = self._database.execute(
            "SELECT max(id) FROM runs WHERE CAST(recipe_text AS BLOB) = ?", (Path(recipe).read_bytes(),)
        ).fetchone()
        if row[0] is None:
            raise RunFailure(f"{path}: there is no run of {recipe}")
        self._run: int = row[0]

    def close(self) -> None:
        self._database.close()

    def pending(self) -> list[tuple[int, bytes]]:
        """The pictures without a verdict, by number and name."""
        return self._database.execute(
            "SELECT number, CAST(file AS BLOB) FROM pictures WHERE run = ? AND verdict IS NULL ORDER BY number",
            (self._run,),
        ).fetchall()

    def add(self, chunk: Chunk, records: bytes) -> None:
        """Puts a chunk's records in, all or none; pictures that have a verdict keep it."""
        with tempfile.NamedTemporaryFile(prefix="orlune_run", suffix=".db") as file:
            file.write(records)
            file.flush()
            self._database.execute("ATTACH ? AS chunk", (file.name,))
            try:
                self._database.execute("BEGIN IMMEDIATE")
                with self._database:
                    for place, number in enumerate(chunk.numbers):
                        self._add_picture(place, number)
            finally:
                self._database.execute("DETACH chunk")

    def _add_picture(self, place: int, number: int) -> None:
        # Texts go from table to table: file names need not be UTF-8.
        taken = self._database.execute(
            "UPDATE pictures SET (verdict, reason, seconds, recorded, thumbnail) ="
            " (SELECT verdict, reason, seconds, recorded, thumbnail FROM chunk.pictures WHERE number = ?)"
            " WHERE run = ? AND number = ? AND verdict IS NULL RETURNING id",
            (place, self._run, number),
        ).fetchone()
        if taken is None:
            return
        steps = self._database.execute(
            "SELECT id FROM chunk.steps WHERE picture = (SELECT id FROM chunk.pictures WHERE number = ?) ORDER BY id",
            (place,),
        ).fetchall()
        for (step,) in steps:
            added = self._database.execute(
                "INSERT INTO main.steps(picture, name, verdict, reason)"
                " SELECT ?, name, verdict, reason FROM chunk.steps WHERE id = ?",
                (taken[0], step),
            ).lastrowid
            self._database.execute(
                "INSERT INTO main.measurements(step, object, name, value, text, unit, verdict)"
                " SELECT ?, object, name, value, text, unit, verdict FROM chunk.measurements"
                " WHERE step = ? ORDER BY id",
                (added, step),
            )


def chunks_of(pending: Sequence[tuple[int, bytes]], size: int) -> Iterator[Chunk]:
    for first in range(0, len(pending), size):
        part = pending[first : first + size]
        yield Chunk(tuple(number for number, _ in part), tuple(file for _, file in part))


def spread(client: Any, work: Work, chunks: Sequence[Chunk], records: Records) -> list[Chunk]:
    """Has the chunks worked on, and gives those that no worker could bring to an end."""
    from distributed import as_completed

    futures = {client.submit(work_on, *work, chunk.files, pure=False, retries=1): chunk for chunk in chunks}
    lost = []
    for future in as_completed(futures):
        chunk = futures.pop(future)
        if future.status == "finished":
            records.add(chunk, future.result())
        else:
            lost.append(chunk)
            reason = future.exception() if future.status == "error" else future.status
            print(f"orlune_run: a chunk of {len(chunk.files)} pictures: {reason}", file=sys.stderr)
        future.release()
    return lost


def distribute(client: Any, work: Work, size: int | None, records: Records) -> None:
    """Has the pending pictures worked on by the cluster, as far as it can."""
    pending = records.pending()
    if size is None:
        workers = max(1, len(client.scheduler_info()["workers"]))
        size = min(MOST_IN_A_CHUNK, -(-len(pending) // (workers * CHUNKS_A_WORKER)))
    chunks = list(chunks_of(pending, max(1, size)))
    for _ in range(ROUNDS):
        if not chunks:
            return
        chunks = spread(client, work, chunks, records)


def run_program(command: Sequence[str]) -> int:
    """Exit status; what a signal ended is told as a shell tells it."""
    status = subprocess.run(command, check=False).returncode
    return status if status >= 0 else 128 - status


def arguments() -> argparse.Namespace:
    parser = argparse.ArgumentParser(
        prog="orlune_run", description="Carries a recipe out on the workers of a Dask cluster."
    )
    parser.add_argument("recipe", metavar="RECIPE")
    parser.add_argument("files", metavar="FILE", nargs="*", help="pictures, which the workers see by the same names")
    where = parser.add_mutually_exclusive_group()
    where.add_argument("--cluster", metavar="ADDRESS", help="the scheduler of a cluster: tcp://HOST:PORT")
    where.add_argument("--local", metavar="N", type=int, help="N processes on this machine instead")
    parser.add_argument("--chunk", metavar="N", type=int, help="pictures that a worker is given at a time")
    parser.add_argument("--program", default="orlune", help="the program, as it is called on all machines")
    parser.add_argument("--db", metavar="FILE", help="records of the run, as those of orlune run")
    parser.add_argument("--resume", action="store_true", help="finish the last run in there")
    for report in ("--csv", "--json-lines", "--html"):
        parser.add_argument(report, metavar="FILE", help="as of orlune run")
    parser.add_argument("--time-limit", metavar="SECONDS", help="as of orlune run")
    parser.add_argument("--quiet", action="store_true", help="as of orlune run")
    asked = parser.parse_args()
    if asked.resume and not asked.db:
        parser.error("--resume needs --db, the records of the run")
    if "-" in asked.files:
        parser.error("a cluster does not read standard input")
    if asked.chunk is not None and asked.chunk < 1:
        parser.error("--chunk is 1 or more")
    if asked.local is not None and asked.local < 1:
        parser.error("--local is 1 or more")
    return asked


@contextmanager
def cluster_of(asked: argparse.Namespace) -> Iterator[Any]:
    """A client of the cluster; processes of this machine end with it."""
    try:
        from distributed import Client, LocalCluster
    except ImportError:
        raise RunFailure("Dask distributed is not installed (Debian: python3-distributed)", BAD_USE) from None
    if asked.cluster:
        with Client(asked.cluster, timeout=30) as client:
            yield client
        return
    workers = asked.local or len(os.sched_getaffinity(0))
    with LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            yield client


def carry_out(asked: argparse.Namespace, path: str) -> int:
    limit = ["--time-limit", asked.time_limit] if asked.time_limit else []
    begin = [asked.program, "run", "--only-list", "--db", path, *(["--resume"] if asked.resume else [])]
    status = run_program([*begin, "--", asked.recipe, *asked.files])
    if status != 0:
        return status
    html = ["--html"] if asked.html else []
    work = Work(asked.program, asked.recipe, os.getcwd(), (*html, *limit))
    with closing(Records(path, asked.recipe)) as records:
        if records.pending():
            with cluster_of(asked) as client:
                distribute(client, work, asked.chunk, records)
    end = [asked.program, "run", "--db", path, "--resume", *limit, *(["--quiet"] if asked.quiet else [])]
    for option in ("csv", "json_lines", "html"):
        if getattr(asked, option):
            end += ["--" + option.replace("_", "-"), getattr(asked, option)]
    return run_program([*end, "--", asked.recipe])


def main() -> int:
    asked = arguments()
    try:
        if asked.db:
            return carry_out(asked, asked.db)
        with tempfile.TemporaryDirectory(prefix="orlune_run") as scratch:
            return carry_out(asked, os.path.join(scratch, "run.db"))
    except (RunFailure, OSError, sqlite3.Error) as failure:
        print(f"orlune_run: {failure}", file=sys.stderr)
        return getattr(failure, "status", NO_VERDICT)


if __name__ == "__main__":
    sys.exit(main())
