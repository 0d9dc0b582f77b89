"""Filters, convolution, morphology and geometry, held to SciPy."""

import numpy as np
import pytest
from scipy import ndimage

import orlune_ptk as ptk

DTYPES = [np.uint8, np.int16, np.float32]


def picture(rng, dtype, shape=(33, 47)):
    if dtype == np.float32:
        return rng.normal(scale=100, size=shape).astype(np.float32)
    return rng.integers(0 if dtype == np.uint8 else -2000, 256 if dtype == np.uint8 else 2000, shape).astype(
        dtype
    )


@pytest.mark.parametrize("dtype", DTYPES)
@pytest.mark.parametrize("size", [3, 5, 9, (3, 7)])
def test_ranks(rng, dtype, size):
    array = picture(rng, dtype)
    assert np.array_equal(ptk.median(array, size), ndimage.median_filter(array, size, mode="reflect"))
    assert np.array_equal(ptk.minimum(array, size), ndimage.minimum_filter(array, size, mode="reflect"))
    assert np.array_equal(ptk.maximum(array, size), ndimage.maximum_filter(array, size, mode="reflect"))
    assert np.array_equal(ptk.rank(array, size, 2), ndimage.rank_filter(array, 2, size, mode="reflect"))


def test_a_mask_says_where(rng, gray):
    mask = rng.integers(0, 2, gray.shape, dtype=np.uint8)
    wanted = np.where(mask, ndimage.median_filter(gray, 3, mode="reflect"), gray)
    assert np.array_equal(ptk.median(gray, 3, mask=mask), wanted)


def test_in_place_and_with_too_narrow_a_border(rng, gray):
    wanted = ndimage.median_filter(gray, 13, mode="reflect")
    image = ptk.Image(gray, border=0)
    assert np.array_equal(ptk.median(image, 13), wanted)
    assert ptk.median(image, 13, out=image) is image
    assert np.array_equal(image, wanted)


@pytest.mark.parametrize("dtype", DTYPES)
def test_edges(rng, dtype):
    array = picture(rng, dtype)
    wide = array.astype(np.float32)
    x, y = np.abs(ndimage.sobel(wide, 1, mode="reflect")), np.abs(ndimage.sobel(wide, 0, mode="reflect"))
    wanted = np.maximum(x, y) / 4
    if dtype == np.float32:
        assert np.allclose(ptk.edges(array), wanted, rtol=1e-5, atol=1e-3)
    else:
        assert np.array_equal(ptk.edges(array), np.trunc(wanted))
        cut = np.where(np.trunc(wanted) >= 60, np.trunc(wanted), 0)
        assert np.array_equal(ptk.edges(array, "sobel", 60), cut)
    x, y = (np.abs(ndimage.prewitt(wide, axis, mode="reflect")) for axis in (1, 0))
    assert np.abs(np.asarray(ptk.edges(array, "prewitt")) - np.maximum(x, y) / 3).max() < 1


def test_low_pass(rng):
    array = picture(rng, np.float32)
    total = ndimage.uniform_filter(array.astype(np.float64), 3, mode="reflect") * 9
    mean = (total - array) / 8
    got = np.asarray(ptk.low_pass(array, 3, 0))
    positive = mean > 0.01
    assert np.allclose(got[positive], mean[positive], rtol=1e-4, atol=1e-3)
    assert np.array_equal(got[mean < -0.01], array[mean < -0.01])


@pytest.mark.parametrize("dtype", DTYPES)
@pytest.mark.parametrize(
    "border, mode", [("mirror", "reflect"), ("replicate", "nearest"), ("zero", "constant")]
)
def test_convolution(rng, dtype, border, mode):
    array = picture(rng, dtype)
    weights = rng.integers(-5, 9, (5, 3)).astype(np.float32)
    sums = ndimage.correlate(array.astype(np.float64), weights, mode=mode)
    got = np.asarray(ptk.convolve(array, weights, 7, border=border))
    if dtype == np.float32:
        assert np.allclose(got, sums / 7, rtol=1e-5, atol=1e-3)
    else:
        limits = np.iinfo(dtype)
        assert np.array_equal(got, np.clip(np.trunc(sums / 7), limits.min, limits.max))


def test_standard_matrices(gray):
    matrix = ptk.standard_matrix("gaussian", 5)
    assert matrix.weights.shape == (5, 5)
    wanted = ndimage.correlate(gray.astype(float), matrix.weights, mode="reflect") / matrix.weights.sum()
    assert np.array_equal(ptk.convolve(gray, matrix), np.trunc(wanted))
    matrix.weights[:] = 0  # a copy: the library's own stays
    assert ptk.standard_matrix("gaussian", 5).weights.any()


def test_correlation_finds_a_template(rng):
    array = picture(rng, np.uint8, (60, 70))
    found = np.asarray(ptk.correlate(array, array[20:29, 30:41]))
    assert np.unravel_index(found.argmax(), found.shape) == (24, 35)
    assert found.max() >= 254


ELEMENTS = [3, 5, np.ones((3, 5)), np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]])]


@pytest.mark.parametrize("element", ELEMENTS)
@pytest.mark.parametrize("dtype", DTYPES)
def test_gray_morphology(rng, dtype, element):
    array = picture(rng, dtype)
    footprint = np.ones((element, element)) if isinstance(element, int) else element
    erode, dilate = (
        lambda image: ndimage.minimum_filter(image, footprint=footprint, mode="nearest"),
        lambda image: ndimage.maximum_filter(image, footprint=footprint, mode="nearest"),
    )
    assert np.array_equal(ptk.gray_morphology(array, "erode", element), erode(array))
    assert np.array_equal(ptk.gray_morphology(array, "dilate", element), dilate(array))
    assert np.array_equal(ptk.gray_morphology(array, "open", element), dilate(erode(array)))
    assert np.array_equal(ptk.gray_morphology(array, "close", element), erode(dilate(array)))


@pytest.mark.parametrize("element", ELEMENTS)
def test_binary_morphology(blobs, element):
    footprint = np.ones((element, element)) if isinstance(element, int) else element
    eroded = ndimage.minimum_filter(blobs, footprint=footprint, mode="nearest")
    dilated = ndimage.maximum_filter(blobs, footprint=footprint, mode="nearest")
    assert np.array_equal(ptk.morphology(blobs, "erode", element), eroded)
    assert np.array_equal(ptk.morphology(blobs, "dilate", element), dilated)
    assert np.array_equal(ptk.morphology(blobs, "gradient", element), dilated & ~eroded & 1)


def test_standard_elements():
    for size in (3, 5, 7):
        assert np.array_equal(ptk.standard_element(size), np.ones((size, size)))
    with pytest.raises(ValueError):
        ptk.standard_element(4)


@pytest.mark.parametrize("dtype", DTYPES)
def test_geometry(rng, dtype):
    array = picture(rng, dtype)
    assert np.array_equal(ptk.transpose(array), array.T)
    assert np.array_equal(ptk.mirror(array), array[:, ::-1])
    assert np.array_equal(ptk.mirror(array, "top_bottom"), array[::-1])
    assert np.array_equal(ptk.mirror(array, "both"), array[::-1, ::-1])
    square = array[:33, :33]
    assert np.array_equal(ptk.mirror(square, "main_diagonal"), square.T)
    assert np.array_equal(ptk.rotate(square, 90, interpolate=False), np.rot90(square))
    wanted = np.full_like(array, 7)
    wanted[3:, 5:] = array[:-3, :-5]
    assert np.array_equal(ptk.shift(array, 5, 3, 7), wanted)


def test_a_turn_forth_and_back(rng):
    y, x = np.mgrid[0:81, 0:81]
    smooth = (100 + 60 * np.sin(x / 11) * np.cos(y / 13)).astype(np.uint8)
    back = np.asarray(ptk.rotate(ptk.rotate(smooth, 25), -25)).astype(int)
    inside = np.hypot(x - 40, y - 40) < 35
    assert np.abs(back - smooth)[inside].max() <= 4


def test_relief(gray):
    drawing = ptk.relief(gray, 1, 30, border=5)
    assert drawing.dtype == np.uint8
    assert (np.asarray(drawing)[:5] == 85).all()
    assert drawing.height > gray.shape[0]
