"""The Fourier transform; spectra combined, filtered, taken apart. Images of complex64 have spectra: the zero
frequency at pixel (0, 0), unless flip_frequency moved it to the middle."""

from __future__ import annotations

import ctypes
from ctypes import byref, c_int32
from typing import Callable, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Rectangle, choice, rectangle_of, target, wraps
from .constants import ComplexPlane, FrequencyFilter
from .image import Image, ImageLike, PixelType, as_image
from .records import COMPLEX_VALUE, ComplexValue

Operand = Union[ImageLike, complex]
"""An image, an array, or a number."""


@wraps("ZEL_FFT")
def fft(source: ImageLike, out: Image | None = None) -> Image:
    """The spectrum of an image whose sides are powers of 2 from 16 to 16384."""
    image = as_image(source)
    destination = target(out, image, np.complex64)
    lowlevel.ZEL_FFT(image, destination)
    return destination


@wraps("ZEL_InverseFFT")
def inverse_fft(source: ImageLike, dtype: PixelType = np.float32, out: Image | None = None) -> Image:
    """The image of a spectrum: magnitudes, or with complex64 the values."""
    image = as_image(source)
    destination = target(out, image, dtype)
    lowlevel.ZEL_InverseFFT(image, destination)
    return destination


def _combined(
    function: Callable[[Image, Union[Image, int], Image, float, float], int],
    source: ImageLike,
    operand: Operand,
    out: Image | None,
) -> Image:
    image = as_image(source)
    destination = target(out, image)
    if isinstance(operand, (int, float, complex)):
        constant = complex(operand)
        function(image, 0, destination, constant.real, constant.imag)
    else:
        function(image, as_image(operand), destination, 0, 0)
    return destination


def _nothing(operand: Operand) -> bool:
    """Whether adding it writes no pixel: then the result has to be made a copy."""
    return isinstance(operand, (int, float, complex)) and operand == 0


@wraps("ZEL_ComplexAdd")
def complex_add(source: ImageLike, operand: Operand, out: Image | None = None) -> Image:
    """The sum of a complex image and another image, or a number."""
    if _nothing(operand):
        return complex_multiply(source, 1, out)
    return _combined(lowlevel.ZEL_ComplexAdd, source, operand, out)


@wraps("ZEL_ComplexSubtract")
def complex_subtract(source: ImageLike, operand: Operand, out: Image | None = None) -> Image:
    """The difference of a complex image and another image, or a number."""
    if _nothing(operand):
        return complex_multiply(source, 1, out)
    return _combined(lowlevel.ZEL_ComplexSubtract, source, operand, out)


@wraps("ZEL_ComplexMultiply")
def complex_multiply(source: ImageLike, operand: Operand, out: Image | None = None) -> Image:
    """The product of a complex image and another image, or a number."""
    return _combined(lowlevel.ZEL_ComplexMultiply, source, operand, out)


@wraps("ZEL_ComplexDivide")
def complex_divide(source: ImageLike, operand: Operand, out: Image | None = None) -> Image:
    """The quotient of a complex image and another image, or a number; where that is 0 the source's pixel."""
    return _combined(lowlevel.ZEL_ComplexDivide, source, operand, out)


@wraps("ZEL_ComplexConjugate")
def conjugate(source: ImageLike, out: Image | None = None) -> Image:
    """Imaginary parts with the other sign."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_ComplexConjugate(image, destination)
    return destination


@wraps("ZEL_ComplexFlipFrequency")
def flip_frequency(source: ImageLike, out: Image | None = None) -> Image:
    """Exchanges the quadrants: the zero frequency goes to the middle, or back."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_ComplexFlipFrequency(image, destination)
    return destination


@wraps("ZEL_ComplexAttenuate")
def attenuate(source: ImageLike, keep: Choice = "low", out: Image | None = None) -> Image:
    """Weights frequencies, so that "low" or "high" ones are kept."""
    image, mode = as_image(source), choice(FrequencyFilter, keep)
    destination = target(out, image)
    lowlevel.ZEL_ComplexAttenuate(image, destination, mode)
    return destination


@wraps("ZEL_ComplexTruncate")
def truncate(source: ImageLike, percent: float, keep: Choice = "low", out: Image | None = None) -> Image:
    """Clears frequencies: "low" or "high" ones are kept."""
    image, mode = as_image(source), choice(FrequencyFilter, keep)
    destination = target(out, image)
    lowlevel.ZEL_ComplexTruncate(image, destination, mode, percent)
    return destination


@wraps("ZEL_ExtractComplexPlane")
def extract_complex_plane(
    source: ImageLike, plane: Choice = "magnitude", dtype: PixelType = np.float32, out: Image | None = None
) -> Image:
    """Real or imaginary parts, magnitudes or phases in degrees."""
    image = as_image(source)
    destination = target(out, image, dtype)
    lowlevel.ZEL_ExtractComplexPlane(image, destination, choice(ComplexPlane, plane))
    return destination


@wraps("ZEL_ReplaceComplexPlane")
def replace_complex_plane(source: ImageLike, destination: Image, plane: Choice = "real") -> None:
    """Replaces the real or the imaginary parts of a complex image, the destination."""
    lowlevel.ZEL_ReplaceComplexPlane(as_image(source), destination.writable(), choice(ComplexPlane, plane))


@wraps("ZEL_ArrayToComplexImage")
def set_complex_array(image: Image, values: ArrayLike) -> None:
    """Gives a complex image the size of an array and copies it."""
    array = np.ascontiguousarray(values, np.complex64)
    height, width = array.shape
    lowlevel.ZEL_ArrayToComplexImage(image.writable(), array.view(COMPLEX_VALUE), width, height)


@wraps("ZEL_ArrayToComplexPlane")
def set_complex_plane(image: Image, values: ArrayLike, plane: Choice = "real") -> None:
    """Gives a complex image the size of an array and copies it to the real or the imaginary parts."""
    array = np.ascontiguousarray(values, np.float32)
    height, width = array.shape
    lowlevel.ZEL_ArrayToComplexPlane(image.writable(), choice(ComplexPlane, plane), array, width, height)


@wraps("ZEL_ComplexImageToArray")
def get_complex_array(image: ImageLike, rectangle: Rectangle = None) -> NDArray[np.complex64]:
    """A copy of the pixels of a rectangle (top, left, height, width)."""
    source, width, height = as_image(image), c_int32(), c_int32()
    values = np.zeros(source.width * source.height, np.complex64)
    lowlevel.ZEL_ComplexImageToArray(
        source, *rectangle_of(rectangle), values.view(COMPLEX_VALUE), byref(width), byref(height)
    )
    return values[: width.value * height.value].reshape(height.value, width.value)


@wraps("ZEL_ComplexPlaneToArray")
def get_complex_plane(
    image: ImageLike, plane: Choice = "magnitude", rectangle: Rectangle = None
) -> NDArray[np.float32]:
    """A copy of real or imaginary parts, magnitudes or phases in degrees of a rectangle."""
    source, width, height = as_image(image), c_int32(), c_int32()
    values = np.zeros(source.width * source.height, np.float32)
    top, left, rows, columns = rectangle_of(rectangle)
    lowlevel.ZEL_ComplexPlaneToArray(
        source, choice(ComplexPlane, plane), top, left, rows, columns, values, byref(width), byref(height)
    )
    return values[: width.value * height.value].reshape(height.value, width.value)


@wraps("ZEL_GetCpxConstant1Ptr")
def complex_one() -> complex:
    """The number 1, as the library has it."""
    address = lowlevel.ZEL_GetCpxConstant1Ptr()
    assert address is not None
    value = ctypes.cast(address, ctypes.POINTER(ComplexValue)).contents
    return complex(value.real, value.imaginary)
