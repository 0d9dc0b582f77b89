#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "filters/filter_test.h"
#include "platform/processor.h"

namespace {

using test::CloneOf;
using test::PixelDifference;
using test::Random;
using test::TestImage;

constexpr ApiRect WHOLE = {0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT};

ApiRect AllOf(const TestImage& image) {
  return {0, 0, image.height(), image.width()};
}

int64_t PixelAt(const TestImage& image, int64_t x, int64_t y) {
  if (x < 0 || y < 0 || x >= image.width() || y >= image.height()) return 0;
  return image.Get<uint8_t>(static_cast<int32_t>(x), static_cast<int32_t>(y));
}

struct Side {
  int64_t begin, end;
};

Side Limited(int32_t begin, int32_t size, int32_t imageSize) {
  int64_t first = begin;
  int64_t last = first + size;
  if (first < 0) first = 0;
  if (imageSize < first) first = imageSize - 1;
  if (imageSize < last) last = imageSize - 1;
  return {first, std::max(first, last)};
}

// As it is stated, pixel by pixel.
class Expected {
 public:
  Expected(const TestImage& source, const TestImage& pattern, const ApiRect& rect)
      : source_(source), pattern_(pattern), result(IMAGE_U8, source.width(), source.height()) {
    width_ = pattern.width();
    height_ = pattern.height();
    for (int32_t y = 0; y < source.height(); y++) {
      for (int32_t x = 0; x < source.width(); x++) result.Set<uint8_t>(x, y, 0);
    }
    double squares = 0;
    for (int32_t j = 0; j < height_; j++) {
      for (int32_t i = 0; i < width_; i++) {
        squares += std::pow(static_cast<double>(PixelAt(pattern, i, j)), 2);
      }
    }
    root_ = std::sqrt(squares);
    const Side columns = Limited(rect.left, rect.width, source.width());
    const Side rows = Limited(rect.top, rect.height, source.height());
    int64_t sum = 0;
    for (int64_t y = rows.begin; y < rows.end; y++) {
      for (int64_t x = columns.begin; x < columns.end; x++) sum += PixelAt(source, x, y);
    }
    if (sum == 0) return;
    const int64_t count = columns.end - columns.begin;
    const bool hasGroups = zel::MmxAvailable() != 0 && width_ % 4 == 0 && count > 3;
    for (int64_t y = rows.begin; y < rows.end; y++) {
      for (int64_t x = columns.begin; x < columns.end; x++) {
        const bool grouped = hasGroups && x - columns.begin < count / 4 * 4;
        const uint8_t pixel = grouped ? Grouped(x, y) : Plain(x, y);
        result.Set(static_cast<int32_t>(x), static_cast<int32_t>(y), pixel);
      }
    }
  }

 private:
  struct Sums {
    uint64_t products = 0, squares = 0;
  };
  Sums SumsAt(int64_t left, int64_t top) const {
    Sums sums;
    for (int32_t j = 0; j < height_; j++) {
      for (int32_t i = 0; i < width_; i++) {
        const auto pixel = static_cast<uint64_t>(PixelAt(source_, left + i, top + j));
        sums.products += pixel * pattern_.Get<uint8_t>(i, j);
        sums.squares += pixel * pixel;
      }
    }
    return sums;
  }
  uint8_t Plain(int64_t x, int64_t y) const {
    const Sums sums = SumsAt(x - width_ / 2, y - height_ / 2);
    const auto products = static_cast<double>(sums.products);
    const auto energy = static_cast<double>(sums.squares);
    if (!(energy > 0) || !(root_ > 0)) return 0;
    return static_cast<uint8_t>(products / (std::sqrt(energy) * root_) * 255.0);
  }
  uint8_t Grouped(int64_t x, int64_t y) const {
    const Sums sums = SumsAt(x - (width_ - 1) / 2, y - (height_ - 1) / 2);
    const auto products = static_cast<double>(static_cast<int32_t>(sums.products & 0xFFFFFFFF));
    const auto energy = static_cast<double>(static_cast<int32_t>(sums.squares & 0xFFFFFFFF));
    const double value = products / (std::sqrt(energy) * root_) * 255.0;
    if (std::isnan(value) || std::fabs(value) >= 2147483648.0) return 0;
    return static_cast<uint8_t>(static_cast<uint64_t>(static_cast<int64_t>(value)) & 0xFF);
  }

  const TestImage& source_;
  const TestImage& pattern_;
  int32_t width_, height_;
  double root_;

 public:
  TestImage result;
};

// Beside and in place of the source.
void ExpectCorrelated(const TestImage& source, const TestImage& pattern, const ApiRect& rect) {
  SCOPED_TRACE(std::to_string(pattern.width()) + " x " + std::to_string(pattern.height()) + " on " +
               std::to_string(source.width()) + " x " + std::to_string(source.height()) +
               ", rect " + std::to_string(rect.top) + " " + std::to_string(rect.left) + " " +
               std::to_string(rect.height) + " " + std::to_string(rect.width));
  const Expected expected(source, pattern, rect);
  const auto before = source.Block();
  const TestImage destination(IMAGE_U8, 5, 4, 2, 3);
  ASSERT_EQ(ZEL_Correlate(source, pattern, destination, rect), 0);
  ASSERT_EQ(PixelDifference(destination, expected.result), "");
  ASSERT_EQ(source.Block(), before);
  for (const bool byReference : {false, true}) {
    const TestImage from = CloneOf(source);
    ASSERT_EQ(ZEL_Correlate(from, pattern, byReference ? ImageRef{from} : 0, rect), 0);
    ASSERT_EQ(PixelDifference(from, expected.result), "") << "in place";
  }
}

constexpr std::pair<int32_t, int32_t> TEMPLATES[] = {
    {1, 1}, {2, 1}, {3, 1}, {4, 1}, {1, 2},  {1, 5},  {4, 4},   {5, 5},   {8, 8},   {7, 3},
    {3, 8}, {8, 3}, {6, 6}, {9, 4}, {12, 5}, {16, 2}, {13, 11}, {32, 32}, {33, 17}, {64, 3}};

TEST(Correlate, OfAllTemplatesAndSizes) {
  uint64_t seed = 1;
  for (const auto& [width, height] : TEMPLATES) {
    for (const auto& [columns, rows] :
         {std::pair{1, 1}, {3, 2}, {4, 3}, {7, 9}, {64, 5}, {67, 7}, {130, 6}, {201, 3}}) {
      const TestImage source(IMAGE_U8, columns, rows, static_cast<int32_t>(seed % 3), seed);
      const TestImage pattern(IMAGE_U8, width, height, static_cast<int32_t>(seed % 2), seed + 50);
      seed++;
      ExpectCorrelated(source, pattern, AllOf(source));
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Correlate, InRectangles) {
  const TestImage source(IMAGE_U8, 45, 30, 1, 5);
  for (const auto& [width, height] : {std::pair{4, 4}, {5, 6}, {8, 7}}) {
    const TestImage pattern(IMAGE_U8, width, height, 0, 6);
    for (const ApiRect& rect : std::vector<ApiRect>{{3, 5, 9, 17},
                                                    {0, 0, 1, 1},
                                                    {29, 44, 1, 1},
                                                    {30, 45, 5, 5},
                                                    {31, 46, 5, 5},
                                                    {-5, -7, 12, 20},
                                                    {-5, -7, 3, 3},
                                                    {2, 2, -1, 5},
                                                    {2, 2, 0, 0},
                                                    {10, 10, 100, 100},
                                                    {0, 0, 30, 45},
                                                    {0, 0, 31, 46},
                                                    {0, 0, 29, 3},
                                                    {5, 6, 3, 4},
                                                    {INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX},
                                                    {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX},
                                                    {0, 0, INT32_MIN, INT32_MIN},
                                                    WHOLE}) {
      ExpectCorrelated(source, pattern, rect);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Correlate, WithAnEndlessRectangleLosesTheLastColumnAndRow) {
  const TestImage source(IMAGE_U8, 40, 20, 0, 5);
  const TestImage pattern(IMAGE_U8, 3, 3, 0, 6);
  const TestImage whole(IMAGE_U8, 1, 1);
  const TestImage endless(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Correlate(source, pattern, whole, AllOf(source)), 0);
  ASSERT_EQ(ZEL_Correlate(source, pattern, endless, WHOLE), 0);
  EXPECT_GT(whole.Get<uint8_t>(39, 10), 0);
  EXPECT_GT(whole.Get<uint8_t>(10, 19), 0);
  for (int32_t x = 0; x < 40; x++) EXPECT_EQ(endless.Get<uint8_t>(x, 19), 0);
  for (int32_t y = 0; y < 20; y++) EXPECT_EQ(endless.Get<uint8_t>(39, y), 0);
  EXPECT_EQ(endless.Get<uint8_t>(38, 18), whole.Get<uint8_t>(38, 18));
}

TEST(Correlate, GivesTheMostAtAPerfectMatch) {
  for (const auto& [width, height] : {std::pair{9, 9}, {8, 8}, {12, 5}}) {
    const TestImage source(IMAGE_U8, 90, 60, 0, 5);
    const TestImage pattern(IMAGE_U8, width, height, 0, 6);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) pattern.Set(x, y, source.Get<uint8_t>(30 + x, 20 + y));
    }
    const TestImage result(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_Correlate(source, pattern, result, AllOf(source)), 0);
    const bool grouped = width % 4 == 0;
    const int32_t x = 30 + (grouped ? (width - 1) / 2 : width / 2);
    const int32_t y = 20 + (grouped ? (height - 1) / 2 : height / 2);
    EXPECT_GE(result.Get<uint8_t>(x, y), 254);
    ExpectCorrelated(source, pattern, AllOf(source));
  }
}

// Everything matches, so every result is at a whole number.
TEST(Correlate, CutsResultsAtWholeNumbers) {
  for (const int32_t value : {1, 77, 255}) {
    for (const auto& [width, height] : {std::pair{4, 4}, {5, 5}, {16, 9}}) {
      const TestImage source(IMAGE_U8, 140, 30, 0, 5);
      const TestImage pattern(IMAGE_U8, width, height, 0, 6);
      for (int32_t y = 0; y < 30; y++) {
        for (int32_t x = 0; x < 140; x++)
          source.Set(x, y, static_cast<uint8_t>(x < 100 ? value : 0));
      }
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) pattern.Set<uint8_t>(x, y, 200);
      }
      ExpectCorrelated(source, pattern, AllOf(source));
    }
  }
}

TEST(Correlate, OfZerosIsZero) {
  const TestImage source(IMAGE_U8, 40, 20, 2, 5);
  const TestImage black(IMAGE_U8, 8, 8, 1, 5);
  for (int32_t y = 0; y < 8; y++) {
    for (int32_t x = 0; x < 8; x++) black.Set<uint8_t>(x, y, 0);
  }
  ExpectCorrelated(source, black, AllOf(source));
  ExpectCorrelated(source, TestImage(IMAGE_U8, 0, 0), AllOf(source));
  ExpectCorrelated(TestImage(IMAGE_U8, 0, 0, 1), source, {0, 0, 5, 5});

  // A rectangle of zeros in an image that is not: no results, although windows have energy.
  const TestImage holed = CloneOf(source);
  for (int32_t y = 6; y < 12; y++) {
    for (int32_t x = 10; x < 20; x++) holed.Set<uint8_t>(x, y, 0);
  }
  for (const auto& [width, height] : {std::pair{4, 4}, {5, 5}}) {
    const TestImage pattern(IMAGE_U8, width, height, 0, 6);
    ExpectCorrelated(holed, pattern, {6, 10, 6, 10});
    const TestImage result(IMAGE_U8, 1, 1);
    ASSERT_EQ(ZEL_Correlate(holed, pattern, result, {6, 10, 6, 10}), 0);
    EXPECT_EQ(result.Pixels(), std::vector<uint8_t>(800, 0));
    ExpectCorrelated(holed, pattern, {6, 10, 6, 11});
  }
  // Windows without energy.
  const TestImage dot(IMAGE_U8, 150, 9, 0, 5);
  for (int32_t y = 0; y < 9; y++) {
    for (int32_t x = 0; x < 150; x++) dot.Set<uint8_t>(x, y, x == 70 && y == 4 ? 9 : 0);
  }
  ExpectCorrelated(dot, TestImage(IMAGE_U8, 4, 4, 0, 6), AllOf(dot));
  ExpectCorrelated(dot, TestImage(IMAGE_U8, 5, 3, 0, 6), AllOf(dot));
}

TEST(Correlate, ClearsTheBorderOfTheDestination) {
  const TestImage source(IMAGE_U8, 21, 9, 0, 5);
  const TestImage pattern(IMAGE_U8, 3, 3, 0, 6);
  const TestImage destination(IMAGE_U8, 21, 9, 3, 7);
  ASSERT_EQ(ZEL_Correlate(source, pattern, destination, AllOf(source)), 0);
  for (const uint8_t byte : destination.Surroundings()) ASSERT_EQ(byte, 0);
}

TEST(Correlate, IntoItsTemplate) {
  const TestImage source(IMAGE_U8, 41, 19, 0, 5);
  for (const auto& [width, height] : {std::pair{8, 4}, {5, 5}}) {
    const TestImage pattern(IMAGE_U8, width, height, 1, 6);
    const TestImage copy = CloneOf(pattern);
    ASSERT_EQ(ZEL_Correlate(source, pattern, pattern, AllOf(source)), 0);
    EXPECT_EQ(PixelDifference(pattern, Expected(source, copy, AllOf(source)).result), "");
  }
  // Everything is one image.
  const TestImage all(IMAGE_U8, 12, 10, 1, 6);
  const TestImage copy = CloneOf(all);
  ASSERT_EQ(ZEL_Correlate(all, all, all, AllOf(all)), 0);
  EXPECT_EQ(PixelDifference(all, Expected(copy, copy, AllOf(copy)).result), "");
}

TEST(Correlate, WithoutGroupsWhereTheProcessorHasNone) {
  const TestImage source(IMAGE_U8, 71, 19, 0, 5);
  const TestImage pattern(IMAGE_U8, 8, 8, 0, 6);
  zel::MmxForce(0);
  ExpectCorrelated(source, pattern, AllOf(source));
  zel::MmxForce(-1);
}

// Sums beyond 31 bits, and beyond 32.
TEST(Correlate, OfLargeTemplates) {
  for (const auto& [width, height] : {std::pair{184, 184},
                                      {181, 182},
                                      {183, 181},
                                      {1, 33026},
                                      {33028, 1},
                                      {260, 260},
                                      {261, 257},
                                      {33100, 2}}) {
    const TestImage source(IMAGE_U8, 70, 5, 0, 5);
    TestImage pattern(IMAGE_U8, width, height, 0, 6);
    ExpectCorrelated(source, pattern, {1, 2, 3, 7});
    if (HasFatalFailure()) return;
  }
  const TestImage bright(IMAGE_U8, 300, 300, 0, 5);
  for (int32_t y = 0; y < 300; y++) {
    for (int32_t x = 0; x < 300; x++) {
      bright.Set(x, y, static_cast<uint8_t>(255 - (x * 7 + y) % 3));
    }
  }
  for (const auto& [width, height] :
       {std::pair{184, 184}, {181, 184}, {204, 208}, {260, 260}, {261, 260}}) {
    const TestImage pattern(IMAGE_U8, width, height, 0, 6);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) pattern.Set<uint8_t>(x, y, 255);
    }
    ExpectCorrelated(bright, pattern, {150, 148, 2, 6});
    if (HasFatalFailure()) return;
  }
}

TEST(Correlate, IsTheSameForAnyWorkers) {
  const TestImage source(IMAGE_U8, 303, 211, 0, 3);
  for (const auto& [width, height] : {std::pair{8, 8}, {5, 7}}) {
    const TestImage pattern(IMAGE_U8, width, height, 0, 4);
    const Expected expected(source, pattern, AllOf(source));
    for (const int32_t workers : {1, 2, 3, 8}) {
      const test::Workers forced(workers);
      const TestImage destination(IMAGE_U8, 1, 1);
      ASSERT_EQ(ZEL_Correlate(source, pattern, destination, AllOf(source)), 0);
      ASSERT_EQ(PixelDifference(destination, expected.result), "") << workers;
    }
  }
}

TEST(Correlate, TakesCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 9, 5, 1, 4);
  const TestImage pattern(IMAGE_U8, 3, 3, 0, 4);
  ASSERT_EQ(ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f), 0);
  ASSERT_EQ(ZEL_SetImageOffset(source, 7, -4), 0);
  const TestImage destination(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_Correlate(source, pattern, destination, AllOf(source)), 0);
  ASSERT_EQ(ZEL_Correlate(source, pattern, 0, AllOf(source)), 0);
  for (const TestImage* image : {&destination, &source}) {
    const ImageInfo info = image->Info();
    EXPECT_EQ(info.unit, 3);
    EXPECT_EQ(info.xStep, 0.5f);
    EXPECT_EQ(info.offsetX, 7);
    EXPECT_EQ(info.offsetY, -4);
  }
}

TEST(Correlate, RefusesWhatItCannotTake) {
  const TestImage source(IMAGE_U8, 9, 5, 0, 4);
  const TestImage words(IMAGE_I16, 9, 5, 0, 4);
  const TestImage destination(IMAGE_U8, 4, 4, 1, 5);
  const auto before = destination.Block();
  const ApiRect rect = AllOf(source);
  constexpr ImageRef unknown = test::UNKNOWN_IMAGE;
  EXPECT_EQ(ZEL_Correlate(unknown, words, words, rect), -200);
  EXPECT_EQ(ZEL_Correlate(0, words, words, rect), -200);
  EXPECT_EQ(ZEL_Correlate(words, unknown, unknown, rect), -301);
  EXPECT_EQ(ZEL_Correlate(source, unknown, unknown, rect), -200);
  EXPECT_EQ(ZEL_Correlate(source, 0, destination, rect), -200);
  EXPECT_EQ(ZEL_Correlate(source, words, words, rect), -301);
  EXPECT_EQ(ZEL_Correlate(source, source, unknown, rect), -200);
  EXPECT_EQ(ZEL_Correlate(source, source, words, rect), -304);
  EXPECT_EQ(destination.Block(), before);
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage other(type, 9, 5, 0, 4);
    EXPECT_EQ(ZEL_Correlate(other, source, destination, rect), -301) << type;
    EXPECT_EQ(ZEL_Correlate(source, other, destination, rect), -301) << type;
    EXPECT_EQ(ZEL_Correlate(source, source, other, rect), -304) << type;
  }
}

TEST(Correlate, StaysWholeWhenMemoryIsRefused) {
  TestImage source;
  TestImage destination;
  const TestImage pattern(IMAGE_U8, 8, 8, 0, 7);
  const auto prepare = [&] {
    source = TestImage(IMAGE_U8, 40, 30, 0, 3);
    destination = TestImage(IMAGE_U8, 0, 0, 0, 3);
  };
  for (const bool inPlace : {false, true}) {
    test::RefuseEachAllocation(prepare, [&] {
      return ZEL_Correlate(source, pattern, inPlace ? 0 : ImageRef{destination}, AllOf(source));
    });
  }
}

}  // namespace
