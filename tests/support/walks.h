// What tests of walks over images share: copies, masks, and the number of workers.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>

#include "core/images.h"
#include "engine/bands.h"
#include "harness/test_image.h"

namespace test {

// The number of workers for the time of a scope, with images of any size worth all of them.
class Workers {
 public:
  explicit Workers(int32_t count) { zel::BandsForce(count, 1); }
  Workers(const Workers&) = delete;
  Workers& operator=(const Workers&) = delete;
  ~Workers() { zel::BandsForce(0, 0); }
};

inline TestImage CloneOf(const TestImage& image) {
  const ImageInfo info = image.Info();
  TestImage clone(info.type, info.width, info.height, info.border);
  EXPECT_EQ(zel::ImageClone(image, clone), zel::STATUS_OK);
  return clone;
}

// A mask at an offset, with a third of its pixels 0.
inline TestImage SparseMask(int32_t width, int32_t height, int32_t x, int32_t y, uint64_t seed) {
  TestImage mask(IMAGE_U8, width, height, static_cast<int32_t>(seed % 3), seed);
  Random random(seed + 1);
  for (int32_t row = 0; row < height; row++) {
    for (int32_t column = 0; column < width; column++) {
      if (random.Next() % 3 == 0) mask.Set<uint8_t>(column, row, 0);
    }
  }
  ZEL_SetImageOffset(mask, x, y);
  return mask;
}

}  // namespace test
