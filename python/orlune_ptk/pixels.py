"""Single pixels, rows, columns, lines, whole arrays, fills and interlaced fields. Much of this is as well done by
indexing image.pixels."""

from __future__ import annotations

from ctypes import byref, c_float, c_int32

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray
from typing import Any

from . import lowlevel
from ._arguments import Point, Rectangle, array_of, array_type, mask_of, rectangle_of, target, wraps
from .constants import InterlaceMode, RowOrColumn
from .image import Image, ImageLike, as_image


@wraps("ZEL_GetPixelValue")
def get_pixel(image: ImageLike, x: int, y: int) -> float:
    """The value of a pixel."""
    value = c_float()
    lowlevel.ZEL_GetPixelValue(as_image(image), x, y, byref(value))
    return value.value


@wraps("ZEL_SetPixelValue")
def set_pixel(image: Image, x: int, y: int, value: float) -> None:
    """Writes a pixel."""
    lowlevel.ZEL_SetPixelValue(image, x, y, value)


def _row_or_column(image: ImageLike, which: RowOrColumn, index: int, dtype: DTypeLike | None) -> NDArray[Any]:
    source = as_image(image)
    info = source._info()
    length = info.height if which == RowOrColumn.COLUMN else info.width
    values = np.empty(length, source.dtype if dtype is None else dtype)
    lowlevel.ZEL_GetRowCol(source, which, index, array_type(values.dtype), values, None)
    return values


@wraps("ZEL_GetRowCol")
def get_row(image: ImageLike, index: int, dtype: DTypeLike | None = None) -> NDArray[Any]:
    """The pixels of a row."""
    return _row_or_column(image, RowOrColumn.ROW, index, dtype)


@wraps("ZEL_GetRowCol")
def get_column(image: ImageLike, index: int, dtype: DTypeLike | None = None) -> NDArray[Any]:
    """The pixels of a column."""
    return _row_or_column(image, RowOrColumn.COLUMN, index, dtype)


@wraps("ZEL_SetRowCol")
def set_row(image: Image, index: int, values: ArrayLike) -> None:
    """Writes the pixels of a row."""
    array = array_of(values)
    lowlevel.ZEL_SetRowCol(image, RowOrColumn.ROW, index, array_type(array.dtype), array, array.size)


@wraps("ZEL_SetRowCol")
def set_column(image: Image, index: int, values: ArrayLike) -> None:
    """Writes the pixels of a column."""
    array = array_of(values)
    lowlevel.ZEL_SetRowCol(image, RowOrColumn.COLUMN, index, array_type(array.dtype), array, array.size)


@wraps("ZEL_GetLine")
def get_line(image: ImageLike, start: Point, end: Point, dtype: DTypeLike | None = None) -> NDArray[Any]:
    """The pixels of a straight line from one point (x, y) to another, where it lies in the image."""
    source, count = as_image(image), c_int32()
    room = source.width + source.height  # it is clipped to the image
    values = np.empty(room, source.dtype if dtype is None else dtype)
    lowlevel.ZEL_GetLine(source, *start, *end, array_type(values.dtype), values, byref(count))
    return values[: count.value]


@wraps("ZEL_SetLine")
def set_line(image: Image, start: Point, end: Point, values: ArrayLike) -> None:
    """Writes the pixels of a straight line from one point (x, y) to another."""
    array = array_of(values)
    lowlevel.ZEL_SetLine(image, *start, *end, array_type(array.dtype), array, array.size)


@wraps("ZEL_ImageToArray")
def get_array(image: ImageLike, rectangle: Rectangle = None, dtype: DTypeLike | None = None) -> NDArray[Any]:
    """A copy of the pixels of a rectangle (top, left, height, width), as one block."""
    source, width, height = as_image(image), c_int32(), c_int32()
    values = np.empty(source.width * source.height, source.dtype if dtype is None else dtype)
    lowlevel.ZEL_ImageToArray(
        source, *rectangle_of(rectangle), array_type(values.dtype), values, byref(width), byref(height)
    )
    return values[: width.value * height.value].reshape(height.value, width.value)


@wraps("ZEL_ArrayToImage")
def set_array(image: Image, values: ArrayLike) -> None:
    """Gives an image the size of an array and copies the array into it; the type of the image stays."""
    array = array_of(values)
    height, width = array.shape
    lowlevel.ZEL_ArrayToImage(image.writable(), array_type(array.dtype), array, width, height)


@wraps("ZEL_FillImage")
def fill(image: Image, value: complex = 0, mask: ImageLike | None = None, color: int = 0) -> None:
    """Fills an image with a value, or a colour image with a colour 0xRRGGBB, where a mask selects; without a mask
    the image is filled as a block of memory, its border with it, but not to its last pixels: see below."""
    number = complex(value)
    lowlevel.ZEL_FillImage(image, mask_of(mask), number.real, color, number.real, number.imag)


@wraps("ZEL_ClearPixels")
def clear(image: Image) -> None:
    """Sets all pixels to 0, the border's too."""
    lowlevel.ZEL_ClearPixels(image)


@wraps("ZEL_Interlace")
def join_fields(first: ImageLike, second: ImageLike, out: Image | None = None) -> Image:
    """A frame whose even rows are those of the first field, and its odd ones those of the second."""
    even, odd = as_image(first), as_image(second)
    frame = target(out, even)
    lowlevel.ZEL_Interlace(frame, even, odd, InterlaceMode.JOIN)
    return frame


@wraps("ZEL_Interlace")
def split_fields(frame: ImageLike) -> tuple[Image, Image]:
    """The even rows of a frame and its odd ones, as two images."""
    source = as_image(frame)
    fields = source.like(), source.like()
    lowlevel.ZEL_Interlace(source, *fields, InterlaceMode.SPLIT)
    return fields
