// What the tests of lookups share: what computed tables stretch between.
#pragma once

#include <cmath>
#include <cstdint>

#include "point/operator_test.h"
#include "tests/support/walks.h"

namespace test {

// The limits of the results, and the range of pixel values within them.
struct Stretch {
  float low, high, rangeMin, rangeMax;
};

inline Stretch StretchOf(const TestImage& source, const TestImage* mask, float rangeMin,
                         float rangeMax) {
  const ImageInfo info = source.Info();
  Stretch stretch{0.0f, 255.0f, rangeMin, rangeMax};
  if (info.type != IMAGE_U8) {
    stretch.low = 1e38f;
    stretch.high = -1e38f;
    for (int32_t y = 0; y < info.height; y++) {
      for (int32_t x = 0; x < info.width; x++) {
        if (!Selects(mask, x, y)) continue;
        const auto pixel = static_cast<float>(PixelOf(source, x, y));
        if (pixel < stretch.low) stretch.low = pixel;
        if (pixel > stretch.high) stretch.high = pixel;
      }
    }
  }
  const bool isWhole = rangeMin == 0.0f && rangeMax == 0.0f;
  if (isWhole || std::isnan(rangeMin) || rangeMin < stretch.low) stretch.rangeMin = stretch.low;
  if (isWhole || std::isnan(rangeMax) || rangeMax > stretch.high) stretch.rangeMax = stretch.high;
  return stretch;
}

}  // namespace test
