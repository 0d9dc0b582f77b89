"""Distance maps, circles, skeletons, zones, touching particles."""

from __future__ import annotations

from ctypes import byref, c_int32
from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Element, Table, choice, target, wraps
from .constants import SkeletonType
from .image import Image, ImageLike, as_image
from .records import CIRCLE_REPORT


@wraps("ZEL_Danielsson")
def euclidean_distance(source: ImageLike, out: Image | None = None) -> Image:
    """The distance of each pixel from the next one that is 0, as a whole number up to 255."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Danielsson(image, destination)
    return destination


@wraps("ZEL_Distance")
def distance(
    source: ImageLike, element: int | ArrayLike = 3, hexagonal: bool = False, out: Image | None = None
) -> Image:
    """The number of erosions that each pixel takes part in."""
    image, shape = as_image(source), Element(element, hexagonal)
    destination = target(out, image)
    lowlevel.ZEL_Distance(image.with_border(shape.border), destination, shape.address())
    return destination


@wraps("ZEL_Circles")
def circles(
    source: ImageLike, min_radius: float = 0, max_radius: float = 255, out: Image | None = None
) -> tuple[Image, NDArray[Any]]:
    """Round particles: an image in which they are drawn, and a report of each."""
    image, reports, count = as_image(source), Table(CIRCLE_REPORT), c_int32()
    destination = target(out, image)
    lowlevel.ZEL_Circles(image, destination, min_radius, max_radius, reports.address(), byref(count))
    return destination, reports.take(count)


@wraps("ZEL_Skeleton")
def skeleton(source: ImageLike, kind: Choice = "set_a", out: Image | None = None) -> Image:
    """Thins particles to lines, or draws lines between them."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_Skeleton(image.with_border(1), destination, choice(SkeletonType, kind))
    return destination


@wraps("ZEL_Segmentation")
def grow_labels(labels: ImageLike, out: Image | None = None) -> Image:
    """Grows labels over the background until they meet."""
    image = as_image(labels)
    destination = target(out, image)
    lowlevel.ZEL_Segmentation(image.with_border(1), destination)
    return destination


@wraps("ZEL_Separation")
def separate(
    source: ImageLike,
    erosions: int = 1,
    element: int | ArrayLike = 3,
    hexagonal: bool = False,
    out: Image | None = None,
) -> Image:
    """Cuts particles that touch, where erosions take them apart."""
    image, shape = as_image(source), Element(element, hexagonal)
    destination = target(out, image, np.uint8)
    bordered = image.with_border(max(shape.border, 2))
    lowlevel.ZEL_Separation(bordered, destination, erosions, shape.address())
    return destination
