"""Spectra, held to NumPy."""

import numpy as np
import pytest

import orlune_ptk as ptk


@pytest.fixture
def spectra(rng):
    return tuple(
        (rng.normal(size=(16, 32)) + 1j * rng.normal(size=(16, 32))).astype(np.complex64) for _ in range(2)
    )


@pytest.mark.parametrize("dtype", [np.uint8, np.int16, np.float32])
def test_the_transform_forth_and_back(rng, dtype):
    array = rng.integers(0, 200, (32, 64)).astype(dtype)
    spectrum = ptk.fft(array)
    wanted = np.fft.fft2(array)
    assert np.abs(np.asarray(spectrum) - wanted).max() < 1e-5 * np.abs(wanted).max()
    assert np.allclose(ptk.inverse_fft(spectrum), array, atol=1e-2)
    assert np.allclose(ptk.inverse_fft(spectrum, np.complex64), np.fft.ifft2(wanted), atol=1e-2)


def test_other_sizes_are_refused(gray):
    with pytest.raises(ptk.PtkError) as caught:
        ptk.fft(gray)
    assert caught.value.number == -306


def test_arithmetic(spectra):
    first, second = spectra
    assert np.allclose(ptk.complex_add(first, second), first + second)
    assert np.allclose(ptk.complex_subtract(first, second), first - second)
    assert np.allclose(ptk.complex_multiply(first, second), first * second, rtol=1e-4, atol=1e-5)
    assert np.allclose(ptk.complex_divide(first, second), first / second, rtol=1e-4, atol=1e-5)
    assert np.allclose(ptk.complex_multiply(first, 2 - 3j), first * (2 - 3j), rtol=1e-5, atol=1e-6)
    assert np.allclose(ptk.complex_add(first, 1j), first + 1j)
    assert np.array_equal(ptk.complex_add(first, 0), first)
    assert np.array_equal(ptk.complex_subtract(first, 0.0), first)
    assert np.array_equal(ptk.conjugate(first), first.conj())


def test_filters(spectra):
    first, _ = spectra
    assert np.array_equal(ptk.flip_frequency(first), np.fft.fftshift(first))
    low, high = (np.asarray(ptk.truncate(first, 50, keep)) for keep in ("low", "high"))
    assert low[0, 0] == first[0, 0] and low[8, 16] == 0
    assert high[0, 0] == 0 and high[8, 16] == first[8, 16]
    y, x = np.abs(np.arange(16) - 8)[:, None] / 8, np.abs(np.arange(32) - 16) / 16
    assert np.allclose(ptk.attenuate(first, "low"), first * (y * x), rtol=1e-4, atol=1e-5)
    with pytest.raises(ValueError):
        ptk.truncate(first, 50, "middle")


def test_planes(spectra):
    first, second = spectra
    parts = {
        "real": first.real,
        "imaginary": first.imag,
        "magnitude": np.abs(first),
        "phase": np.degrees(np.angle(first)),
    }
    for plane, wanted in parts.items():
        assert np.allclose(ptk.extract_complex_plane(first, plane), wanted, rtol=1e-5, atol=1e-4), plane
        assert np.allclose(ptk.get_complex_plane(first, plane), wanted, rtol=1e-5, atol=1e-4), plane
    image = ptk.Image(first)
    ptk.replace_complex_plane(second.real.copy(), image, "imaginary")
    assert np.array_equal(image, first.real + 1j * second.real)
    ptk.set_complex_plane(image, second.imag, "real")
    assert np.array_equal(image, second.imag + 1j * second.real)


def test_arrays(spectra):
    first, second = spectra
    assert np.array_equal(ptk.get_complex_array(first, (2, 3, 5, 7)), first[2:7, 3:10])
    image = ptk.Image.empty((0, 0), np.complex64)
    ptk.set_complex_array(image, second)
    assert np.array_equal(image, second)
    assert ptk.complex_one() == 1
