"""Tells what a call from Python costs beyond the C function, in a quiet moment of the machine.

usage: ORLUNE_PTK_LIBRARY=LIBRARY PYTHONPATH=PACKAGE_FOLDER python3 python_call_cost.py [ROUNDS]
"""

import sys
import time
from collections.abc import Callable, Sequence

import orlune_ptk as ptk
from orlune_ptk import lowlevel

CALLS = 100
RUNS = 30


def best_times(calls: Sequence[Callable[[], object]]) -> list[float]:
    """Microseconds that each of some calls takes when nothing disturbs; they take turns."""
    best = [float("inf")] * len(calls)
    for _ in range(RUNS):
        for number, call in enumerate(calls):
            begin = time.perf_counter()
            for _ in range(CALLS):
                call()
            best[number] = min(best[number], (time.perf_counter() - begin) / CALLS * 1e6)
    return best


def main() -> None:
    source, out = ptk.Image.zeros((4, 4)), ptk.Image.zeros((4, 4))
    bare = getattr(lowlevel, "_Threshold")
    first, second = source.reference, out.reference
    calls = (
        lambda: bare(first, second, 1.0, 2.0, 3.0, 1),
        lambda: lowlevel.ZEL_Threshold(source, out, 1.0, 2.0, 3.0, 1),
        lambda: ptk.threshold(source, 1.0, 2.0, 3.0, out),
    )
    for _ in range(int(sys.argv[1]) if len(sys.argv) > 1 else 3):
        plain, low, natural = best_times(calls)
        print(
            f"C function {plain:.2f} us; beyond it: low-level call {low - plain:.2f} us, "
            f"natural call {natural - plain:.2f} us"
        )


main()
