// Operators, casts, thresholds and lookups: each pixel by itself.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

template <auto function>
constexpr auto ARITHMETIC = Call<function, Image, Image, Image, Float>;
template <auto function>
constexpr auto LOGIC = Call<function, Image, Image, Image, Below<3>, Word>;

// Entries of a table that pixels of the image can name; of other images no table is looked at.
int32_t LevelsOf(Playground& play, ImageRef image) {
  const Playground::Shape shape = play.ShapeOf(image);
  switch (shape.type) {
    case IMAGE_U8:
      return 256;
    case IMAGE_I16:
      return 65536;
    default:
      return 0;
  }
}

int32_t ConvertByLookup(Playground& play) {
  const struct { ImageRef source, destination; } a{Image(play), Image(play)};
  const TypedArray table = ArrayUpTo(LevelsOf(play, a.source), play);
  return ZEL_ConvertByLookup(a.source, a.destination, table.type, table.elements, table.count);
}

int32_t UserLookup(Playground& play) {
  const struct { ImageRef source, mask, destination; } a{Image(play), Image(play), Image(play)};
  const TypedArray table = ArrayUpTo(LevelsOf(play, a.source), play);
  return ZEL_UserLookup(a.source, a.mask, a.destination, table.type, table.elements, table.count);
}

int32_t MultiThreshold(Playground& play) {
  const struct {
    ImageRef source, destination;
    int32_t count;
  } a{Image(play), Image(play), Below<6>(play) - 1};
  auto* classes = play.OutputOf<ThresholdClass>(Held(a.count));
  for (int32_t i = 0; classes && i < a.count; i++) {
    classes[i] = {Float(play), Float(play), Float(play), static_cast<uint16_t>(Below<2>(play))};
  }
  return ZEL_MultiThreshold(a.source, a.destination, a.count, classes);
}

int32_t AutoBThreshold(Playground& play) {
  const struct {
    ImageRef image;
    int32_t method, type;
  } a{Image(play), Below<7>(play) - 1, ArrayType(play)};
  const struct {
    void* lookup;
    int32_t* threshold;
  } out{OutputOfType(play, a.type, 256), Output<int32_t>(play)};
  return ZEL_AutoBThreshold(a.image, a.method, a.type, out.lookup, out.threshold);
}

int32_t ClassCount(Playground& play) {
  return Below<8>(play) == 0 ? Int(play) : 2 + Below<256>(play);
}

int32_t AutoMThreshold(Playground& play) {
  const struct {
    ImageRef image;
    int32_t count, type;
  } a{Image(play), ClassCount(play), ArrayType(play)};
  const bool isCount = a.count >= 2 && a.count <= 256;  // else nothing is written
  const struct {
    void* lookup;
    ThresholdClass* classes;
  } out{OutputOfType(play, a.type, 256),
        play.OutputOf<ThresholdClass>(isCount ? Held(a.count) : 0)};
  return ZEL_AutoMThreshold(a.image, a.count, a.type, out.lookup, out.classes);
}

int32_t Equalize(Playground& play) {
  const struct {
    ImageRef source, mask, destination;
    int32_t count;
  } a{Image(play), Image(play), Image(play), Count(play)};
  const struct {
    const uint32_t* histogram;
    const HistogramReport* report;
    float low, high;
  } b{play.ArrayOf<uint32_t>(Held(a.count)), play.ArrayOf<HistogramReport>(1), Float(play),
      Float(play)};
  return ZEL_Equalize(a.source, a.mask, a.destination, b.histogram, a.count, b.report, b.low,
                      b.high);
}

constexpr ApiCall ROWS[] = {
    {29, "ZEL_Add", ARITHMETIC<ZEL_Add>},
    {30, "ZEL_Subtract", ARITHMETIC<ZEL_Subtract>},
    {31, "ZEL_Multiply", ARITHMETIC<ZEL_Multiply>},
    {32, "ZEL_Divide", ARITHMETIC<ZEL_Divide>},
    {33, "ZEL_Modulo", ARITHMETIC<ZEL_Modulo>},
    {34, "ZEL_MulDiv", ARITHMETIC<ZEL_MulDiv>},
    {35, "ZEL_And", LOGIC<ZEL_And>},
    {36, "ZEL_Or", LOGIC<ZEL_Or>},
    {37, "ZEL_Xor", LOGIC<ZEL_Xor>},
    {38, "ZEL_LogDiff", Call<ZEL_LogDiff, Image, Image, Image, Word>},
    {39, "ZEL_Mask", Call<ZEL_Mask, Image, Image, Image>},
    {40, "ZEL_Compare", Call<ZEL_Compare, Image, Image, Image, Int, Float>},

    {41, "ZEL_Cast", Call<ZEL_Cast, Image, ImageType>},
    {42, "ZEL_Convert", Call<ZEL_Convert, Image, Image>},
    {43, "ZEL_ConvertByLookup", ConvertByLookup},
    {44, "ZEL_Shift16To8", Call<ZEL_Shift16To8, Image, Image, Int>},

    {45, "ZEL_Threshold", Call<ZEL_Threshold, Image, Image, Float, Float, Float, Below<2>>},
    {46, "ZEL_MultiThreshold", MultiThreshold},
    {47, "ZEL_AutoBThreshold", AutoBThreshold},
    {48, "ZEL_AutoMThreshold", AutoMThreshold},

    {49, "ZEL_UserLookup", UserLookup},
    {50, "ZEL_MathLookup", Call<ZEL_MathLookup, Image, Image, Image, Int, Float, Float, Float>},
    {51, "ZEL_Equalize", Equalize},
};

}  // namespace

constinit const std::span<const ApiCall> POINT_CALLS{ROWS};

}  // namespace test
