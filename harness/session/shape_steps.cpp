// Shapes: distance maps, circles, skeletons, zones, touching particles.
#include "harness/session/session.h"

namespace test {
namespace {

constexpr Step ROWS[] = {
    {"ZEL_Danielsson", [](Session& s) { return ZEL_Danielsson(s.u8, s.target); }},
    {"ZEL_Distance",
     [](Session& s) { return ZEL_Distance(s.u8, s.target, ZEL_Get_MO_STD3X3Ptr()); }},
    {"ZEL_Circles",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_Circles(s.u8, s.target, 1.0f, 100.0f, &s.circles, &count);
       if (result == 0) s.Out(s.circles, static_cast<size_t>(count));
       return result;
     }},
    {"ZEL_Skeleton", [](Session& s) { return ZEL_Skeleton(s.u8, s.target, SKELETON_SET_A); }},
    {"ZEL_Skeleton", [](Session& s) { return ZEL_Skeleton(s.u8, 0, SKELETON_INFLUENCE_ZONES); }},
    {"ZEL_Segmentation", [](Session& s) { return ZEL_Segmentation(s.i16, s.target16); }},
    {"ZEL_Separation",
     [](Session& s) { return ZEL_Separation(s.other, s.target, 2, ZEL_Get_MO_STD5X5Ptr()); }},
};

}  // namespace

constinit const std::span<const Step> SHAPE_STEPS{ROWS};

}  // namespace test
