"""Shapes and gray levels changed by structuring elements.

An element is a number for a square of so many pixels a side, or an array whose elements other than 0 are members.
A source whose border is narrower than an element needs is copied into one with a wider border first."""

from __future__ import annotations

import ctypes
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Element, choice, target, wraps
from .constants import MorphologyOperation
from .image import Image, ImageLike, as_image
from .records import StructuringElement


@wraps("ZEL_Morphology")
def morphology(
    source: ImageLike,
    operation: Choice,
    element: int | ArrayLike = 3,
    hexagonal: bool = False,
    out: Image | None = None,
) -> Image:
    """Changes the shapes of what is set in a binary image: "erode", "dilate", "open", "close", ..."""
    image, shape = as_image(source), Element(element, hexagonal)
    destination = target(out, image)
    bordered = image.with_border(shape.border)
    lowlevel.ZEL_Morphology(bordered, destination, choice(MorphologyOperation, operation), shape.address())
    return destination


@wraps("ZEL_GrayMorphology")
def gray_morphology(
    source: ImageLike,
    operation: Choice,
    element: int | ArrayLike = 3,
    hexagonal: bool = False,
    out: Image | None = None,
) -> Image:
    """Changes gray levels: "erode", "dilate", "open", "close", ..."""
    image, shape = as_image(source), Element(element, hexagonal)
    destination = target(out, image)
    bordered = image.with_border(shape.border)
    lowlevel.ZEL_GrayMorphology(
        bordered, destination, choice(MorphologyOperation, operation), shape.address()
    )
    return destination


@wraps("ZEL_Get_MO_STD3X3Ptr", "ZEL_Get_MO_STD5X5Ptr", "ZEL_Get_MO_STD7X7Ptr")
def standard_element(size: int = 3) -> NDArray[np.int32]:
    """A copy of one of the library's elements: of 3, 5 or 7 pixels a side."""
    addresses = {
        3: lowlevel.ZEL_Get_MO_STD3X3Ptr,
        5: lowlevel.ZEL_Get_MO_STD5X5Ptr,
        7: lowlevel.ZEL_Get_MO_STD7X7Ptr,
    }
    if size not in addresses:
        raise ValueError("the library has elements of 3, 5 and 7 pixels a side")
    address = addresses[size]()
    assert address is not None
    record = StructuringElement.from_address(address)
    block: Any = (ctypes.c_int32 * (record.width * record.height)).from_address(record.elements)
    return np.frombuffer(block, np.int32).reshape(record.height, record.width).copy()
