// Pixels, lines and whole arrays.
#include <cstring>

#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "platform/built_in_face.h"
#include "platform/desktop.h"

namespace test {
namespace {

using namespace draw;

int32_t GetRowCol(Playground& play) {
  const struct {
    ImageRef image;
    int16_t column;
    int32_t index, type;
  } a{Source(play), static_cast<int16_t>(Below<2>(play)), Int(play), ArrayType(play)};
  const Playground::Shape shape = play.ShapeOf(a.image);
  const struct {
    void* array;
    int32_t* count;
  } out{OutputOfType(play, a.type, Held(a.column != 0 ? shape.height : shape.width)),
        Output<int32_t>(play)};
  return ZEL_GetRowCol(a.image, a.column, a.index, a.type, out.array, out.count);
}

int32_t GetLine(Playground& play) {
  const struct {
    ImageRef image;
    Line line;
    int32_t type;
  } a{Source(play), LineAnywhere(play), ArrayType(play)};
  const struct {
    void* array;
    int32_t* count;
  } out{OutputOfType(play, a.type, PointsOf(a.line, play.ShapeOf(a.image))), Output<int32_t>(play)};
  return ZEL_GetLine(a.image, a.line.x1, a.line.y1, a.line.x2, a.line.y2, a.type, out.array,
                     out.count);
}

int32_t ImageToArray(Playground& play) {
  const struct {
    ImageRef image;
    Rect rect;
    int32_t type;
  } a{Source(play), RectAnywhere(play), ArrayType(play)};
  const Playground::Shape shape = play.ShapeOf(a.image);
  const size_t pixels = PixelsOf(a.rect, shape);
  const struct {
    void* array;
    int32_t *width, *height;
  } out{OutputOfType(play, a.type, pixels), Output<int32_t>(play), Output<int32_t>(play)};
  return ZEL_ImageToArray(a.image, a.rect.top, a.rect.left, a.rect.height, a.rect.width, a.type,
                          out.array, out.width, out.height);
}

int32_t ArrayToImage(Playground& play) {
  const struct {
    ImageRef image;
    int32_t type, width, height;
  } a{ImageThatMay<SIZE | PIXELS>(play), ArrayType(play), Below<50>(play) - 3, Below<50>(play) - 3};
  const void* array = play.Array(LayoutOf(a.type, Held(a.width) * Held(a.height)));
  return ZEL_ArrayToImage(a.image, a.type, array, a.width, a.height);
}

int32_t DrawMode(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<4>(play);
}

// A split may have resized the first field.
// Mostly small: results grow with them.
int32_t Factor(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<6>(play) - 1;
}
int32_t ResultSide(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<100>(play) - 3;
}
int32_t MethodAnywhere(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<5>(play);
}

// For the time of one call, letters that are the same on every machine.
class BuiltInLetters {
 public:
  BuiltInLetters() { zel::FontsUse(&zel::BUILT_IN_FACE); }
  BuiltInLetters(const BuiltInLetters&) = delete;
  BuiltInLetters& operator=(const BuiltInLetters&) = delete;
  ~BuiltInLetters() { zel::FontsUse(nullptr); }
};

// Some bytes, of which the last one is zero, or NULL now and then. They stay until the next draw.
template <uint32_t most>
const char* ZeroTerminated(Playground& play) {
  static char text[most];
  const int32_t length = Below<most>(play);
  const char* bytes = length == 0 ? nullptr : play.ArrayOf<char>(static_cast<size_t>(length));
  if (!bytes) return nullptr;
  std::memcpy(text, bytes, static_cast<size_t>(length));
  text[length - 1] = 0;
  return text;
}
int32_t TextMode(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<5>(play);
}
int32_t TextPlace(Playground& play) {
  return Below<4>(play) == 0 ? Int(play) : Below<60>(play) - 20;
}
int32_t TextSize(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<50>(play);
}
int32_t DrawText(Playground& play) {
  const BuiltInLetters letters;
  return Call<ZEL_DrawText, Source, FramedDestination, TextPlace, TextPlace, TextMode,
              ZeroTerminated<300>, TextSize, Int, Below<3>, ZeroTerminated<40>, Output<int32_t>>(
      play);
}

const RGBValue* Palette(Playground& play) {
  return Below<4>(play) == 0 ? nullptr : play.ArrayOf<RGBValue>(256);
}

// What another program left in the clipboard: the header of a bitmap, mostly a good one, and bytes.
void BitmapAnywhere(Playground& play) {
  const auto number = [&play](int32_t usual) { return Below<16>(play) == 0 ? Int(play) : usual; };
  const int32_t fields[] = {number(40),
                            number(Below<12>(play) - 1),
                            number(Below<12>(play) - 3),
                            number(1 | (Below<2>(play) == 0 ? 8 : 24) << 16),
                            number(0),
                            0,
                            0,
                            0,
                            number(Below<8>(play)),
                            0};
  uint8_t bitmap[400] = {};
  std::memcpy(bitmap, fields, sizeof fields);
  for (size_t i = sizeof fields; i < sizeof bitmap; i += 7) bitmap[i] = play.input().Byte();
  zel::DesktopInUse().clipboardWrite({bitmap, static_cast<size_t>(Below<401>(play))});
}

int32_t ClipboardToImage(Playground& play) {
  if (Below<4>(play) != 0) BitmapAnywhere(play);
  const struct {
    ImageRef image;
    RGBValue* palette;
    int32_t* available;
  } a{ImageThatMay<SIZE | PIXELS>(play), Output<RGBValue, 256>(play), Output<int32_t>(play)};
  return ZEL_ClipboardToImage(a.image, a.palette, a.available);
}
// It is told first whether there is a picture.
constexpr Leftovers OF_CLIPBOARD[] = {
    {-200, OUTPUTS}, {-301, OUTPUTS}, {-101, OUTPUTS}, {-1, SIZE | PIXELS | OUTPUTS}};
constexpr char CLIPBOARD[] = "ZEL_ClipboardToImage";

// The destination may be a copy of the source already.
constexpr Leftovers OF_DRAWING[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}};

constexpr ApiCall ROWS[] = {
    {18, "ZEL_GetPixelValue", Call<ZEL_GetPixelValue, Source, Int, Int, Output<float>>},
    {19, "ZEL_SetPixelValue", Call<ZEL_SetPixelValue, Changed, Int, Int, Float>},
    {20, "ZEL_GetRowCol", GetRowCol},
    {21, "ZEL_SetRowCol", Call<ZEL_SetRowCol, Changed, Below<2>, Int, ArrayToRead>},
    {22, "ZEL_GetLine", GetLine},
    {23, "ZEL_SetLine", Call<ZEL_SetLine, Changed, LineAnywhere, ArrayToRead>},
    {24, "ZEL_ImageToArray", ImageToArray},
    {25, "ZEL_ArrayToImage", ArrayToImage},
    {26, "ZEL_FillImage",
     Call<ZEL_FillImage, ImageThatMay<PIXELS | BORDER>, Source, Float, Word, Float, Float>},
    {27, "ZEL_ClearPixels", Call<ZEL_ClearPixels, ImageThatMay<PIXELS | BORDER>>},
    {28, "ZEL_Interlace", Call<ZEL_Interlace, Destination, Destination, Destination, Below<3>>,
     STATUS},
    {90, "ZEL_Copy", Call<ZEL_Copy, Source, Image>},
    {91, "ZEL_Expand",
     Call<ZEL_Expand, Source, FramedDestination, Int, Int, Int, Int, Factor, Factor>},
    {92, "ZEL_Extract",
     Call<ZEL_Extract, Source, FramedDestination, Int, Int, Int, Int, Factor, Factor>},
    {93, "ZEL_ImageToImage", Call<ZEL_ImageToImage, Source, Changed, Int, Int>},
    {94, "ZEL_Resample",
     Call<ZEL_Resample, Source, Image, Int, Int, Int, Int, ResultSide, ResultSide, MethodAnywhere>},
    {167,
     "ZEL_ImageToClipboard",
     Call<ZEL_ImageToClipboard, Source, Palette>,
     STATUS,
     {},
     CLIPBOARD},
    {168, "ZEL_ClipboardToImage", ClipboardToImage, STATUS, OF_CLIPBOARD},
    {120, "ZEL_DrawLine",
     Call<ZEL_DrawLine, Source, FramedDestination, LineAnywhere, DrawMode, Float>, STATUS,
     OF_DRAWING},
    {121, "ZEL_DrawRect",
     Call<ZEL_DrawRect, Source, FramedDestination, Int, Int, Int, Int, DrawMode, Float>, STATUS,
     OF_DRAWING},
    {122, "ZEL_DrawOval",
     Call<ZEL_DrawOval, Source, FramedDestination, Int, Int, Int, Int, DrawMode, Float>, STATUS,
     OF_DRAWING},
    {123, "ZEL_DrawText", DrawText, STATUS, OF_DRAWING},
};

}  // namespace

constinit const std::span<const ApiCall> UTILITY_CALLS{ROWS};

}  // namespace test
