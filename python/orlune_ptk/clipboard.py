"""Pictures exchanged with other programs through the clipboard. Without a desktop it belongs to the process."""

from __future__ import annotations

from ctypes import byref, c_int32

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import wraps
from .image import DEFAULT_BORDER, RGB, Image, ImageLike, PixelType, as_image

_COLORS = 256


@wraps("ZEL_ImageToClipboard")
def to_clipboard(image: ImageLike, palette: ArrayLike | None = None) -> None:
    """Puts a copy of an image of uint8, with 256 colours 0xRRGGBB, or of colours into the clipboard."""
    colors = None if palette is None else np.ascontiguousarray(palette, np.uint32)
    if colors is not None and colors.size != _COLORS:
        raise ValueError(f"a palette has {_COLORS} colours")
    lowlevel.ZEL_ImageToClipboard(as_image(image), colors)


@wraps("ZEL_ClipboardToImage")
def from_clipboard(
    dtype: PixelType = RGB, border: int = DEFAULT_BORDER
) -> tuple[Image, NDArray[np.uint32]] | None:
    """A copy of the picture in the clipboard and its 256 colours 0xRRGGBB; None where there is no picture."""
    image, available = Image.empty((0, 0), dtype, border), c_int32()
    palette = np.zeros(_COLORS, np.uint32)
    lowlevel.ZEL_ClipboardToImage(image, palette, byref(available))
    return (image, palette) if available.value else None
