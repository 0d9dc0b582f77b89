"""What a pixel and its neighbours give: edges, smoothing, ranks. A source whose border is narrower than a window
needs is copied into one with a wider border first."""

from __future__ import annotations

from typing import Sequence, Union

from . import lowlevel
from ._arguments import Choice, choice, mask_of, size_of, target, wraps
from .constants import EdgeMethod
from .image import Image, ImageLike, as_image

Size = Union[int, Sequence[int]]
"""(height, width) of a window, or one number for both."""


@wraps("ZEL_GrayEdge")
def edges(
    source: ImageLike,
    method: Choice = "sobel",
    threshold: float = 0,
    mask: ImageLike | None = None,
    out: Image | None = None,
) -> Image:
    """How much each pixel differs from its neighbours."""
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    bordered = image.with_border(1)
    lowlevel.ZEL_GrayEdge(bordered, selecting, destination, choice(EdgeMethod, method), threshold)
    return destination


@wraps("ZEL_LowPass")
def low_pass(
    source: ImageLike,
    size: Size = 3,
    tolerance: float = 0,
    mask: ImageLike | None = None,
    out: Image | None = None,
) -> Image:
    """Pixels that differ from the mean of their neighbours by more than a tolerance, in percent, become that."""
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    width, height = size_of(size)
    bordered = image.with_border(max(width, height) // 2)
    lowlevel.ZEL_LowPass(bordered, selecting, destination, width, height, tolerance)
    return destination


@wraps("ZEL_NthOrder")
def rank(
    source: ImageLike, size: Size, order: int, mask: ImageLike | None = None, out: Image | None = None
) -> Image:
    """The pixel that is found at a place when those of a window are sorted; the smallest is at 0."""
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    width, height = size_of(size)
    bordered = image.with_border(max(width, height) // 2)
    lowlevel.ZEL_NthOrder(bordered, selecting, destination, width, height, order)
    return destination


def median(
    source: ImageLike, size: Size = 3, mask: ImageLike | None = None, out: Image | None = None
) -> Image:
    """The median of each window; see rank()."""
    width, height = size_of(size)
    return rank(source, size, width * height // 2, mask, out)


def minimum(
    source: ImageLike, size: Size = 3, mask: ImageLike | None = None, out: Image | None = None
) -> Image:
    """The smallest pixel of each window; see rank()."""
    return rank(source, size, 0, mask, out)


def maximum(
    source: ImageLike, size: Size = 3, mask: ImageLike | None = None, out: Image | None = None
) -> Image:
    """The largest pixel of each window; see rank()."""
    width, height = size_of(size)
    return rank(source, size, width * height - 1, mask, out)
