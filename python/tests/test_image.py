"""Images, their lives, and arrays over their pixels."""

import gc
import struct
import zlib

import numpy as np
import pytest

import orlune_ptk as ptk
from orlune_ptk import lowlevel

DTYPES = [np.uint8, np.int16, np.float32, np.complex64]


def random_array(rng, dtype, shape):
    values = rng.normal(scale=100, size=shape)
    if np.issubdtype(dtype, np.complexfloating):
        values = values + 1j * rng.normal(size=shape)
    return (np.abs(values) % 256 if dtype == np.uint8 else values).astype(dtype)


@pytest.mark.parametrize("dtype", DTYPES)
@pytest.mark.parametrize("width", [1, 7, 8, 33])
def test_an_array_comes_back_as_it_was(rng, dtype, width):
    array = random_array(rng, dtype, (5, width))
    image = ptk.Image(array)
    assert image.shape == (5, width)
    assert image.dtype == dtype
    assert np.array_equal(np.asarray(image), array)
    assert image.contiguous == (np.ascontiguousarray(image).ctypes.data == np.asarray(image).ctypes.data)


def test_colours_come_back_as_they_were(rng):
    array = rng.integers(0, 256, (5, 6, 3), dtype=np.uint8)
    image = ptk.Image(array)
    assert (image.type, image.shape) == (ptk.constants.ImageType.RGB, (5, 6, 3))
    assert np.array_equal(np.asarray(image), array)
    assert ptk.get_color_pixel(image, 3, 2) == tuple(array[2, 3])


@pytest.mark.parametrize("shape, dtype", [((5, 6), np.uint8), ((5, 6, 4), np.uint8), ((5, 6, 3), np.int16)])
def test_no_colours_are_made_of_what_has_none(shape, dtype):
    assert ptk.Image(np.zeros((5, 6, 3), np.uint8), dtype=ptk.RGB).type == ptk.constants.ImageType.RGB
    with pytest.raises(TypeError, match="colours are"):
        ptk.Image(np.zeros(shape, dtype), dtype=ptk.RGB)


@pytest.mark.parametrize("layout", [np.s_[::-1, ::2], np.s_[:, ::-1], np.s_[3:, 5:]])
def test_arrays_of_any_layout_are_taken(gray, layout):
    assert np.array_equal(ptk.Image(gray[layout]), gray[layout])
    assert np.array_equal(ptk.Image(np.asfortranarray(gray)), gray)


def test_bool_becomes_0_and_1(gray):
    assert np.array_equal(ptk.Image(gray > 99), (gray > 99).astype(np.uint8))


@pytest.mark.parametrize("dtype", [np.uint16, np.int32, np.int64, np.float64, np.complex128])
def test_types_that_no_image_has_are_refused_unless_converted(dtype):
    array = np.ones((3, 4), dtype)
    with pytest.raises(TypeError, match="convert"):
        ptk.Image(array)
    assert ptk.Image(array, dtype=np.float32 if np.isrealobj(array) else np.complex64).shape == (3, 4)


@pytest.mark.parametrize("shape", [(3,), (3, 4, 4), (2, 3, 4, 5)])
def test_arrays_of_other_dimensions_are_refused(shape):
    with pytest.raises(TypeError, match="dimensions"):
        ptk.Image(np.zeros(shape, np.uint8))


@pytest.mark.parametrize("shape", [(0, 0), (0, 5), (5, 0)])
def test_without_pixels_there_is_an_empty_array(shape):
    image = ptk.Image(np.zeros(shape, np.uint8))
    assert image.shape == np.asarray(image).shape == (0, 0)
    assert image._repr_png_() is None


def test_an_array_over_an_image_is_its_memory(gray):
    image = ptk.Image(gray)
    np.asarray(image)[3, 4] = 200
    assert ptk.get_pixel(image, 4, 3) == 200
    ptk.set_pixel(image, 5, 6, 77)
    assert np.asarray(image)[6, 5] == 77
    assert np.shares_memory(np.asarray(image), np.asarray(image))


def test_pixels_behave_as_an_array(gray):
    image = ptk.Image(gray)
    pixels = image.pixels
    assert (pixels.shape, pixels.dtype, len(pixels)) == (gray.shape, gray.dtype, len(gray))
    assert np.array_equal(pixels[2:9:3, ::-1], gray[2:9:3, ::-1])
    assert pixels[2][3] == gray[2, 3]
    assert pixels.mean() == gray.mean()
    assert np.array_equal(pixels + 1, gray + 1)
    assert np.array_equal(np.minimum(pixels, 9), np.minimum(gray, 9))
    assert np.array_equal(pixels > 100, gray > 100)
    assert np.array_equal(list(pixels)[3], gray[3])
    pixels[2:4, 5] = 9
    assert (np.asarray(image)[2:4, 5] == 9).all()
    image.pixels //= 2
    assert np.asarray(image)[2, 5] == 4
    image.pixels = 3
    assert (np.asarray(image) == 3).all()
    pixels[5:7][1] = 8  # through a view of a view
    assert (np.asarray(image)[6] == 8).all()


def stale(*views):
    for view in views:
        for use in (lambda v: v[0], lambda v: v.sum(), np.asarray, len, lambda v: v + 1):
            with pytest.raises(ptk.StaleViewError):
                use(view)


def test_views_raise_after_a_resize(gray):
    image = ptk.Image(gray)
    views = image.pixels, image.pixels[3:5], image.pixels[::2, 1]
    image.resize((200, 300))
    stale(*views)
    assert image.pixels.shape == (200, 300)


def test_views_raise_after_the_image_is_disposed_of(gray):
    image = ptk.Image(gray)
    view, part = image.pixels, image.pixels[1:]
    image.dispose()
    stale(view, part)
    with pytest.raises(ValueError, match="disposed"):
        image.pixels
    with pytest.raises(Exception):
        ptk.median(image)
    image.dispose()  # twice is no harm


def test_views_raise_after_a_result_took_the_images_place(gray):
    image = ptk.Image(gray)
    view = image.pixels
    ptk.median(image, out=image)  # in place: a new block
    stale(view)


def test_views_notice_what_low_level_functions_did(gray):
    image = ptk.Image(gray)
    view = image.pixels
    lowlevel.ZEL_SetImageSize(image, 3, 3)
    stale(view)
    view = image.pixels
    lowlevel.ZEL_Cast(image, ptk.constants.ImageType.SGL)
    stale(view)
    view = image.pixels
    lowlevel.ZEL_Dispose(image)
    stale(view)


def test_a_view_stays_good_while_pixels_are_written_in_place(gray):
    image = ptk.Image(gray)
    view = image.pixels
    ptk.threshold(image, 100, out=image)
    assert np.array_equal(view, gray >= 100)


def test_arrays_keep_the_pixels_of_a_disposed_image(gray):
    image = ptk.Image(gray)
    array = np.asarray(image)[3:]
    image.dispose()
    del image
    gc.collect()
    others = [ptk.Image(np.full((60, 60), 255, np.uint8)) for _ in range(50)]
    assert np.array_equal(array, gray[3:])
    del others


def test_an_image_on_which_an_array_lies_is_not_written_by_functions(gray):
    image = ptk.Image(gray)
    array = np.asarray(image)
    with pytest.raises(BufferError):
        image.resize((100, 100))
    with pytest.raises(BufferError):
        ptk.median(image, out=image)
    assert np.array_equal(array, gray)
    del array
    ptk.median(image, out=image)
    image.resize((100, 100))


def image_count():
    import ctypes

    count = ctypes.c_int32()
    lowlevel.ZEL_GetImageReference(0, None, ctypes.byref(count))
    return count.value


def test_images_end_with_the_last_who_holds_them(gray):
    gc.collect()
    before = image_count()
    image = ptk.Image(gray)
    array, view = np.asarray(image), image.pixels
    assert image_count() == before + 1
    del image, view
    assert image_count() == before + 1
    del array
    assert image_count() == before
    with ptk.Image(gray) as image:
        assert image_count() == before + 1
    assert image_count() == before


def test_a_failing_function_leaves_no_image_behind(gray):
    gc.collect()
    before = image_count()
    for _ in range(3):
        with pytest.raises(ptk.PtkError):
            ptk.fft(gray)  # its sides are no powers of 2
    gc.collect()
    assert image_count() == before


def test_calibration_and_offset(gray):
    image = ptk.Image(gray)
    assert image.calibration == (0, 1, 1) and image.offset == (0, 0)
    image.calibration = (3, 0.5, 0.25)
    image.offset = (-3, 7)
    assert image.calibration == ptk.Calibration(3, 0.5, 0.25)
    assert image.offset == (-3, 7)
    for copy in (image.copy(), image.copy(border=9)):
        assert copy.calibration == image.calibration and copy.offset == image.offset
        assert np.array_equal(copy, image)
    assert image.copy(border=9).border == 9


def test_empty_and_zeros(gray):
    assert ptk.Image.empty().shape == (0, 0)
    assert ptk.Image.empty((3, 4), np.int16, border=1).border == 1
    assert not np.asarray(ptk.Image.zeros((30, 40), np.float32)).any()
    assert ptk.Image.zeros((3, 4), ptk.RGB).shape == (3, 4, 3)
    with pytest.raises(ValueError):
        ptk.Image.empty((-1, 5))


def test_asarray_with_a_type_or_a_copy(gray):
    image = ptk.Image(gray)
    assert np.asarray(image, np.float64).dtype == np.float64
    copy = np.array(image)
    copy[:] = 0
    assert np.array_equal(image, gray)


def test_repr_tells_what_an_image_is(gray):
    image = ptk.Image(gray)
    assert repr(image) == "<Image U8, 45 x 37, border 3>"
    image.dispose()
    assert "disposed" in repr(image)
    assert repr(ptk.Image(gray[:1, :2]).pixels).startswith("Pixels([[")


def read_png(data):
    """The pixels of a PNG file without interlacing, whose rows have no filter."""
    assert data[:8] == b"\x89PNG\r\n\x1a\n"
    parts, at = {}, 8
    while at < len(data):
        (length,) = struct.unpack_from(">I", data, at)
        name, body = data[at + 4 : at + 8], data[at + 8 : at + 8 + length]
        assert struct.unpack_from(">I", data, at + 8 + length)[0] == zlib.crc32(name + body)
        parts[name] = body
        at += 12 + length
    width, height, bits, kind = struct.unpack_from(">IIBB", parts[b"IHDR"])
    assert bits == 8
    rows = np.frombuffer(zlib.decompress(parts[b"IDAT"]), np.uint8).reshape(height, -1)
    assert not rows[:, 0].any()
    return rows[:, 1:].reshape((height, width, 3) if kind == 2 else (height, width))


def test_a_notebook_shows_an_image(rng, gray):
    assert np.array_equal(read_png(ptk.Image(gray)._repr_png_()), gray)
    colours = rng.integers(0, 256, (9, 8, 3), dtype=np.uint8)
    assert np.array_equal(read_png(ptk.Image(colours)._repr_png_()), colours)
    assert np.array_equal(read_png(ptk.Image(gray > 99)._repr_png_()), (gray > 99) * 255)
    shown = read_png(ptk.Image(gray.astype(np.float32) * 7 - 99)._repr_png_())
    assert (shown.min(), shown.max()) == (0, 255)
    assert abs(shown.astype(int) - gray).max() <= 2
    assert read_png(ptk.Image(np.zeros((3000, 10), np.int16))._repr_png_()).shape == (1000, 4)
    assert read_png(ptk.Image(np.full((4, 4), np.nan, np.float32))._repr_png_()).shape == (4, 4)
    assert read_png(ptk.fft(np.zeros((16, 16), np.uint8))._repr_png_()).shape == (16, 16)
