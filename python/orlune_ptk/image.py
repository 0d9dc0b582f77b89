"""Images of the library, and their pixels as arrays of NumPy."""

from __future__ import annotations

import struct
import weakref
import zlib
from ctypes import byref, c_uint32
from typing import Any, Iterator, NamedTuple, TypeAlias, Union

import numpy as np
from numpy.lib.mixins import NDArrayOperatorsMixin
from numpy.typing import ArrayLike, DTypeLike, NDArray

from . import lowlevel
from .constants import ImageType
from .errors import PtkError, StaleViewError
from .records import ImageInfo

DEFAULT_BORDER = 3
"""Pixels of border of a new image: what windows up to 7 x 7 need."""

RGB = "rgb"
"""Stands for the pixel type of colour images where a dtype is asked for."""

PixelType: TypeAlias = Union[DTypeLike, ImageType]
"""A dtype, RGB, or an ImageType."""

DTYPES: dict[int, np.dtype[Any]] = {
    ImageType.U8: np.dtype(np.uint8),
    ImageType.I16: np.dtype(np.int16),
    ImageType.SGL: np.dtype(np.float32),
    ImageType.COMPLEX: np.dtype(np.complex64),
    ImageType.RGB: np.dtype(np.uint8),
}
TYPES = {DTYPES[each]: each for each in (ImageType.U8, ImageType.I16, ImageType.SGL, ImageType.COMPLEX)}

_copies = 0


def pixel_copies() -> int:
    """How often, so far, all pixels of an image were copied on their way: from an array into an image, or into
    one with a wider border. Functions that compute don't count."""
    return _copies


def _count_copy() -> None:
    global _copies
    _copies += 1


def image_type(dtype: PixelType) -> ImageType:
    """The type of images that hold such pixels; RGB is that of colours."""
    if isinstance(dtype, ImageType):
        return dtype
    if isinstance(dtype, str) and dtype == RGB:
        return ImageType.RGB
    kind = np.dtype(dtype)
    if kind == np.bool_:
        return ImageType.U8
    if kind not in TYPES:
        raise TypeError(
            f"no image has pixels of {kind}: convert to uint8, int16, float32 or complex64, or give one as dtype"
        )
    return TYPES[kind]


class Calibration(NamedTuple):
    """What a pixel measures: a unit of the caller's, and its width and height in that unit."""

    unit: int
    x_step: float
    y_step: float


class _Reference:
    """Owns an image of the library; it is disposed of with the last one who holds this."""

    __slots__ = ("number", "__weakref__")

    def __init__(self, type: int, border: int) -> None:
        self.number = 0
        number = c_uint32(0)
        try:
            lowlevel.ZEL_Create(byref(number), type, border)
        finally:
            self.number = number.value

    def __del__(self) -> None:
        if self.number:
            try:
                lowlevel.ZEL_Dispose(self.number)
            except (PtkError, TypeError):  # gone with ZEL_CloseSys, or at the end of the interpreter
                pass


class _Block:
    """What all arrays of NumPy over an image's pixels hold, so that these pixels stay while there is one."""

    __slots__ = ("reference", "__weakref__")

    def __init__(self, reference: _Reference | None) -> None:
        self.reference = reference


class _Lent:
    """Tells NumPy where pixels are, and is the base of the array that it makes of them."""

    __slots__ = ("block", "__array_interface__")

    def __init__(self, block: _Block, interface: dict[str, Any]) -> None:
        self.block = block
        self.__array_interface__ = interface


class Pixels(NDArrayOperatorsMixin):
    """A view of an image's pixels, or of a part of them, without a copy.

    It behaves as an array, and looks before every use whether the pixels are still where they were: after the
    image was resized, replaced by a result or disposed of it raises StaleViewError. What slicing gives is such
    a view again. np.asarray(view), and whatever else NumPy makes of it, are plain arrays that keep the pixels
    alive; while there is one, no function writes into the image.
    """

    __slots__ = ("_image", "_where", "_offset", "shape", "strides", "dtype")

    def __init__(self, image: Image) -> None:
        info = image._info()
        layout = _layout(info)
        self._image = image
        self._where = _where(info)
        self._offset, self.shape, self.strides, self.dtype = layout

    def _array(self) -> NDArray[Any]:
        try:
            info = self._image._info()
        except (PtkError, ValueError):
            raise StaleViewError("the image under this view was disposed of") from None
        if _where(info) != self._where:
            raise StaleViewError("the image under this view was resized or replaced")
        return self._image._lend(info, self._offset, self.shape, self.strides, self.dtype)

    def __array__(self, dtype: DTypeLike = None, copy: bool | None = None) -> NDArray[Any]:
        return _converted(self._array(), dtype, copy)

    def __getitem__(self, key: Any) -> Any:
        array = self._array()
        part = array[key]
        if not isinstance(part, np.ndarray) or part.base is None or not np.may_share_memory(part, array):
            return part
        view = object.__new__(Pixels)
        view._image, view._where = self._image, self._where
        begin = array.__array_interface__["data"][0]
        view._offset = self._offset + part.__array_interface__["data"][0] - begin
        view.shape, view.strides, view.dtype = part.shape, part.strides, part.dtype
        return view

    def __setitem__(self, key: Any, value: Any) -> None:
        self._array()[key] = value

    def __len__(self) -> int:
        return len(self._array())

    def __iter__(self) -> Iterator[Any]:
        return (self[index] for index in range(len(self)))

    def __getattr__(self, name: str) -> Any:
        if name.startswith("__"):  # NumPy shall ask for __array__, which keeps the pixels
            raise AttributeError(name)
        return getattr(self._array(), name)

    def __repr__(self) -> str:
        return repr(self._array()).replace("array(", "Pixels(", 1)

    def __array_ufunc__(self, ufunc: np.ufunc, method: str, *inputs: Any, **others: Any) -> Any:
        plain = [each._array() if isinstance(each, Pixels) else each for each in inputs]
        out = others.get("out", ())
        if out:
            others["out"] = tuple(each._array() if isinstance(each, Pixels) else each for each in out)
        result = getattr(ufunc, method)(*plain, **others)
        return out[0] if len(out) == 1 else result


class Image:
    """An image of the library.

    The library keeps pixels in memory of its own and has no function that takes a caller's. So an array is
    copied into a new image, once; from then on nothing is copied: np.asarray(image) and image.pixels lie on the
    image's own memory. To fill an image without that one copy, make it with Image.empty and have its pixels
    written where they are. Rows begin on 8 bytes: image.contiguous tells whether they follow each other without
    gaps, and so whether a consumer that wants one block has to copy.

    Pixels are uint8, int16, float32 or complex64 of shape (height, width), or uint8 of shape (height, width, 3)
    for colours: red, green and blue.

    pixels: an array, or what NumPy makes one of; bool becomes 0 and 1.
    dtype:  what pixels are converted to; by default they must be of such a type already. With RGB the array must be
            one of colours.
    border: pixels around the image, which functions on neighbourhoods use.
    """

    # ctypes takes what stands in _as_parameter_ for the image, and there is none once it is disposed of.
    __slots__ = ("_reference", "_as_parameter_", "_block")

    def __init__(
        self, pixels: ArrayLike, dtype: DTypeLike | None = None, border: int = DEFAULT_BORDER
    ) -> None:
        array = np.asarray(pixels)
        only_colour = isinstance(dtype, str) and dtype == RGB
        if dtype is not None and not only_colour:
            array = array.astype(np.dtype(dtype), copy=False)
        colour = array.ndim == 3 and array.shape[2] == 3 and array.dtype == np.uint8
        if only_colour and not colour:
            raise TypeError(
                f"colours are an array of (height, width, 3) of uint8, not of {array.shape} of {array.dtype}"
            )
        if array.ndim != 2 and not colour:
            raise TypeError(
                "an image is made of an array of two dimensions, or of (height, width, 3) of uint8, not of "
                f"{array.shape} of {array.dtype}"
            )
        self._make(ImageType.RGB if colour else image_type(array.dtype), border)
        self.resize(array.shape[:2])
        if array.size:
            self.pixels[...] = array
            _count_copy()

    def _make(self, type: int, border: int) -> None:
        self._reference: _Reference | None = _Reference(type, border)
        self._as_parameter_ = self._reference.number
        self._block: weakref.ref[_Block] | None = None  # there while arrays lie on the pixels

    @classmethod
    def empty(
        cls, shape: tuple[int, int] = (0, 0), dtype: PixelType = np.uint8, border: int = DEFAULT_BORDER
    ) -> Image:
        """An image whose pixels are undefined; dtype may be RGB."""
        image = cls.__new__(cls)
        image._make(image_type(dtype), border)
        if shape != (0, 0):
            image.resize(shape)
        return image

    @classmethod
    def zeros(
        cls, shape: tuple[int, int], dtype: PixelType = np.uint8, border: int = DEFAULT_BORDER
    ) -> Image:
        """An image of zeros; dtype may be RGB."""
        image = cls.empty(shape, dtype, border)
        lowlevel.ZEL_ClearPixels(image)
        return image

    # ---- what it is ----

    @property
    def reference(self) -> int:
        """The number by which the C functions know the image."""
        if self._reference is None:
            raise ValueError("the image was disposed of")
        return self._reference.number

    def _info(self) -> ImageInfo:
        info = ImageInfo()
        lowlevel.ZEL_GetImageInfo(self.reference, byref(info))
        return info

    @property
    def type(self) -> ImageType:
        return ImageType(self._info().type)

    @property
    def dtype(self) -> np.dtype[Any]:
        """Of the pixels; uint8 for colours too."""
        return DTYPES[self._info().type]

    @property
    def shape(self) -> tuple[int, ...]:
        """(height, width), or (height, width, 3) for colours."""
        return _layout(self._info())[1]

    @property
    def width(self) -> int:
        return int(self._info().width)

    @property
    def height(self) -> int:
        return int(self._info().height)

    @property
    def border(self) -> int:
        """Pixels on each side, beyond the image, that functions on neighbourhoods use."""
        return int(self._info().border)

    @property
    def contiguous(self) -> bool:
        """Whether the pixels follow each other without gaps; they never do for colours, which have a fourth
        byte."""
        info = self._info()
        return bool(info.type != ImageType.RGB and info.lineBytes == info.width * info.pixelBytes)

    @property
    def calibration(self) -> Calibration:
        info = self._info()
        return Calibration(info.unit, info.xStep, info.yStep)

    @calibration.setter
    def calibration(self, calibration: tuple[int, float, float]) -> None:
        lowlevel.ZEL_SetImageCalibration(self, *calibration)

    @property
    def offset(self) -> tuple[int, int]:
        """(x, y) of the pixel of another image that pixel (0, 0) covers when this one is its mask."""
        info = self._info()
        return info.offsetX, info.offsetY

    @offset.setter
    def offset(self, offset: tuple[int, int]) -> None:
        lowlevel.ZEL_SetImageOffset(self, *offset)

    # ---- its pixels ----

    @property
    def pixels(self) -> Pixels:
        """A view of the pixels that raises once they are gone."""
        return Pixels(self)

    @pixels.setter
    def pixels(self, pixels: Any) -> None:
        if not isinstance(pixels, Pixels) or pixels._image is not self:  # else: image.pixels += 1
            self.pixels[...] = pixels

    def __array__(self, dtype: DTypeLike = None, copy: bool | None = None) -> NDArray[Any]:
        info = self._info()
        return _converted(self._lend(info, *_layout(info)), dtype, copy)

    def _lend(
        self,
        info: ImageInfo,
        offset: int,
        shape: tuple[int, ...],
        strides: tuple[int, ...],
        dtype: np.dtype[Any],
    ) -> NDArray[Any]:
        """An array over the image's memory, which keeps that memory."""
        if not info.firstPixel:
            return np.empty(shape, dtype)
        block = self._block() if self._block is not None else None
        if block is None:
            block = _Block(self._reference)
            self._block = weakref.ref(block)
        interface = {
            "version": 3,
            "data": (info.firstPixel + offset, False),
            "shape": shape,
            "strides": strides,
            "typestr": dtype.str,
        }
        return np.asarray(_Lent(block, interface))

    def writable(self) -> Image:
        """The image itself, for a function to write into; BufferError while arrays of NumPy lie on its pixels,
        which the function might have to move."""
        if self._block is not None and self._block() is not None:
            raise BufferError(
                "an array of NumPy lies on the image's pixels: delete it, use image.pixels in its place, or have "
                "the result written into another image"
            )
        return self

    def resize(self, shape: tuple[int, ...]) -> None:
        """Gives the image a size of (height, width); pixels are undefined then, unless it is the size it had."""
        height, width = shape[:2]
        if min(height, width) < 0:
            raise ValueError("a side of an image is not below 0")
        lowlevel.ZEL_SetImageSize(self.writable(), width, height)

    def dispose(self) -> None:
        """Ends the image before Python would. Arrays of NumPy on its pixels keep these alive."""
        if self._reference is not None:
            self._reference = None
            del self._as_parameter_

    def __enter__(self) -> Image:
        return self

    def __exit__(self, *exception: object) -> None:
        self.dispose()

    def like(self, dtype: PixelType | None = None) -> Image:
        """A new image without pixels for what is made of this one: of the same type and border."""
        info = self._info()
        return Image.empty((0, 0), ImageType(info.type) if dtype is None else dtype, info.border)

    def copy(self, border: int | None = None) -> Image:
        """A copy with its calibration and offset, with another border if one is given."""
        info = self._info()
        image = Image.empty((0, 0), ImageType(info.type), info.border if border is None else border)
        _count_copy()
        if border is None or border == info.border:
            lowlevel.ZEL_Copy(self, image)
        else:
            image.resize((info.height, info.width))
            lowlevel.ZEL_ImageToImage(self, image, 0, 0)
            image.calibration = Calibration(info.unit, info.xStep, info.yStep)
            image.offset = (info.offsetX, info.offsetY)
        return image

    def with_border(self, border: int) -> Image:
        """The image itself if its border is so wide, else a copy whose border is."""
        return self if self.border >= border else self.copy(border)

    # ---- how it is shown ----

    def __repr__(self) -> str:
        if self._reference is None:
            return "<Image, disposed of>"
        info = self._info()
        return f"<Image {ImageType(info.type).name}, {info.width} x {info.height}, border {info.border}>"

    def _repr_png_(self) -> bytes | None:
        array = np.asarray(self)
        return to_png(array) if array.size else None


ImageLike: TypeAlias = Union[Image, ArrayLike]
"""What functions take for an image: an Image, or an array that is copied into a new one."""


def as_image(pixels: ImageLike) -> Image:
    """An image itself, or a new one of an array."""
    return pixels if isinstance(pixels, Image) else Image(pixels)


def _where(info: ImageInfo) -> tuple[int, ...]:
    """What changes when pixels go to another place, or are read otherwise."""
    return info.firstPixel, info.lineBytes, info.width, info.height, info.type


def _layout(info: ImageInfo) -> tuple[int, tuple[int, ...], tuple[int, ...], np.dtype[Any]]:
    """Bytes from the first pixel's address to the first element; shape, strides and type of the array."""
    shape, pitch, kind = (info.height, info.width), info.lineBytes, info.type
    if kind == ImageType.RGB:  # blue, green, red and a fourth byte in memory
        return 2, (*shape, 3), (pitch, 4, -1), DTYPES[kind]
    return 0, shape, (pitch, info.pixelBytes), DTYPES[kind]


def _converted(array: NDArray[Any], dtype: DTypeLike, copy: bool | None) -> NDArray[Any]:
    if dtype is not None and array.dtype != dtype:
        if copy is False:
            raise ValueError(f"the pixels are {array.dtype}: {np.dtype(dtype)} takes a copy")
        return array.astype(dtype)
    return array.copy() if copy else array


_SHOWN_SIDE = 1024


def to_png(pixels: NDArray[Any]) -> bytes:
    """A PNG file of 8 bits, for looking at: of every nth pixel where a side is longer than 1024. Of uint8 that
    is 0 and 1 only, and of other types, the range from the smallest to the largest pixel becomes 0 to 255;
    complex pixels are shown by their magnitude, with the zero frequency in the middle."""
    step = -(-max(pixels.shape[:2]) // _SHOWN_SIDE)
    shown = pixels[::step, ::step]
    if np.iscomplexobj(shown):
        shown = np.log1p(np.abs(np.fft.fftshift(shown)))
    if shown.dtype != np.uint8 or shown.max() == 1:
        finite = np.nan_to_num(shown.astype(np.float64))
        low, high = finite.min(), finite.max()
        shown = ((finite - low) * (255 / (high - low) if high > low else 0)).astype(np.uint8)
    height, width = shown.shape[:2]
    rows = np.zeros((height, 1 + shown[0].size), np.uint8)  # each row begins with its filter, which is none
    rows[:, 1:] = shown.reshape(height, -1)
    colour_type = 2 if shown.ndim == 3 else 0
    header = struct.pack(">IIBBBBB", width, height, 8, colour_type, 0, 0, 0)
    parts = (b"IHDR", header), (b"IDAT", zlib.compress(rows.tobytes(), 1)), (b"IEND", b"")
    return b"\x89PNG\r\n\x1a\n" + b"".join(
        struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data))
        for name, data in parts
    )
