"""Windows, tools and events, on a machine without a desktop: they are kept in memory."""

import numpy as np
import pytest

import orlune_ptk as ptk
from orlune_ptk import lowlevel


@pytest.fixture(autouse=True)
def closed():
    yield
    for window in (0, 17):
        ptk.close_window(window, all_of_kind=True)
    ptk.close_tools()


def test_a_window_shows_an_image(gray):
    ptk.show(gray, 2, "Bild ä")
    assert ptk.get_window_attribute(2, "title") == "Bild ä"
    assert ptk.get_window_attribute(2, "visible") == 1
    ptk.show(None, 2)
    ptk.set_window_attribute(2, "title", "other")
    assert ptk.get_window_attribute(2, "title") == "other"
    ptk.set_window_attribute(2, "zoom_x", 4)
    assert ptk.get_window_attribute(2, "zoom_x") == 4
    with pytest.raises(TypeError):
        ptk.set_window_attribute(2, "title", 3)
    with pytest.raises(ValueError, match="title"):
        ptk.show(gray, 2, "x" * 5000)
    with pytest.raises(ptk.PtkError) as caught:
        ptk.show(gray, 99)
    assert caught.value.number == -602


def test_pairs_palettes_and_numbers(gray):
    ptk.show(gray, 1)
    ptk.set_window_pair(1, "position", 40, 60)
    assert ptk.get_window_pair(1, "position") == (40, 60)
    ptk.set_palette(1, "rainbow")
    ptk.set_palette(1, np.arange(256))
    with pytest.raises(ValueError):
        ptk.set_palette(1, [1, 2, 3])
    assert len(ptk.window_ids(1)) == 2
    ptk.set_window_parent(5, 0)
    window, answer = ptk.window_command(1, -39, answers=4)
    assert window == 1 and answer[0] > 0


def test_tools():
    ptk.setup_tools(["point", "line", "zoom"], per_row=2)
    ptk.set_tools_attribute("left", 33)
    assert ptk.get_tools_attribute("left") == 33
    ptk.set_tools_attribute("title", "Tools")
    assert ptk.get_tools_attribute("title") == "Tools"
    ptk.set_active_tool("rect")
    assert ptk.get_active_tool() == ptk.constants.WindowTool.RECT
    assert [int(tool) for tool in ptk.standard_tools()] == [1, 2, 3, 4, 5, 6, 10, 11, 8]


def test_regions_and_events(gray):
    ptk.show(gray, 3)
    ptk.set_window_region(3, ptk.Region.rectangle(4, 5, 10, 12))
    region = ptk.get_window_region(3)
    assert region.bounds == (4, 5, 10, 12)
    assert np.array_equal(region.contours[0].points, [(5, 4), (17, 14)])
    ptk.set_window_region(3, None)
    assert ptk.get_window_region(3).contours[0].shape == ptk.constants.RoiContourType.WHOLE
    ptk.close_window(3)
    event = ptk.last_event(3)
    assert event["window"] == 3 and event["type"] == ptk.constants.WindowEventType.CLOSE
    assert ptk.last_event() is None


def test_functions_for_events(gray):
    ptk.show(gray, 4)
    ptk.on_event(4, lambda event: None)
    ptk.remove_event_function(4)
    with pytest.raises(ptk.PtkError):
        ptk.on_event(5, print)  # a closed window


def test_a_callback_gets_the_event_and_may_call_the_library(gray):
    """As the desktop calls it, from inside a call of the library."""
    import ctypes

    from orlune_ptk import window_tools
    from orlune_ptk.records import WINDOW_EVENT

    seen = []
    ptk.show(gray, 6)
    ptk.on_event(
        6, lambda event: seen.append((int(event["window"]), float(np.asarray(ptk.add(gray, 1)).sum())))
    )
    record = np.zeros(1, WINDOW_EVENT)
    record["window"] = 6
    with lowlevel.lock:
        window_tools._callbacks[6](record.ctypes.data, ctypes.c_size_t(0))
    assert seen == [(6, float((np.minimum(gray, 254) + 1.0).sum()))]


def test_the_clipboard(gray, rng):
    ptk.to_clipboard(gray)
    image, palette = ptk.from_clipboard(np.uint8)
    assert np.array_equal(image, gray) and np.array_equal(palette, np.arange(256) * 0x010101)
    assert np.array_equal(ptk.from_clipboard()[0], gray[..., None].repeat(3, axis=2))
    colours = rng.integers(0, 256, (9, 11, 3), dtype=np.uint8)
    ptk.to_clipboard(colours)
    assert np.array_equal(ptk.from_clipboard()[0], colours)
    with pytest.raises(ValueError):
        ptk.to_clipboard(gray, [1, 2])
