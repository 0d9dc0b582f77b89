"""Particles of a wanted shape; measures of lists of points, which are rows of x and y."""

from __future__ import annotations

from ctypes import byref, c_double, c_int32
from typing import Any, NamedTuple, Sequence

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Table, connectivity_of, float_points, target, wraps
from .constants import AngleMode
from .image import Image, ImageLike, as_image
from .records import SHAPE_REPORT, PointFloat


@wraps("ZEL_ShapeMatch")
def match_shapes(
    source: ImageLike,
    template: ImageLike,
    tolerance: float = 0.1,
    scale_invariant: bool = False,
    connectivity: int = 8,
    out: Image | None = None,
) -> tuple[Image, NDArray[Any]]:
    """The particles that have the shape of a template of 0 and 1: an image of their numbers, and reports."""
    image, shape = as_image(source), as_image(template)
    reports, count = Table(SHAPE_REPORT), c_int32()
    destination = target(out, image)
    if out is None:
        destination.resize(image.shape)
        destination.pixels[...] = 0  # nothing is written where the template has no shape
    lowlevel.ZEL_ShapeMatch(
        image.with_border(2),
        shape,
        destination,
        connectivity_of(connectivity),
        tolerance,
        int(scale_invariant),
        byref(count),
        reports.address(),
    )
    return destination, reports.take(count)


class Circle(NamedTuple):
    """A circle: its centre, diameter, area and perimeter."""

    x: float
    y: float
    diameter: float
    area: float
    perimeter: float


@wraps("ZEL_GetCircle")
def fit_circle(points: ArrayLike) -> Circle:
    """The circle that fits points best."""
    records, centre = float_points(points), PointFloat()
    diameter, area, perimeter = c_double(), c_double(), c_double()
    lowlevel.ZEL_GetCircle(
        records, len(records), byref(centre), byref(diameter), byref(area), byref(perimeter)
    )
    return Circle(centre.x, centre.y, diameter.value, area.value, perimeter.value)


@wraps("ZEL_GetAngles")
def angles(points: ArrayLike, origin: Sequence[float] | None = None) -> NDArray[np.float32]:
    """Angles in degrees between lines through the points, or, with an origin, between directions from there."""
    records, radians, degrees = float_points(points), Table(np.float32), Table(np.float32)
    mode = AngleMode.BETWEEN_LINES if origin is None else AngleMode.FROM_ORIGIN
    count = c_int32()
    lowlevel.ZEL_GetAngles(
        records,
        len(records),
        PointFloat(*(origin or (0, 0))),
        mode,
        radians.address(),
        degrees.address(),
        byref(count),
    )
    return degrees.take(count)


@wraps("ZEL_PointDistances")
def point_distances(points: ArrayLike) -> NDArray[np.float32]:
    """The distance from each point to the next one."""
    records, distances, count = float_points(points), Table(np.float32), c_int32()
    lowlevel.ZEL_PointDistances(records, len(records), distances.address(), byref(count))
    return distances.take(count)
