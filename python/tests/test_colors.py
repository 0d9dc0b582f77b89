"""Colour images."""

import colorsys

import numpy as np
import pytest

import orlune_ptk as ptk


@pytest.fixture
def colours(rng):
    return rng.integers(0, 256, (19, 23, 3), dtype=np.uint8)


def hue_and_saturation(colours):
    """From 0 to 255. In the library the saturation is that of HSL in both modes."""
    flat = [colorsys.rgb_to_hls(*(colour / 255)) for colour in colours.reshape(-1, 3)]
    hue, _, saturation = np.array(flat).T.reshape(3, *colours.shape[:2]) * 255
    return hue, saturation


def test_planes(colours):
    planes = ptk.extract_planes(colours)
    for number, plane in enumerate(planes):
        assert np.array_equal(plane, colours[..., number])
    assert np.array_equal(ptk.replace_planes(None, planes), colours)
    swapped = ptk.replace_planes(colours, (planes[2], None, planes[0]))
    assert np.array_equal(swapped, colours[..., ::-1])


def test_hue_saturation_and_value(colours):
    hue, saturation, value = (np.asarray(plane).astype(int) for plane in ptk.extract_planes(colours, "hsv"))
    assert np.array_equal(value, colours.max(axis=2))
    wanted_hue, wanted_saturation = hue_and_saturation(colours)
    assert np.abs(saturation - wanted_saturation).max() <= 2
    turn = np.abs(hue - wanted_hue)
    assert np.minimum(turn, 256 - turn).max() <= 2


def test_single_colours():
    assert ptk.convert_color((255, 0, 0), "rgb", "hsv") == (0, 255, 255)
    assert ptk.convert_color((0, 255, 0), "rgb", "hsl")[0] == 85
    assert ptk.convert_color((0, 0, 255), "rgb", "hsl")[0] == 170
    assert ptk.convert_color((7, 7, 7), "rgb", "hsv") == (0, 0, 7)


def test_pixels_lines_and_arrays(colours):
    image = ptk.Image(colours)
    ptk.set_color_pixel(image, 3, 4, (10, 20, 30))
    assert ptk.get_color_pixel(image, 3, 4) == (10, 20, 30)
    assert np.array_equal(image.pixels[4, 3], (10, 20, 30))
    assert np.array_equal(ptk.get_color_line(colours, (2, 2), (9, 9)), colours[range(2, 10), range(2, 10)])
    ptk.set_color_line(image, (0, 0), (5, 0), colours[7, :6])
    assert np.array_equal(image.pixels[0, :6], colours[7, :6])
    numbers = ptk.get_color_array(colours, (2, 3, 5, 6))
    assert np.array_equal(ptk.to_rgb(numbers), colours[2:7, 3:9])
    ptk.set_color_array(image, numbers)
    assert np.array_equal(image, colours[2:7, 3:9])
    assert np.array_equal(ptk.from_rgb(colours)[2:7, 3:9], numbers)


def test_arrays_of_components(colours):
    numbers = ptk.colors_to_integers([colours[..., n] for n in range(3)])
    assert np.array_equal(numbers, ptk.from_rgb(colours))
    for number, plane in enumerate(ptk.integers_to_colors(numbers, dtype=np.int32)):
        assert np.array_equal(plane, colours[..., number])
    with pytest.raises(ValueError):
        ptk.colors_to_integers([np.zeros(3), np.zeros(3), np.zeros(2)])


def test_histogram_threshold_and_lookup(colours, rng):
    counts, reports = ptk.color_histogram(colours)
    for number in range(3):
        plane = colours[..., number]
        assert np.array_equal(counts[number], np.bincount(plane.ravel(), minlength=256))
        assert np.isclose(reports["mean"][number], plane.mean())
    marked = ptk.color_threshold(colours, (100, 255), (0, 99))
    assert np.array_equal(marked, (colours[..., 0] >= 100) & (colours[..., 1] <= 99))
    assert (np.asarray(ptk.color_threshold(colours, value=7)) == 7).all()
    table = rng.integers(0, 256, 256)
    changed = np.asarray(ptk.color_lookup(colours, (None, table, None)))
    assert np.array_equal(changed[..., 1], table[colours[..., 1]])
    assert np.array_equal(changed[..., 0], colours[..., 0])
    with pytest.raises(ValueError):
        ptk.color_lookup(colours, (table[:9], None, None))


def test_equalisation(colours):
    dark = ptk.Image(colours // 4)
    ptk.color_equalize(dark, all_planes=True)
    assert np.asarray(dark).max() == 255
    gray = ptk.Image(colours[..., 0].copy())
    with pytest.raises(ptk.PtkError):
        ptk.color_equalize(gray)
