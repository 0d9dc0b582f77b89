"""A pixel's neighbours, weighted by a matrix; templates found."""

from __future__ import annotations

import ctypes
from typing import Any, NamedTuple

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Rectangle, choice, mask_of, rectangle_of, target, wraps
from .constants import ConvolutionBorder, ConvolutionFamily
from .image import Image, ImageLike, as_image
from .records import ApiRect, ConvolutionMatrix


class Matrix(NamedTuple):
    """Weights, and what sums of them are divided by; 0 is the sum of the weights."""

    weights: NDArray[np.float32]
    divider: float


@wraps("ZEL_Convolute")
def convolve(
    source: ImageLike,
    matrix: Matrix | ArrayLike,
    divider: float = 0,
    mask: ImageLike | None = None,
    border: Choice = "mirror",
    out: Image | None = None,
) -> Image:
    """The weighted sum of each pixel's neighbours. The matrix is not turned: this is what others call a
    correlation. A divider of 0 is the sum of the weights."""
    weights, divider = matrix if isinstance(matrix, Matrix) else (matrix, divider)
    coefficients = np.ascontiguousarray(weights, np.float32)
    height, width = coefficients.shape
    record = ConvolutionMatrix(width, height, coefficients.ctypes.data, divider)
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    bordered = image.with_border(max(width, height) // 2)
    fill = choice(ConvolutionBorder, border)
    lowlevel.ZEL_Convolute(bordered, selecting, destination, ctypes.byref(record), fill)
    return destination


@wraps("ZEL_GetConvolutionMatrix")
def standard_matrix(family: Choice = "gaussian", size: int = 3, index: int = 0) -> Matrix:
    """A copy of one of the library's matrices."""
    address = lowlevel.ZEL_GetConvolutionMatrix(choice(ConvolutionFamily, family), size, index)
    assert address is not None
    record = ConvolutionMatrix.from_address(address)
    block: Any = (ctypes.c_float * (record.width * record.height)).from_address(record.coefficients)
    weights = np.frombuffer(block, np.float32).reshape(record.height, record.width).copy()
    return Matrix(weights, record.divider)


@wraps("ZEL_Correlate")
def correlate(
    source: ImageLike, template: ImageLike, rectangle: Rectangle = None, out: Image | None = None
) -> Image:
    """How alike a template and the pixels under it are, at each pixel of a rectangle; 255 is the same."""
    image, searched = as_image(source), as_image(template)
    destination = target(out, image)
    lowlevel.ZEL_Correlate(image, searched, destination, ApiRect(*rectangle_of(rectangle)))
    return destination
