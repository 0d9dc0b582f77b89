// Filters: a pixel and its neighbours.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

// Mostly sides that the borders of the playground serve.
int32_t Side(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<10>(play);
}

int32_t EdgeMethodAnywhere(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<7>(play);
}

// Under a mask the border comes along where both are of one width.
constexpr Leftovers OF_FILTERS[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}, {-102, BORDER}};

// Of any shape that a border of the playground serves, and any coefficients.
int32_t Convolute(Playground& play) {
  const struct {
    ImageRef source, mask, destination;
    int32_t width, height;
    float divider;
    int32_t fill, kind;
  } a{MirroredSource(play), Source(play), FramedDestination(play), Side(play), Side(play),
      Float(play),          Int(play),    Below<4>(play)};
  // Larger ones are not there.
  const bool isRead = a.width > 0 && a.height > 0 && a.width < 64 && a.height < 64;
  auto* coefficients = isRead ? play.ArrayOf<float>(Held(int64_t{a.width} * a.height)) : nullptr;
  for (int32_t i = 0; coefficients && a.kind != 0 && i < a.width * a.height; i++) {
    coefficients[i] = static_cast<float>(Below<7>(play) - 2);
  }
  play.model().Gives(coefficients);
  ConvolutionMatrix matrix{a.width, a.height, coefficients, a.divider};
  const bool isNull = Below<64>(play) == 0;
  return ZEL_Convolute(a.source, a.mask, a.destination, isNull ? nullptr : &matrix, a.fill);
}

int32_t ConvoluteByStandard(Playground& play) {
  const struct {
    ImageRef source, mask, destination;
    int32_t family, size, index, fill;
  } a{MirroredSource(play),
      Source(play),
      FramedDestination(play),
      Int(play),
      Int(play),
      Int(play),
      Int(play)};
  return ZEL_Convolute(a.source, a.mask, a.destination,
                       ZEL_GetConvolutionMatrix(a.family, a.size, a.index), a.fill);
}

int32_t Correlate(Playground& play) {
  const struct {
    ImageRef source, pattern, destination;
    ApiRect rect;
  } a{Source(play),
      Source(play),
      FramedDestination(play),
      {Int(play), Int(play), Int(play), Int(play)}};
  return ZEL_Correlate(a.source, a.pattern, a.destination, a.rect);
}

constexpr ApiCall ROWS[] = {
    {70, "ZEL_GrayEdge",
     Call<ZEL_GrayEdge, MirroredSource, Source, FramedDestination, EdgeMethodAnywhere, Float>,
     STATUS, OF_FILTERS},
    {71, "ZEL_LowPass",
     Call<ZEL_LowPass, MirroredSource, Source, FramedDestination, Side, Side, Float>, STATUS,
     OF_FILTERS},
    {72, "ZEL_NthOrder",
     Call<ZEL_NthOrder, MirroredSource, Source, FramedDestination, Side, Side, Int>, STATUS,
     OF_FILTERS, "KORNthOrder"},
    {73, "ZEL_Convolute", Convolute, STATUS, OF_FILTERS},
    {74, "ZEL_GetConvolutionMatrix", ConvoluteByStandard, STATUS, OF_FILTERS, "ZEL_Convolute"},
    {75, "ZEL_Correlate", Correlate, STATUS, OF_FILTERS},
};

}  // namespace

constinit const std::span<const ApiCall> FILTER_CALLS{ROWS};

}  // namespace test
