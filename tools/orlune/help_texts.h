// The longer texts of the help, by command.
#pragma once

namespace front {

constexpr char PROGRAM_FOOTER[] = R"(
Examples:
  orlune info scan.tif
  orlune inspect --dark --keep "AreaPixels>=50" parts/*.png
  orlune inspect --scale 0.05 --unit mm --csv parts.csv --annotate marked parts/*.tif
  orlune filter --steps "median 5; edges sobel 20" --out filtered parts/*.tif
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
  Every pixel whose grey level lies in the range is object, all others are background. Without
  --range, --method finds the boundary in each picture, and objects are the pixels at or above it,
  with --dark those below it. Colour pictures are inspected by the mean of their colours.
  --range is in the values that the file's pixels have for its viewer, whatever their depth: 0 is
  black also where the file says that 0 is white, and 16-bit pixels reach to 65535. The automatic
  methods work on 8 bits: other pictures are spread for them from their darkest to their brightest
  pixel. A boundary at an end of the levels is told. With --region or --mask the levels are those
  of that part, and objects are only there. Touching objects form one particle.
  With --hue, --saturation or --lightness objects are the pixels whose colour lies in all of these
  ranges. A grey has no hue; a colour that is near to black, white or grey has a hue by chance, so
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
Bar codes: a region that fits a code, upright and with some light at both ends, is read as it is.
Otherwise, and where nothing is read there, the bars are looked for in the region or in the whole
picture, turned upright by the direction of their edges, enlarged, and read along many rows and both
ways; the text that most readings agree on is told.

Gauges: a meter's needle is looked for along all lines from its base to its arc: the darkest, with a
light needle the lightest, is taken. A display's digits are read by three lines over each of them. A
picture in which segments form no digit is not read.

Examples:
  orlune read barcode --kind code128 labels/*.png
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
A picture is shown with a window of tools beside it. What is drawn with a tool is measured at once: grey
levels and particles of an area, the profile and the edges of a line. The tools window shows the value
under the pointer. Marked copies are named after the picture: part-marked.png.

Keys:
)";

constexpr char VIEW_EXAMPLES[] = R"(
Examples:
  orlune view parts/*.tif
  orlune view --dark --method otsu --out marked parts/*.bmp
Exit status: 0 the person left; 1 there is no display, it went, or a file could not be read or written.)";

constexpr char COMPLETIONS_FOOTER[] = R"(
Examples:
  orlune completions bash >~/.local/share/bash-completion/completions/orlune
  orlune completions fish >~/.config/fish/completions/orlune.fish)";

}  // namespace front
