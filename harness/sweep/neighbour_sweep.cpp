// A pixel and its neighbours: filters, morphology, whole particles, shapes.
#include <cstddef>

#include "harness/sweep/sweep.h"

namespace test {
namespace {

// A triangle in a hexagonal frame.
const StructuringElement* Triangle() {
  static int32_t members[] = {0, 0, 1, 0, 0, 0, 1, 1, 1, 0, 1, 1, 1, 1, 1};
  static const StructuringElement element{5, 3, members, 1};
  return &element;
}

void Convolutions(Sweep& sweep) {
  for (int32_t family = CONVOLUTION_GRADIENT; family <= CONVOLUTION_GAUSSIAN; family++) {
    for (const int32_t size : {3, 5, 7}) {
      ConvolutionMatrix* matrix = ZEL_GetConvolutionMatrix(family, size, 1);
      if (!matrix) continue;
      sweep.Add(ZEL_Convolute(sweep.first, 0, sweep.result, matrix, BORDER_FILL_MIRROR));
      sweep.Add(ZEL_Convolute(sweep.first, sweep.mask, sweep.result, matrix, BORDER_FILL_ZERO));
    }
  }
  float coefficients[] = {0.5f, -1.25f, 2.0f, 3.0f, 0.1f, -0.7f, 1.0f, 1.0f, -2.5f};
  ConvolutionMatrix odd{3, 3, coefficients, 2.5f};
  sweep.Add(ZEL_Convolute(sweep.first, 0, sweep.result, &odd, BORDER_FILL_REPLICATE));
}

}  // namespace

void SweepFilters(Sweep& sweep) {
  Convolutions(sweep);
  for (int32_t method = EDGE_DIFFERENTIATION; method <= EDGE_SOBEL; method++) {
    sweep.Add(ZEL_GrayEdge(sweep.first, 0, sweep.result, method, 0));
    sweep.Add(ZEL_GrayEdge(sweep.first, sweep.mask, sweep.result, method, 25));
  }
  constexpr struct { int32_t width, height; } WINDOWS[] = {{3, 3}, {5, 5}, {7, 3}, {11, 9}};
  for (const auto& [width, height] : WINDOWS) {
    sweep.Add(ZEL_LowPass(sweep.first, 0, sweep.result, width, height, 30));
    for (const int32_t order : {0, width * height / 2, width * height - 1, 2}) {
      sweep.Add(ZEL_NthOrder(sweep.first, 0, sweep.result, width, height, order));
    }
  }
  sweep.Add(ZEL_NthOrder(sweep.second, sweep.mask, sweep.result, 3, 5, 4));
  const TestImage part(sweep.type, 5, 3, 0, 8);
  sweep.Add(ZEL_Correlate(sweep.first, part, sweep.result, {0, 0, sweep.height, sweep.width}));
}

void SweepMorphology(Sweep& sweep) {
  for (int32_t operation = MORPHOLOGY_AUTO_MEDIAN; operation <= MORPHOLOGY_THIN; operation++) {
    for (const StructuringElement* element :
         {static_cast<const StructuringElement*>(ZEL_Get_MO_STD3X3Ptr()),
          static_cast<const StructuringElement*>(ZEL_Get_MO_STD7X7Ptr()), Triangle()}) {
      sweep.Add(ZEL_GrayMorphology(sweep.first, sweep.result, operation, element));
      if (sweep.type != IMAGE_U8) continue;
      sweep.Add(ZEL_Morphology(sweep.blobs, sweep.result, operation, element));
    }
  }
}

void SweepParticleFilters(Sweep& sweep) {
  if (sweep.type == IMAGE_U8) {
    for (const uint16_t connectivity : {CONNECTIVITY_4, CONNECTIVITY_8}) {
      sweep.Add(ZEL_FillHole(sweep.blobs, sweep.result, connectivity));
      sweep.Add(ZEL_RejectBorder(sweep.blobs, sweep.result, connectivity));
      for (const bool large : {false, true}) {
        sweep.Add(ZEL_LowHighPass(sweep.blobs, sweep.result, connectivity, large, 2,
                                  ZEL_Get_MO_STD3X3Ptr()));
      }
    }
    sweep.Add(ZEL_Convex(sweep.blobs, sweep.result));
  }
  sweep.Add(ZEL_MagicWand(sweep.first, sweep.result, sweep.width / 2, sweep.height / 2, 60.0f,
                          CONNECTIVITY_8, 200.0f));
}

void SweepShapes(Sweep& sweep) {
  sweep.Add(ZEL_Segmentation(sweep.first, sweep.result));
  if (sweep.type != IMAGE_U8) return;
  sweep.Add(ZEL_Danielsson(sweep.blobs, sweep.result));
  sweep.Add(ZEL_Distance(sweep.blobs, sweep.result, ZEL_Get_MO_STD3X3Ptr()));
  sweep.Add(ZEL_Distance(sweep.blobs, sweep.result, Triangle()));
  for (const int32_t kind : {SKELETON_SET_A, SKELETON_SET_B, SKELETON_INFLUENCE_ZONES}) {
    sweep.Add(ZEL_Skeleton(sweep.blobs, sweep.result, kind));
  }
  sweep.Add(ZEL_Separation(sweep.blobs, sweep.result, 2, ZEL_Get_MO_STD5X5Ptr()));
  CircleReport* circles = nullptr;
  int32_t count = 0;
  sweep.Add(ZEL_Circles(sweep.blobs, sweep.result, 1.0f, 100.0f, &circles, &count));
  sweep.AddTable(0, circles, count);
}

}  // namespace test
