#!/usr/bin/env python3
"""Draws docs/measures.png: a particle with what is measured on it. The numbers are orlune's; where hull
and rectangle lie is computed here. Needs python3-pil.

usage: measures_figure.py ORLUNE OUT.png
"""
import json
import math
import subprocess
import sys
import tempfile

from PIL import Image, ImageDraw

orlune, out = sys.argv[1:]
SIZE, ZOOM = 64, 12


def inside(x, y):
    bean = math.hypot((x - 26) / 17, (y - 34) / 12) <= 1 or math.hypot((x - 42) / 12, (y - 24) / 14) <= 1
    return bean and math.hypot((x - 33) / 8, (y - 20) / 9) > 1


pixels = [(x, y) for y in range(SIZE) for x in range(SIZE) if inside(x, y)]
with tempfile.TemporaryDirectory() as folder:
    picture = Image.new("L", (SIZE, SIZE))
    for place in pixels:
        picture.putpixel(place, 255)
    picture.save(folder + "/bean.png")
    report = subprocess.run([orlune, "inspect", "--quiet", "--measures", "all", "--json", "-", folder + "/bean.png"],
                            capture_output=True, text=True, check=True).stdout
bean, = json.loads(report)["files"][0]["particles"]

corners = sorted({(x + a, y + b) for x, y in pixels for a in (0, 1) for b in (0, 1)})


def half(points):
    chain = []
    for p in points:
        while len(chain) > 1 and ((chain[-1][0] - chain[-2][0]) * (p[1] - chain[-2][1]) -
                                  (chain[-1][1] - chain[-2][1]) * (p[0] - chain[-2][0])) <= 0:
            chain.pop()
        chain.append(p)
    return chain[:-1]


hull = half(corners) + half(corners[::-1])
image = Image.new("RGB", (SIZE * ZOOM, SIZE * ZOOM), (250, 250, 250))
draw = ImageDraw.Draw(image)
for x, y in pixels:
    draw.rectangle([x * ZOOM, y * ZOOM, (x + 1) * ZOOM - 2, (y + 1) * ZOOM - 2], (176, 190, 205))


def line(points, colour, width=3):
    draw.line([(x * ZOOM, y * ZOOM) for x, y in points], colour, width)


def direction(degrees):
    return math.cos(math.radians(degrees)), -math.sin(math.radians(degrees))


line(hull + hull[:1], (220, 120, 0))

# The rectangle: the directions are orlune's, its sides lie where the hull ends.
ax, ay = direction(bean["MinimalBoxAngle"])
along = [x * ax + y * ay for x, y in hull]
across = [-x * ay + y * ax for x, y in hull]
box = [(a * ax - c * ay, a * ay + c * ax) for a, c in ((min(along), min(across)), (max(along), min(across)),
                                                    (max(along), max(across)), (min(along), max(across)))]
line(box + box[:1], (40, 150, 70))

ends = max(((p, q) for p in hull for q in hull), key=lambda pair: math.dist(*pair))
assert abs(math.dist(*ends) - bean["FeretMaximum"]) < 1e-6
assert abs(max(along) - min(along) - bean["MinimalBoxLength"]) < 1e-6
line(ends, (200, 30, 40), 4)

# The ellipse of the same moments, about the centre of the pixels' squares.
cx, cy = bean["CentreOfMassX"] + 0.5, bean["CentreOfMassY"] + 0.5
ex, ey = direction(bean["MomentEllipseAngle"])
major, minor = bean["MomentEllipseMajorAxis"] / 2, bean["MomentEllipseMinorAxis"] / 2
ellipse = []
for step in range(361):
    a, b = major * math.cos(math.radians(step)), minor * math.sin(math.radians(step))
    ellipse.append((cx + a * ex - b * ey, cy + a * ey + b * ex))
line(ellipse, (60, 80, 200))
line([(cx - major * ex, cy - major * ey), (cx + major * ex, cy + major * ey)], (60, 80, 200), 2)

left, top = bean["Left"], bean["Top"]
right, bottom = bean["Right"], bean["Bottom"]
line([(left, top), (right, top), (right, bottom), (left, bottom), (left, top)], (150, 150, 150), 2)
words = (((200, 30, 40), "FeretMaximum %.1f" % bean["FeretMaximum"]),
         ((40, 150, 70), "MinimalBox %.1f x %.1f" % (bean["MinimalBoxLength"], bean["MinimalBoxWidth"])),
         ((220, 120, 0), "convex hull, Solidity %.3f" % bean["Solidity"]),
         ((60, 80, 200), "MomentEllipse %.1f x %.1f, Orientation %.0f" % (2 * major, 2 * minor, bean["Orientation"])),
         ((110, 110, 110), "upright rectangle %d x %d" % (right - left, bottom - top)))
legend = Image.new("RGB", (SIZE * ZOOM // 2, 12 * len(words) + 8), (250, 250, 250))
pen = ImageDraw.Draw(legend)
for row, (colour, text) in enumerate(words):
    pen.text((8, 4 + 12 * row), text, colour)
legend = legend.resize((legend.width * 2, legend.height * 2), Image.Resampling.NEAREST)
whole = Image.new("RGB", (image.width, image.height + legend.height), (250, 250, 250))
whole.paste(image, (0, 0))
whole.paste(legend, (0, image.height))
whole.quantize(64).save(out, optimize=True)
