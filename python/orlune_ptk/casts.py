"""Images from one pixel type to another."""

from __future__ import annotations

import numpy as np
from numpy.typing import ArrayLike

from . import lowlevel
from ._arguments import array_of, array_type, target, wraps
from .image import Image, ImageLike, PixelType, as_image, image_type


@wraps("ZEL_Cast")
def cast(image: Image, dtype: PixelType) -> None:
    """Gives an image itself another type; dtype may be RGB."""
    lowlevel.ZEL_Cast(image.writable(), image_type(dtype))


@wraps("ZEL_Convert")
def convert(source: ImageLike, dtype: PixelType | None = None, out: Image | None = None) -> Image:
    """An image of another type: dtype, which may be RGB, or that of out."""
    image = as_image(source)
    destination = target(out, image, dtype)
    lowlevel.ZEL_Convert(image, destination)
    return destination


@wraps("ZEL_ConvertByLookup")
def convert_by_lookup(
    source: ImageLike, table: ArrayLike, dtype: PixelType = np.float32, out: Image | None = None
) -> Image:
    """An image of another type, whose pixels are what a table has for those of the source."""
    image, array = as_image(source), array_of(table)
    destination = target(out, image, dtype)
    lowlevel.ZEL_ConvertByLookup(image, destination, array_type(array.dtype), array, array.size)
    return destination


@wraps("ZEL_Shift16To8")
def shift_16_to_8(source: ImageLike, shift: int = 8, out: Image | None = None) -> Image:
    """The low 8 bits of pixels of 16 bits that were shifted to the right."""
    image = as_image(source)
    destination = target(out, image, np.uint8)
    lowlevel.ZEL_Shift16To8(image, destination, shift)
    return destination
