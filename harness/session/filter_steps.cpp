// Filters: a pixel and its neighbours.
#include "harness/session/session.h"

namespace test {
namespace {

int32_t ConvoluteByStandard(ImageRef source, ImageRef mask, ImageRef target, int32_t family,
                            int32_t size) {
  return ZEL_Convolute(source, mask, target, ZEL_GetConvolutionMatrix(family, size, 0), 0);
}

constexpr Step ROWS[] = {
    {"ZEL_Convolute",
     [](Session& s) { return ConvoluteByStandard(s.u8, 0, s.target, CONVOLUTION_GRADIENT, 3); }},
    {"ZEL_Convolute",
     [](Session& s) { return ConvoluteByStandard(s.u8, s.mask, 0, CONVOLUTION_SMOOTHING, 5); }},
    {"ZEL_Convolute",
     [](Session& s) { return ConvoluteByStandard(s.sgl, 0, 0, CONVOLUTION_GAUSSIAN, 3); }},
    {"ZEL_GetConvolutionMatrix",
     [](Session& s) {
       const ConvolutionMatrix* matrix = ZEL_GetConvolutionMatrix(CONVOLUTION_LAPLACIAN, 3, 3);
       s.Out(matrix->coefficients, 9);
       return 0;
     }},
    {"ZEL_Correlate",
     [](Session& s) {
       return ZEL_Correlate(s.u8, s.other, s.target, {2, 3, 9, 30});
     }},
    {"ZEL_Correlate",
     [](Session& s) {
       return ZEL_Correlate(s.u8, s.mask, 0, {0, 0, 5, 5});
     }},
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
