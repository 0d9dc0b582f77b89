// Geometry: images turned, shifted, mirrored, transposed, seen in relief.
#include "harness/session/session.h"

namespace test {
namespace {

constexpr Step ROWS[] = {
    {"ZEL_Rotate", [](Session& s) { return ZEL_Rotate(s.u8, s.target, 17, 9, 1); }},
    {"ZEL_Rotate", [](Session& s) { return ZEL_Rotate(s.i16, 0, 17, 9, 0); }},
    {"ZEL_Shift", [](Session& s) { return ZEL_Shift(s.u8, s.target, 3, -2, 9); }},
    {"ZEL_Shift", [](Session& s) { return ZEL_Shift(s.rgb, 0, 3, -2, 9); }},
    {"ZEL_Symmetry",
     [](Session& s) { return ZEL_Symmetry(s.sgl, s.targetFloat, SYMMETRY_LEFT_RIGHT); }},
    {"ZEL_Symmetry", [](Session& s) { return ZEL_Symmetry(s.i16, 0, SYMMETRY_BOTH); }},
    {"ZEL_Transpose", [](Session& s) { return ZEL_Transpose(s.u8, s.target); }},
    {"ZEL_Transpose", [](Session& s) { return ZEL_Transpose(s.complex, 0); }},
    {"ZEL_Transpose", [](Session& s) { return ZEL_Transpose(s.complex, 0); }},
    {"ZEL_3DView", [](Session& s) { return ZEL_3DView(s.u8, s.target, 2, 40, 1, nullptr); }},
    {"ZEL_3DView", [](Session& s) { return ZEL_3DView(s.target, 0, 4, 40, 2, nullptr); }},
};

}  // namespace

constinit const std::span<const Step> GEOMETRY_STEPS{ROWS};

}  // namespace test
