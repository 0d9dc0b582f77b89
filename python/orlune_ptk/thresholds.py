"""Ranges of gray levels, given or found."""

from __future__ import annotations

from ctypes import byref, c_int32
from typing import Any, Sequence

import numpy as np
from numpy.typing import NDArray

from . import lowlevel
from ._arguments import Choice, choice, target, wraps
from .constants import AutoBMethod
from .image import Image, ImageLike, as_image
from .records import THRESHOLD_CLASS

LARGEST = float(np.finfo(np.float32).max)


@wraps("ZEL_Threshold")
def threshold(
    source: ImageLike,
    low: float,
    high: float = LARGEST,
    value: float | None = 1,
    out: Image | None = None,
) -> Image:
    """Pixels from low to high become value, or keep theirs with None; all others become 0."""
    image = as_image(source)
    destination = target(out, image)
    if value is None:
        lowlevel.ZEL_Threshold(image, destination, low, high, 0, 0)
    else:
        lowlevel.ZEL_Threshold(image, destination, low, high, value, 1)
    return destination


@wraps("ZEL_MultiThreshold")
def multi_threshold(
    source: ImageLike,
    classes: NDArray[Any] | Sequence[tuple[float, float, float | None]],
    out: Image | None = None,
) -> Image:
    """Keeps several ranges: rows of (low, high, new value, or None to keep pixels), or what auto_classes gives."""
    image = as_image(source)
    if isinstance(classes, np.ndarray):
        records = np.ascontiguousarray(classes, THRESHOLD_CLASS)
    else:
        rows = [(low, high, value or 0, int(value is not None)) for low, high, value in classes]
        records = np.array(rows, THRESHOLD_CLASS)
    destination = target(out, image)
    lowlevel.ZEL_MultiThreshold(image, destination, len(records), records)
    return destination


@wraps("ZEL_AutoBThreshold")
def auto_threshold(image: ImageLike, method: Choice = "clustering") -> int:
    """The level that splits an image into dark and light: light is what is not below it."""
    level = c_int32()
    lowlevel.ZEL_AutoBThreshold(as_image(image), choice(AutoBMethod, method), 0, None, byref(level))
    return level.value


@wraps("ZEL_AutoMThreshold")
def auto_classes(image: ImageLike, count: int) -> NDArray[Any]:
    """The classes that the levels of an image fall into, for multi_threshold."""
    if not 2 <= count <= 256:
        raise ValueError("there are 2 to 256 classes")
    classes = np.zeros(count, THRESHOLD_CLASS)
    lowlevel.ZEL_AutoMThreshold(as_image(image), count, 0, None, classes)
    return classes
