"""Edges along paths, pairs of edges, distances along lines, peaks of curves.

A path is rows of x and y, one a pixel: path_between() makes one of a line."""

from __future__ import annotations

from ctypes import byref, c_int32
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Point, Table, choice, integer_points, rows_of_points, wraps
from .constants import GaugeMode, InterpolationMethod, PairPolarity, PeakValleyType, SimpleEdgeProcess
from .image import ImageLike, as_image
from .records import CALIPER_REPORT, EDGE_RECORD, POINT_FLOAT
from .references import Place

_NOWHERE = Place(0, 0, 0.0)


def path_between(start: Point, end: Point) -> NDArray[np.int32]:
    """The path of a straight line from one point (x, y) to another."""
    count = max(abs(end[0] - start[0]), abs(end[1] - start[1])) + 1
    path: NDArray[np.int32] = np.rint(np.linspace(start, end, count)).astype(np.int32)
    return path


@wraps("ZEL_SimpleEdge")
def simple_edges(
    image: ImageLike,
    path: ArrayLike,
    threshold: int = 50,
    hysteresis: int = 0,
    percent: bool = True,
    which: Choice = "all",
    sub_pixel: bool = True,
) -> NDArray[np.float32]:
    """Where the gray levels of a path cross a threshold: rows of x and y."""
    points, found, count = integer_points(path), Table(POINT_FLOAT), c_int32()
    lowlevel.ZEL_SimpleEdge(
        as_image(image),
        points,
        len(points),
        choice(SimpleEdgeProcess, which),
        int(percent),
        threshold,
        hysteresis,
        int(sub_pixel),
        found.address(),
        byref(count),
    )
    return rows_of_points(found.take(count))


@wraps("ZEL_FindEdges")
def find_edges(
    image: ImageLike,
    path: ArrayLike,
    threshold: int = 20,
    width: int = 2,
    gap: int = 0,
    method: Choice = "linear",
    oversampling: int = 0,
) -> tuple[NDArray[Any], NDArray[np.float32]]:
    """The edges along a path, and where they lie in the image: rows of x and y."""
    points, found, places = integer_points(path), Table(EDGE_RECORD), Table(POINT_FLOAT)
    count = c_int32()
    lowlevel.ZEL_FindEdges(
        as_image(image),
        points,
        len(points),
        choice(InterpolationMethod, method),
        oversampling,
        threshold,
        width,
        gap,
        byref(count),
        found.address(),
        places.address(),
    )
    return found.take(count), rows_of_points(places.take(count))


@wraps("ZEL_Caliper")
def calipers(
    image: ImageLike,
    path: ArrayLike,
    separation: float = 0,
    deviation: float = 0,
    polarity: Choice = "any",
    threshold: int = 20,
    width: int = 2,
    gap: int = 0,
    method: Choice = "linear",
    oversampling: int = 0,
) -> tuple[NDArray[Any], NDArray[np.float32]]:
    """Pairs of edges at a wanted distance, and where they lie: of shape (pairs, 2, 2), x and y last."""
    points, pairs, places = integer_points(path), Table(CALIPER_REPORT), Table(POINT_FLOAT)
    pair_count, place_count = c_int32(), c_int32()
    lowlevel.ZEL_Caliper(
        as_image(image),
        points,
        len(points),
        choice(InterpolationMethod, method),
        oversampling,
        threshold,
        width,
        gap,
        choice(PairPolarity, polarity),
        separation,
        deviation,
        byref(pair_count),
        pairs.address(),
        byref(place_count),
        places.address(),
    )
    return pairs.take(pair_count), rows_of_points(places.take(place_count)).reshape(-1, 2, 2)


@wraps("ZEL_LineGauge")
def line_gauge(
    image: ImageLike,
    start: Point,
    end: Point,
    mode: Choice = "edge_to_edge",
    threshold: int = 20,
    width: int = 2,
    gap: int = 0,
    method: Choice = "linear",
    oversampling: int = 0,
    extra_lines: ArrayLike = (),
    drawn_at: Place = _NOWHERE,
    now_at: Place = _NOWHERE,
) -> NDArray[np.float32]:
    """Distances along a line, and along others beside it: extra_lines has (dx, dy) of start and end of each."""
    extra = integer_points(extra_lines)
    results = np.zeros(len(extra) // 2 + 1, np.float32)
    lowlevel.ZEL_LineGauge(
        as_image(image),
        *start,
        *end,
        choice(InterpolationMethod, method),
        oversampling,
        threshold,
        width,
        gap,
        choice(GaugeMode, mode),
        extra,
        len(extra),
        drawn_at.x,
        drawn_at.y,
        drawn_at.angle,
        now_at.x,
        now_at.y,
        now_at.angle,
        results,
    )
    return results


@wraps("ZEL_Interpolate1D")
def interpolate_path(
    image: ImageLike, path: ArrayLike, oversampling: int = 0, method: Choice = "linear"
) -> NDArray[np.float32]:
    """The gray levels of a path, with values between its pixels."""
    points, values, count = integer_points(path), Table(np.float32), c_int32()
    lowlevel.ZEL_Interpolate1D(
        as_image(image),
        points,
        len(points),
        choice(InterpolationMethod, method),
        oversampling,
        values.address(),
        byref(count),
    )
    return values.take(count)


@wraps("ZEL_PeakValleyDetector")
def find_peaks(
    data: ArrayLike, threshold: float = 0, width: int = 3, kind: Choice = "peaks"
) -> tuple[NDArray[np.float64], NDArray[np.float64], NDArray[np.float64]]:
    """Peaks or valleys of a curve: places, heights and second derivatives."""
    values = np.ascontiguousarray(data, np.float64)
    count, tables = c_int32(), (Table(np.float64), Table(np.float64), Table(np.float64))
    lowlevel.ZEL_PeakValleyDetector(
        values,
        values.size,
        threshold,
        width,
        choice(PeakValleyType, kind),
        byref(count),
        *(table.address() for table in tables),
    )
    return tables[0].take(count), tables[1].take(count), tables[2].take(count)
