// Operators, casts, thresholds and lookups: each pixel by itself.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

template <auto function>
constexpr auto ARITHMETIC = Call<function, Source, Source, FramedDestination, Float>;
template <auto function>
constexpr auto LOGIC = Call<function, Source, Source, FramedDestination, Below<3>, Word>;

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
  const struct { ImageRef source, destination; } a{Source(play), Destination(play)};
  const TypedArray table = ArrayUpTo(LevelsOf(play, a.source), play);
  return ZEL_ConvertByLookup(a.source, a.destination, table.type, table.elements, table.count);
}

int32_t UserLookup(Playground& play) {
  const struct {
    ImageRef source, mask, destination;
  } a{Source(play), Source(play), FramedDestination(play)};
  const TypedArray table = ArrayUpTo(LevelsOf(play, a.source), play);
  return ZEL_UserLookup(a.source, a.mask, a.destination, table.type, table.elements, table.count);
}

int32_t MultiThreshold(Playground& play) {
  const struct {
    ImageRef source, destination;
    int32_t count;
  } a{Source(play), FramedDestination(play), Below<6>(play) - 1};
  auto* classes = play.OutputOf<ThresholdClass>(Held(a.count));
  for (int32_t i = 0; classes && i < a.count; i++) {
    classes[i] = {Float(play), Float(play), Float(play), static_cast<uint16_t>(Below<2>(play))};
  }
  play.model().Gives(classes);
  return ZEL_MultiThreshold(a.source, a.destination, a.count, classes);
}

int32_t AutoBThreshold(Playground& play) {
  const struct {
    ImageRef image;
    int32_t method, type;
  } a{Source(play), Below<7>(play) - 1, ArrayType(play)};
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
  } a{Source(play), ClassCount(play), ArrayType(play)};
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
  } a{Source(play), Source(play), FramedDestination(play), Count(play)};
  const struct {
    const uint32_t* histogram;
    const HistogramReport* report;
    float low, high;
  } b{play.ArrayOf<uint32_t>(Held(a.count)), play.ArrayOf<HistogramReport>(1), Float(play),
      Float(play)};
  return ZEL_Equalize(a.source, a.mask, a.destination, b.histogram, a.count, b.report, b.low,
                      b.high);
}

constexpr Leftovers OF_OPERATORS[] = {{-306, CALIBRATION},        {-303, CALIBRATION},
                                      {-101, CALIBRATION},        {-300, CALIBRATION | SIZE},
                                      {-302, CALIBRATION | SIZE}, {-202, CALIBRATION | SIZE}};
constexpr std::span<const Leftovers> NOTHING_LEFT;
constexpr Leftovers OF_CALIBRATION[] = {{-101, CALIBRATION}};

constexpr ApiCall ROWS[] = {
    {29, "ZEL_Add", ARITHMETIC<ZEL_Add>, STATUS, OF_OPERATORS},
    {30, "ZEL_Subtract", ARITHMETIC<ZEL_Subtract>, STATUS, OF_OPERATORS, "ZEL_Substract"},
    {31, "ZEL_Multiply", ARITHMETIC<ZEL_Multiply>, STATUS, OF_OPERATORS},
    {32, "ZEL_Divide", ARITHMETIC<ZEL_Divide>, STATUS, OF_OPERATORS},
    {33, "ZEL_Modulo", ARITHMETIC<ZEL_Modulo>, STATUS, OF_OPERATORS},
    {34, "ZEL_MulDiv", ARITHMETIC<ZEL_MulDiv>, STATUS, OF_OPERATORS},
    {35, "ZEL_And", LOGIC<ZEL_And>, STATUS, OF_OPERATORS},
    {36, "ZEL_Or", LOGIC<ZEL_Or>, STATUS, OF_OPERATORS},
    {37, "ZEL_Xor", LOGIC<ZEL_Xor>, STATUS, OF_OPERATORS},
    {38, "ZEL_LogDiff", Call<ZEL_LogDiff, Source, Source, FramedDestination, Word>, STATUS,
     OF_OPERATORS},
    {39, "ZEL_Mask", Call<ZEL_Mask, Source, Source, FramedDestination>},
    {40, "ZEL_Compare", Call<ZEL_Compare, Source, Source, FramedDestination, Int, Float>, STATUS,
     OF_OPERATORS},

    {41, "ZEL_Cast", Call<ZEL_Cast, ImageThatMay<ANYTHING>, ImageType>},
    {42, "ZEL_Convert", Call<ZEL_Convert, Source, ImageThatMay<ANYTHING>>, STATUS, OF_CALIBRATION},
    {43, "ZEL_ConvertByLookup", ConvertByLookup, STATUS, OF_CALIBRATION},
    {44, "ZEL_Shift16To8", Call<ZEL_Shift16To8, Source, Destination, Int>, STATUS, NOTHING_LEFT,
     "ZEL_Shift16to8"},

    {45, "ZEL_Threshold", Call<ZEL_Threshold, Source, Destination, Float, Float, Float, Below<2>>,
     STATUS, OF_CALIBRATION},
    {46, "ZEL_MultiThreshold", MultiThreshold, STATUS, OF_CALIBRATION},
    {47, "ZEL_AutoBThreshold", AutoBThreshold},
    {48, "ZEL_AutoMThreshold", AutoMThreshold},

    {49, "ZEL_UserLookup", UserLookup, STATUS},
    {50, "ZEL_MathLookup",
     Call<ZEL_MathLookup, Source, Source, FramedDestination, Int, Float, Float, Float>, STATUS},
    {51, "ZEL_Equalize", Equalize, STATUS},
};

}  // namespace

constinit const std::span<const ApiCall> POINT_CALLS{ROWS};

}  // namespace test
