"""Images copied, blown up, thinned out, pasted, resampled."""

from __future__ import annotations

from . import lowlevel
from ._arguments import Choice, Rectangle, choice, rectangle_of, target, wraps
from .constants import ResampleMethod
from .image import Image, ImageLike, as_image


@wraps("ZEL_Copy")
def copy(source: ImageLike, out: Image | None = None) -> Image:
    """An exact copy, with type, border, calibration and offset."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Copy(image, destination)
    return destination


@wraps("ZEL_Expand")
def expand(
    source: ImageLike, x_factor: int, y_factor: int, rectangle: Rectangle = None, out: Image | None = None
) -> Image:
    """A rectangle (top, left, height, width) in which each pixel is repeated."""
    image = as_image(source)
    destination = target(out, image)
    top, left, height, width = rectangle_of(rectangle)
    lowlevel.ZEL_Expand(image, destination, top, left, height, width, x_factor, y_factor)
    return destination


@wraps("ZEL_Extract")
def extract(
    source: ImageLike,
    rectangle: Rectangle = None,
    x_factor: int = 1,
    y_factor: int = 1,
    out: Image | None = None,
) -> Image:
    """The pixels of a rectangle (top, left, height, width), or every nth of them."""
    image = as_image(source)
    destination = target(out, image)
    top, left, height, width = rectangle_of(rectangle)
    lowlevel.ZEL_Extract(image, destination, top, left, height, width, x_factor, y_factor)
    return destination


@wraps("ZEL_ImageToImage")
def paste(source: ImageLike, destination: Image, x: int = 0, y: int = 0) -> None:
    """Pastes an image into another one, its pixel (0, 0) at (x, y)."""
    lowlevel.ZEL_ImageToImage(as_image(source), destination, x, y)


@wraps("ZEL_Resample")
def resample(
    source: ImageLike,
    shape: tuple[int, int],
    method: Choice = "bilinear",
    rectangle: Rectangle = None,
    out: Image | None = None,
) -> Image:
    """A rectangle (top, left, height, width) resampled to a size of (height, width)."""
    image = as_image(source)
    destination = target(out, image)
    top, left, height, width = rectangle_of(rectangle)
    # Of the whole image only what there is: a rectangle of the new size is copied, and not limited before.
    height, width = min(height, image.height), min(width, image.width)
    new_height, new_width = shape
    lowlevel.ZEL_Resample(
        image, destination, top, left, height, width, new_width, new_height, choice(ResampleMethod, method)
    )
    return destination
