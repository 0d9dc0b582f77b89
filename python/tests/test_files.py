"""Picture files, written and read again."""

import numpy as np
import pytest

import orlune_ptk as ptk

FORMATS = {
    "native": (".orln", [np.uint8, np.int16, np.float32, np.complex64, "rgb"]),
    "tiff": (".tif", [np.uint8, np.int16, "rgb"]),
    "bmp": (".bmp", [np.uint8, "rgb"]),
}
CASES = [(name, suffix, dtype) for name, (suffix, dtypes) in FORMATS.items() for dtype in dtypes]


@pytest.mark.parametrize("name, suffix, dtype", CASES)
def test_what_is_written_is_read(rng, tmp_path, name, suffix, dtype):
    if dtype == "rgb":
        array = rng.integers(0, 256, (20, 32, 3), dtype=np.uint8)
    else:
        array = (rng.random((20, 32)) * 250).astype(dtype)
    path = tmp_path / ("bild ä" + suffix)
    ptk.write(array, path)
    info = ptk.file_info(path)
    assert (info["file_type"], info["width"], info["height"]) == (list(FORMATS).index(name) + 1, 32, 20)
    image = ptk.read(path)
    assert np.array_equal(image, array)
    ptk.write(image, str(path), name)
    assert np.array_equal(ptk.read(str(path)), array)


def test_an_odd_width_is_kept(tmp_path, gray):
    ptk.write(gray, tmp_path / "odd.tif")
    assert np.array_equal(ptk.read(tmp_path / "odd.tif"), gray)
    assert ptk.read(tmp_path / "odd.tif", trim=False).shape == (37, 46)


def test_tables_and_types(tmp_path, gray):
    even = gray[:, :44]
    colours = np.arange(256, dtype=np.uint32) << 8
    ptk.write(even, tmp_path / "a.bmp", table=colours)
    image, table = ptk.read_with_table(tmp_path / "a.bmp")
    assert np.array_equal(image, even) and np.array_equal(table & 0xFFFFFF, colours)
    assert ptk.read(tmp_path / "a.bmp", np.float32, border=7).border == 7
    ptk.write(even, tmp_path / "a.orln")
    assert ptk.read_with_table(tmp_path / "a.orln")[1] is None


def test_failures(tmp_path, gray):
    with pytest.raises(ptk.PtkError) as caught:
        ptk.read(tmp_path / "nowhere.tif")
    assert caught.value.number == -510
    (tmp_path / "text.tif").write_text("no picture")
    with pytest.raises(ptk.PtkError) as caught:
        ptk.read(tmp_path / "text.tif")
    assert caught.value.number == -509
    assert ptk.file_info(tmp_path / "text.tif")["file_type"] == 0
    with pytest.raises(ValueError, match="format"):
        ptk.write(gray, tmp_path / "a.jpg")
    with pytest.raises(ptk.PtkError):
        ptk.write(gray.astype(np.float32), tmp_path / "a.bmp")
