#!/usr/bin/env python3
"""Pictures made by other programs, and what orlune reads of them.

Every case makes a file with a program of others and gives the pixels that must come out, from the
formula that the picture was made of, or from the program itself. What orlune read is looked at in a
native file, by this script's own reading of it. A case whose program is missing is skipped, and told.

usage: foreign_pictures_test.py ORLUNE WORK_FOLDER
"""
import json
import os
import shutil
import struct
import subprocess
import sys

orlune, work = (os.path.abspath(path) for path in sys.argv[1:3])
try:
    from PIL import Image, ImageOps, TiffImagePlugin
except ImportError:
    # The first python3 of the path need not be the one that Debian's packages are for.
    debian = "/usr/bin/python3"
    if os.path.exists(debian) and os.path.realpath(sys.executable) != os.path.realpath(debian):
        os.execv(debian, [debian] + sys.argv)
    Image = None

shutil.rmtree(work, ignore_errors=True)
os.makedirs(work)
os.chdir(work)

WIDTH, HEIGHT = 37, 23
failures, skipped, passed = [], [], 0


def gray(most):
    return [[(x * 7 + y * 13 + x * y) % (most + 1) for x in range(WIDTH)] for y in range(HEIGHT)]


def colour(most):
    return [[((x * 7 + y) % (most + 1), (y * 11 + x) % (most + 1), (x * y) % (most + 1))
             for x in range(WIDTH)] for y in range(HEIGHT)]


def mean(pixels):
    return [[sum(p) // 3 for p in row] for row in pixels]


def mapped(pixels, rule):
    return [[rule(p) for p in row] for row in pixels]


def write_pnm(name, pixels, most):
    with open(name, "wb") as file:
        three = isinstance(pixels[0][0], tuple)
        file.write(b"%s\n%d %d\n%d\n" % (b"P6" if three else b"P5", WIDTH, HEIGHT, most))
        for row in pixels:
            for pixel in row:
                for sample in pixel if three else (pixel,):
                    file.write(struct.pack(">H" if most > 255 else "B", sample))
    return name


def read_native(name):
    with open(name, "rb") as file:
        content = file.read()
    code, = struct.unpack(">H", content[6:8])
    width, height = struct.unpack(">HH", content[16:20])
    count = width * height
    body = content[512:]
    if code == 1:
        values = list(body[:count])
    elif code == 4:
        values = list(struct.unpack("<%dh" % count, body[:2 * count]))
    elif code == 6:
        values = list(struct.unpack("<%df" % count, body[:4 * count]))
    elif code == 2:
        values = [tuple(body[4 * i + 1:4 * i + 4]) for i in range(count)]
    else:
        raise ValueError("type code %d" % code)
    return [values[y * width:(y + 1) * width] for y in range(height)]


def run(*command):
    return subprocess.run(command, capture_output=True, text=True)


def needs(*programs):
    """The first program that is missing, or None."""
    for program in programs:
        if program == "PIL":
            if Image is None:
                return "python3-pil"
        elif shutil.which(program) is None:
            return program
    return None


def case(name, programs, make, expected, page="", tolerance=0):
    """Makes a file, and compares what is read of it with the expected pixels or their maker."""
    global passed
    missing = needs(*programs)
    if missing:
        skipped.append("%s (no %s)" % (name, missing))
        return
    file = make()
    wanted = expected() if callable(expected) else expected
    read = run(orlune, "convert", file + page, "out.orln")
    if read.returncode != 0:
        failures.append("%s: %s" % (name, read.stderr.strip()))
        return
    got = read_native("out.orln")
    if (len(got), len(got[0])) != (len(wanted), len(wanted[0])):
        failures.append("%s: %d x %d, not %d x %d" % (name, len(got[0]), len(got), len(wanted[0]),
                                                      len(wanted)))
        return
    for y, row in enumerate(wanted):
        for x, pixel in enumerate(row):
            own = got[y][x] if isinstance(got[y][x], tuple) else (got[y][x],)
            other = pixel if isinstance(pixel, tuple) else (pixel,)
            if len(own) != len(other) or any(abs(a - b) > tolerance for a, b in zip(own, other)):
                failures.append("%s: pixel %d, %d is %s, not %s" % (name, x, y, got[y][x], pixel))
                return
    passed += 1


def refused(name, programs, make, part):
    """A file that cannot be read is refused with the part in the message."""
    global passed
    missing = needs(*programs)
    if missing:
        skipped.append("%s (no %s)" % (name, missing))
        return
    read = run(orlune, "inspect", make())
    if read.returncode != 1 or part not in read.stderr:
        failures.append("%s: status %d, %s" % (name, read.returncode, read.stderr.strip()))
    else:
        passed += 1


def made(*command):
    """A maker that runs a program; the last word is the file's name."""
    def make():
        done = run(*command)
        if done.returncode != 0:
            raise RuntimeError("%s: %s" % (" ".join(command), done.stderr))
        return command[-1].split(":")[-1]
    return make


def piped(name, *command):
    """A maker whose program writes to standard output."""
    def make():
        with open(name, "wb") as file:
            subprocess.run(command, stdout=file, stderr=subprocess.DEVNULL, check=True)
        return name
    return make


write_pnm("gray1.pgm", gray(1), 1)
write_pnm("gray2.pgm", gray(3), 3)
write_pnm("gray4.pgm", gray(15), 15)
write_pnm("gray8.pgm", gray(255), 255)
write_pnm("gray12.pgm", gray(4095), 4095)
DEEP = mapped(gray(1023), lambda v: v * 64 + 17)
write_pnm("gray16.pgm", DEEP, 65535)
write_pnm("colour8.ppm", colour(255), 255)
FEW = mapped(gray(11), lambda v: (v * 20, 255 - v * 20, v))
write_pnm("few.ppm", FEW, 255)
GRAYS = {1: gray(1), 2: gray(3), 4: gray(15), 8: gray(255), 16: DEEP}


# ---- netpbm: PNG of all depths, BMP and TIFF of its own kinds
for bits in (1, 2, 4, 8, 16):
    case("pnmtopng %d bits" % bits, ["pnmtopng"],
         piped("n%d.png" % bits, "pnmtopng", "gray%d.pgm" % bits), GRAYS[bits])
    case("pnmtopng %d bits interlaced" % bits, ["pnmtopng"],
         piped("ni%d.png" % bits, "pnmtopng", "-interlace", "gray%d.pgm" % bits), GRAYS[bits])
case("pnmtopng colour", ["pnmtopng"], piped("nc.png", "pnmtopng", "colour8.ppm"), colour(255))
case("ppmtobmp 24 bits", ["ppmtobmp"], piped("n24.bmp", "ppmtobmp", "-bpp=24", "colour8.ppm"),
     colour(255))
case("ppmtobmp 4 bits", ["ppmtobmp"], piped("n4.bmp", "ppmtobmp", "-bpp=4", "few.ppm"), FEW)
case("ppmtobmp OS/2", ["ppmtobmp"], piped("os2.bmp", "ppmtobmp", "-os2", "-bpp=24", "colour8.ppm"),
     colour(255))
for bits in (1, 2, 4, 8, 16):
    for option in ("minisblack", "miniswhite"):
        # The picture is the same: the file says which end is white.
        case("pamtotiff %d bits %s" % (bits, option), ["pamtotiff"],
             piped("p%d%s.tif" % (bits, option), "pamtotiff", "-" + option, "gray%d.pgm" % bits),
             GRAYS[bits])
case("pamtotiff truecolor", ["pamtotiff"],
     piped("pc.tif", "pamtotiff", "-truecolor", "colour8.ppm"), colour(255))
case("pamtotiff deflate predictor", ["pamtotiff"],
     piped("pd.tif", "pamtotiff", "-lzw", "-predictor=2", "-truecolor", "colour8.ppm"), colour(255))


# ---- libtiff's tools: strips, tiles, planes, byte orders, compressions, pages
for source, pixels in (("gray8.pgm", gray(255)), ("colour8.ppm", colour(255)),
                       ("gray16.pgm", DEEP)):
    kind = source.split(".")[0]
    base = "base_%s.tif" % kind
    if needs("pamtotiff") is None:
        piped(base, "pamtotiff", "-minisblack" if kind != "colour8" else "-truecolor", source)()
    for name, options in (("strips", ["-r", "3"]), ("tiles", ["-t", "-w", "16", "-l", "16"]),
                          ("big-endian", ["-B"]), ("little-endian", ["-L"]), ("8", ["-8"]),
                          ("planes", ["-p", "separate"]),
                          ("tiles in planes", ["-t", "-w", "32", "-l", "16", "-p", "separate"]),
                          ("lzw", ["-c", "lzw:2"]), ("zip", ["-c", "zip"]),
                          ("packbits", ["-c", "packbits"]),
                          ("big tiles lzw", ["-B", "-t", "-w", "16", "-l", "32", "-c", "lzw"])):
        if "planes" in name and kind != "colour8":
            continue
        file = "%s_%s.tif" % (kind, name.replace(" ", "_"))
        case("tiffcp %s %s" % (kind, name), ["pamtotiff", "tiffcp"],
             made("tiffcp", *options, base, file), pixels)
if needs("pamtotiff", "tiffcp") is None:
    piped("bits.tif", "pamtotiff", "-miniswhite", "gray1.pgm")()
for name in ("g3", "g3:2d", "g4"):
    case("tiffcp fax " + name, ["pamtotiff", "tiffcp"],
         made("tiffcp", "-c", name, "bits.tif", "fax_%s.tif" % name.replace(":", "_")), GRAYS[1])
case("tiffcp fill order", ["pamtotiff", "tiffcp"],
     made("tiffcp", "-f", "lsb2msb", "-c", "g4", "bits.tif", "fax_lsb.tif"), GRAYS[1])
case("tiffcp fill order of 4 bits", ["pamtotiff", "tiffcp"],
     made("tiffcp", "-f", "lsb2msb", "-c", "none", "p4minisblack.tif", "lsb4.tif"), GRAYS[4])
pages = made("tiffcp", "base_gray8.tif", "base_colour8.tif", "base_gray16.tif", "bits.tif",
             "pages.tif")
for page, pixels in ((1, gray(255)), (2, colour(255)), (3, DEEP), (4, GRAYS[1])):
    case("page %d" % page, ["pamtotiff", "tiffcp"], pages, pixels, "#%d" % page)


# ---- PIL: its own writers, and what it sees in the files of others
def from_pil(image):
    values = list(image.getdata())
    return [values[y * image.width:(y + 1) * image.width] for y in range(image.height)]


def pil_image(mode, pixels):
    image = Image.new(mode, (WIDTH, HEIGHT))
    image.putdata([p for row in pixels for p in row])
    return image


def saved(name, mode, pixels, **options):
    def make():
        pil_image(mode, pixels).save(name, **options)
        return name
    return make


FLOATS = mapped(gray(1023), lambda v: v / 8 - 20)
WITH_ALPHA = mapped(colour(255), lambda p: p + (p[0],))
for compression in ("raw", "tiff_lzw", "tiff_adobe_deflate", "packbits"):
    for mode, pixels in (("L", gray(255)), ("RGB", colour(255)), ("I;16", DEEP), ("F", FLOATS)):
        case("PIL %s %s" % (mode, compression), ["PIL"],
             saved("pil_%s_%s.tif" % (mode.replace(";", ""), compression), mode, pixels,
                   compression=compression), pixels)
case("PIL TIFF alpha", ["PIL"], saved("pila.tif", "RGBA", WITH_ALPHA), colour(255))
case("PIL TIFF gray alpha", ["PIL"],
     saved("pilla.tif", "LA", mapped(gray(255), lambda v: (v, 255 - v))), gray(255))
case("PIL PNG alpha", ["PIL"], saved("pila.png", "RGBA", WITH_ALPHA), colour(255))
case("PIL BMP alpha", ["PIL"], saved("pila.bmp", "RGBA", WITH_ALPHA), colour(255))
case("PIL BMP 1 bit", ["PIL"], saved("pil1.bmp", "1", mapped(gray(1), lambda v: v * 255)),
     mapped(gray(1), lambda v: v * 255))
case("PIL TIFF 32-bit whole", ["PIL"], saved("pil32.tif", "I", DEEP), DEEP)
for orientation in range(1, 9):
    def turned(file):
        return from_pil(ImageOps.exif_transpose(Image.open(file)).convert("L"))

    def jpeg(orientation=orientation):
        exif = Image.Exif()
        exif[0x0112] = orientation
        name = "turned%d.jpg" % orientation
        pil_image("L", mapped(gray(255), lambda v: v // 4)).save(name, exif=exif, quality=95)
        return name

    def tiff(orientation=orientation):
        name = "turned%d.tif" % orientation
        tags = TiffImagePlugin.ImageFileDirectory_v2()
        tags[274] = orientation
        pil_image("L", gray(255)).save(name, tiffinfo=tags)
        return name

    def upright(orientation=orientation):
        turn = {2: "FLIP_LEFT_RIGHT", 3: "ROTATE_180", 4: "FLIP_TOP_BOTTOM", 5: "TRANSPOSE",
                6: "ROTATE_270", 7: "TRANSVERSE", 8: "ROTATE_90"}.get(orientation)
        image = pil_image("L", gray(255))
        return from_pil(image.transpose(getattr(Image.Transpose, turn)) if turn else image)
    case("JPEG orientation %d" % orientation, ["PIL"], jpeg,
         lambda orientation=orientation: turned("turned%d.jpg" % orientation))
    case("TIFF orientation %d" % orientation, ["PIL"], tiff, upright)
case("JPEG colour", ["PIL"], saved("c.jpg", "RGB", colour(255), quality=90),
     lambda: from_pil(Image.open("c.jpg")))
case("JPEG progressive", ["PIL"],
     saved("p.jpg", "RGB", colour(255), quality=90, progressive=True, subsampling=2),
     lambda: from_pil(Image.open("p.jpg")))
case("TIFF of JPEG", ["PIL"], saved("j.tif", "RGB", colour(255), compression="jpeg"),
     lambda: from_pil(Image.open("j.tif")))
refused("inks in TIFF", ["PIL"],
        saved("inks.tif", "CMYK", mapped(colour(255), lambda p: p + (9,))), "(inks, 4 samples")
refused("inks in JPEG", ["PIL"],
        saved("inks.jpg", "CMYK", mapped(colour(255), lambda p: p + (9,))), "4 samples a pixel")


# ---- ImageMagick
def magick(*words):
    return made("convert", *words)


case("magick BMP RLE", ["convert", "PIL"],
     magick("gray8.pgm", "-type", "Palette", "-compress", "RLE", "m_rle.bmp"),
     lambda: from_pil(Image.open("m_rle.bmp").convert("L")))
case("magick BMP2", ["convert"], magick("colour8.ppm", "BMP2:m2.bmp"), colour(255))
case("magick BMP3", ["convert"], magick("colour8.ppm", "BMP3:m3.bmp"), colour(255))
case("magick BMP palette", ["convert"], magick("few.ppm", "-type", "Palette", "m_few.bmp"), FEW)
case("magick TIFF palette", ["convert"], magick("few.ppm", "-type", "Palette", "m_few.tif"), FEW)
case("magick PNG palette", ["convert"], magick("few.ppm", "PNG8:m_few.png"), FEW)


def magick_sees(file, most):
    """Samples as ImageMagick gives them, in 16 bits."""
    content = subprocess.run(["convert", file, "-depth", "16", "pgm:-"], capture_output=True).stdout
    values = struct.unpack(">%dH" % (WIDTH * HEIGHT), content[-2 * WIDTH * HEIGHT:])
    return [[round(v * most / 65535) for v in values[y * WIDTH:(y + 1) * WIDTH]]
            for y in range(HEIGHT)]


case("magick TIFF 12 bits", ["convert"],
     magick("gray12.pgm", "-depth", "12", "-compress", "none", "m12.tif"),
     lambda: magick_sees("m12.tif", 4095))
for endian in ("MSB", "LSB"):
    case("magick TIFF 16 bits " + endian, ["convert"],
         magick("gray16.pgm", "-endian", endian, "-compress", "none", "m16%s.tif" % endian), DEEP)
    case("magick TIFF float " + endian, ["convert"],
         magick("gray8.pgm", "-endian", endian, "-depth", "32", "-define",
                "quantum:format=floating-point", "-compress", "zip", "mf%s.tif" % endian),
         mapped(gray(255), lambda v: v / 255), tolerance=1e-6)
    case("magick TIFF half float " + endian, ["convert"],
         magick("gray8.pgm", "-endian", endian, "-depth", "16", "-define",
                "quantum:format=floating-point", "-compress", "zip", "mh%s.tif" % endian),
         mapped(gray(255), lambda v: v / 255), tolerance=1e-3)
case("magick TIFF 32 bits", ["convert"],
     magick("gray8.pgm", "-depth", "32", "-compress", "none", "m32.tif"),
     mapped(gray(255), lambda v: v * 0x01010101), tolerance=256)
case("magick TIFF double", ["convert"],
     magick("gray8.pgm", "-depth", "64", "-define", "quantum:format=floating-point",
            "-compress", "zip", "m64.tif"),
     mapped(gray(255), lambda v: v / 255), tolerance=1e-6)


# ---- The same picture by many programs counts the same
def count(file):
    result = run(orlune, "inspect", "--quiet", "--json", "-", file)
    return json.loads(result.stdout)["files"][0].get("found")


spots = [[200 if (x // 5 + y // 4) % 2 == 0 and x % 5 and y % 4 else 30 for x in range(WIDTH)]
         for y in range(HEIGHT)]
write_pnm("spots.pgm", spots, 255)
makers = [("pnmtopng", piped("s.png", "pnmtopng", "spots.pgm")),
          ("ppmtobmp", piped("s.bmp", "ppmtobmp", "spots.pgm")),
          ("pamtotiff", piped("s.tif", "pamtotiff", "-minisblack", "spots.pgm")),
          ("pamtotiff", piped("sw.tif", "pamtotiff", "-miniswhite", "spots.pgm")),
          ("convert", magick("spots.pgm", "sm.png")),
          ("convert", magick("spots.pgm", "-depth", "16", "-endian", "LSB", "sm16.tif")),
          ("convert", magick("spots.pgm", "-compress", "RLE", "sm.bmp"))]
counts = {}
for program, make in makers:
    if needs(program):
        skipped.append("spots (no %s)" % program)
        continue
    file = make()
    counts[file] = count(file)
if len(set(counts.values())) > 1:
    failures.append("the same picture gives %s" % counts)
elif counts:
    passed += 1


# ---- What orlune writes, as others see it
def written(name, programs, arguments, file, expected):
    global passed
    missing = needs(*programs)
    if missing:
        skipped.append("%s (no %s)" % (name, missing))
        return
    done = run(orlune, "convert", *arguments, file)
    got = from_pil(Image.open(file)) if done.returncode == 0 else done.stderr
    if got != expected:
        failures.append("%s: %s" % (name, got if isinstance(got, str) else got[0][:4]))
    else:
        passed += 1


if needs("PIL", "pnmtopng") is None:
    piped("deep.png", "pnmtopng", "gray16.pgm")()
    piped("flat.png", "pnmtopng", "gray8.pgm")()
    piped("col.png", "pnmtopng", "colour8.ppm")()
for ending in ("tif", "png"):
    written("16 bits as " + ending, ["PIL", "pnmtopng"], ["deep.png"], "w16." + ending, DEEP)
for ending in ("tif", "png", "bmp"):
    written("8 bits as " + ending, ["PIL", "pnmtopng"], ["flat.png"], "w8." + ending, gray(255))
    written("colour as " + ending, ["PIL", "pnmtopng"], ["col.png"], "wc." + ending, colour(255))
written("float as tif", ["PIL", "pnmtopng"], ["--type", "sgl", "flat.png"], "wf.tif", gray(255))


# ---- Standard input and files that are cut
if needs("pnmtopng") is None:
    piped("in.png", "pnmtopng", "gray8.pgm")()
    with open("in.png", "rb") as file:
        done = subprocess.run([orlune, "convert", "-", "--format", "native", "in.orln"], stdin=file)
    if done.returncode != 0 or read_native("in.orln") != gray(255):
        failures.append("a picture from standard input is another one")
    else:
        passed += 1


def cut(file, share):
    def make():
        with open(file, "rb") as whole:
            content = whole.read()
        name = "cut_" + file
        with open(name, "wb") as part:
            part.write(content[:int(len(content) * share)])
        return name
    return make


for file, program in (("in.png", "pnmtopng"), ("n24.bmp", "ppmtobmp"), ("m_rle.bmp", "convert"),
                      ("base_gray8.tif", "pamtotiff"), ("gray8_lzw.tif", "tiffcp"),
                      ("c.jpg", "PIL"), ("in.orln", "pnmtopng")):
    refused("cut " + file, [program], cut(file, 0.6), "cut")

for line in skipped:
    print("skipped:", line)
for line in failures:
    print("FAILED:", line)
print("%d passed, %d failed, %d skipped" % (passed, len(failures), len(skipped)))
sys.exit(1 if failures else 77 if passed == 0 else 0)
