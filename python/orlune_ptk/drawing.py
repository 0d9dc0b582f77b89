"""Lines, rectangles, ovals and text drawn into images. A result in a new image is the source with the shape; to draw
into the source itself, give it as out."""

from __future__ import annotations

from ctypes import byref, c_int32

from . import lowlevel
from ._arguments import Choice, Point, Rectangle, choice, rectangle_of, target, wraps
from .constants import DrawMode, TextAlign, TextFlags, TextMode
from .image import Image, ImageLike, as_image


@wraps("ZEL_DrawLine")
def draw_line(
    source: ImageLike,
    start: Point,
    end: Point,
    value: float,
    mode: Choice = "frame",
    out: Image | None = None,
) -> Image:
    """Draws a straight line from one point (x, y) to another."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_DrawLine(image, destination, *start, *end, choice(DrawMode, mode), value)
    return destination


@wraps("ZEL_DrawRect")
def draw_rectangle(
    source: ImageLike, rectangle: Rectangle, value: float, mode: Choice = "frame", out: Image | None = None
) -> Image:
    """Draws a rectangle (top, left, height, width)."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_DrawRect(image, destination, *rectangle_of(rectangle), choice(DrawMode, mode), value)
    return destination


@wraps("ZEL_DrawOval")
def draw_oval(
    source: ImageLike, rectangle: Rectangle, value: float, mode: Choice = "frame", out: Image | None = None
) -> Image:
    """Draws the ellipse that fills a rectangle (top, left, height, width)."""
    image = as_image(source)
    destination = target(out, image)
    lowlevel.ZEL_DrawOval(image, destination, *rectangle_of(rectangle), choice(DrawMode, mode), value)
    return destination


@wraps("ZEL_DrawText")
def draw_text(
    source: ImageLike,
    text: str,
    x: int,
    y: int,
    size: int = 16,
    mode: Choice = "white",
    align: Choice = "left",
    font: str = "DejaVu Sans",
    bold: bool = False,
    italic: bool = False,
    underline: bool = False,
    strikeout: bool = False,
    out: Image | None = None,
) -> Image:
    """Draws text, whose lines end with "\\n", with a font of the machine."""
    image = as_image(source)
    destination = target(out, image)
    flags = zip((bold, italic, underline, strikeout), TextFlags)
    style = sum(flag for wanted, flag in flags if wanted)
    lowlevel.ZEL_DrawText(
        image,
        destination,
        x,
        y,
        choice(TextMode, mode),
        text.replace("\n", "\r").encode(),
        size,
        style,
        choice(TextAlign, align),
        font.encode(),
        byref(c_int32()),
    )
    return destination
