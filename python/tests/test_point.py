"""Operators, casts, thresholds and lookups, held to NumPy."""

import numpy as np
import pytest

import orlune_ptk as ptk

LIMITS = {np.uint8: (0, 255), np.int16: (-32768, 32767)}


def operands(rng, dtype, shape=(23, 41)):
    if dtype == np.float32:
        return tuple(rng.normal(scale=50, size=shape).astype(np.float32) for _ in range(2))
    low, high = LIMITS[dtype]
    first, second = (rng.integers(low, high + 1, shape).astype(dtype) for _ in range(2))
    second[::5, ::3] = 0
    return first, second


def cut(values, dtype):
    if dtype == np.float32:
        return values.astype(np.float32)
    return np.clip(np.trunc(values), *LIMITS[dtype]).astype(dtype)


@pytest.mark.parametrize("dtype", [np.uint8, np.int16, np.float32])
def test_arithmetic(rng, dtype):
    first, second = operands(rng, dtype)
    wide = np.float32 if dtype == np.float32 else np.int64
    a, b = first.astype(wide), second.astype(wide)
    assert np.array_equal(ptk.add(first, second), cut(a + b, dtype))
    assert np.array_equal(ptk.subtract(first, second), cut(a - b, dtype))
    assert np.array_equal(ptk.multiply(first, second), cut(a * b, dtype))
    with np.errstate(divide="ignore", invalid="ignore"):
        quotient = np.where(b == 0, a, a / b)
    assert np.array_equal(ptk.divide(first, second), cut(quotient, dtype))
    if dtype != np.float32:
        rest = np.where(b == 0, a, np.fmod(a, np.where(b == 0, 1, b)))
        assert np.array_equal(ptk.modulo(first, second), rest.astype(dtype))


@pytest.mark.parametrize("dtype", [np.uint8, np.int16, np.float32])
def test_arithmetic_with_a_number(rng, dtype):
    first, _ = operands(rng, dtype)
    wide = first.astype(np.float32 if dtype == np.float32 else np.int64)
    assert np.array_equal(ptk.add(first, 20), cut(wide + 20, dtype))
    assert np.array_equal(ptk.subtract(first, 20), cut(wide - 20, dtype))
    assert np.array_equal(ptk.multiply(first, 2), cut(wide * 2, dtype))
    if dtype != np.float32:
        assert np.array_equal(ptk.modulo(first, 7), np.fmod(wide, 7))


def test_multiply_divide(rng):
    first, second = operands(rng, np.float32)
    assert np.allclose(ptk.multiply_divide(first, second, 3.0), first * 3 / second, rtol=1e-6)


def test_the_wider_type_holds_the_sum(rng):
    bytes_, _ = operands(rng, np.uint8)
    words, _ = operands(rng, np.int16)
    total = ptk.add(bytes_, words)
    assert total.dtype == np.int16
    assert np.array_equal(total, cut(bytes_.astype(int) + words, np.int16))


@pytest.mark.parametrize("dtype", [np.uint8, np.int16])
def test_bits(rng, dtype):
    first, second = operands(rng, dtype)
    assert np.array_equal(ptk.bitwise_and(first, second), first & second)
    assert np.array_equal(ptk.bitwise_or(first, second), first | second)
    assert np.array_equal(ptk.bitwise_xor(first, second), first ^ second)
    assert np.array_equal(ptk.bitwise_difference(first, second), first & ~second)
    assert np.array_equal(ptk.bitwise_and(first, second, invert=True), ~(first & second))
    assert np.array_equal(ptk.bitwise_or(first, 5), first | dtype(5))


@pytest.mark.parametrize("dtype", [np.uint8, np.int16, np.float32])
def test_comparisons(rng, dtype):
    first, second = operands(rng, dtype)
    assert np.array_equal(ptk.compare(first, second, "minimum"), np.minimum(first, second))
    assert np.array_equal(ptk.compare(first, second, "maximum"), np.maximum(first, second))
    assert np.array_equal(ptk.compare(first, second, "keep_above"), np.where(first > second, first, 0))
    assert np.array_equal(ptk.compare(first, 9, "keep_below"), np.where(first < 9, first, 0))


def test_masks_lie_at_their_offset(gray, rng):
    mask = ptk.Image(rng.integers(0, 2, (10, 12), dtype=np.uint8))
    mask.offset = (5, 7)
    wanted = np.zeros_like(gray)
    wanted[7:17, 5:17] = gray[7:17, 5:17] * np.asarray(mask)
    assert np.array_equal(ptk.apply_mask(gray, mask), wanted)


def test_results_go_where_they_are_wanted(gray):
    image, out = ptk.Image(gray), ptk.Image.empty()
    assert ptk.add(image, 1, out=out) is out
    assert np.array_equal(out, np.minimum(gray, 254) + 1)
    assert ptk.add(image, 1, out=image) is image
    assert np.array_equal(image, out)


def test_casts(rng):
    words = rng.integers(-32768, 32768, (15, 17)).astype(np.int16)
    assert np.array_equal(ptk.convert(words, np.uint8), np.clip(words, 0, 255))
    assert np.array_equal(ptk.convert(words, np.float32), words)
    assert np.array_equal(ptk.convert(words, np.complex64), words)
    assert np.array_equal(ptk.convert(words, ptk.RGB), np.repeat(np.clip(words, 0, 255)[..., None], 3, 2))
    image = ptk.Image(words)
    ptk.cast(image, np.float32)
    assert image.dtype == np.float32 and np.array_equal(image, words)
    assert np.array_equal(ptk.shift_16_to_8(words, 3), (words >> 3).astype(np.uint8))
    floats = ptk.convert(np.abs(words), np.float32)
    assert np.array_equal(
        ptk.convert(floats, np.int16), np.clip(np.asarray(floats), None, 32767).astype(np.int16)
    )


def test_conversion_by_a_table(gray, rng):
    table = rng.normal(size=256).astype(np.float32)
    assert np.array_equal(ptk.convert_by_lookup(gray, table), table[gray])
    assert np.array_equal(ptk.convert_by_lookup(gray, np.arange(256) * 9, np.int16), gray.astype(int) * 9)


def test_threshold(gray):
    assert np.array_equal(ptk.threshold(gray, 100), gray >= 100)
    assert np.array_equal(ptk.threshold(gray, 50, 80), (gray >= 50) & (gray <= 80))
    assert np.array_equal(ptk.threshold(gray, 50, 80, None), np.where((gray >= 50) & (gray <= 80), gray, 0))
    assert np.array_equal(ptk.threshold(gray, 50, 80, 9), 9 * ((gray >= 50) & (gray <= 80)))
    floats = gray.astype(np.float32) / 7
    assert np.array_equal(ptk.threshold(floats, 10.5), floats >= 10.5)


def test_several_thresholds(gray):
    wanted = np.where(gray < 50, 1, np.where(gray > 200, gray, 0))
    assert np.array_equal(ptk.multi_threshold(gray, [(0, 49, 1), (201, 255, None)]), wanted)


def test_automatic_thresholds_part_two_hills(rng):
    levels = np.where(rng.random((60, 60)) < 0.5, rng.normal(60, 9, (60, 60)), rng.normal(190, 9, (60, 60)))
    picture = np.clip(levels, 0, 255).astype(np.uint8)
    for method in ("clustering", "metric", "interclass"):
        assert 90 < ptk.auto_threshold(picture, method) < 160
    for method in ("entropy", "moments"):
        assert picture.min() < ptk.auto_threshold(picture, method) <= picture.max()


def test_automatic_classes(rng):
    means = np.array([40, 128, 210])[rng.integers(0, 3, (50, 50))]
    picture = (means + rng.integers(-8, 9, (50, 50))).astype(np.uint8)
    classes = ptk.auto_classes(picture, 3)
    split = np.asarray(ptk.multi_threshold(picture, classes))
    assert np.array_equal(split, np.searchsorted([84, 169], picture))
    with pytest.raises(ValueError):
        ptk.auto_classes(picture, 1)


def test_lookup(gray, rng):
    table = rng.integers(0, 256, 256, dtype=np.uint8)
    assert np.array_equal(ptk.lookup(gray, table), table[gray])
    mask = rng.integers(0, 2, gray.shape, dtype=np.uint8)
    assert np.array_equal(ptk.lookup(gray, table, mask=mask), np.where(mask, table[gray], gray))


def test_laws(gray):
    levels = gray.astype(np.float64)
    laws = {
        "linear": levels,
        "square": levels**2 / 255,
        "sqrt": np.sqrt(levels) * 255 / np.sqrt(255),
        "log": np.where(levels > 0, np.log(np.maximum(levels, 1)) * 255 / np.log(255), 0),
    }
    for law, wanted in laws.items():
        got = np.asarray(ptk.math_lookup(gray, law)).astype(int)
        assert np.abs(got - np.trunc(wanted)).max() <= 1, law
    inside = np.asarray(ptk.math_lookup(gray, "linear", low=50, high=150)).astype(int)
    assert np.abs(inside - np.clip((levels - 50) * 2.55, 0, 255)).max() <= 1


def test_equalisation(gray):
    counts = np.bincount(gray.ravel(), minlength=256).astype(float)
    counts[gray.min()] = 0  # the lowest class has no weight
    wanted = np.cumsum(counts) / counts.sum() * 255
    dark = (gray // 3).astype(np.uint8)
    equal = np.asarray(ptk.equalize(dark)).astype(int)
    assert equal.max() == 255 and equal.std() > 2 * dark.std()
    assert np.array_equal(ptk.equalize(dark, histogram=ptk.histogram(dark, 256)), equal)
    assert np.abs(np.asarray(ptk.equalize(gray)).astype(int) - wanted[gray]).max() <= 1.5
