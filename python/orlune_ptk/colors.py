"""Colour images: planes, pixels, conversion, histogram, threshold, lookup.

A colour is three numbers from 0 to 255: red, green and blue, or hue, saturation and lightness ("hsl") or value
("hsv")."""

from __future__ import annotations

from ctypes import byref, c_int32, c_uint8, c_uint32
from typing import Any, Sequence

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

from . import lowlevel
from ._arguments import (
    Choice,
    Point,
    Rectangle,
    array_of,
    array_type,
    choice,
    mask_of,
    rectangle_of,
    target,
    wraps,
)
from ._library import failure, lock
from .constants import ColorMode
from .image import RGB, Image, ImageLike, as_image
from .records import COLOR_HISTOGRAM_REPORT

Color = tuple[int, int, int]
Range = tuple[int, int]
"""Lowest and highest number of a component, both included."""


def to_rgb(values: NDArray[np.uint32]) -> NDArray[np.uint8]:
    """Red, green and blue of numbers 0xRRGGBB, along a new last axis."""
    return values[..., np.newaxis].view(np.uint8)[..., 2::-1]


def from_rgb(colors: ArrayLike) -> NDArray[np.uint32]:
    """Numbers 0xRRGGBB of red, green and blue, along the last axis."""
    parts = np.asarray(colors, np.uint32)
    return np.ascontiguousarray(parts[..., 0] << 16 | parts[..., 1] << 8 | parts[..., 2], np.uint32)


@wraps("ZEL_ExtractColorPlanes")
def extract_planes(image: ImageLike, mode: Choice = "rgb") -> tuple[Image, Image, Image]:
    """The three planes of a colour image."""
    source = as_image(image)
    planes = source.like(np.uint8), source.like(np.uint8), source.like(np.uint8)
    lowlevel.ZEL_ExtractColorPlanes(source, *planes, choice(ColorMode, mode))
    return planes


@wraps("ZEL_ReplaceColorPlanes")
def replace_planes(
    source: ImageLike | None,
    planes: Sequence[ImageLike | None],
    mode: Choice = "rgb",
    out: Image | None = None,
) -> Image:
    """A colour image with other planes in the place of its own; with all three no source is needed."""
    first, second, third = (mask_of(plane) for plane in planes)
    if source is None:
        like = next(plane for plane in (first, second, third) if isinstance(plane, Image))
        image = destination = target(out, like, RGB)
    else:
        image = as_image(source)
        destination = target(out, image)
    lowlevel.ZEL_ReplaceColorPlanes(image, destination, first, second, third, choice(ColorMode, mode))
    return destination


@wraps("ZEL_GetColorPixel")
def get_color_pixel(image: ImageLike, x: int, y: int) -> Color:
    """Red, green and blue of a pixel."""
    value = c_uint32()
    lowlevel.ZEL_GetColorPixel(as_image(image), x, y, byref(value))
    number = value.value
    return number >> 16 & 255, number >> 8 & 255, number & 255


@wraps("ZEL_SetColorPixel")
def set_color_pixel(image: Image, x: int, y: int, color: Sequence[int]) -> None:
    """Writes a pixel."""
    lowlevel.ZEL_SetColorPixel(image, x, y, from_rgb(color).item())


@wraps("ZEL_GetColorLine")
def get_color_line(image: ImageLike, start: Point, end: Point) -> NDArray[np.uint8]:
    """Red, green and blue of the pixels of a straight line from one point (x, y) to another."""
    source, count = as_image(image), c_int32()
    values = np.zeros(source.width + source.height, np.uint32)  # it is clipped to the image
    lowlevel.ZEL_GetColorLine(source, *start, *end, values, byref(count))
    return to_rgb(values[: count.value])


@wraps("ZEL_SetColorLine")
def set_color_line(image: Image, start: Point, end: Point, colors: ArrayLike) -> None:
    """Writes the pixels of a straight line from one point (x, y) to another."""
    values = from_rgb(colors)
    lowlevel.ZEL_SetColorLine(image, *start, *end, values, values.size)


@wraps("ZEL_ColorImageToArray")
def get_color_array(image: ImageLike, rectangle: Rectangle = None) -> NDArray[np.uint32]:
    """A copy of the pixels of a rectangle (top, left, height, width) as numbers 0xRRGGBB."""
    source, width, height = as_image(image), c_int32(), c_int32()
    values = np.zeros(source.width * source.height, np.uint32)
    top, left, rows, columns = rectangle_of(rectangle)
    lowlevel.ZEL_ColorImageToArray(source, top, left, rows, columns, values, byref(width), byref(height))
    return values[: width.value * height.value].reshape(height.value, width.value)


@wraps("ZEL_ArrayToColorImage")
def set_color_array(image: Image, values: ArrayLike) -> None:
    """Gives a colour image the size of an array of numbers 0xRRGGBB and copies these."""
    array = np.ascontiguousarray(values, np.uint32)
    height, width = array.shape
    lowlevel.ZEL_ArrayToColorImage(image.writable(), array, width, height)


@wraps("ZEL_ColorConversion")
def convert_color(color: Sequence[int], from_mode: Choice, to_mode: Choice) -> Color:
    """A colour in another mode."""
    one, two, three = color
    out = c_uint8(), c_uint8(), c_uint8()
    addresses = byref(out[0]), byref(out[1]), byref(out[2])
    lowlevel.ZEL_ColorConversion(
        choice(ColorMode, from_mode), one, two, three, choice(ColorMode, to_mode), *addresses
    )
    return out[0].value, out[1].value, out[2].value


@wraps("ZEL_ColorToInteger")
def colors_to_integers(planes: Sequence[ArrayLike], mode: Choice = "rgb") -> NDArray[np.uint32]:
    """Numbers 0xRRGGBB of colours given as three arrays of components."""
    kind = array_of(planes[0]).dtype
    first, second, third = (array_of(plane, kind) for plane in planes)
    if not first.shape == second.shape == third.shape:
        raise ValueError("the arrays of components have different shapes")
    values = np.zeros(first.shape, np.uint32)
    lowlevel.ZEL_ColorToInteger(
        first, second, third, first.size, choice(ColorMode, mode), array_type(kind), values
    )
    return values


@wraps("ZEL_IntegerToColor")
def integers_to_colors(
    values: ArrayLike, mode: Choice = "rgb", dtype: DTypeLike = np.uint8
) -> tuple[NDArray[Any], NDArray[Any], NDArray[Any]]:
    """Three arrays of components of colours given as numbers 0xRRGGBB."""
    array = np.ascontiguousarray(values, np.uint32)
    planes = np.zeros(array.shape, dtype), np.zeros(array.shape, dtype), np.zeros(array.shape, dtype)
    lowlevel.ZEL_IntegerToColor(array, array.size, choice(ColorMode, mode), array_type(dtype), *planes)
    return planes


@wraps("ZEL_ColorHistogram")
def color_histogram(
    image: ImageLike, classes: int = 256, mode: Choice = "rgb", mask: ImageLike | None = None
) -> tuple[NDArray[np.uint32], NDArray[Any]]:
    """Counts of the levels of the three planes, a row for each, and three reports."""
    source, selecting = as_image(image), mask_of(mask)
    counts = np.zeros((3, min(max(classes, 1), 256)), np.uint32)
    reports = np.zeros(3, COLOR_HISTOGRAM_REPORT)
    parts = counts[0], counts[1], counts[2], reports[:1], reports[1:2], reports[2:]
    lowlevel.ZEL_ColorHistogram(source, selecting, classes, choice(ColorMode, mode), *parts)
    return counts, reports


@wraps("ZEL_ColorThreshold")
def color_threshold(
    source: ImageLike,
    first: Range = (0, 255),
    second: Range = (0, 255),
    third: Range = (0, 255),
    mode: Choice = "rgb",
    value: int = 1,
    out: Image | None = None,
) -> Image:
    """Marks the pixels whose components lie in their ranges, in an image of uint8. With three whole ranges all
    pixels are marked."""
    image = as_image(source)
    destination = target(out, image, np.uint8)
    lowlevel.ZEL_ColorThreshold(image, destination, choice(ColorMode, mode), value, *first, *second, *third)
    if all(low <= 0 and high >= 255 for low, high in (first, second, third)):
        destination.pixels[...] = min(max(value, 0), 255)  # of which the function writes none
    return destination


@wraps("ZEL_ColorUserLookup")
def color_lookup(
    source: ImageLike,
    tables: Sequence[ArrayLike | None],
    mode: Choice = "rgb",
    mask: ImageLike | None = None,
    out: Image | None = None,
) -> Image:
    """Each component becomes what its table of 256 has for it; a component without a table stays."""
    image, selecting = as_image(source), mask_of(mask)
    first, second, third = (None if table is None else array_of(table, np.float64) for table in tables)
    if any(table is not None and table.size < 256 for table in (first, second, third)):
        raise ValueError("a table has 256 entries")
    destination = target(out, image)
    number, kind = choice(ColorMode, mode), array_type(np.float64)
    lowlevel.ZEL_ColorUserLookup(image, selecting, destination, number, kind, first, second, third)
    return destination


@wraps("ZEL_ColorEqualize")
def color_equalize(image: Image, all_planes: bool = False) -> None:
    """Equalises a colour image itself: its lightness, or red, green and blue."""
    with lock:
        lowlevel.ZEL_GetLastError(None)  # a failure is told there alone
        lowlevel.ZEL_ColorEqualize(image.writable(), 0, int(all_planes))
        status = lowlevel.ZEL_GetLastError(None)
    if status < 0:
        raise failure(status, "ZEL_ColorEqualize")
