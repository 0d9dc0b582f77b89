"""Regions of interest: shapes over an image."""

from __future__ import annotations

import ctypes
from ctypes import byref, c_int32
from typing import Any, Iterable, NamedTuple, Sequence, Union

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, Point, choice, mask_of, wraps
from .constants import RoiContourKind, RoiContourType
from .image import Image, ImageLike, as_image
from .records import RoiContour, RoiDescriptor


class Contour(NamedTuple):
    """A shape: its type, its points as rows of x and y, and whether it selects pixels or cuts a hole."""

    shape: RoiContourType
    points: NDArray[np.int32]
    external: bool = True


_BOXES = (RoiContourType.RECT, RoiContourType.OVAL)


class Region:
    """A list of contours. External ones select pixels; internal ones are holes in what these select.

    bounds: (top, left, height, width) that hold all contours; by default the least that do.
    """

    def __init__(self, contours: Iterable[Contour], bounds: Sequence[int] | None = None) -> None:
        self.contours = list(contours)
        self.bounds = self._least_bounds() if bounds is None else tuple(bounds)

    @classmethod
    def of(cls, shape: Choice, points: ArrayLike, external: bool = True) -> Region:
        """A region of one contour."""
        rows = np.array(points, np.int32).reshape(-1, 2)
        return cls([Contour(RoiContourType(choice(RoiContourType, shape)), rows, external)])

    @classmethod
    def rectangle(cls, top: int, left: int, height: int, width: int) -> Region:
        return cls.of("rect", [(left, top), (left + width, top + height)])

    @classmethod
    def oval(cls, top: int, left: int, height: int, width: int) -> Region:
        """The ellipse that fills a rectangle."""
        return cls.of("oval", [(left, top), (left + width, top + height)])

    @classmethod
    def polygon(cls, points: ArrayLike) -> Region:
        return cls.of("polygon", points)

    @classmethod
    def polyline(cls, points: ArrayLike) -> Region:
        return cls.of("polyline", points)

    @classmethod
    def line(cls, start: Point, end: Point) -> Region:
        return cls.of("line", [start, end])

    @classmethod
    def point(cls, x: int, y: int) -> Region:
        return cls.of("point", [(x, y)])

    def __add__(self, other: Region) -> Region:
        """The contours of both."""
        return Region([*self.contours, *other.contours])

    def __sub__(self, other: Region) -> Region:
        """The contours of both, of which those of the other are holes."""
        return Region([*self.contours, *(contour._replace(external=False) for contour in other.contours)])

    def __repr__(self) -> str:
        shapes = ", ".join(contour.shape.name.lower() for contour in self.contours)
        return f"<Region of {shapes or 'no contour'}, bounds {self.bounds}>"

    def _least_bounds(self) -> tuple[int, ...]:
        lows, highs = [], []
        for contour in self.contours:
            if len(contour.points):
                lows.append(contour.points.min(axis=0))
                # The lower right corner of a box is one past its last pixel already.
                highs.append(contour.points.max(axis=0) + (contour.shape not in _BOXES))
        if not lows:
            return 0, 0, 0, 0
        left, top = (int(each) for each in np.min(lows, axis=0))
        right, bottom = (int(each) for each in np.max(highs, axis=0))
        return top, left, bottom - top, right - left


RegionLike = Union[Region, Sequence[int]]
"""A region, or a rectangle (top, left, height, width)."""


def record_of(region: RegionLike) -> NDArray[np.uint64]:
    """A region as the library reads it: one block with the record and the contours that it names."""
    if not isinstance(region, Region):
        region = Region.rectangle(*region)
    words = [np.array([*region.bounds, len(region.contours), 0], np.int32)]
    words.append(np.zeros(2 * len(region.contours), np.int32))  # their addresses
    for contour in region.contours:
        kind = RoiContourKind.EXTERNAL if contour.external else RoiContourKind.INTERNAL
        points = np.ascontiguousarray(contour.points, np.int32).reshape(-1)
        words.append(np.array([kind, contour.shape, points.size // 2], np.int32))
        words.append(points)
    offsets = np.cumsum([part.nbytes for part in words])[1::2][: len(region.contours)]
    block = np.concatenate([*words, np.zeros(1, np.int32)])
    record = np.zeros((block.size + 1) // 2, np.uint64)
    record.view(np.int32)[: block.size] = block
    record[3 : 3 + len(region.contours)] = record.ctypes.data + offsets
    return record


class NewRegion:
    """A region that the library makes, and that is taken over."""

    def __init__(self) -> None:
        self._record = ctypes.c_void_p()

    def address(self) -> Any:
        return byref(self._record)

    def take(self) -> Region:
        assert self._record.value is not None
        record = RoiDescriptor.from_address(self._record.value)
        first = self._record.value + ctypes.sizeof(RoiDescriptor)
        addresses = (ctypes.c_void_p * record.contourCount).from_address(first)
        contours = [_contour_at(address) for address in addresses if address]
        bounds = record.globalRect
        return Region(contours, (bounds.top, bounds.left, bounds.height, bounds.width))

    def __del__(self) -> None:
        if self._record.value is not None:
            lowlevel.ZEL_FreeROI(self._record.value)


def _contour_at(address: int) -> Contour:
    record = RoiContour.from_address(address)
    block: Any = (c_int32 * (2 * record.pointCount)).from_address(address + ctypes.sizeof(RoiContour))
    points = np.frombuffer(block, np.int32).reshape(-1, 2).copy()
    return Contour(RoiContourType(record.contourType), points, record.contourKind == RoiContourKind.EXTERNAL)


@wraps("ZEL_ArrayToROI", "ZEL_FreeROI")
def region_of_integers(values: ArrayLike) -> Region:
    """A region from its flat form."""
    integers = np.ascontiguousarray(values, np.int32)
    region = NewRegion()
    lowlevel.ZEL_ArrayToROI(integers, integers.size, region.address())
    return region.take()


@wraps("ZEL_ROIToMask")
def region_to_mask(
    region: RegionLike, model: ImageLike | None = None, value: int = 1, out: Image | None = None
) -> Image:
    """A mask of a region: of the size of a model, or lying at the region's place."""
    mask = Image.empty() if out is None else out.writable()
    lowlevel.ZEL_ROIToMask(mask, mask_of(model), record_of(region), value)
    return mask


@wraps("ZEL_MaskToROI")
def mask_to_region(mask: ImageLike, external_only: bool = False, max_points: int = 100_000) -> Region:
    """The outlines of what a mask selects."""
    region, limit_reached = NewRegion(), c_int32()
    lowlevel.ZEL_MaskToROI(
        as_image(mask), int(external_only), max_points, region.address(), byref(limit_reached)
    )
    if limit_reached.value:
        raise ValueError(f"the outlines have more than {max_points} points: allow more")
    return region.take()
