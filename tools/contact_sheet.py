#!/usr/bin/env python3
"""Shows the steps of `orlune filter` on a scene: a sheet of small pictures and the page that names them.

usage: contact_sheet.py ORLUNE ORLUNE_SCENES FOLDER      (of the sheet: docs)
"""

import math
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

SCENE = "mixed.orln"
COLUMNS = 5
CELL = (220, 180)  # pixels; pictures are made smaller to fit
GAP = 6
PAPER = 235

CHAINS = [
    "edges sobel 8",
    "edges sigma",
    "lowpass 5 5",
    "median 7",
    "minimum 5",
    "maximum 5",
    "rotate 17",
    "rotate 45 nearest",
    "shift 60 40",
    "flip left-right",
    "flip top-bottom",
    "transpose",
    "resample 0.25; resample 4 nearest",
    "resample 0.25; resample 4 bilinear",
    "resample 0.25; resample 4 spline",
    "extract 4; expand 4",
    "relief 4",
    "median 5; edges sobel 4; maximum 3",
    "frequencies low 10",
    "frequencies high 10",
    "spectrum",
]


def read_bmp(path):
    """Width, height and rows of grey bytes of a BMP file with 8 bits a pixel, or 24 of one grey."""
    data = path.read_bytes()
    (offset,) = struct.unpack_from("<I", data, 10)
    width, height = struct.unpack_from("<ii", data, 18)
    (bits,) = struct.unpack_from("<H", data, 28)
    step = bits // 8
    pitch = (width * step + 3) // 4 * 4
    rows = [data[offset + y * pitch :][: width * step : step] for y in range(abs(height))]
    return width, abs(height), rows[::-1] if height > 0 else rows


def write_png(path, rows):
    def chunk(name, content):
        return (
            struct.pack(">I", len(content))
            + name
            + content
            + struct.pack(">I", zlib.crc32(name + content))
        )

    header = struct.pack(">IIBBBBB", len(rows[0]), len(rows), 8, 0, 0, 0, 0)
    pixels = zlib.compress(b"".join(b"\0" + bytes(row) for row in rows), 9)
    path.write_bytes(
        b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")
    )


class Maker:
    def __init__(self, orlune, folder):
        self.orlune = orlune
        self.folder = pathlib.Path(folder)
        self.made = 0

    def filter(self, picture, chain):
        self.made += 1
        result = self.folder / f"{self.made}.bmp"
        command = [self.orlune, "filter", "--quiet", "--steps", chain, picture, "-o", result]
        subprocess.run(command, check=True, stderr=subprocess.DEVNULL)
        return result

    def cell(self, picture):
        """The rows of a picture that was made to fit a cell, by the command itself."""
        width, height, rows = read_bmp(picture)
        factor = min(CELL[0] / width, CELL[1] / height)
        if factor < 1:
            width, height, rows = read_bmp(self.filter(picture, f"resample {factor:.5f}"))
        return [bytes(row[: CELL[0]]) for row in rows[: CELL[1]]]


def paste(sheet, rows, index):
    left = GAP + index % COLUMNS * (CELL[0] + GAP) + (CELL[0] - len(rows[0])) // 2
    top = GAP + index // COLUMNS * (CELL[1] + GAP) + (CELL[1] - len(rows)) // 2
    for y, row in enumerate(rows):
        sheet[top + y][left : left + len(row)] = row


def page(names):
    lines = [
        "# The steps of `orlune filter`",
        "",
        f"Made by `tools/contact_sheet.py` from the scene `{SCENE}`; `orlune filter --help` tells of each",
        "step and its parameters.",
        "",
        "![The scene after each chain of steps](filter_steps.png)",
        "",
        "Row by row, from the left:",
        "",
        "| " + " | ".join([""] * COLUMNS) + " |",
        "|" + "---|" * COLUMNS,
    ]
    for first in range(0, len(names), COLUMNS):
        row = names[first : first + COLUMNS]
        lines.append("| " + " | ".join(row + [""] * (COLUMNS - len(row))) + " |")
    return "\n".join(lines) + "\n"


def main():
    orlune, scenes, folder = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([scenes, f"{work}/scenes", f"{work}/truth.csv"], check=True, stdout=subprocess.DEVNULL)
        maker = Maker(orlune, work)
        scene = f"{work}/scenes/{SCENE}"
        results = [maker.filter(scene, "shift 0 0")]
        results += [maker.filter(scene, chain) for chain in CHAINS]
        cells = [maker.cell(result) for result in results]

    lines = math.ceil(len(cells) / COLUMNS)
    width = GAP + COLUMNS * (CELL[0] + GAP)
    sheet = [bytearray([PAPER] * width) for _ in range(GAP + lines * (CELL[1] + GAP))]
    for index, rows in enumerate(cells):
        paste(sheet, rows, index)
    write_png(folder / "filter_steps.png", sheet)
    names = ["the scene"] + [f"`{chain}`" for chain in CHAINS]
    (folder / "filter_steps.md").write_text(page(names))


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main()
