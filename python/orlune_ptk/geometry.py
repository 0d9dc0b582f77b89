"""Images turned, shifted, mirrored, transposed, seen in relief."""

from __future__ import annotations

from ctypes import byref

import numpy as np

from . import lowlevel
from ._arguments import Choice, choice, target, wraps
from .constants import SymmetryAxis, ViewPlane
from .image import Image, ImageLike, as_image
from .records import View3DOptions


@wraps("ZEL_Rotate")
def rotate(
    source: ImageLike, angle: float, fill: float = 0, interpolate: bool = True, out: Image | None = None
) -> Image:
    """Turns an image about its centre by degrees; the size stays."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Rotate(image, destination, angle, fill, int(interpolate))
    return destination


@wraps("ZEL_Shift")
def shift(source: ImageLike, x: int, y: int, fill: float = 0, out: Image | None = None) -> Image:
    """Shifts an image to the right and down; the size stays."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Shift(image, destination, x, y, fill)
    return destination


@wraps("ZEL_Symmetry")
def mirror(source: ImageLike, axis: Choice = "left_right", out: Image | None = None) -> Image:
    """Mirrors an image."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Symmetry(image, destination, choice(SymmetryAxis, axis))
    return destination


@wraps("ZEL_Transpose")
def transpose(source: ImageLike, out: Image | None = None) -> Image:
    """Makes rows of columns."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Transpose(image, destination)
    return destination


@wraps("ZEL_3DView")
def relief(
    source: ImageLike,
    reduction: int = 2,
    max_height: int = 64,
    direction: int = 0,
    alpha: float = 30,
    beta: float = 30,
    border: int = 20,
    background: int = 85,
    plane: Choice = "magnitude",
    out: Image | None = None,
) -> Image:
    """A drawing of an image in which light stands high."""
    image = as_image(source)
    destination = target(out, image, np.uint8)
    options = View3DOptions(alpha, beta, border, background, choice(ViewPlane, plane))
    lowlevel.ZEL_3DView(image, destination, reduction, max_height, direction, byref(options))
    return destination
