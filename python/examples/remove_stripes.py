"""Removes regular stripes from a picture: their frequencies stand out in its spectrum, and are cleared there. The
spectrum is an array of NumPy on the image's own memory."""

import numpy as np

import orlune_ptk as ptk


def striped(seed: int = 1) -> tuple[np.ndarray, np.ndarray]:
    """A smooth picture, and the same with stripes."""
    random = np.random.default_rng(seed).random((128, 128)).astype(np.float32)
    smooth = ptk.truncate(ptk.fft(random), 20)
    clean = np.array(ptk.inverse_fft(smooth))
    stripes = 0.3 * np.sin(2 * np.pi * np.arange(128) * 24 / 128, dtype=np.float32)
    return clean, clean + stripes


def main() -> None:
    clean, picture = striped()
    spectrum = ptk.fft(picture)
    strength = np.abs(spectrum.pixels)
    rows, columns = np.nonzero(strength > 0.05 * strength[0, 0])
    for row, column in zip(rows, columns):
        if column in (24, 128 - 24):
            spectrum.pixels[row, column] = 0
    mended = np.asarray(ptk.inverse_fft(spectrum))
    print(
        f"error with stripes {np.abs(picture - clean).mean():.3f}, without {np.abs(mended - clean).mean():.3f}"
    )


if __name__ == "__main__":
    main()
