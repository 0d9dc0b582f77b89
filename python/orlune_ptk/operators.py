"""Two images, or an image and a number, pixel by pixel. Integers are limited to the range of their type, and do
not wrap around as those of NumPy do."""

from __future__ import annotations

from typing import Callable, Union

from . import lowlevel
from ._arguments import Choice, choice, mask_of, target, wraps
from .constants import ComparisonOperator, ImageType
from .image import Image, ImageLike, as_image

Operand = Union[ImageLike, float]
"""An image, an array, or a number."""

_Arithmetic = Callable[[Image, Union[Image, int], Image, float], int]
_Bitwise = Callable[[Image, Union[Image, int], Image, int, int], int]


def _second(operand: Operand) -> tuple[Image | int, float]:
    """An operand as an image, or 0, and a constant."""
    if isinstance(operand, (int, float)):
        return 0, operand
    return as_image(operand), 0


def _arithmetic(
    function: _Arithmetic, first: ImageLike, second: Operand, out: Image | None, wider: bool = False
) -> Image:
    left = as_image(first)
    right, constant = _second(second)
    kind = ImageType(max(left.type, right.type)) if wider and isinstance(right, Image) else None
    destination = target(out, left, kind)
    function(left, right, destination, constant)
    return destination


def _bitwise(function: _Bitwise, first: ImageLike, second: Operand, invert: bool, out: Image | None) -> Image:
    left = as_image(first)
    right, constant = _second(second)
    destination = target(out, left)
    function(left, right, destination, int(invert), int(constant))
    return destination


@wraps("ZEL_Add")
def add(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The sum of an image and another one, or a number."""
    return _arithmetic(lowlevel.ZEL_Add, first, second, out, wider=True)


@wraps("ZEL_Subtract")
def subtract(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The difference of an image and another one, or a number."""
    return _arithmetic(lowlevel.ZEL_Subtract, first, second, out)


@wraps("ZEL_Multiply")
def multiply(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The product of an image and another one, or a number."""
    return _arithmetic(lowlevel.ZEL_Multiply, first, second, out, wider=True)


@wraps("ZEL_Divide")
def divide(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The quotient of an image and another one, or a number; where that is 0 the image's own pixel."""
    return _arithmetic(lowlevel.ZEL_Divide, first, second, out)


@wraps("ZEL_Modulo")
def modulo(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The remainder of a division by another image, or a number."""
    return _arithmetic(lowlevel.ZEL_Modulo, first, second, out)


@wraps("ZEL_MulDiv")
def multiply_divide(first: ImageLike, second: ImageLike, constant: float, out: Image | None = None) -> Image:
    """An image times a constant, divided by another image."""
    image, divisor = as_image(first), as_image(second)
    destination = target(out, image)
    lowlevel.ZEL_MulDiv(image, divisor, destination, constant)
    return destination


@wraps("ZEL_And")
def bitwise_and(first: ImageLike, second: Operand, invert: bool = False, out: Image | None = None) -> Image:
    """The bits that are set in both; all bits turned if inverted."""
    return _bitwise(lowlevel.ZEL_And, first, second, invert, out)


@wraps("ZEL_Or")
def bitwise_or(first: ImageLike, second: Operand, invert: bool = False, out: Image | None = None) -> Image:
    """The bits that are set in one or both; all bits turned if inverted."""
    return _bitwise(lowlevel.ZEL_Or, first, second, invert, out)


@wraps("ZEL_Xor")
def bitwise_xor(first: ImageLike, second: Operand, invert: bool = False, out: Image | None = None) -> Image:
    """The bits that are set in one of both; all bits turned if inverted."""
    return _bitwise(lowlevel.ZEL_Xor, first, second, invert, out)


@wraps("ZEL_LogDiff")
def bitwise_difference(first: ImageLike, second: Operand, out: Image | None = None) -> Image:
    """The bits that are set in the first and not in the second."""
    image = as_image(first)
    other, constant = _second(second)
    destination = target(out, image)
    lowlevel.ZEL_LogDiff(image, other, destination, int(constant))
    return destination


@wraps("ZEL_Mask")
def apply_mask(source: ImageLike, mask: ImageLike | None, out: Image | None = None) -> Image:
    """The pixels that a mask selects, and 0 for all others."""
    image, selecting = as_image(source), mask_of(mask)
    destination = target(out, image)
    lowlevel.ZEL_Mask(image, selecting, destination)
    return destination


@wraps("ZEL_Compare")
def compare(
    first: ImageLike, second: Operand, operation: Choice = "maximum", out: Image | None = None
) -> Image:
    """Mean, minimum or maximum, or what of the first compares with the second as is asked for."""
    image = as_image(first)
    other, constant = _second(second)
    destination = target(out, image)
    lowlevel.ZEL_Compare(image, other, destination, choice(ComparisonOperator, operation), constant)
    return destination
