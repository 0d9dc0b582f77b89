// Morphology: shapes changed by structuring elements.
#include "harness/session/session.h"

namespace test {
namespace {

int32_t ElementOut(Session& s, const StructuringElement* element) {
  s.Out(element->width);
  s.Out(element->elements,
        static_cast<size_t>(element->width) * static_cast<size_t>(element->height));
  return 0;
}

constexpr Step ROWS[] = {
    {"ZEL_Get_MO_STD3X3Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD3X3Ptr()); }},
    {"ZEL_Get_MO_STD5X5Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD5X5Ptr()); }},
    {"ZEL_Get_MO_STD7X7Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD7X7Ptr()); }},
};

}  // namespace

constinit const std::span<const Step> MORPHOLOGY_STEPS{ROWS};

}  // namespace test
