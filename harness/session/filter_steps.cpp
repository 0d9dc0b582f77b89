// Filters: a pixel and its neighbours.
#include "harness/session/session.h"

namespace test {
namespace {

constexpr Step ROWS[] = {
    {"ZEL_GrayEdge",
     [](Session& s) { return ZEL_GrayEdge(s.u8, s.mask, s.target, EDGE_SOBEL, 20); }},
    {"ZEL_GrayEdge", [](Session& s) { return ZEL_GrayEdge(s.i16, 0, 0, EDGE_PREWITT, 0); }},
    {"ZEL_LowPass", [](Session& s) { return ZEL_LowPass(s.u8, 0, s.target, 5, 3, 15); }},
    {"ZEL_LowPass", [](Session& s) { return ZEL_LowPass(s.sgl, s.mask, 0, 3, 3, 10); }},
    {"ZEL_NthOrder", [](Session& s) { return ZEL_NthOrder(s.u8, 0, s.target, 3, 3, 4); }},
    {"ZEL_NthOrder", [](Session& s) { return ZEL_NthOrder(s.i16, s.mask, 0, 5, 4, 2); }},
    {"ZEL_NthOrder", [](Session& s) { return ZEL_NthOrder(s.sgl, 0, s.targetFloat, 5, 5, 12); }},
};

}  // namespace

constinit const std::span<const Step> FILTER_STEPS{ROWS};

}  // namespace test
