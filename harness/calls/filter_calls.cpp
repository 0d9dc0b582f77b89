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

constexpr ApiCall ROWS[] = {
    {70, "ZEL_GrayEdge", Call<ZEL_GrayEdge, Image, Image, Image, EdgeMethodAnywhere, Float>},
    {71, "ZEL_LowPass", Call<ZEL_LowPass, Image, Image, Image, Side, Side, Float>},
    {72, "ZEL_NthOrder", Call<ZEL_NthOrder, Image, Image, Image, Side, Side, Int>},
};

}  // namespace

constinit const std::span<const ApiCall> FILTER_CALLS{ROWS};

}  // namespace test
