#!/usr/bin/env python3
"""Shows the steps of `orlune filter` on scenes: sheets of small pictures and the page that names them.

usage: contact_sheet.py ORLUNE ORLUNE_SCENES FOLDER      (of the sheets: docs)
"""

import math
import pathlib
import struct
import subprocess
import sys
import tempfile
import zlib

GAP = 6
PAPER = 235

GRAY_CHAINS = [
    "edges sobel 8",
    "edges sigma",
    "lowpass 5 5",
    "median 7",
    "minimum 5",
    "maximum 5",
    "convolve gradient3 0",
    "convolve laplacian7",
    "convolve smoothing7",
    "convolve gaussian7",
    "erode 7 disk",
    "dilate 7 disk",
    "open 15 disk",
    "close 15 disk",
    "automedian 9",
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
COLOUR_CHAINS = [
    "plane red",
    "plane hue",
    "plane saturation",
    "plane lightness",
    "select 200:260 35:",
    "select 340:20 35:; distance",
    "equalize",
    "equalize all",
    "scale saturation 40",
    "scale blue 0",
    "median 5",
]


class Sheet:
    """Chains of steps on one scene, in one picture."""

    def __init__(self, scene, name, columns, cell, chains):
        self.scene = scene
        self.name = name
        self.columns = columns
        self.cell = cell  # pixels; pictures are made smaller to fit
        self.chains = chains


SHEETS = [
    Sheet("mixed.orln", "filter_steps.png", 6, (148, 112), GRAY_CHAINS),
    Sheet("tokens.bmp", "colour_steps.png", 4, (160, 120), COLOUR_CHAINS),
]


def read_bmp(path):
    """Width, height and rows of a BMP file with 8 or 24 bits a pixel: red, green, blue, red, ..."""
    data = path.read_bytes()
    (offset,) = struct.unpack_from("<I", data, 10)
    width, height = struct.unpack_from("<ii", data, 18)
    (bits,) = struct.unpack_from("<H", data, 28)
    step = bits // 8
    pitch = (width * step + 3) // 4 * 4
    rows = []
    for y in range(abs(height)):
        stored = data[offset + y * pitch :][: width * step]
        row = bytearray(width * 3)
        for component in range(3):
            row[component::3] = stored[2 - component :: 3] if step == 3 else stored
        rows.append(row)
    return width, abs(height), rows[::-1] if height > 0 else rows


def write_png(path, rows):
    """Rows of red, green, blue; as one byte a pixel where all are gray."""
    def chunk(name, content):
        return (
            struct.pack(">I", len(content))
            + name
            + content
            + struct.pack(">I", zlib.crc32(name + content))
        )

    width = len(rows[0]) // 3
    gray = all(row[0::3] == row[1::3] == row[2::3] for row in rows)
    header = struct.pack(">IIBBBBB", width, len(rows), 8, 0 if gray else 2, 0, 0, 0)
    lines = [bytes(row[0::3] if gray else row) for row in rows]
    pixels = zlib.compress(b"".join(b"\0" + line for line in lines), 9)
    path.write_bytes(
        b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", pixels) + chunk(b"IEND", b"")
    )


def shrunk(width, height, rows, factor):
    """Each square of factor x factor pixels as their mean."""
    small = []
    for top in range(0, height - factor + 1, factor):
        line = bytearray()
        for left in range(0, width - factor + 1, factor):
            for component in range(3):
                first, end = left * 3 + component, (left + factor) * 3
                total = sum(sum(row[first:end:3]) for row in rows[top : top + factor])
                line.append(total // factor**2)
        small.append(line)
    return small


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


def cell(picture, size):
    """The rows of a picture, made as small as needed to fit."""
    width, height, rows = read_bmp(picture)
    factor = max(1, math.ceil(width / size[0]), math.ceil(height / size[1]))
    return shrunk(width, height, rows, factor)


def draw(sheet, cells):
    """All cells on paper, row by row."""
    wide, high = sheet.cell
    lines = math.ceil(len(cells) / sheet.columns)
    width = GAP + sheet.columns * (wide + GAP)
    paper = [bytearray([PAPER] * width * 3) for _ in range(GAP + lines * (high + GAP))]
    for index, rows in enumerate(cells):
        left = GAP + index % sheet.columns * (wide + GAP) + (wide - len(rows[0]) // 3) // 2
        top = GAP + index // sheet.columns * (high + GAP) + (high - len(rows)) // 2
        for y, row in enumerate(rows):
            paper[top + y][left * 3 : left * 3 + len(row)] = row
    return paper


def section(sheet):
    names = ["the scene"] + [f"`{chain}`" for chain in sheet.chains]
    lines = [
        f"![The scene after each chain of steps]({sheet.name})",
        "",
        f"The scene `{sheet.scene}`, row by row, from the left:",
        "",
        "| " + " | ".join([""] * sheet.columns) + " |",
        "|" + "---|" * sheet.columns,
    ]
    for first in range(0, len(names), sheet.columns):
        row = names[first : first + sheet.columns]
        lines.append("| " + " | ".join(row + [""] * (sheet.columns - len(row))) + " |")
    return lines


def page():
    lines = [
        "# The steps of `orlune filter`",
        "",
        "Made by `tools/contact_sheet.py`: each picture by one command; `orlune filter --help` tells of each",
        "step and its parameters. Steps that take colours come first in a chain.",
    ]
    for sheet in SHEETS:
        lines += ["", *section(sheet)]
    return "\n".join(lines) + "\n"


def main():
    orlune, scenes, folder = (pathlib.Path(word).resolve() for word in sys.argv[1:4])
    with tempfile.TemporaryDirectory() as work:
        subprocess.run([scenes, f"{work}/scenes", f"{work}/truth.csv"], check=True, stdout=subprocess.DEVNULL)
        maker = Maker(orlune, work)
        for sheet in SHEETS:
            scene = pathlib.Path(work, "scenes", sheet.scene)
            plain = scene if scene.suffix == ".bmp" else maker.filter(scene, "shift 0 0")
            results = [plain] + [maker.filter(scene, chain) for chain in sheet.chains]
            cells = [cell(result, sheet.cell) for result in results]
            write_png(folder / sheet.name, draw(sheet, cells))
    (folder / "filter_steps.md").write_text(page())


if __name__ == "__main__":
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    main()
