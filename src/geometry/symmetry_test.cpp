#include <gtest/gtest.h>

#include <utility>

#include "geometry/geometry_test.h"

namespace {

using test::MOVED_TYPES;
using test::ODD_SIZES;
using test::TestImage;

constexpr int32_t ALL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

// Sizes around the tiles in which pixels are transposed.
constexpr std::pair<int32_t, int32_t> TILED_SIZES[] = {
    {15, 64}, {16, 16}, {17, 15}, {64, 64}, {63, 65}, {65, 63}, {128, 33}, {5, 200}, {131, 130}};

struct Place {
  int32_t x, y;
};

Place Mirrored(int32_t symmetry, int32_t width, int32_t height, int32_t x, int32_t y) {
  switch (symmetry) {
    case 0:
      return {x, height - 1 - y};
    case 1:
      return {width - 1 - x, y};
    case 2:
      return {width - 1 - x, height - 1 - y};
    case 3:
      return {y, x};
    default:
      return {height - 1 - y, width - 1 - x};
  }
}

TestImage Expected(const TestImage& source, int32_t symmetry) {
  const ImageInfo info = source.Info();
  const bool turns = symmetry >= 3;
  TestImage result(info.type, turns ? info.height : info.width, turns ? info.width : info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const Place to = Mirrored(symmetry, info.width, info.height, x, y);
      test::CopyPixel(source, x, y, result, to.x, to.y);
    }
  }
  return result;
}

auto Call(int32_t symmetry) {
  return [=](ImageRef source, ImageRef dest) {
    return ZEL_Symmetry(source, dest, static_cast<uint8_t>(symmetry));
  };
}

TEST(Symmetry, MirrorsAllTypesAndSizes) {
  for (const int32_t type : MOVED_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const TestImage source(type, width, height, 1, 5);
      for (const int32_t symmetry : {0, 1, 2}) {
        SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(width) + " x " +
                     std::to_string(height) + ", " + std::to_string(symmetry));
        test::ExpectMoved(source, Expected(source, symmetry), Call(symmetry));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Symmetry, MirrorsSquaresInTheirDiagonals) {
  for (const int32_t type : MOVED_TYPES) {
    for (const int32_t size : {0, 1, 2, 7, 8, 15, 16, 17, 33, 63, 64, 65, 130}) {
      const TestImage source(type, size, size, 1, 5);
      for (const int32_t symmetry : {3, 4}) {
        SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(size) + ", " +
                     std::to_string(symmetry));
        test::ExpectMoved(source, Expected(source, symmetry), Call(symmetry));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Symmetry, InADiagonalNeedsASquare) {
  const TestImage source(IMAGE_U8, 20, 21, 1, 5);
  const TestImage dest(IMAGE_I16, 3, 3, 1, 5);
  const auto before = dest.Block();
  for (const uint8_t symmetry : {uint8_t{3}, uint8_t{4}}) {
    EXPECT_EQ(ZEL_Symmetry(source, dest, symmetry), -306);
    EXPECT_EQ(ZEL_Symmetry(source, 0, symmetry), -306);
    EXPECT_EQ(ZEL_Symmetry(source, test::UNKNOWN_IMAGE, symmetry), -306);
  }
  EXPECT_EQ(dest.Block(), before);
}

TEST(Symmetry, OfAnyOtherNumberWritesNothing) {
  for (const int32_t symmetry : {5, 7, 255}) {
    const TestImage source(IMAGE_U8, 20, 11, 1, 5);
    ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f);
    const TestImage dest(IMAGE_U8, 20, 11, 2, 6);
    const auto before = dest.Block();
    ASSERT_EQ(Call(symmetry)(source, dest), 0);
    EXPECT_EQ(dest.Block(), before);
    EXPECT_EQ(dest.Info().unit, 3);
    const TestImage resized(IMAGE_U8, 3, 3, 2, 6);
    ASSERT_EQ(Call(symmetry)(source, resized), 0);
    EXPECT_EQ(resized.width(), 20);
    EXPECT_EQ(resized.height(), 11);
    const auto sourceBefore = source.Block();
    void* address = nullptr;
    void* addressBefore = nullptr;
    ZEL_GetPixelAddress(source, 0, 0, &addressBefore);
    ASSERT_EQ(Call(symmetry)(source, 0), 0);
    ASSERT_EQ(Call(symmetry)(source, source), 0);
    EXPECT_EQ(source.Block(), sourceBefore);
    ZEL_GetPixelAddress(source, 0, 0, &address);
    EXPECT_EQ(address, addressBefore);
  }
}

TEST(Symmetry, IsTheSameForAnyNumberOfWorkers) {
  const TestImage source(IMAGE_U8, 300, 300, 1, 5);
  for (const int32_t symmetry : {0, 1, 2, 3, 4}) {
    test::ExpectMovedByWorkers(source, Expected(source, symmetry), Call(symmetry));
  }
}

TEST(Symmetry, RefusesInTheOrderOfTheOperands) {
  for (const int32_t symmetry : {0, 1, 3, 4, 9}) test::ExpectMoveRefusals(Call(symmetry));
}

TEST(Symmetry, BearsRefusedMemory) {
  for (const int32_t symmetry : {0, 1, 2, 3, 4}) test::ExpectMoveMemoryRefusals(Call(symmetry));
}

constexpr auto TRANSPOSE = [](ImageRef source, ImageRef dest) {
  return ZEL_Transpose(source, dest);
};

TEST(Transpose, MakesRowsOfColumnsOfAllTypesAndSizes) {
  for (const int32_t type : ALL_TYPES) {
    const auto check = [&](int32_t width, int32_t height) {
      SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(width) + " x " +
                   std::to_string(height));
      const TestImage source(type, width, height, 1, 5);
      test::ExpectMoved(source, Expected(source, 3), TRANSPOSE);
    };
    for (const auto& [width, height] : ODD_SIZES) check(width, height);
    for (const auto& [width, height] : TILED_SIZES) check(width, height);
    if (HasFatalFailure()) return;
  }
}

// Sizes of a megabyte and more, whose results are stored past the caches: rows begin anywhere in a
// cache line, and neither columns nor rows fill whole tiles.
constexpr struct {
  int32_t type, width, height;
} STREAMED_SIZES[] = {{IMAGE_U8, 1029, 1045},
                      {IMAGE_I16, 737, 725},
                      {IMAGE_SGL, 563, 467},
                      {IMAGE_COMPLEX, 357, 375}};

TEST(Transpose, PastTheCachesIsTheSame) {
  for (const auto& size : STREAMED_SIZES) {
    SCOPED_TRACE(size.type);
    const TestImage source(size.type, size.width, size.height, 1, 5);
    test::ExpectMoved(source, Expected(source, 3), TRANSPOSE);
  }
}

TEST(Symmetry, PastTheCachesIsTheSameInBothDiagonals) {
  const TestImage source(IMAGE_SGL, 515, 515, 1, 5);
  for (const int32_t symmetry : {3, 4}) {
    test::ExpectMoved(source, Expected(source, symmetry), Call(symmetry));
  }
}

TEST(Transpose, OfThreeByFiveIsFiveByThree) {
  const TestImage source(IMAGE_U8, 3, 5, 0, 5);
  const TestImage dest(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Transpose(source, dest), 0);
  EXPECT_EQ(dest.width(), 5);
  EXPECT_EQ(dest.height(), 3);
}

TEST(Transpose, IsTheSameForAnyNumberOfWorkers) {
  const TestImage source(IMAGE_U8, 333, 207, 1, 5);
  test::ExpectMovedByWorkers(source, Expected(source, 3), TRANSPOSE);
}

TEST(Transpose, RefusesInTheOrderOfTheOperands) {
  const TestImage bytes(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0, 0, 4);
  EXPECT_EQ(ZEL_Transpose(0, bytes), -200);
  EXPECT_EQ(ZEL_Transpose(test::UNKNOWN_IMAGE, bytes), -200);
  EXPECT_EQ(ZEL_Transpose(opaque, test::UNKNOWN_IMAGE), -301);
  EXPECT_EQ(ZEL_Transpose(words, test::UNKNOWN_IMAGE), -200);
  EXPECT_EQ(ZEL_Transpose(words, bytes), -304);
}

TEST(Transpose, BearsRefusedMemory) {
  test::ExpectMoveMemoryRefusals(TRANSPOSE);
}

}  // namespace
