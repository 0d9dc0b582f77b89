#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "core/images.h"
#include "engine/bands.h"
#include "harness/test_image.h"
#include "tests/support/refused_memory.h"

namespace {

using test::ODD_SIZES;
using test::PixelDifference;
using test::TestImage;

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFFFFFF;
constexpr int32_t ALL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};
constexpr int32_t WHOLE = WHOLE_IMAGE_EXTENT;

TestImage CloneOf(const TestImage& image) {
  TestImage clone(IMAGE_U8, 0, 0);
  EXPECT_EQ(ZEL_Copy(image, clone), 0);
  return clone;
}

struct Rect {
  int64_t left, top, right, bottom;
};

Rect Limited(const TestImage& image, int64_t top, int64_t left, int64_t height, int64_t width) {
  const int64_t w = image.width();
  const int64_t h = image.height();
  return {std::clamp<int64_t>(left, 0, w), std::clamp<int64_t>(top, 0, h),
          std::min<int64_t>(left + width, w), std::min<int64_t>(top + height, h)};
}

// The image of a size whose pixel (x, y) is the source's at a place.
using Place = std::function<std::pair<int64_t, int64_t>(int64_t x, int64_t y)>;
TestImage Picked(const TestImage& source, int64_t width, int64_t height, const Place& place) {
  const ImageInfo info = source.Info();
  TestImage result(info.type, static_cast<int32_t>(std::max<int64_t>(width, 0)),
                   static_cast<int32_t>(std::max<int64_t>(height, 0)));
  for (int32_t y = 0; y < result.height(); y++) {
    for (int32_t x = 0; x < result.width(); x++) {
      const auto [fromX, fromY] = place(x, y);
      std::memcpy(result.At<uint8_t>(0, y) + x * info.pixelBytes,
                  source.At<uint8_t>(0, static_cast<int32_t>(fromY)) + fromX * info.pixelBytes,
                  static_cast<size_t>(info.pixelBytes));
    }
  }
  return result;
}

// Calls beside the source and in place of it; the result must be the expected one, and nothing
// around it change.
template <class Call>
void ExpectResult(const TestImage& source, const TestImage& expected, const Call& call) {
  const ImageInfo info = source.Info();
  ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -4, 7);
  const TestImage destination(info.type, expected.width(), expected.height(), 3, 8);
  const auto before = destination.Surroundings();
  ASSERT_EQ(call(source, destination), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "");
  EXPECT_EQ(destination.Surroundings(), before);
  const TestImage small(info.type, 2, 1, 1, 8);
  ASSERT_EQ(call(source, small), 0);
  ASSERT_EQ(PixelDifference(small, expected), "");
  for (const bool byReference : {false, true}) {
    const TestImage from = CloneOf(source);
    ASSERT_EQ(call(from, byReference ? ImageRef{from} : 0), 0);
    ASSERT_EQ(PixelDifference(from, expected), "");
    EXPECT_EQ(from.Info().border, info.border);
    EXPECT_EQ(from.Info().unit, 3);
  }
  EXPECT_EQ(destination.Info().unit, 3);
  EXPECT_EQ(destination.Info().yStep, 0.25f);
  EXPECT_EQ(destination.Info().offsetX, -4);
  EXPECT_EQ(destination.Info().offsetY, 7);
}

// ---- ZEL_Copy

TEST(Copy, TakesTypeBorderCalibrationOffsetAndAllBytes) {
  for (const int32_t type : ALL_TYPES) {
    const TestImage source(type, 13, 7, 3, 5);
    ZEL_SetImageCalibration(source, 9, 2, 3);
    ZEL_SetImageOffset(source, 1, 2);
    const TestImage destination(IMAGE_I16, 40, 2, 0, 6);
    ASSERT_EQ(ZEL_Copy(source, destination), 0);
    EXPECT_EQ(destination.Block(), source.Block());
    const ImageInfo info = destination.Info();
    EXPECT_EQ(info.type, type);
    EXPECT_EQ(info.border, 3);
    EXPECT_EQ(info.unit, 9);
    EXPECT_EQ(info.offsetY, 2);
  }
}

TEST(Copy, OntoItselfDoesNothing) {
  const TestImage source(IMAGE_U8, 13, 7, 3, 5);
  const auto before = source.Block();
  EXPECT_EQ(ZEL_Copy(source, source), 0);
  EXPECT_EQ(source.Block(), before);
}

TEST(Copy, RefusesNoImage) {
  const TestImage source(IMAGE_U8, 13, 7, 3, 5);
  EXPECT_EQ(ZEL_Copy(source, 0), -200);
  EXPECT_EQ(ZEL_Copy(0, source), -200);
  EXPECT_EQ(ZEL_Copy(source, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(ZEL_Copy(UNKNOWN_IMAGE, source), -200);
}

// ---- ZEL_Expand

void ExpectExpanded(const TestImage& source, int32_t top, int32_t left, int32_t height,
                    int32_t width, int32_t xFactor, int32_t yFactor) {
  const Rect rect = Limited(source, top, left, height, width);
  const int64_t fx = std::max(xFactor, 1);
  const int64_t fy = std::max(yFactor, 1);
  const int64_t w = std::max<int64_t>(rect.right - rect.left, 0);
  const int64_t h = std::max<int64_t>(rect.bottom - rect.top, 0);
  const bool isEmpty = w * h == 0;
  const TestImage expected =
      Picked(source, isEmpty ? 0 : w * fx, isEmpty ? 0 : h * fy, [&](int64_t x, int64_t y) {
        return std::pair{rect.left + x / fx, rect.top + y / fy};
      });
  ExpectResult(source, expected, [&](ImageRef from, ImageRef to) {
    return ZEL_Expand(from, to, top, left, height, width, xFactor, yFactor);
  });
}

TEST(Expand, RepeatsPixelsOfAllTypesAndSizes) {
  for (const int32_t type : ALL_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const TestImage source(type, width, height, 1, 5);
      for (const int32_t factor : {-3, 0, 1, 2, 3, 4, 5, 17}) {
        SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(width) + " x " +
                     std::to_string(factor));
        ExpectExpanded(source, 0, 0, WHOLE, WHOLE, factor, 1 + std::abs(factor % 3));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Expand, OfFourByFourByTwoAndThreeIsEightByTwelve) {
  const TestImage source(IMAGE_U8, 9, 9, 0, 3);
  const TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Expand(source, destination, 2, 1, 4, 4, 2, 3), 0);
  EXPECT_EQ(destination.width(), 8);
  EXPECT_EQ(destination.height(), 12);
  EXPECT_EQ(destination.Get<uint8_t>(7, 11), source.Get<uint8_t>(4, 5));
}

TEST(Expand, LimitsTheRectangleToTheImage) {
  const TestImage source(IMAGE_I16, 20, 11, 2, 3);
  for (const int32_t left : {-5, 0, 19, 20, 25, INT32_MIN, INT32_MAX}) {
    for (const int32_t width : {-6, 0, 3, 5, 9, INT32_MAX, INT32_MIN}) {
      ExpectExpanded(source, 0, left, WHOLE, width, 2, 2);
      ExpectExpanded(source, left, 3, width, 4, 2, 3);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Expand, RefusesSizesBeyondAllImages) {
  const TestImage source(IMAGE_U8, 20, 11, 2, 3);
  const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
  const auto before = destination.Block();
  const auto sourceBefore = source.Block();
  for (const auto& [x, y] : {std::pair{INT32_MAX, INT32_MAX},
                             {INT32_MAX, 1},
                             {1, INT32_MAX},
                             {1 << 28, 1},
                             {1 << 16, 1 << 15},
                             {214748365, 3}}) {
    EXPECT_EQ(ZEL_Expand(source, destination, 0, 0, WHOLE, WHOLE, x, y), -101) << x << ' ' << y;
    EXPECT_EQ(ZEL_Expand(source, 0, 0, 0, WHOLE, WHOLE, x, y), -101) << x << ' ' << y;
  }
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(source.Block(), sourceBefore);
  EXPECT_EQ(ZEL_Expand(source, destination, 0, 0, 0, 5, INT32_MAX, INT32_MAX), 0);
  EXPECT_EQ(destination.width(), 0);
}

// ---- ZEL_Extract

void ExpectExtracted(const TestImage& source, int32_t top, int32_t left, int32_t height,
                     int32_t width, int32_t xFactor, int32_t yFactor) {
  const Rect rect = Limited(source, top, left, height, width);
  const int64_t fx = std::max(xFactor, 1);
  const int64_t fy = std::max(yFactor, 1);
  int64_t w = 0;
  int64_t h = 0;
  for (int64_t x = rect.left; x < rect.right; x += fx) w++;
  for (int64_t y = rect.top; y < rect.bottom; y += fy) h++;
  if (w == 0 || h == 0) w = h = 0;
  const TestImage expected = Picked(source, w, h, [&](int64_t x, int64_t y) {
    return std::pair{rect.left + x * fx, rect.top + y * fy};
  });
  ExpectResult(source, expected, [&](ImageRef from, ImageRef to) {
    return ZEL_Extract(from, to, top, left, height, width, xFactor, yFactor);
  });
}

constexpr int32_t THINNED_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB};

TEST(Extract, TakesPixelsOfAllTypesAndSizes) {
  for (const int32_t type : THINNED_TYPES) {
    for (const auto& [width, height] : ODD_SIZES) {
      const TestImage source(type, width, height, 1, 5);
      for (const int32_t factor : {-3, 0, 1, 2, 3, 4, 5, 17, 1000, INT32_MAX}) {
        SCOPED_TRACE(std::to_string(type) + ": " + std::to_string(width) + " / " +
                     std::to_string(factor));
        ExpectExtracted(source, 0, 0, WHOLE, WHOLE, factor, 1 + std::abs(factor % 3));
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(Extract, LimitsTheRectangleToTheImage) {
  const TestImage source(IMAGE_RGB, 20, 11, 2, 3);
  for (const int32_t left : {-5, 0, 19, 20, 25, INT32_MIN, INT32_MAX}) {
    for (const int32_t width : {-6, 0, 3, 5, 9, INT32_MAX, INT32_MIN}) {
      ExpectExtracted(source, 0, left, WHOLE, width, 2, 2);
      ExpectExtracted(source, left, 3, width, 4, 2, 3);
      if (HasFatalFailure()) return;
    }
  }
}

// ---- both

TEST(ExpandAndExtract, AreTheSameForAnyNumberOfWorkers) {
  const TestImage source(IMAGE_U8, 500, 300, 3, 3);
  for (const int32_t workers : {1, 2, 3, 8}) {
    zel::BandsForce(workers, 1);
    ExpectExpanded(source, 3, 5, WHOLE, WHOLE, 2, 3);
    ExpectExtracted(source, 3, 5, WHOLE, WHOLE, 3, 2);
  }
  zel::BandsForce(0, 0);
}

TEST(ExpandAndExtract, RefuseInTheOrderOfTheOperands) {
  const TestImage bytes(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage complex(IMAGE_COMPLEX, 9, 5, 1, 4);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0, 0, 4);
  const auto before = bytes.Block();
  const auto expand = [](ImageRef from, ImageRef to) {
    return ZEL_Expand(from, to, 0, 0, WHOLE, WHOLE, 2, 2);
  };
  const auto extract = [](ImageRef from, ImageRef to) {
    return ZEL_Extract(from, to, 0, 0, 0, 0, 2, 2);
  };
  EXPECT_EQ(expand(0, bytes), -200);
  EXPECT_EQ(expand(UNKNOWN_IMAGE, bytes), -200);
  EXPECT_EQ(expand(opaque, UNKNOWN_IMAGE), -301);
  EXPECT_EQ(expand(words, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(expand(words, bytes), -304);
  EXPECT_EQ(extract(0, bytes), -200);
  EXPECT_EQ(extract(opaque, UNKNOWN_IMAGE), -300);
  EXPECT_EQ(extract(complex, complex), -300);
  EXPECT_EQ(extract(words, UNKNOWN_IMAGE), -200);
  EXPECT_EQ(extract(words, bytes), -304);
  EXPECT_EQ(bytes.Block(), before);
}

TEST(ExpandAndExtract, BearRefusedMemory) {
  TestImage source;
  TestImage destination;
  const auto prepare = [&] {
    source = TestImage(IMAGE_U8, 40, 30, 8, 3);
    destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
  };
  for (const bool inPlace : {false, true}) {
    const auto to = [&] { return inPlace ? 0 : ImageRef{destination}; };
    test::RefuseEachAllocation(prepare,
                               [&] { return ZEL_Expand(source, to(), 0, 0, WHOLE, WHOLE, 2, 3); });
    test::RefuseEachAllocation(prepare,
                               [&] { return ZEL_Extract(source, to(), 0, 0, WHOLE, WHOLE, 2, 3); });
  }
}

// ---- ZEL_ImageToImage

TEST(ImageToImage, PastesTheOverlapOnly) {
  for (const int32_t type : ALL_TYPES) {
    const TestImage source(type, 12, 9, 1, 3);
    ZEL_SetImageOffset(source, 70, -80);
    for (const auto& [x, y] : {std::pair{0, 0},
                               {-2, 3},
                               {5, -4},
                               {15, 10},
                               {16, 0},
                               {0, 11},
                               {-12, 0},
                               {0, -9},
                               {-11, -8},
                               {INT32_MIN, 0},
                               {INT32_MAX, INT32_MAX},
                               {0, INT32_MIN}}) {
      const TestImage destination(type, 16, 11, 2, 9);
      ZEL_SetImageOffset(destination, 5, 6);
      const TestImage before = CloneOf(destination);
      const auto around = destination.Surroundings();
      ASSERT_EQ(ZEL_ImageToImage(source, destination, x, y), 0);
      const ImageInfo info = source.Info();
      for (int32_t row = 0; row < 11; row++) {
        for (int32_t column = 0; column < 16; column++) {
          const int64_t fromX = int64_t{column} - x;
          const int64_t fromY = int64_t{row} - y;
          const bool isCovered = fromX >= 0 && fromX < 12 && fromY >= 0 && fromY < 9;
          const TestImage& from = isCovered ? source : before;
          const uint8_t* pixel =
              from.At<uint8_t>(0, isCovered ? static_cast<int32_t>(fromY) : row) +
              (isCovered ? fromX : column) * info.pixelBytes;
          ASSERT_EQ(std::memcmp(destination.At<uint8_t>(0, row) + column * info.pixelBytes, pixel,
                                static_cast<size_t>(info.pixelBytes)),
                    0)
              << column << ", " << row << " pasted at " << x << ", " << y;
        }
      }
      EXPECT_EQ(destination.Surroundings(), around);
      EXPECT_EQ(destination.Info().offsetX, 5);
      EXPECT_EQ(info.offsetX, 70);
      EXPECT_EQ(info.offsetY, -80);
    }
  }
}

// Rows move one after the other from the first, whatever they were before.
TEST(ImageToImage, IntoItselfRepeatsRowsThatMoveDown) {
  for (const bool byReference : {false, true}) {
    for (const auto& [x, y] : {std::pair{0, 3}, {2, 0}, {-2, 0}, {3, 2}, {-3, -2}, {40, 0}}) {
      const TestImage image(IMAGE_I16, 12, 9, 1, 3);
      std::vector<std::vector<int16_t>> rows;
      for (int32_t row = 0; row < 9; row++) {
        rows.emplace_back(image.At<int16_t>(0, row), image.At<int16_t>(12, row));
      }
      for (int32_t row = 0; row < 9; row++) {
        if (row + y < 0 || row + y >= 9) continue;
        const std::vector<int16_t> from = rows[static_cast<size_t>(row)];
        for (int32_t column = 0; column < 12; column++) {
          if (column + x < 0 || column + x >= 12) continue;
          rows[static_cast<size_t>(row + y)][static_cast<size_t>(column + x)] =
              from[static_cast<size_t>(column)];
        }
      }
      ASSERT_EQ(ZEL_ImageToImage(image, byReference ? ImageRef{image} : 0, x, y), 0);
      for (int32_t row = 0; row < 9; row++) {
        EXPECT_TRUE(std::equal(rows[static_cast<size_t>(row)].begin(),
                               rows[static_cast<size_t>(row)].end(), image.At<int16_t>(0, row)))
            << x << ", " << y << " row " << row;
      }
    }
  }
}

TEST(ImageToImage, OnSeveralWorkersIsTheSame) {
  const TestImage source(IMAGE_U8, 300, 200, 1, 3);
  const TestImage alone(IMAGE_U8, 310, 230, 1, 9);
  const TestImage together = CloneOf(alone);
  ASSERT_EQ(ZEL_ImageToImage(source, alone, 7, 20), 0);
  zel::BandsForce(3, 1);
  EXPECT_EQ(ZEL_ImageToImage(source, together, 7, 20), 0);
  zel::BandsForce(0, 0);
  EXPECT_EQ(PixelDifference(together, alone), "");
}

TEST(ImageToImage, RefusesInTheOrderOfTheOperands) {
  const TestImage bytes(IMAGE_U8, 9, 5, 1, 4);
  const TestImage words(IMAGE_I16, 9, 5, 1, 4);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0, 0, 4);
  EXPECT_EQ(ZEL_ImageToImage(0, bytes, 0, 0), -200);
  EXPECT_EQ(ZEL_ImageToImage(UNKNOWN_IMAGE, bytes, 0, 0), -200);
  EXPECT_EQ(ZEL_ImageToImage(bytes, UNKNOWN_IMAGE, 0, 0), -200);
  EXPECT_EQ(ZEL_ImageToImage(bytes, words, 0, 0), -304);
  EXPECT_EQ(ZEL_ImageToImage(opaque, opaque, 0, 0), 0);
  zel::Image* record = nullptr;
  ASSERT_EQ(zel::ImageLookup(opaque, &record), 0);
  record->width = record->height = 2;
  EXPECT_EQ(ZEL_ImageToImage(opaque, 0, 0, 0), -300);
  EXPECT_EQ(ZEL_ImageToImage(opaque, 0, 2, 0), 0);
  record->width = record->height = 0;
}

}  // namespace
