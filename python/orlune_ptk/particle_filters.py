"""Whole particles kept, removed, filled, enclosed. A particle is a set of connected pixels other than 0."""

from __future__ import annotations

import numpy as np
from numpy.typing import ArrayLike

from . import lowlevel
from ._arguments import Element, connectivity_of, target, wraps
from .image import Image, ImageLike, as_image


@wraps("ZEL_FillHole")
def fill_holes(source: ImageLike, connectivity: int = 8, out: Image | None = None) -> Image:
    """Fills the holes of particles."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_FillHole(image, destination, connectivity_of(connectivity))
    return destination


@wraps("ZEL_RejectBorder")
def reject_border(source: ImageLike, connectivity: int = 8, out: Image | None = None) -> Image:
    """Removes the particles that touch the image's edge."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_RejectBorder(image, destination, connectivity_of(connectivity))
    return destination


@wraps("ZEL_LowHighPass")
def filter_by_erosion(
    source: ImageLike,
    erosions: int = 1,
    remove_large: bool = False,
    connectivity: int = 8,
    element: int | ArrayLike = 3,
    hexagonal: bool = False,
    out: Image | None = None,
) -> Image:
    """Keeps the particles of which erosions leave something, or those of which they leave nothing."""
    image, shape = as_image(source), Element(element, hexagonal)
    destination = target(out, image)
    bordered = image.with_border(shape.border)
    lowlevel.ZEL_LowHighPass(
        bordered,
        destination,
        connectivity_of(connectivity),
        int(remove_large),
        erosions,
        shape.address(),
    )
    return destination


@wraps("ZEL_MagicWand")
def magic_wand(
    source: ImageLike,
    x: int,
    y: int,
    tolerance: float,
    value: float = 1,
    connectivity: int = 8,
    out: Image | None = None,
) -> Image:
    """The region around a pixel that differs from it by no more than a tolerance."""
    image = as_image(source)
    destination = target(out, image, np.uint8)
    lowlevel.ZEL_MagicWand(image, destination, x, y, tolerance, connectivity_of(connectivity), value)
    return destination


@wraps("ZEL_Convex")
def convex_hulls(labels: ImageLike, out: Image | None = None) -> Image:
    """Fills the convex hull of each label of a labelled image."""
    image = as_image(labels)
    destination = target(out, image)
    lowlevel.ZEL_Convex(image, destination)
    return destination
