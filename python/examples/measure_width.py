"""Measures how wide a bar is, to a fraction of a pixel, at several places, however it lies: edges are looked for
along lines across it."""

import numpy as np

import orlune_ptk as ptk


def bar(width: float) -> np.ndarray:
    """A picture of a light bar with soft edges that leans to the right."""
    y, x = np.mgrid[0:200, 0:300]
    across = np.abs((x - 150) - 0.2 * (y - 100)) / np.hypot(1, 0.2)
    light = np.clip(width / 2 - across + 0.5, 0, 1)
    return (30 + 180 * light).astype(np.uint8)


def main() -> None:
    image = ptk.median(bar(61.7), 3)
    lean = np.hypot(1, 0.2)
    for row in range(40, 180, 40):
        path = ptk.path_between((20, row), (280, row))
        left, right = ptk.simple_edges(image, path, threshold=50, which="first_and_last")
        print(f"row {row}: {(right[0] - left[0]) / lean:.1f} pixels")


if __name__ == "__main__":
    main()
