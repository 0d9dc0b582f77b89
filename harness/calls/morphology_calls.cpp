// Morphology: shapes changed by structuring elements.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

// Mostly sides that the borders of the playground serve, else some that no border does.
int32_t Side(Playground& play) {
  constexpr int32_t others[] = {INT32_MIN, -1, 1000000000, INT32_MAX};
  return Below<16>(play) == 0 ? others[Below<4>(play)] : Below<12>(play);
}

const StructuringElement* Element(Playground& play) {
  const struct { int32_t width, height, frame; } a{Side(play), Side(play), Below<4>(play)};
  constexpr int32_t frames[] = {0, 1, 0x10000, -1};
  const bool isServed = std::max(a.width, a.height) < 12;
  const size_t positions = isServed ? Held(a.width) * Held(a.height) : 0;
  auto* members = play.ArrayOf<int32_t>(positions);
  for (size_t i = 0; members && i < positions; i++) members[i] &= 1;
  play.model().Gives(members);
  auto* element = play.OutputOf<StructuringElement>(1);
  if (element) *element = {a.width, a.height, members, frames[a.frame]};
  play.model().Gives(element);
  return element;
}

int32_t Operation(Playground& play) {
  return Below<16>(play) == 0 ? Int(play) : Below<13>(play);
}

template <auto function>
int32_t ElementOf([[maybe_unused]] Playground& play) {
  return function()->elements ? 0 : -1;
}

// Where the source is copied, the border comes along if both are of one width.
constexpr Leftovers OF_MORPHOLOGY[] = {{-101, CALIBRATION | SIZE | PIXELS | BORDER}};

constexpr ApiCall ROWS[] = {
    {100, "ZEL_Get_MO_STD3X3Ptr", ElementOf<ZEL_Get_MO_STD3X3Ptr>, NO_STATUS},
    {101, "ZEL_Get_MO_STD5X5Ptr", ElementOf<ZEL_Get_MO_STD5X5Ptr>, NO_STATUS},
    {102, "ZEL_Get_MO_STD7X7Ptr", ElementOf<ZEL_Get_MO_STD7X7Ptr>, NO_STATUS},
    {103, "ZEL_Morphology",
     Call<ZEL_Morphology, FramedSource, FramedDestination, Operation, Element>, STATUS,
     OF_MORPHOLOGY},
    {104, "ZEL_GrayMorphology",
     Call<ZEL_GrayMorphology, FramedSource, FramedDestination, Operation, Element>, STATUS,
     OF_MORPHOLOGY},
};

}  // namespace

constinit const std::span<const ApiCall> MORPHOLOGY_CALLS{ROWS};

}  // namespace test
