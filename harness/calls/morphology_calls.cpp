// Morphology: shapes changed by structuring elements.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"
#include "harness/calls/elements.h"

namespace test {
namespace {

using namespace draw;

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
    {130, "ZEL_Get_MO_STD3X3Ptr", ElementOf<ZEL_Get_MO_STD3X3Ptr>, NO_STATUS},
    {131, "ZEL_Get_MO_STD5X5Ptr", ElementOf<ZEL_Get_MO_STD5X5Ptr>, NO_STATUS},
    {132, "ZEL_Get_MO_STD7X7Ptr", ElementOf<ZEL_Get_MO_STD7X7Ptr>, NO_STATUS},
    {133, "ZEL_Morphology",
     Call<ZEL_Morphology, FramedSource, FramedDestination, Operation, Element>, STATUS,
     OF_MORPHOLOGY},
    {134, "ZEL_GrayMorphology",
     Call<ZEL_GrayMorphology, FramedSource, FramedDestination, Operation, Element>, STATUS,
     OF_MORPHOLOGY},
};

}  // namespace

constinit const std::span<const ApiCall> MORPHOLOGY_CALLS{ROWS};

}  // namespace test
