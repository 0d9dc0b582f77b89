// Particle filters: whole particles kept, removed, filled and enclosed.
#include "harness/session/session.h"

namespace test {
namespace {

constexpr Step ROWS[] = {
    {"ZEL_FillHole", [](Session& s) { return ZEL_FillHole(s.u8, s.target, CONNECTIVITY_8); }},
    {"ZEL_RejectBorder",
     [](Session& s) { return ZEL_RejectBorder(s.u8, s.target, CONNECTIVITY_4); }},
    {"ZEL_LowHighPass",
     [](Session& s) {
       return ZEL_LowHighPass(s.u8, s.target, CONNECTIVITY_8, 0, 2, ZEL_Get_MO_STD3X3Ptr());
     }},
    {"ZEL_MagicWand",
     [](Session& s) {
       return ZEL_MagicWand(s.sgl, s.target, 5, 4, 1000.0f, CONNECTIVITY_8, 200.0f);
     }},
    {"ZEL_MagicWand",
     [](Session& s) { return ZEL_MagicWand(s.u8, 0, 5, 4, 60.0f, CONNECTIVITY_4, 200.0f); }},
    {"ZEL_Convex", [](Session& s) { return ZEL_Convex(s.i16, s.target16); }},
    {"ZEL_Convex", [](Session& s) { return ZEL_Convex(s.u8, 0); }},
};

}  // namespace

constinit const std::span<const Step> PARTICLE_FILTER_STEPS{ROWS};

}  // namespace test
