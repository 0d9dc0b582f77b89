// The longer texts of the help, by command.
#pragma once

namespace front {

constexpr char PROGRAM_FOOTER[] = R"(
Examples:
  orlune info scan.tif
  orlune inspect --dark --keep "AreaPixels>=50" parts/*.png
  orlune inspect --scale 0.05 --unit mm --csv parts.csv --annotate marked parts/*.tif
  orlune gauge --line 320,40,320,440 --object dark --min 119.8 --max 120.2 shots/*.bmp
  orlune filter --steps "median 5; edges sobel 20" --out filtered parts/*.tif
  orlune run shaft.toml --csv diameters.csv shots/*.bmp
  orlune convert --type u8 --stretch deep.tif view.png

Pictures: native (.orln), TIFF, PNG, JPEG and BMP files of all usual kinds. scan.tif#3 is the third
page of a TIFF, scan.tif#all all of them, and - is standard input.

'orlune help COMMAND' tells more about a command.
Exit status: 0 all went well; 1 a file could not be read or written; 2 wrong use; 128 and the
signal's number after an interrupt.)";

constexpr char INFO_FOOTER[] = R"(
For each page: size, kind of pixels, how they are stored, what type of image they are read as, the
values in it, and what of the file is lost on the way. A page that cannot be read says why.

Examples:
  orlune info scan.tif
  orlune info --json photo.jpg scan.tif#2)";

constexpr char INSPECT_FOOTER[] = R"(
How objects are found:
  Every pixel whose gray level lies in the range is object, all others are background. Without
  --range, --method finds the boundary in each picture, and objects are the pixels at or above it,
  with --dark those below it. Colour pictures are inspected by the mean of their colours.
  --range is in the values that the file's pixels have for its viewer, whatever their depth: 0 is
  black also where the file says that 0 is white, and 16-bit pixels reach to 65535. The automatic
  methods work on 8 bits: other pictures are spread for them from their darkest to their brightest
  pixel. A boundary at an end of the levels is told. With --region or --mask the levels are those
  of that part, and objects are only there. Touching objects form one particle.
  With --hue, --saturation or --lightness objects are the pixels whose colour lies in all of these
  ranges. A gray has no hue; a colour that is near to black, white or gray has a hue by chance, so
  that a least saturation goes with most ranges of hues.

How objects are refined:
  First --open, then --close, --fill-holes, --separate and --reject-border, each if it is asked for.
  --separate cuts where a neck joins two parts that are both wider than the neck, from the thinnest
  neck up to those of N pixels. Rings need --fill-holes with it: else their rims are thin, and may be
  cut themselves. Objects that touch along their sides have no neck.

Methods:
)";

constexpr char INSPECT_EXAMPLES[] = R"(
Which particles are kept:
  --keep takes comparisons of measures, in the units that the table shows, with commas between them;
  all must hold:  --keep "AreaPixels>=50,NumberOfHoles=1"  --keep "Left=10:500"
  'orlune measures' lists them.

Examples:
  orlune inspect part.tif
  orlune inspect --dark --keep "AreaPixels>=50" --annotate marked parts/*.bmp
  orlune inspect --fill-holes --separate 21 --reject-border parts/*.bmp
  orlune inspect --hue 200:260 --saturation 35: --open 3 caps.png
  orlune inspect --range 1800:4095 --measures AreaPixels,FeretMaximum,Solidity,GrayMean deep.tif
  orlune inspect -j auto --scale 0.05 --unit mm --json parts.json --quiet parts/*.tif)";

constexpr char GAUGE_FOOTER[] = R"(
How edges are found:
  The picture is read along the line, a pixel at a time, as the mean of a band of pixels across it,
  with values between pixels: lines may begin anywhere and run at any angle. An edge is where the
  means of --edge-width pixels on either side differ by the threshold, and lies in the middle of that
  place, seen from both ends of the line. It should cross the line squarely: else a narrow --band
  helps. Edges nearer to each other than twice --edge-width push each other apart. Distances are in pixels, or in the unit of --scale; a file's own scale counts where none is
  given.

Lines that follow the part:
  With --follow, the part is the largest dark or light object of the picture: its centre of mass and
  its long axis tell where it lies and how it is turned. The lines are drawn for the picture --master,
  and carried along with the part in all others. A part that looks the same after half a turn is taken
  to be turned by less than a quarter. A set-up file can follow three edges of a part instead.

Limits:
  With --min and --max each value passes or fails; a picture passes if all its values do. A value whose
  edges are not there does not pass.

Set-up files hold several lines, each with limits of its own. --save writes one; or by hand:
  {"gauge": "lines", "scale": 0.05, "unit": "mm",
   "reference": {"follow": "object", "object": "dark", "master": "first.bmp"},
   "lines": [
     {"name": "head", "line": [120, 40, 120, 200], "object": "dark", "min": 3.98, "max": 4.02},
     {"name": "slot", "line": [300, 90, 360, 90], "measure": "pair", "object": "light",
      "nominal": 1.2, "threshold": "20%", "edgeWidth": 3, "band": 9}]}
  A picture beside a set-up file is named from there. "reference": {"follow": "edges", "object":
  "dark", "lines": [[X1, Y1, X2, Y2], ...], "master": ...} takes the first edges into the dark on three
  lines: the first two tell the direction, the third one the place along it.

Measures:
)";

constexpr char GAUGE_EXAMPLES[] = R"(
Examples:
  orlune gauge --line 320,40,320,440 --object dark --min 119.8 --max 120.2 shots/*.bmp
  orlune gauge --line head=120,40,120,200 --line foot=400,60,400,180 --object dark --scale 0.05 \
    --unit mm --follow dark --master first.bmp --save shaft.json --annotate marked first.bmp
  orlune gauge -j auto --setup shaft.json --csv diameters.csv shots/*.bmp
Exit status: 0 all pictures passed; 1 some did not, or a file could not be read or written.)";

constexpr char RUN_FOOTER[] = R"(
A recipe is a TOML file: steps that are done in their order, each with the keys that the command of
its name has as options, without the dashes. docs/recipes.md tells all of it.

  name = "washers"
  scale = 0.05                 # of a pixel, for all steps that say nothing else
  unit = "mm"

  [[step]]
  do = "filter"                # filter, inspect, gauge, match or read
  steps = "median 3"

  [[step]]
  do = "inspect"
  name = "parts"
  dark = true
  keep = "AreaPixels>=500"
  count = "9:11"               # passes with so many kept particles
  require = "NumberOfHoles=1"  # and if this holds for each of them

  [[step]]
  do = "gauge"
  follow-step = "parts"        # the lines lie on its largest particle
  master = "first.bmp"         # as they were drawn on this picture
  line = ["width=10,40,90,40"]
  object = "dark"
  min = 3.9
  max = 4.1

  [[step]]
  do = "read"
  what = "lcd"                 # barcode, lcd or meter
  setup = "display.json"       # files are named from the recipe's folder
  expect = "[0-9]{3}\.[0-9]"   # a regular expression for all of the text

Filters change the picture for the steps after them; on = "original" or the name of a filter step
looks at another one. A step with record-only = true does not decide.

Each picture is worked on in a process of its own kind: one that breaks, or takes too long, costs that
picture alone. With --db each result is recorded at once; --resume finishes the last run of the same
recipe there, whatever ended it, and its reports tell all of its pictures.

With --watch the run goes on until it is interrupted, and tells a verdict a line: of what is in the
folder at first, and then of each file that comes, as soon as it is whole: closed by its writer, or moved
there. The CSV report and the JSON lines may go to a pipe with a name, for a program that acts on them.

Examples:
  orlune run --check shaft.toml
  orlune run shaft.toml --explain-on shots/7.bmp --out steps
  orlune run -j auto shaft.toml --db shafts.db --html shafts.html shots/*.bmp
  orlune run -j auto shaft.toml --db shafts.db --resume
  orlune run shaft.toml --db shafts.db --watch camera
Exit status: 0 all pictures passed; 1 some failed; 2 wrong use, or a recipe with mistakes; 3 some have
no verdict: they could not be read, or what the recipe asks of them cannot be done.)";

constexpr char MATCH_FOOTER[] = R"(
Objects are found in the template's picture and in the others alike, by a boundary between light and
dark as orlune inspect has it; touching objects form one. The template is the largest object of its
picture. Shapes are compared by seven invariants of their moments, which do not change when a shape is
moved, turned, or scaled: the score is 1000 for the very shape, and 1 at the tolerance. Mirrored shapes
match as well. Angles are clockwise, by the long axes: a shape that looks the same after half a turn has
two of them, and one that has no long axis none.

Examples:
  orlune match --dark washer.bmp trays/*.bmp
  orlune match --scales 0.5:2 --tolerance 0.1 --csv found.csv --annotate marked hook.png trays/*.png
Exit status: 0 every picture has a match; 1 some have none, or a file could not be read or written.)";

constexpr char FILTER_FOOTER[] = R"(
What is filtered:
  The steps follow one another on the picture in memory, which keeps its depth. Colour pictures are
  filtered by the mean of their colours, unless the chain begins with steps that take colours: these
  are marked, and take 8 bits of each. Neighbours beyond the picture are its own pixels, mirrored
  at the edge: no side of it may be shorter than half of the largest window. Under a mask, each step
  changes only the pixels where the mask is not 0.

Where pictures go:
  --out makes a picture of the same name in a folder for each file, -o one picture of one file. The
  ending tells the format: .orln, .tif, .png or .bmp. A picture that is read is never written over,
  nor are two pictures written to one file.

Steps:
)";

constexpr char FILTER_EXAMPLES[] = R"(
Examples:
  orlune filter --steps "median 5" part.tif -o quiet.tif
  orlune filter --steps "lowpass 3 10; edges sobel 20" --out edges parts/*.bmp
  orlune filter --steps "select 200:260 35:; open 5" caps.png -o blue.png
  orlune filter --steps "rank 9x1 2" --mask tray.bmp --format png --out ranked parts/*.tif)";

constexpr char CONVERT_FOOTER[] = R"(
Formats: native (.orln) holds all types and the scale of a pixel; TIFF (.tif, .tiff) holds u8, u16,
i16, sgl and rgb; PNG (.png) u8, u16 and rgb; BMP (.bmp) u8 and rgb. Types: u8 0 to 255; u16 0 to
65535; i16 -32768 to 32767; sgl 32-bit float; complex two floats; rgb three bytes. Values beyond a
type's range are limited to it, unless --stretch spreads them over 0 to 255. What is lost is told.
OUT may be - for standard output, with --format.

Examples:
  orlune convert part.bmp part.tif
  orlune convert --type u8 --stretch deep.tif view.png
  orlune convert scan.tif#3 page.png
  orlune convert --type sgl part.tif part.orln)";

constexpr char READ_FOOTER[] = R"(
Bar codes: the code is looked for in the region or in the whole picture, as it lies and turned upright
by the direction of its edges, and both ways. Code 93, Code 128, EAN and UPC are read along many lines,
each symbol by its own width, so that cans and slanted labels are read too; several lines have to agree.
The others are read in many rectangles around the bars, and their bars have to be those of the text;
one of fewer than four characters is not looked for, and a region that fits such a code, upright and
with some light at both ends, is read as it is.

Gauges: a meter's needle is looked for along all lines from its base to its arc: the darkest, with a
light needle the lightest, is taken. A display's digits are read by three lines over each of them. A
picture in which segments form no digit is not read.

Examples:
  orlune read barcode --kind code128 --annotate marked labels/*.png
  orlune read barcode --kind ean13 --region 40,60,300,50 --csv codes.csv box.tif
  orlune read meter --setup boiler.json shots/*.png
  orlune read lcd --setup scales.json --csv weights.csv --annotate marked shots/*.bmp
Exit status: 0 every picture was read; 1 some were not, or a file could not be read or written.)";

constexpr char CALIBRATE_FOOTER[] = R"(
A meter is told by its base and the ends of its scale: as places, or as two pictures in which the
needle stands at these ends. A display is told by one picture in which at least one digit has segments
on both sides, best all eights; a set-up file may also be written by hand, with four corners for each
digit of a slanted display.

Examples:
  orlune calibrate meter --base 203,174 --start 127,247 --end 279,248 --high 1 --unit MPa -o boiler.json
  orlune calibrate meter --base 203,174 --radius 105 empty.png full.png -o tank.json
  orlune calibrate lcd --region 40,30,220,90 --points eights.png -o scales.json)";

constexpr char VIEW_FOOTER[] = R"(
A picture is shown with a window of tools beside it. What is drawn with a tool is measured at once: gray
levels and particles of an area, the profile and the edges of a line. The tools window shows the value
under the pointer. Marked copies are named after the picture: part-marked.png.

Keys:
)";

constexpr char VIEW_EXAMPLES[] = R"(
Examples:
  orlune view parts/*.tif
  orlune view --dark --method otsu --out marked parts/*.bmp
Exit status: 0 the person left; 1 there is no display, it went, or a file could not be read or written.)";

constexpr char SELFCHECK_FOOTER[] = R"(
Calls the functions of all families but those of windows, text and the clipboard, over all types of
pixels and odd sizes, and compares the results with a file that came with the program. They are the same
to the bit for every processor, compiler and number of threads. The first family that differs is named.
ORLUNE_PTK_LEVEL and ORLUNE_PTK_THREADS choose what is tried. It takes some seconds.

Examples:
  orlune selfcheck
  ORLUNE_PTK_LEVEL=plain ORLUNE_PTK_THREADS=1 orlune selfcheck
  orlune selfcheck --write here.txt
Exit status: 0 all results are right; 1 some are not, or a file could not be read or written.)";

constexpr char COMPLETIONS_FOOTER[] = R"(
Examples:
  orlune completions bash >~/.local/share/bash-completion/completions/orlune
  orlune completions fish >~/.config/fish/completions/orlune.fish)";

}  // namespace front
