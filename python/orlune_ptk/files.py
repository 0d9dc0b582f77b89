"""Picture files: the library's own format, TIFF and BMP, uncompressed."""

from __future__ import annotations

import os
from ctypes import byref, c_int32
from typing import Any, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, choice, wraps
from .constants import FILE_TABLE_ENTRIES, ImageFileFormat, ImageType
from .image import DEFAULT_BORDER, Image, ImageLike, PixelType, as_image
from .records import FILE_INFO

Path = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]

_SUFFIXES = {
    ".orln": ImageFileFormat.NATIVE,
    ".tif": ImageFileFormat.TIFF,
    ".tiff": ImageFileFormat.TIFF,
    ".bmp": ImageFileFormat.BMP,
}


@wraps("ZEL_PtkFileInfo")
def file_info(path: Path) -> Any:
    """What a file's header tells; a file that is missing or not understood has the type 0."""
    info = np.zeros(1, FILE_INFO)
    lowlevel.ZEL_PtkFileInfo(os.fsencode(path), info)
    return info[0]


def _type_for(info: Any) -> ImageType:
    """The image type that holds what a file has."""
    bits, planes = int(info["bits_per_pixel"]), int(info["planes"])
    if planes == 2:
        return ImageType.COMPLEX
    if bits == 16:
        return ImageType.I16
    if bits == 32:
        return ImageType.SGL if planes == 1 else ImageType.RGB
    return ImageType.RGB if bits == 24 else ImageType.U8


@wraps("ZEL_ReadFile")
def read_with_table(
    path: Path, dtype: PixelType | None = None, border: int = DEFAULT_BORDER, trim: bool = True
) -> tuple[Image, NDArray[np.uint32] | None]:
    """An image, as read() gives it, and the file's table of 256 colours 0xRRGGBB, or None."""
    name = os.fsencode(path)
    info = file_info(path)
    image = Image.empty((0, 0), _type_for(info) if dtype is None else dtype, border)
    table, count = np.zeros(FILE_TABLE_ENTRIES, np.uint32), c_int32()
    lowlevel.ZEL_ReadFile(image, name, 1, table, byref(count))
    width, height = int(info["width"]), int(info["height"])
    if trim and 0 < width < image.width and image.type != ImageType.COMPLEX:
        lowlevel.ZEL_Extract(image, 0, 0, 0, height, width, 1, 1)
    return image, table if count.value else None


@wraps("ZEL_ReadFile")
def read(
    path: Path, dtype: PixelType | None = None, border: int = DEFAULT_BORDER, trim: bool = True
) -> Image:
    """The image in a file, as dtype, which may be RGB, or as a type that holds what the file has.

    The library adds a column to pictures of an odd width; trim takes it away again, but from complex64."""
    return read_with_table(path, dtype, border, trim)[0]


@wraps("ZEL_WriteFile")
def write(image: ImageLike, path: Path, format: Choice | None = None, table: ArrayLike | None = None) -> None:
    """Writes an image as "native", "tiff" or "bmp", or as the name ends: .orln, .tif or .bmp.

    table: the first of up to 256 colours 0xRRGGBB, for images of uint8 in TIFF and BMP."""
    if format is None:
        suffix = os.path.splitext(os.fsdecode(path))[1].lower()
        if suffix not in _SUFFIXES:
            raise ValueError(f"no format ends with {suffix!r}: give one")
        format = _SUFFIXES[suffix]
    colors = None if table is None else np.ascontiguousarray(table, np.uint32)
    count = 0 if colors is None else colors.size
    lowlevel.ZEL_WriteFile(as_image(image), os.fsencode(path), choice(ImageFileFormat, format), colors, count)
