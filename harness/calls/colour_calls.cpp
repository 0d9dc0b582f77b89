// Colour images: planes, pixels, conversion, histogram, threshold, lookup.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

int32_t Mode(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<4>(play);
}

// A plane or mask that is mostly not there: images of the types that all of them need seldom come
// together.
template <ImageRef (*image)(Playground&)>
ImageRef Plane(Playground& play) {
  return Below<3>(play) == 0 ? image(play) : 0;
}

int32_t GetColorLine(Playground& play) {
  const struct {
    ImageRef image;
    Line line;
  } a{Source(play), LineAnywhere(play)};
  const size_t points = PointsOf(a.line, play.ShapeOf(a.image));
  const struct {
    RGBValue* array;
    int32_t* count;
  } out{play.OutputOf<RGBValue>(points), Output<int32_t>(play)};
  return ZEL_GetColorLine(a.image, a.line.x1, a.line.y1, a.line.x2, a.line.y2, out.array,
                          out.count);
}

int32_t SetColorLine(Playground& play) {
  const struct {
    ImageRef image;
    Line line;
    int32_t length;
  } a{Changed(play), LineAnywhere(play), Count(play)};
  const RGBValue* array = play.ArrayOf<RGBValue>(Held(a.length));
  return ZEL_SetColorLine(a.image, a.line.x1, a.line.y1, a.line.x2, a.line.y2, array, a.length);
}

int32_t ColorImageToArray(Playground& play) {
  const struct {
    ImageRef image;
    Rect rect;
  } a{Source(play), RectAnywhere(play)};
  const struct {
    RGBValue* array;
    int32_t *columns, *rows;
  } out{play.OutputOf<RGBValue>(PixelsOf(a.rect, play.ShapeOf(a.image))), Output<int32_t>(play),
        Output<int32_t>(play)};
  return ZEL_ColorImageToArray(a.image, a.rect.top, a.rect.left, a.rect.height, a.rect.width,
                               out.array, out.columns, out.rows);
}

int32_t ArrayToColorImage(Playground& play) {
  const struct {
    ImageRef image;
    int32_t width, height;
  } a{ImageThatMay<SIZE | PIXELS>(play), Below<50>(play) - 3, Below<50>(play) - 3};
  const RGBValue* array = play.ArrayOf<RGBValue>(Held(a.width) * Held(a.height));
  return ZEL_ArrayToColorImage(a.image, array, a.width, a.height);
}

// An array to read, or none.
const void* ArrayOrNone(Playground& play, int32_t type, size_t count) {
  return Below<8>(play) == 0 ? nullptr : play.Array(LayoutOf(type, count));
}

int32_t ColorToInteger(Playground& play) {
  const struct { int32_t type, count, mode; } a{ArrayType(play), Count(play), Mode(play)};
  const size_t held = Held(a.count);
  const struct {
    const void *first, *second, *third;
    RGBValue* values;
  } arrays{ArrayOrNone(play, a.type, held), ArrayOrNone(play, a.type, held),
           ArrayOrNone(play, a.type, held), play.OutputOf<RGBValue>(held)};
  return ZEL_ColorToInteger(arrays.first, arrays.second, arrays.third, a.count, a.mode, a.type,
                            arrays.values);
}

int32_t IntegerToColor(Playground& play) {
  const struct { int32_t type, count, mode; } a{ArrayType(play), Count(play), Mode(play)};
  const size_t held = Held(a.count);
  const struct {
    const void* values;
    void *first, *second, *third;
  } arrays{ArrayOrNone(play, ARRAY_U32, held), OutputOfType(play, a.type, held),
           OutputOfType(play, a.type, held), OutputOfType(play, a.type, held)};
  return ZEL_IntegerToColor(static_cast<const RGBValue*>(arrays.values), a.count, a.mode, a.type,
                            arrays.first, arrays.second, arrays.third);
}

int32_t ColorHistogram(Playground& play) {
  const struct {
    ImageRef image, mask;
    int32_t classes, mode;
  } a{Source(play), Source(play), Int(play), Mode(play)};
  const auto held = static_cast<size_t>(std::clamp(a.classes, 1, 256));
  const struct {
    uint32_t *first, *second, *third;
    ColorHistogramReport *ofFirst, *ofSecond, *ofThird;
  } out{play.OutputOf<uint32_t>(held),      play.OutputOf<uint32_t>(held),
        play.OutputOf<uint32_t>(held),      Output<ColorHistogramReport>(play),
        Output<ColorHistogramReport>(play), Output<ColorHistogramReport>(play)};
  return ZEL_ColorHistogram(a.image, a.mask, a.classes, a.mode, out.first, out.second, out.third,
                            out.ofFirst, out.ofSecond, out.ofThird);
}

int32_t ColorUserLookup(Playground& play) {
  const struct {
    ImageRef source, mask, destination;
    int32_t mode, type;
  } a{Source(play), Plane<Source>(play), FramedDestination(play), Mode(play), ArrayType(play)};
  const struct {
    const void *first, *second, *third;
  } tables{ArrayOrNone(play, a.type, 256), ArrayOrNone(play, a.type, 256),
           ArrayOrNone(play, a.type, 256)};
  return ZEL_ColorUserLookup(a.source, a.mask, a.destination, a.mode, a.type, tables.first,
                             tables.second, tables.third);
}

// Planes are settled one after the other, and the destination before the planes are looked at.
constexpr Leftovers OF_EXTRACTION[] = {{ANY_FAILURE, CALIBRATION | SIZE}};
constexpr Leftovers OF_REPLACEMENT[] = {{ANY_FAILURE, CALIBRATION}};
constexpr Leftovers OF_MEMORY[] = {{-101, CALIBRATION}};

constexpr ApiCall ROWS[] = {
    {180, "ZEL_ExtractColorPlanes",
     Call<ZEL_ExtractColorPlanes, Source, Plane<Destination>, Plane<Destination>,
          Plane<Destination>, Mode>,
     STATUS, OF_EXTRACTION},
    {181, "ZEL_ReplaceColorPlanes",
     Call<ZEL_ReplaceColorPlanes, Source, Destination, Plane<Source>, Plane<Source>, Plane<Source>,
          Mode>,
     STATUS, OF_REPLACEMENT, "ZEL_ReplaceColorPlane"},
    {182, "ZEL_GetColorPixel", Call<ZEL_GetColorPixel, Source, Int, Int, Output<RGBValue>>},
    {183, "ZEL_SetColorPixel", Call<ZEL_SetColorPixel, Changed, Int, Int, Word>},
    {184, "ZEL_GetColorLine", GetColorLine},
    {185, "ZEL_SetColorLine", SetColorLine},
    {186, "ZEL_ColorImageToArray", ColorImageToArray},
    {187, "ZEL_ArrayToColorImage", ArrayToColorImage},
    {188, "ZEL_ColorConversion",
     Call<ZEL_ColorConversion, Mode, Int, Int, Int, Mode, Output<uint8_t>, Output<uint8_t>,
          Output<uint8_t>>},
    {189, "ZEL_ColorToInteger", ColorToInteger},
    {190, "ZEL_IntegerToColor", IntegerToColor},
    {191, "ZEL_ColorHistogram", ColorHistogram},
    {192, "ZEL_ColorThreshold",
     Call<ZEL_ColorThreshold, Source, Destination, Mode, Int, Int, Int, Int, Int, Int, Int>, STATUS,
     OF_MEMORY},
    {193, "ZEL_ColorUserLookup", ColorUserLookup, STATUS, OF_MEMORY},
    {194, "ZEL_ColorEqualize", Call<ZEL_ColorEqualize, Source, Destination, Below<2>>, NO_STATUS},
};

}  // namespace

constinit const std::span<const ApiCall> COLOUR_CALLS{ROWS};

}  // namespace test
