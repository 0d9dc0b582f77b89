"""The examples run and come to what is known of their pictures."""

import re
import runpy
from pathlib import Path

import numpy as np
import pytest

import orlune_ptk as ptk

EXAMPLES = Path(__file__).resolve().parents[1] / "examples"


def run(name, capsys, *arguments):
    module = runpy.run_path(str(EXAMPLES / f"{name}.py"))
    module["main"](*arguments)
    return capsys.readouterr().out


def test_every_example_is_tested():
    source = Path(__file__).read_text()
    for path in EXAMPLES.glob("*.py"):
        assert f'run("{path.stem}"' in source


def test_count_parts(tmp_path, capsys):
    y, x = np.mgrid[0:120, 0:200]
    picture = np.full((120, 200), 40, np.uint8)
    for centre, radius in (((50, 40), 20), ((140, 60), 25), ((100, 95), 10), ((0, 0), 15)):
        picture[np.hypot(x - centre[0], y - centre[1]) <= radius] = 200
    picture += (x % 7).astype(np.uint8)
    ptk.write(picture, tmp_path / "parts.tif")
    told = run("count_parts", capsys, str(tmp_path / "parts.tif"), str(tmp_path / "labels.tif"))
    assert told.startswith("3 parts")
    diameters = [float(number) for number in re.findall(r"diameter +([\d.]+)", told)]
    assert diameters == pytest.approx([40, 50, 20], rel=0.02)
    assert np.asarray(ptk.read(tmp_path / "labels.tif")).max() == 3


def test_measure_width(capsys):
    widths = [float(number) for number in re.findall(r": ([\d.]+)", run("measure_width", capsys))]
    assert len(widths) == 4 and widths == pytest.approx([61.7] * 4, abs=0.7)


def test_remove_stripes(capsys):
    before, after = map(float, re.findall(r"[\d.]+", run("remove_stripes", capsys)))
    assert after < before / 10


def test_the_program_in_the_readme(tmp_path, capsys, monkeypatch):
    readme = EXAMPLES.parent / "README.md"
    program = re.search(r"```python\n(.*?)```", readme.read_text(), re.DOTALL)[1]
    picture = np.full((60, 80), 30, np.uint8)
    picture[20:30, 20:40] = 180
    picture[0, ::2] = 31
    ptk.write(picture, tmp_path / "parts.tif")
    monkeypatch.chdir(tmp_path)
    names = {}
    exec(program, names)
    assert names["measures"]["area_pixels"] == [200]
