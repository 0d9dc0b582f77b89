"""How what users of NumPy give becomes what C functions take, and back."""

from __future__ import annotations

import ctypes
import inspect
from enum import IntEnum
from typing import Any, Callable, Sequence, TypeVar, Union

import numpy as np
from numpy.typing import ArrayLike, DTypeLike, NDArray

from . import lowlevel
from .constants import WHOLE_IMAGE_EXTENT, ArrayType, Connectivity
from .image import Image, ImageLike, PixelType, as_image
from .records import POINT_FLOAT, POINT_INT, StructuringElement

Point = tuple[int, int]
"""(x, y): column and row."""

Rectangle = Union[tuple[int, int, int, int], None]
"""(top, left, height, width), limited to the image; None is the whole image."""

Choice = Union[str, int]
"""An enumerator, its number, or its name in small letters."""

F = TypeVar("F", bound=Callable[..., Any])


def wraps(*names: str) -> Callable[[F], F]:
    """Adds what the headers tell of C functions to the docstring of a function that calls them."""

    def decorate(function: F) -> F:
        told = [inspect.cleandoc(function.__doc__ or "")]
        for name in names:
            told.append(f"The C function {name}:\n\n{inspect.getdoc(getattr(lowlevel, name))}")
        function.__doc__ = "\n\n".join(told)
        return function

    return decorate


def choice(enumeration: type[IntEnum], value: Choice) -> int:
    """The number of an enumerator."""
    if isinstance(value, str):
        try:
            return int(enumeration[value.upper()])
        except KeyError:
            names = ", ".join(each.name.lower() for each in enumeration)
            raise ValueError(f"{value!r} is none of: {names}") from None
    return int(value)


def connectivity_of(neighbours: int) -> int:
    if neighbours not in (4, 8):
        raise ValueError("pixels are connected with 4 neighbours or with 8")
    return Connectivity.CONNECTIVITY_8 if neighbours == 8 else Connectivity.CONNECTIVITY_4


ARRAY_TYPES = {
    np.dtype(np.int8): ArrayType.I8,
    np.dtype(np.int16): ArrayType.I16,
    np.dtype(np.int32): ArrayType.I32,
    np.dtype(np.uint8): ArrayType.U8,
    np.dtype(np.uint16): ArrayType.U16,
    np.dtype(np.uint32): ArrayType.U32,
    np.dtype(np.float32): ArrayType.SGL,
    np.dtype(np.float64): ArrayType.DBL,
}


def array_type(dtype: DTypeLike) -> int:
    """The library's number of a type of array elements."""
    try:
        return ARRAY_TYPES[np.dtype(dtype)]
    except KeyError:
        raise TypeError(f"the library knows no arrays of {np.dtype(dtype)}") from None


def array_of(values: ArrayLike, dtype: DTypeLike | None = None) -> NDArray[Any]:
    """A contiguous array of a type that the library knows: the one given, or that of the values if it knows it,
    else 64-bit floats."""
    array = np.asarray(values)
    if dtype is None:
        dtype = array.dtype if array.dtype in ARRAY_TYPES else np.float64
    return np.ascontiguousarray(array, dtype)


def mask_of(mask: ImageLike | None) -> Image | int:
    """The image that selects pixels, or 0 for none."""
    return 0 if mask is None else as_image(mask)


def target(out: Image | None, like: Image, dtype: PixelType | None = None) -> Image:
    """Where a result goes: out, or a new image."""
    return like.like(dtype) if out is None else out.writable()


def rectangle_of(rectangle: Rectangle) -> tuple[int, int, int, int]:
    if rectangle is None:
        return 0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT
    return rectangle


def size_of(size: int | Sequence[int]) -> tuple[int, int]:
    """Width and height of a window given as (height, width), or as one number for both."""
    if isinstance(size, int):
        return size, size
    height, width = size
    return width, height


def integer_points(points: ArrayLike) -> NDArray[Any]:
    """Points as records of integers, from rows of x and y."""
    return np.ascontiguousarray(points, np.int32).reshape(-1, 2).view(POINT_INT).reshape(-1)


def float_points(points: ArrayLike) -> NDArray[Any]:
    return np.ascontiguousarray(points, np.float32).reshape(-1, 2).view(POINT_FLOAT).reshape(-1)


def rows_of_points(records: NDArray[Any]) -> NDArray[Any]:
    """Rows of x and y, from records of points."""
    rows: NDArray[Any] = records.view(records.dtype["x"]).reshape(-1, 2)
    return rows


class Element:
    """A structuring element for one call.

    element:   a number for a square of so many pixels a side, or an array whose elements other than 0 are
               members.
    hexagonal: whether the grid is hexagonal.
    """

    def __init__(self, element: int | ArrayLike, hexagonal: bool) -> None:
        members = np.ones((element, element), np.int32) if isinstance(element, int) else element
        self.members = np.ascontiguousarray(np.asarray(members) != 0, np.int32)
        height, width = self.members.shape
        self.record = StructuringElement(width, height, self.members.ctypes.data, int(hexagonal))
        self.border = max(width // 2, height // 2, 1)

    def address(self) -> Any:
        return ctypes.byref(self.record)


class Table:
    """A table of results that the library makes, and that is taken over as an array."""

    def __init__(self, dtype: DTypeLike) -> None:
        self.dtype: np.dtype[Any] = np.dtype(dtype)
        self._block = ctypes.c_void_p()

    def address(self) -> Any:
        return ctypes.byref(self._block)

    def take(self, count: int | ctypes.c_int32) -> NDArray[Any]:
        length = count if isinstance(count, int) else count.value
        if length <= 0 or self._block.value is None:
            return np.empty(0, self.dtype)
        block: Any = (ctypes.c_char * (length * self.dtype.itemsize)).from_address(self._block.value)
        table: NDArray[Any] = np.frombuffer(block, self.dtype).copy()
        return table

    def take_text(self, length: int | ctypes.c_int32 | None = None) -> str:
        """The bytes of the table as a text; without a length they end with a zero."""
        if length is not None:
            return self.take(length).tobytes().decode("latin-1")
        text = ctypes.cast(self._block, ctypes.c_char_p).value
        return (text or b"").decode("latin-1")

    def __del__(self) -> None:
        if self._block.value is not None:
            lowlevel.ZEL_free(self._block.value)
