// Pixels of the types that have one number, written by value.
#pragma once

#include <cstdint>

#include "harness/test_image.h"

namespace test {

// A whole number as integer pixels keep it: the low bits.
inline void SetPixel(const TestImage& image, int32_t x, int32_t y, double value) {
  switch (image.Info().type) {
    case IMAGE_U8:
      return image.Set(x, y, static_cast<uint8_t>(static_cast<int64_t>(value)));
    case IMAGE_I16:
      return image.Set(x, y, static_cast<int16_t>(static_cast<int64_t>(value)));
    default:
      return image.Set(x, y, static_cast<float>(value));
  }
}

}  // namespace test
