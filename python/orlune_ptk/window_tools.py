"""Tools, events and regions of windows."""

from __future__ import annotations

import ctypes
from ctypes import byref, c_int32
from typing import Any, Callable, Sequence

import numpy as np
from numpy.typing import NDArray

from . import lowlevel
from ._arguments import Choice, choice, wraps
from .constants import WindowAttribute, WindowTool
from .records import WINDOW_EVENT
from .regions import NewRegion, Region, RegionLike, record_of
from .windows import _TITLE_BYTES, attribute_of, title_of

_callbacks: dict[int, Any] = {}  # what ctypes made of callbacks has to stay


@wraps("ZEL_WindToolsSetup")
def setup_tools(
    tools: Sequence[Choice] | None = None, per_row: int = 0, show_coordinates: bool = True
) -> None:
    """Lays the tools window out, with the standard tools or others."""
    numbers = None
    if tools is not None:
        numbers = np.array([choice(WindowTool, tool) for tool in tools], np.int32)
    count = 0 if numbers is None else numbers.size
    lowlevel.ZEL_WindToolsSetup(int(show_coordinates), numbers, count, per_row)


@wraps("ZEL_SetWindToolsAttribute")
def set_tools_attribute(attribute: Choice, value: int | str) -> None:
    """Sets "visible", "left", "top", "title" of the tools window."""
    number, text = attribute_of(attribute), None
    if isinstance(value, str):
        text = title_of(value)
        value = ctypes.addressof(text)
    elif number == WindowAttribute.WATTR_TITLE:
        raise TypeError("a title is a text")
    lowlevel.ZEL_SetWindToolsAttribute(number, value)


@wraps("ZEL_GetWindToolsAttribute")
def get_tools_attribute(attribute: Choice) -> int | str:
    """Reads "visible", "left", "top", "title" ... of the tools window."""
    number = attribute_of(attribute)
    if number == WindowAttribute.WATTR_TITLE:
        text = ctypes.create_string_buffer(_TITLE_BYTES)
        lowlevel.ZEL_GetWindToolsAttribute(number, text)
        return text.value.decode(errors="replace")
    value = c_int32()
    lowlevel.ZEL_GetWindToolsAttribute(number, byref(value))
    return value.value


@wraps("ZEL_SetActiveTool")
def set_active_tool(tool: Choice) -> None:
    """Chooses the tool of windows 0 to 14."""
    lowlevel.ZEL_SetActiveTool(choice(WindowTool, tool))


@wraps("ZEL_GetActiveTool")
def get_active_tool() -> int:
    """The tool of window 0, as in WindowTool."""
    tool = c_int32()
    lowlevel.ZEL_GetActiveTool(byref(tool))
    return tool.value


@wraps("ZEL_WindToolsClose")
def close_tools() -> None:
    """Closes the tools window."""
    lowlevel.ZEL_WindToolsClose()


@wraps("ZEL_Get_WT_STDLIST")
def standard_tools() -> list[WindowTool]:
    """The standard tools."""
    address = lowlevel.ZEL_Get_WT_STDLIST()
    assert address is not None
    return [WindowTool(number) for number in (c_int32 * 9).from_address(address)]


@wraps("ZEL_InstallWCallback")
def on_event(window: int, function: Callable[[Any], object]) -> None:
    """Has a function called with each event of a window, or of all image windows below 0. It runs inside calls of
    the library, on the thread that made them, and may call the library."""

    def called(event: int, _data: int) -> None:
        block: Any = (ctypes.c_char * WINDOW_EVENT.itemsize).from_address(event)
        events: NDArray[Any] = np.frombuffer(block, WINDOW_EVENT).copy()
        function(events[0])

    callback = lowlevel.WindowCallback(called)
    lowlevel.ZEL_InstallWCallback(window, callback, 0)
    _callbacks.update(dict.fromkeys(range(16) if window < 0 else (window,), callback))


@wraps("ZEL_RemoveWCallback")
def remove_event_function(window: int) -> None:
    """Removes what on_event() installed."""
    lowlevel.ZEL_RemoveWCallback(window)
    for number in range(16) if window < 0 else (window,):
        _callbacks.pop(number, None)


@wraps("ZEL_GetLastEvent", "ZEL_GetLastWEvent")
def last_event(window: int | None = None) -> Any | None:
    """Takes the newest event of a window, or of all; None where there is none."""
    event: NDArray[Any] = np.zeros(1, WINDOW_EVENT)
    if window is None:
        found = lowlevel.ZEL_GetLastEvent(event)
    else:
        found = lowlevel.ZEL_GetLastWEvent(window, event)
    return event[0] if found else None


@wraps("ZEL_SetWROI", "ZEL_ClearWROI")
def set_window_region(window: int, region: RegionLike | None) -> None:
    """Sets the region of a window; None forgets it."""
    if region is None:
        lowlevel.ZEL_ClearWROI(window)
    else:
        lowlevel.ZEL_SetWROI(window, record_of(region))


@wraps("ZEL_GetWROI")
def get_window_region(window: int) -> Region:
    """The region of a window: without one the whole image."""
    region = NewRegion()
    lowlevel.ZEL_GetWROI(window, region.address())
    return region.take()
