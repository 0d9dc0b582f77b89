"""Windows that show images. They are numbers: 0 to 15 show images, 16 is the tools window, 17 to 22 are panels of
buttons. On a machine without a desktop they are kept in memory."""

from __future__ import annotations

import ctypes
from ctypes import byref, c_int32
from typing import Sequence

import numpy as np
from numpy.typing import ArrayLike, NDArray

from . import lowlevel
from ._arguments import Choice, choice, wraps
from .constants import PaletteKind, WindowAttribute
from .image import Image, ImageLike, as_image

_shown: dict[int, Image] = {}  # a window shows the image itself, which has to stay
_TITLE_BYTES = 4096


def title_of(text: str) -> ctypes.Array[ctypes.c_char]:
    """A title as C takes it, no longer than what is read back."""
    title = ctypes.create_string_buffer(text.encode())
    if len(title) > _TITLE_BYTES:
        raise ValueError(f"a title has less than {_TITLE_BYTES} bytes")
    return title


@wraps("ZEL_WindDraw")
def show(image: ImageLike | None, window: int = 0, title: str | None = None, resize: bool = True) -> None:
    """Shows an image in a window; None paints what it showed."""
    text = None if title is None else title_of(title).value
    if image is None:
        lowlevel.ZEL_WindDraw(0, window, text, int(resize))
        return
    drawn = as_image(image)
    lowlevel.ZEL_WindDraw(drawn, window, text, int(resize))
    _shown[window] = drawn


@wraps("ZEL_WSetPalette")
def set_palette(window: int, palette: Choice | Sequence[int] | NDArray[np.uint32]) -> None:
    """The colours in which a window shows images of uint8: a palette's name, or 256 numbers 0xRRGGBB."""
    if isinstance(palette, (str, int)):
        lowlevel.ZEL_WSetPalette(window, choice(PaletteKind, palette), None)
        return
    colors = np.ascontiguousarray(palette, np.uint32)
    if colors.size != 256:
        raise ValueError("a palette has 256 colours")
    lowlevel.ZEL_WSetPalette(window, -1, colors)


def attribute_of(attribute: Choice) -> int:
    """The number of an attribute, given as "visible", "zoom_x", "position" ..."""
    if isinstance(attribute, str):
        name = attribute.upper()
        for prefix in ("WATTR_", "WATTR2_"):
            if prefix + name in WindowAttribute.__members__:
                return int(WindowAttribute[prefix + name])
    return choice(WindowAttribute, attribute)


@wraps("ZEL_SetWindowAttribute")
def set_window_attribute(window: int, attribute: Choice, value: int | str) -> None:
    """Sets "visible", "left", "width", "title", "zoom_x" ... of a window."""
    number, text = attribute_of(attribute), None
    if isinstance(value, str):
        text = title_of(value)
        value = ctypes.addressof(text)
    elif number == WindowAttribute.WATTR_TITLE:
        raise TypeError("a title is a text")
    lowlevel.ZEL_SetWindowAttribute(window, number, value)


@wraps("ZEL_GetWindowAttribute")
def get_window_attribute(window: int, attribute: Choice) -> int | str:
    """Reads "visible", "left", "width", "title", "zoom_x" ... of a window."""
    number = attribute_of(attribute)
    if number == WindowAttribute.WATTR_TITLE:
        text = ctypes.create_string_buffer(_TITLE_BYTES)
        lowlevel.ZEL_GetWindowAttribute(window, number, text)
        return text.value.decode(errors="replace")
    value = c_int32()
    lowlevel.ZEL_GetWindowAttribute(window, number, byref(value))
    return value.value


@wraps("ZEL_SetWindow2DAttributes")
def set_window_pair(window: int, attribute: Choice, vertical: int, horizontal: int) -> None:
    """Sets "position", "size", "centre", "zoom" or "grid" of a window."""
    lowlevel.ZEL_SetWindow2DAttributes(window, _pair_of(attribute), vertical, horizontal)


@wraps("ZEL_GetWindow2DAttributes")
def get_window_pair(window: int, attribute: Choice) -> tuple[int, int]:
    """Vertical and horizontal "position", "size", "centre", "zoom" or "grid" of a window."""
    vertical, horizontal = c_int32(), c_int32()
    number = _pair_of(attribute)
    lowlevel.ZEL_GetWindow2DAttributes(window, number, byref(vertical), byref(horizontal))
    return vertical.value, horizontal.value


def _pair_of(attribute: Choice) -> int:
    return attribute_of(f"WATTR2_{attribute}" if isinstance(attribute, str) else attribute)


@wraps("ZEL_WindClose")
def close_window(window: int = 0, all_of_kind: bool = False) -> None:
    """Closes a window, or all of its kind."""
    lowlevel.ZEL_WindClose(window, int(all_of_kind))
    kinds = (range(16), range(16, 17), range(17, 23))
    closed = next(kind for kind in kinds if window in kind) if all_of_kind else (window,)
    for number in closed:
        _shown.pop(number, None)


@wraps("ZEL_GetWindowIDs")
def window_ids(window: int) -> tuple[int, int]:
    """The desktop's numbers of a window's panel and canvas."""
    panel, canvas = c_int32(), c_int32()
    lowlevel.ZEL_GetWindowIDs(window, byref(panel), byref(canvas))
    return panel.value, canvas.value


@wraps("ZEL_SetWParent")
def set_window_parent(window: int, panel: int) -> None:
    """The panel that a window opens on from now on."""
    lowlevel.ZEL_SetWParent(window, panel)


@wraps("ZEL_DisplayManager")
def window_command(
    window: int, command: int, values: ArrayLike = (), answers: int = 0
) -> tuple[int, NDArray[np.int32]]:
    """Gives a window a command: the window that answers, and its answer of so many numbers."""
    number, given = c_int32(window), np.ascontiguousarray(values, np.int32)
    output = np.zeros(answers, np.int32)
    lowlevel.ZEL_DisplayManager(byref(number), command, given, given.size, output, output.size)
    return number.value, output
