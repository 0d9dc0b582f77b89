"""Gray levels through tables and laws."""

from __future__ import annotations

from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, array_of, array_type, choice, mask_of, target, wraps
from .constants import MathOperator
from .image import Image, ImageLike, as_image
from .records import HISTOGRAM_REPORT


@wraps("ZEL_UserLookup")
def lookup(
    source: ImageLike, table: ArrayLike, mask: ImageLike | None = None, out: Image | None = None
) -> Image:
    """Each pixel becomes what a table has for it."""
    image, selecting, array = as_image(source), mask_of(mask), array_of(table)
    destination = target(out, image)
    lowlevel.ZEL_UserLookup(image, selecting, destination, array_type(array.dtype), array, array.size)
    return destination


@wraps("ZEL_MathLookup")
def math_lookup(
    source: ImageLike,
    law: Choice = "linear",
    exponent: float = 1,
    low: float = 0,
    high: float = 0,
    mask: ImageLike | None = None,
    out: Image | None = None,
) -> Image:
    """Each pixel through a mathematical law, over the range from low to high, or all of it if both are 0."""
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    lowlevel.ZEL_MathLookup(image, selecting, destination, choice(MathOperator, law), exponent, low, high)
    return destination


@wraps("ZEL_Equalize")
def equalize(
    source: ImageLike,
    low: float = 0,
    high: float = 0,
    histogram: tuple[ArrayLike, NDArray[Any]] | None = None,
    mask: ImageLike | None = None,
    out: Image | None = None,
) -> Image:
    """Spreads levels so that all are used evenly, by the image's own histogram or what histogram() gave."""
    image, selecting = as_image(source), mask_of(mask)
    counts = report = None
    if histogram is not None:
        counts = np.ascontiguousarray(histogram[0], np.uint32)
        report = np.atleast_1d(np.asarray(histogram[1], HISTOGRAM_REPORT))
    destination = target(out, image)
    count = 0 if counts is None else counts.size
    lowlevel.ZEL_Equalize(image, selecting, destination, counts, count, report, low, high)
    return destination
