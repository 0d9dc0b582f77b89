// Morphology: shapes changed by structuring elements.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

template <auto function>
int32_t Element([[maybe_unused]] Playground& play) {
  return function()->width;
}

constexpr ApiCall ROWS[] = {
    {100, "ZEL_Get_MO_STD3X3Ptr", Element<ZEL_Get_MO_STD3X3Ptr>, NO_STATUS},
    {101, "ZEL_Get_MO_STD5X5Ptr", Element<ZEL_Get_MO_STD5X5Ptr>, NO_STATUS},
    {102, "ZEL_Get_MO_STD7X7Ptr", Element<ZEL_Get_MO_STD7X7Ptr>, NO_STATUS},
};

}  // namespace

constinit const std::span<const ApiCall> MORPHOLOGY_CALLS{ROWS};

}  // namespace test
