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
constexpr Leftovers OF_FILTERS[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}};

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
};

}  // namespace

constinit const std::span<const ApiCall> FILTER_CALLS{ROWS};

}  // namespace test
