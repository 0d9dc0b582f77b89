"""Regions tied to parts that move: places, turns, profiles."""

from __future__ import annotations

from ctypes import byref, c_double, c_float, c_int32
from typing import Any, NamedTuple, Sequence

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Table, integer_points, rows_of_points, wraps
from .image import ImageLike, as_image
from .records import POINT_INT, PROFILE_REPORT, PointFloat, PointInt
from .regions import NewRegion, Region, RegionLike, record_of


class Place(NamedTuple):
    """Where a part is, and its angle in degrees."""

    x: int
    y: int
    angle: float


@wraps("ZEL_CoordinateReference")
def find_place(points: ArrayLike) -> Place:
    """Place and angle of a part, from two or three points (x, y) of it."""
    records = integer_points(points)
    origin, degrees, radians = PointInt(), c_float(), c_float()
    lowlevel.ZEL_CoordinateReference(records, len(records), byref(origin), byref(degrees), byref(radians))
    return Place(origin.x, origin.y, degrees.value)


@wraps("ZEL_DetectRotation")
def detect_rotation(
    reference: ImageLike,
    test: ImageLike,
    reference_centre: Sequence[float],
    test_centre: Sequence[float],
    radius: int,
    precision: int = 1,
) -> float:
    """How far a part has turned, in degrees, from the pixels on a circle in two images."""
    radians, degrees = c_double(), c_double()
    lowlevel.ZEL_DetectRotation(
        as_image(reference),
        as_image(test),
        PointFloat(*test_centre),
        PointFloat(*reference_centre),
        radius,
        precision,
        byref(radians),
        byref(degrees),
    )
    return degrees.value


@wraps("ZEL_TransformROI")
def move_region(region: RegionLike, old: Place, new: Place) -> Region:
    """Carries a region from one place of a part to another."""
    moved = NewRegion()
    lowlevel.ZEL_TransformROI(record_of(region), *old, *new, moved.address())
    return moved.take()


@wraps("ZEL_ROIProfile")
def region_profile(
    image: ImageLike, region: RegionLike
) -> tuple[NDArray[np.float32], NDArray[np.int32], Any]:
    """The pixels along the outline of a region's first contour, where they lie, and a report."""
    samples, points, count = Table(np.float32), Table(POINT_INT), c_int32()
    report: NDArray[Any] = np.zeros(1, PROFILE_REPORT)
    lowlevel.ZEL_ROIProfile(
        as_image(image),
        record_of(region),
        samples.address(),
        byref(count),
        report,
        points.address(),
    )
    return samples.take(count), rows_of_points(points.take(count)), report[0]
