"""Tables that set calls beside those of OpenCV. Each of our calls in them is run.

A fenced block ```compare has rows, with empty lines between them:

    task: Median of a window
    cv2: result = cv2.medianBlur(image, 5)
    c: ZEL_NthOrder(image, 0, result, 5, 5, 12)
    python: result = ptk.median(image, 5)
    differs: OpenCV repeats the pixels at the edge, we mirror them.
    agrees: 3

What is set in goes on with the line before. All calls of C become one program, and all of Python another, with the
declarations that the page shows before its first table, in the blocks `c setup` and `python setup`. A call whose status
is not 0 fails, as does an exception. `agrees: N` says that `result` is that of OpenCV but for N pixels at each side, and
`agrees: N M` to within M: it is held to that where python3-opencv is there.
"""

import html
import re
from dataclasses import dataclass, field

KEYS = ("task", "cv2", "c", "python", "differs", "agrees")


@dataclass
class Row:
    task: str = ""
    cv2: str = ""
    c: str = ""
    python: str = ""
    differs: str = ""
    agrees: str = ""


@dataclass
class Comparison:
    rows: list[Row] = field(default_factory=list)
    c_setup: str = ""
    python_setup: str = ""
    cv2_setup: str = ""

    def table(self, text: str) -> str:
        """A block of rows as a table. On narrow screens the cells of a row stand below each other."""
        rows = [read_row(part) for part in re.split(r"\n\s*\n", text.strip())]
        self.rows += rows
        lines = [
            '<table class="compare">',
            "<thead><tr><th>OpenCV</th><th>C</th><th>Python</th></tr></thead>",
        ]
        for row in rows:
            lines.append('<tbody><tr><th colspan="3">' + html.escape(row.task) + "</th></tr><tr>")
            for name, code in (("OpenCV", row.cv2), ("C", row.c), ("Python", row.python)):
                lines.append(f'<td data-label="{name}"><pre>{html.escape(code)}</pre></td>')
            about = f"{agreement(row.agrees)}{marked(row.differs)}"
            lines.append(f'</tr><tr><td colspan="3" class="differs">{about}</td></tr></tbody>')
        return "\n".join([*lines, "</table>"])

    def c_program(self) -> str:
        """Each row on images of its own. A call stands as the page shows it; its status is looked at by the
        semicolon that ends it."""
        parts = [C_HEAD, self.c_setup, C_IMAGES]
        for number, row in enumerate(self.rows):
            parts.append(f"static void row{number}(void) {{\n  setup();")
            for call in re.findall(r"[^;]+;", row.c):
                words = " ".join(call.rstrip(";").split())
                shown = words if not words.startswith("ZEL_") else f"check({words}, {quoted(row.task)})"
                parts.append(f"  {shown};")
            parts.append("  finish();\n}\n")
        calls = "".join(f"  row{number}();\n" for number in range(len(self.rows)))
        return "\n".join(
            [
                *parts,
                f"int main(void) {{\n  ZEL_SetErrorMode(ERROR_MODE_SILENT);\n{calls}"
                '  printf("%d\\n", rows);\n  return 0;\n}\n',
            ]
        )

    def python_program(self) -> str:
        rows = [(row.task, row.python, row.cv2, row.agrees) for row in self.rows]
        return (
            PYTHON_BODY.replace("ROWS", repr(rows))
            .replace("OURS", repr(self.python_setup))
            .replace("THEIRS", repr(self.cv2_setup))
        )


def read_row(text: str) -> Row:
    row = Row()
    key = ""
    for line in text.split("\n"):
        begin = re.match(r"(\w+): ?(.*)", line)
        if begin and begin[1] in KEYS:
            key = begin[1]
            setattr(row, key, begin[2])
        elif key and line.startswith("  "):
            setattr(row, key, getattr(row, key) + "\n" + line[2:])
        else:
            raise ValueError(f"no row of a table: {line!r}")
    if not (row.task and row.cv2 and row.c and row.python and row.differs):
        raise ValueError(f"a row lacks something: {row}")
    return row


def agreement(agrees: str) -> str:
    """What `agrees` says, in words."""
    if not agrees:
        return ""
    margin, _, slack = agrees.partition(" ")
    words = "The same result"
    if slack:
        words += f", to within {slack}"
    if margin != "0":
        words += f", but for {margin} pixel{'s' if margin != '1' else ''} at each side"
    return f'<span class="agrees">{words}.</span> '


def marked(text: str) -> str:
    """Escaped text in which words between backquotes are code."""
    return re.sub(r"`([^`]+)`", r"<code>\1</code>", html.escape(text))


def quoted(text: str) -> str:
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


C_HEAD = """\
#include <orlune_ptk.h>
#include <stdio.h>
#include <stdlib.h>

static int rows;
static void setup(void);
static void finish(void);

static void check(int32_t status, const char* task) {
  if (status == 0) return;
  fprintf(stderr, "%s: %d\\n", task, (int)status);
  exit(1);
}
"""

# What the page's declarations hold before each row.
C_IMAGES = """\
static void make(ImageRef* made, int16_t type) {
  check(ZEL_Create(made, type, 3), "ZEL_Create");
  check(ZEL_SetImageSize(*made, 64, 64), "ZEL_SetImageSize");
}

static void setup(void) {
  for (int i = 0; i < 64 * 64; ++i) pixels[i] = (uint8_t)(i % 64 * (i / 64) + 90 * (i / 500 % 2));
  for (int i = 0; i < 256; ++i) table[i] = (uint8_t)(255 - i);
  ImageRef* bytes[] = {&image, &other, &result, &mask, &red, &green, &blue};
  for (int i = 0; i < 7; ++i) make(bytes[i], IMAGE_U8);
  make(&number, IMAGE_SGL);
  make(&colour, IMAGE_RGB);
  make(&spectrum, IMAGE_COMPLEX);
  check(ZEL_ArrayToImage(image, ARRAY_U8, pixels, 64, 64), "image");
  check(ZEL_ArrayToImage(other, ARRAY_U8, pixels, 64, 64), "other");
  check(ZEL_Threshold(image, mask, 128, 255, 1, 1), "mask");
  check(ZEL_ClearPixels(result), "result");
  check(ZEL_ReplaceColorPlanes(0, colour, image, other, image, MODE_RGB), "colour");
}

static void finish(void) {
  ZEL_free(parts);
  ZEL_FreeROI(outlines);
  parts = NULL;
  outlines = NULL;
  check(ZEL_CloseSys(), "ZEL_CloseSys");
  ++rows;
}
"""

PYTHON_BODY = """\
import sys

import numpy as np

import orlune_ptk as ptk

try:
    import cv2
except ImportError:
    cv2 = None

compared = 0
for task, ours, theirs, agrees in ROWS:
    mine = {"np": np, "ptk": ptk}
    exec(OURS, mine)
    exec(ours, mine)
    if cv2 is None:
        continue
    other = {"np": np, "cv2": cv2}
    exec(THEIRS, other)
    exec(theirs, other)
    if agrees:
        margin, _, slack = agrees.partition(" ")
        a, b = np.asarray(mine["result"]), np.asarray(other["result"])
        if int(margin):
            a, b = (each[int(margin) : -int(margin), int(margin) : -int(margin)] for each in (a, b))
        worst = np.abs(a.astype(float) - b).max()
        if a.shape != b.shape or worst > float(slack or 0):
            sys.exit(f"{task}: not as OpenCV, by {worst}")
        compared += 1
print(f"{compared} results are those of OpenCV" if cv2 else "python3-opencv is not there: nothing compared")
"""
