"""Needle meters and seven-segment displays, calibrated and read."""

from __future__ import annotations

from ctypes import byref, c_double, c_float, c_int32
from typing import NamedTuple

import numpy as np
from numpy.typing import NDArray

from . import lowlevel
from ._arguments import Point, Table, float_points, rows_of_points, wraps
from .image import ImageLike, as_image
from .records import POINT_FLOAT, DigitSegments, PointFloat
from .regions import NewRegion, Region, RegionLike, record_of


class Meter(NamedTuple):
    """A calibrated meter: what its needle turns around, and the points of its arc, as rows of x and y."""

    base: tuple[float, float]
    arc: NDArray[np.float32]


class Needle(NamedTuple):
    """Where a needle stands: in percent of the scale, and the point of the arc."""

    percent: float
    tip: tuple[float, float]


class Display(NamedTuple):
    """What a display shows: the text, the number, and which segments are on, a row for each digit: top, upper
    right, lower right, bottom, lower left, upper left, middle."""

    text: str
    value: float
    segments: NDArray[np.bool_]


@wraps("ZEL_CalibrateMeter")
def calibrate_meter(needle_at_start: tuple[Point, Point], needle_at_end: tuple[Point, Point]) -> Meter:
    """A meter, from two lines: the needle at the start and at the end of the scale, each from its tip (x, y) to a
    point towards the base."""
    region = Region.line(*needle_at_start) + Region.line(*needle_at_end)
    base, arc, count = PointFloat(), Table(POINT_FLOAT), c_int32()
    lowlevel.ZEL_CalibrateMeter(record_of(region), byref(base), arc.address(), byref(count))
    return Meter((base.x, base.y), rows_of_points(arc.take(count)))


@wraps("ZEL_CalibrateMeter2")
def calibrate_meter_at(
    base: tuple[float, float], start: tuple[float, float], end: tuple[float, float]
) -> Meter:
    """A meter, from its base and the needle's tip at the start and at the end of the scale, all (x, y)."""
    arc, count = Table(POINT_FLOAT), c_int32()
    lowlevel.ZEL_CalibrateMeter2(*base, *start, *end, arc.address(), byref(count))
    return Meter(base, rows_of_points(arc.take(count)))


@wraps("ZEL_ReadMeter")
def read_meter(image: ImageLike, meter: Meter, light_needle: bool = False) -> Needle:
    """Reads a meter."""
    arc, percent, tip = float_points(meter.arc), c_float(), PointFloat()
    lowlevel.ZEL_ReadMeter(
        as_image(image), *meter.base, arc, len(arc), int(light_needle), byref(percent), byref(tip)
    )
    return Needle(percent.value, (tip.x, tip.y))


@wraps("ZEL_CalibrateLCD")
def calibrate_display(
    image: ImageLike, region: RegionLike | None = None, light: bool = False, threshold: float = 8
) -> Region:
    """The digits of a display, from a picture of it in which all have segments on both sides."""
    source, digits = as_image(image), NewRegion()
    where = (0, 0, source.height - 1, source.width - 1) if region is None else region
    lowlevel.ZEL_CalibrateLCD(source, record_of(where), int(light), threshold, digits.address())
    return digits.take()


@wraps("ZEL_ReadSingleDigit")
def read_digit(
    image: ImageLike,
    region: RegionLike,
    light: bool = False,
    threshold: float = 8,
    decimal_point: bool = False,
) -> Display:
    """Reads one digit."""
    text, value, segments = Table("S1"), c_double(), DigitSegments()
    lowlevel.ZEL_ReadSingleDigit(
        as_image(image),
        record_of(region),
        int(light),
        threshold,
        int(decimal_point),
        text.address(),
        byref(value),
        byref(segments),
    )
    states = np.array(segments.states, np.bool_).reshape(1, 7)
    return Display(text.take_text(), value.value, states)


@wraps("ZEL_ReadLCDDisplay")
def read_display(
    image: ImageLike,
    digits: RegionLike,
    light: bool = False,
    threshold: float = 8,
    sign: bool = False,
    decimal_point: bool = False,
) -> Display:
    """Reads the digits of a display, which calibrate_display() found."""
    text, segments = Table("S1"), Table(np.uint8)
    value, count = c_double(), c_int32()
    lowlevel.ZEL_ReadLCDDisplay(
        as_image(image),
        record_of(digits),
        int(light),
        threshold,
        int(sign),
        int(decimal_point),
        text.address(),
        byref(value),
        segments.address(),
        byref(count),
    )
    return Display(text.take_text(), value.value, segments.take(7 * count.value).reshape(-1, 7) != 0)
