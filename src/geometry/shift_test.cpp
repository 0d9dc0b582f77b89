#include <gtest/gtest.h>

#include <limits>
#include <utility>

#include "geometry/geometry_test.h"

namespace {

using test::MOVED_TYPES;
using test::ODD_SIZES;
using test::TestImage;

// The low bits of a whole number, or the number itself.
void SetAll(const TestImage& image, int32_t x, int32_t y, float fill, int64_t whole) {
  switch (image.Info().type) {
    case IMAGE_U8:
      return image.Set(x, y, static_cast<uint8_t>(whole));
    case IMAGE_I16:
      return image.Set(x, y, static_cast<int16_t>(whole));
    case IMAGE_SGL:
      return image.Set(x, y, fill);
    default:
      return image.Set(x, y, static_cast<uint32_t>(whole & 0xFF) * 0x010101u);
  }
}

struct Fill {
  float value;
  int64_t whole;  // cut toward zero; 0 where that has more than 64 bits
};

TestImage Shifted(const TestImage& source, int64_t shiftX, int64_t shiftY, const Fill& fill) {
  const ImageInfo info = source.Info();
  TestImage result(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const int64_t fromX = x - shiftX;
      const int64_t fromY = y - shiftY;
      if (fromX >= 0 && fromX < info.width && fromY >= 0 && fromY < info.height) {
        test::CopyPixel(source, static_cast<int32_t>(fromX), static_cast<int32_t>(fromY), result, x,
                        y);
      } else {
        SetAll(result, x, y, fill.value, fill.whole);
      }
    }
  }
  return result;
}

auto Call(int32_t x, int32_t y, float fill) {
  return [=](ImageRef source, ImageRef dest) { return ZEL_Shift(source, dest, x, y, fill); };
}

TEST(Shift, MovesPixelsOfAllTypesAndSizes) {
  for (const int32_t type : MOVED_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const TestImage source(type, width, height, 1, 5);
      for (const auto& [x, y] : {std::pair{0, 0}, {1, 0}, {-3, 1}, {2, -1}, {8, 2}, {-9, -2}}) {
        SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(width) + " by " +
                     std::to_string(x));
        test::ExpectMoved(source, Shifted(source, x, y, {9, 9}), Call(x, y, 9));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Shift, ByMoreThanTheSizeGivesFillOnly) {
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 20, 11, 1, 5);
    for (const auto& [x, y] : {std::pair{20, 0},
                               {-20, 0},
                               {0, 11},
                               {0, -11},
                               {INT32_MAX, 0},
                               {INT32_MIN, 0},
                               {0, INT32_MAX},
                               {3, INT32_MIN}}) {
      test::ExpectMoved(source, Shifted(source, x, y, {100, 100}), Call(x, y, 100));
    }
  }
}

TEST(Shift, TakesTheLowBitsOfAnyFill) {
  constexpr float INFINITE = std::numeric_limits<float>::infinity();
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 20, 11, 1, 5);
    for (const Fill& fill : {Fill{300.7f, 300},
                             {-1.0f, -1},
                             {-0.9f, 0},
                             {255.99f, 255},
                             {1e10f, 10000000000},
                             {1e19f, 0},
                             {INFINITE, 0},
                             {-INFINITE, 0},
                             {std::numeric_limits<float>::quiet_NaN(), 0}}) {
      test::ExpectMoved(source, Shifted(source, 3, -2, fill), Call(3, -2, fill.value));
    }
  }
}

TEST(Shift, LooksNotAtTheMaskOffset) {
  const TestImage source(IMAGE_U8, 20, 11, 1, 5);
  ZEL_SetImageOffset(source, 1000, -50);
  const TestImage dest(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Shift(source, dest, 2, 3, 0), 0);
  EXPECT_EQ(test::PixelDifference(dest, Shifted(source, 2, 3, {0, 0})), "");
  EXPECT_EQ(source.Info().offsetX, 1000);
  EXPECT_EQ(source.Info().offsetY, -50);
}

TEST(Shift, IsTheSameForAnyNumberOfWorkers) {
  const TestImage source(IMAGE_RGB, 300, 200, 1, 5);
  test::ExpectMovedByWorkers(source, Shifted(source, -17, 40, {9, 9}), Call(-17, 40, 9));
}

TEST(Shift, RefusesInTheOrderOfTheOperands) {
  test::ExpectMoveRefusals(Call(1, 1, 0));
}

TEST(Shift, BearsRefusedMemory) {
  test::ExpectMoveMemoryRefusals(Call(1, 1, 0));
}

}  // namespace
