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

// A triangle, in a frame.
template <int32_t hexagonal>
const StructuringElement* Triangle() {
  static int32_t members[] = {0, 0, 1, 0, 0, 0, 1, 1, 1, 0, 1, 1, 1, 1, 1};
  static StructuringElement element{5, 3, members, hexagonal};
  return &element;
}

constexpr Step ROWS[] = {
    {"ZEL_Get_MO_STD3X3Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD3X3Ptr()); }},
    {"ZEL_Get_MO_STD5X5Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD5X5Ptr()); }},
    {"ZEL_Get_MO_STD7X7Ptr", [](Session& s) { return ElementOut(s, ZEL_Get_MO_STD7X7Ptr()); }},
    {"ZEL_Morphology",
     [](Session& s) {
       return ZEL_Morphology(s.u8, s.target, MORPHOLOGY_ERODE, ZEL_Get_MO_STD3X3Ptr());
     }},
    {"ZEL_Morphology",
     [](Session& s) { return ZEL_Morphology(s.u8, 0, MORPHOLOGY_AUTO_MEDIAN, Triangle<1>()); }},
    {"ZEL_Morphology",
     [](Session& s) { return ZEL_Morphology(s.u8, s.target, MORPHOLOGY_THIN, Triangle<0>()); }},
    {"ZEL_GrayMorphology",
     [](Session& s) {
       return ZEL_GrayMorphology(s.u8, 0, MORPHOLOGY_DILATE, ZEL_Get_MO_STD3X3Ptr());
     }},
    {"ZEL_GrayMorphology",
     [](Session& s) {
       return ZEL_GrayMorphology(s.i16, s.target16, MORPHOLOGY_PROPER_OPEN, Triangle<0>());
     }},
    {"ZEL_GrayMorphology",
     [](Session& s) { return ZEL_GrayMorphology(s.sgl, 0, MORPHOLOGY_CLOSE, Triangle<1>()); }},
};

}  // namespace

constinit const std::span<const Step> MORPHOLOGY_STEPS{ROWS};

}  // namespace test
