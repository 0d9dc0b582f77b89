"""Histograms, regions, centroids, profiles. Reports are records of NumPy: report["mean"]."""

from __future__ import annotations

from ctypes import byref, c_float, c_int32
from typing import Any

import numpy as np
from numpy.typing import DTypeLike, NDArray

from . import lowlevel
from ._arguments import Point, Table, array_type, mask_of, wraps
from .constants import HISTOGRAM_CLASSES_LIMIT, ImageType
from .image import ImageLike, as_image
from .records import HISTOGRAM_REPORT, LINE_PROFILE_REPORT, QUANTIFY_REPORT


@wraps("ZEL_Histogram")
def histogram(
    image: ImageLike, classes: int = 256, low: float = 0, high: float = 0, mask: ImageLike | None = None
) -> tuple[NDArray[np.uint32], Any]:
    """Counts of the pixels by classes from low to high, or over all levels if both are 0, and a report."""
    source, selecting = as_image(image), mask_of(mask)
    limit = 256 if source.type == ImageType.U8 else HISTOGRAM_CLASSES_LIMIT
    counts = np.zeros(min(max(classes, 1), limit), np.uint32)
    report = np.zeros(1, HISTOGRAM_REPORT)
    lowlevel.ZEL_Histogram(source, selecting, classes, low, high, counts, report)
    return counts, report[0]


@wraps("ZEL_Quantify")
def quantify(image: ImageLike, labels: ImageLike | None = None) -> tuple[Any, NDArray[Any]]:
    """Statistics of the whole image, or of all regions of a label image, and then of each region."""
    source, regions = as_image(image), mask_of(labels)
    whole, reports, count = np.zeros(1, QUANTIFY_REPORT), Table(QUANTIFY_REPORT), c_int32()
    lowlevel.ZEL_Quantify(source, regions, whole, reports.address(), byref(count))
    return whole[0], reports.take(count)


@wraps("ZEL_Centroid")
def centroid(image: ImageLike, mask: ImageLike | None = None) -> tuple[float, float]:
    """(x, y) of the centre of energy."""
    x, y = c_float(), c_float()
    lowlevel.ZEL_Centroid(as_image(image), mask_of(mask), byref(x), byref(y))
    return x.value, y.value


@wraps("ZEL_LineProfile")
def line_profile(
    image: ImageLike, start: Point, end: Point, dtype: DTypeLike = np.float32
) -> tuple[NDArray[Any], Any]:
    """The pixels of a straight line from one point (x, y) to another, and a report."""
    source, count = as_image(image), c_int32()
    values = np.empty(source.width + source.height, dtype)  # it is clipped to the image
    report = np.zeros(1, LINE_PROFILE_REPORT)
    lowlevel.ZEL_LineProfile(source, *start, *end, array_type(dtype), values, byref(count), report)
    return values[: count.value], report[0]
