"""Bar codes in a region of an image: a rectangle (top, left, height, width), or a Region; by default the whole
image. The bars stand upright."""

from __future__ import annotations

from ctypes import byref, c_int32, c_uint8
from typing import Any, Callable

import numpy as np

from . import lowlevel
from ._arguments import Table, wraps
from .image import ImageLike, as_image
from .regions import RegionLike, record_of


def _read(
    function: Callable[..., int],
    image: ImageLike,
    region: RegionLike | None,
    validate: bool,
    *others: Any,
) -> str:
    source, text, length = as_image(image), Table(np.uint8), c_int32()
    where = (0, 0, source.height - 1, source.width - 1) if region is None else region
    function(source, record_of(where), int(validate), *others, text.address(), byref(length))
    return text.take_text(length)


@wraps("ZEL_ReadCodabar")
def read_codabar(image: ImageLike, region: RegionLike | None = None, validate: bool = False) -> str:
    """Reads a Codabar."""
    return _read(lowlevel.ZEL_ReadCodabar, image, region, validate)


@wraps("ZEL_ReadCod25")
def read_interleaved25(image: ImageLike, region: RegionLike | None = None, validate: bool = False) -> str:
    """Reads an Interleaved 2 of 5."""
    return _read(lowlevel.ZEL_ReadCod25, image, region, validate)


@wraps("ZEL_ReadMSI")
def read_msi(image: ImageLike, region: RegionLike | None = None, validate: bool = False) -> str:
    """Reads an MSI."""
    return _read(lowlevel.ZEL_ReadMSI, image, region, validate)


@wraps("ZEL_ReadCodEAN8")
def read_ean8(image: ImageLike, region: RegionLike | None = None) -> str:
    """Reads an EAN-8."""
    return _read(lowlevel.ZEL_ReadCodEAN8, image, region, True)


@wraps("ZEL_ReadEAN13")
def read_ean13(image: ImageLike, first_digit: int, region: RegionLike | None = None) -> str:
    """Reads an EAN-13, whose first digit has to be known."""
    return _read(lowlevel.ZEL_ReadEAN13, image, region, True, byref(c_uint8(first_digit)))


@wraps("ZEL_ReadUPCA")
def read_upca(image: ImageLike, region: RegionLike | None = None) -> str:
    """Reads a UPC-A."""
    return _read(lowlevel.ZEL_ReadUPCA, image, region, True)


@wraps("ZEL_ReadCod39")
def read_code39(image: ImageLike, region: RegionLike | None = None, validate: bool = False) -> str:
    """Reads a Code 39."""
    return _read(lowlevel.ZEL_ReadCod39, image, region, validate)


@wraps("ZEL_ReadCod93")
def read_code93(image: ImageLike, region: RegionLike | None = None) -> str:
    """Reads a Code 93."""
    return _read(lowlevel.ZEL_ReadCod93, image, region, True)


@wraps("ZEL_ReadCod128")
def read_code128(image: ImageLike, region: RegionLike | None = None) -> str:
    """Reads a Code 128."""
    return _read(lowlevel.ZEL_ReadCod128, image, region, True)
