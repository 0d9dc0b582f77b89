#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <set>
#include <utility>

#include "harness/test_image.h"
#include "tests/support/pixels.h"
#include "tests/support/walks.h"
#include "utilities/lines.h"

namespace {

using test::CloneOf;
using test::PixelDifference;
using test::TestImage;
using Points = std::set<std::pair<int64_t, int64_t>>;  // of the whole plane

struct Box {
  int32_t top, left, height, width;
};

constexpr int32_t MODES[] = {DRAW_FRAME, DRAW_PAINT, DRAW_INVERT_FRAME, DRAW_INVERT_PAINT};
constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL};

bool Paints(int32_t mode) {
  return mode == DRAW_PAINT || mode == DRAW_INVERT_PAINT;
}

// ---- shapes as they are stated, pixel by pixel

Points RectPixels(const Box& box, bool painted) {
  Points points;
  for (int64_t y = box.top; y < int64_t{box.top} + box.height; y++) {
    for (int64_t x = box.left; x < int64_t{box.left} + box.width; x++) {
      const bool isEdge = y == box.top || y == int64_t{box.top} + box.height - 1 || x == box.left ||
                          x == int64_t{box.left} + box.width - 1;
      if (painted || isEdge) points.emplace(x, y);
    }
  }
  return points;
}

bool EllipseHolds(const Box& box, int64_t x, int64_t y) {
  const int64_t w = box.width;
  const int64_t h = box.height;
  const int64_t u = 2 * (x - box.left) + 1 - w;
  const int64_t v = 2 * (y - box.top) + 1 - h;
  return h * h * u * u + w * w * v * v <= w * w * h * h;
}

bool OvalHolds(const Box& box, int64_t x, int64_t y) {
  const int64_t i = x - box.left;
  const int64_t j = y - box.top;
  if (i < 0 || j < 0 || i >= box.width || j >= box.height) return false;
  return std::abs(2 * i + 1 - box.width) <= 1 || std::abs(2 * j + 1 - box.height) <= 1 ||
         EllipseHolds(box, x, y);
}

Points OvalPixels(const Box& box, bool painted) {
  Points points;
  for (const auto& [x, y] : RectPixels(box, true)) {
    if (!OvalHolds(box, x, y)) continue;
    const bool isEdge = !OvalHolds(box, x - 1, y) || !OvalHolds(box, x + 1, y) ||
                        !OvalHolds(box, x, y - 1) || !OvalHolds(box, x, y + 1);
    if (painted || isEdge) points.emplace(x, y);
  }
  return points;
}

// What of an oval is drawn into an image of this size.
Points OvalPixelsIn(const Box& box, bool painted, int32_t width, int32_t height) {
  if (box.width < 2 || box.height < 2) return RectPixels(box, painted);
  const bool isInside = box.left >= 0 && box.top >= 0 && box.left + box.width <= width &&
                        box.top + box.height <= height;
  if (isInside) return OvalPixels(box, painted);
  int32_t corners = 0;
  for (const int32_t y : {0, height - 1}) {
    for (const int32_t x : {0, width - 1}) corners += EllipseHolds(box, x, y) ? 1 : 0;
  }
  if (corners == 4) return painted ? RectPixels({0, 0, height, width}, true) : Points();
  const int32_t centreX = box.left + box.width / 2;
  const int32_t centreY = box.top + box.height / 2;
  const bool hasCentre = centreX >= 0 && centreX < width && centreY >= 0 && centreY < height;
  return corners == 0 && !hasCentre ? Points() : OvalPixels(box, painted);
}

double RangeSum(const TestImage& image) {
  const bool isFloat = image.Info().type == IMAGE_SGL;
  double smallest = isFloat ? static_cast<double>(1e38f) : 2147483647.0;
  double largest = isFloat ? static_cast<double>(-1e38f) : 0;
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      const double pixel = PixelOf(image, x, y);
      if (pixel < smallest) smallest = pixel;
      if (pixel > largest) largest = pixel;
    }
  }
  return smallest == largest ? 0 : smallest + largest;
}

TestImage Drawn(const TestImage& source, const Points& points, int32_t mode, double value) {
  TestImage result = CloneOf(source);
  const bool isByte = source.Info().type == IMAGE_U8;
  const bool inverts = mode == DRAW_INVERT_FRAME || mode == DRAW_INVERT_PAINT;
  const double sum = isByte ? 255 : static_cast<double>(static_cast<float>(RangeSum(source)));
  for (const auto& [left, top] : points) {
    if (left < 0 || top < 0 || left >= source.width() || top >= source.height()) continue;
    const auto x = static_cast<int32_t>(left);
    const auto y = static_cast<int32_t>(top);
    test::SetPixel(result, x, y, inverts ? sum - PixelOf(source, x, y) : value);
  }
  return result;
}

using Draw = std::function<int32_t(ImageRef, ImageRef, int32_t mode, float value)>;

void ExpectDrawn(const TestImage& source, const Draw& draw, const Points& points, int32_t mode,
                 float value) {
  const TestImage expected = Drawn(source, points, mode, static_cast<double>(value));
  const TestImage destination(source.Info().type, 2, 3, 2, 9);
  const auto before = source.Block();
  ASSERT_EQ(draw(source, destination, mode, value), 0);
  ASSERT_EQ(PixelDifference(destination, expected), "") << "mode " << mode;
  ASSERT_EQ(source.Block(), before);
  for (const bool byReference : {false, true}) {
    const TestImage own = CloneOf(source);
    ASSERT_EQ(draw(own, byReference ? ImageRef{own} : 0, mode, value), 0);
    ASSERT_EQ(own.Block(), expected.Block()) << "in place, mode " << mode;
  }
}

Draw Rect(const Box& box) {
  return [=](ImageRef source, ImageRef destination, int32_t mode, float value) {
    return ZEL_DrawRect(source, destination, box.top, box.left, box.height, box.width, mode, value);
  };
}
Draw Oval(const Box& box) {
  return [=](ImageRef source, ImageRef destination, int32_t mode, float value) {
    return ZEL_DrawOval(source, destination, box.top, box.left, box.height, box.width, mode, value);
  };
}

constexpr Box BOXES[] = {{2, 3, 6, 9},   {0, 0, 12, 20},  {-3, -4, 8, 9},  {5, 12, 20, 30},
                         {-5, 4, 30, 3}, {3, -7, 2, 50},  {4, 4, 1, 6},    {4, 4, 6, 1},
                         {4, 4, 1, 1},   {4, 4, 0, 5},    {4, 4, 5, -2},   {-9, 3, 9, 4},
                         {3, -9, 4, 9},  {12, 3, 4, 4},   {3, 20, 4, 4},   {-8, -8, 40, 60},
                         {2, 2, 2, 2},   {-20, 2, 24, 9}, {-1, -1, 14, 22}};

TEST(DrawRect, DrawsOutlinesAndInsides) {
  for (const int32_t type : TYPES) {
    const TestImage source(type, 20, 12, 1, 3);
    for (const Box& box : BOXES) {
      for (const int32_t mode : MODES) {
        SCOPED_TRACE(std::to_string(box.top) + " " + std::to_string(box.left));
        ExpectDrawn(source, Rect(box), RectPixels(box, Paints(mode)), mode, 77.75f);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(DrawOval, DrawsOutlinesAndInsides) {
  for (const int32_t type : TYPES) {
    const TestImage source(type, 20, 12, 1, 3);
    for (const Box& box : BOXES) {
      for (const int32_t mode : MODES) {
        SCOPED_TRACE(std::to_string(box.top) + " " + std::to_string(box.left));
        ExpectDrawn(source, Oval(box), OvalPixelsIn(box, Paints(mode), 20, 12), mode, -3.5f);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(DrawOval, HasOneSymmetricClosedOutlineInBoxesOfAllSizes) {
  const TestImage source(IMAGE_U8, 42, 42, 0, 3);
  for (int32_t height = 1; height <= 40; height++) {
    for (int32_t width = 1; width <= 40; width++) {
      const Box box{1, 1, height, width};
      for (const int32_t mode : {DRAW_FRAME, DRAW_PAINT}) {
        const TestImage result(IMAGE_U8, 1, 1);
        ASSERT_EQ(Oval(box)(source, result, mode, 44), 0);
        const Points points = OvalPixelsIn(box, Paints(mode), 42, 42);
        ASSERT_EQ(PixelDifference(result, Drawn(source, points, mode, 44)), "")
            << width << " x " << height;
      }
    }
  }
}

TEST(DrawOval, FillsAnImageWhoseCornersItHolds) {
  const TestImage image(IMAGE_U8, 10, 10, 0, 3);
  ASSERT_EQ(ZEL_DrawOval(image, 0, -10, -10, 30, 30, DRAW_PAINT, 9), 0);
  for (const uint8_t pixel : image.Pixels()) EXPECT_EQ(pixel, 9);
  const TestImage other(IMAGE_U8, 10, 10, 0, 3);
  const auto before = other.Block();
  ASSERT_EQ(ZEL_DrawOval(other, 0, -10, -10, 30, 30, DRAW_FRAME, 9), 0);
  EXPECT_EQ(other.Block(), before);
}

TEST(DrawOval, BearsBoxesOfAnySize) {
  const TestImage image(IMAGE_U8, 30, 20, 0, 3);
  for (const int32_t place : {INT32_MIN, INT32_MIN + 1, -1000000000, -7, 0, 5, INT32_MAX}) {
    for (const int32_t size : {INT32_MIN, 0, 3, 2000000000, INT32_MAX}) {
      for (const int32_t mode : MODES) {
        EXPECT_EQ(ZEL_DrawOval(image, 0, place, place, size, size, mode, 9), 0);
        EXPECT_EQ(ZEL_DrawOval(image, 0, place, 3, size, 9, mode, 9), 0);
        EXPECT_EQ(ZEL_DrawOval(image, 0, 3, place, 9, size, mode, 9), 0);
        EXPECT_EQ(ZEL_DrawRect(image, 0, place, place, size, size, mode, 9), 0);
        EXPECT_EQ(ZEL_DrawLine(image, 0, place, 3, size, place, mode, 9), 0);
      }
    }
  }
}

// A circle of 2^31 - 1 pixels across: u^2 <= 2^32 - 3 in its first row, so that this ends 32767
// columns from its middle.
TEST(DrawOval, IsExactInTheLargestBoxes) {
  const TestImage image(IMAGE_U8, 8, 2, 0, 3);
  ASSERT_EQ(ZEL_FillImage(image, 0, 0, 0, 0, 0), 0);
  const int32_t side = INT32_MAX;
  ASSERT_EQ(ZEL_DrawOval(image, 0, 0, 3 - 32767 - side / 2, side, side, DRAW_PAINT, 1), 0);
  for (int32_t x = 0; x < 8; x++) {
    EXPECT_EQ(image.Get<uint8_t>(x, 0), x <= 3 ? 1 : 0) << x;
    EXPECT_EQ(image.Get<uint8_t>(x, 1), 1) << x;
  }
}

TEST(DrawLine, WalksTheClippedLine) {
  struct Line {
    int32_t x1, y1, x2, y2;
  };
  for (const int32_t type : TYPES) {
    const TestImage source(type, 20, 12, 1, 3);
    for (const Line& line : {Line{0, 0, 4, 2},
                             {3, 3, 3, 3},
                             {15, 10, 1, 2},
                             {-5, -9, 40, 30},
                             {2, 11, 2, 0},
                             {0, 5, 32767, 5},
                             {-4, -4, -1, 30},
                             {5, 20, 25, 3}}) {
      zel::KernelLine clipped{line.x1, line.y1, line.x2, line.y2};
      Points points;
      if (zel::LineClipToSize(20, 12, &clipped)) {
        zel::LineSteps steps(clipped);
        zel::LinePoint at{clipped.startX, clipped.startY};
        for (int64_t i = 0; i < steps.points(); i++) {
          points.emplace(at.x, at.y);
          const zel::LinePoint step = steps.Next();
          at = {at.x + step.x, at.y + step.y};
        }
      }
      const Draw draw = [=](ImageRef from, ImageRef to, int32_t mode, float value) {
        return ZEL_DrawLine(from, to, line.x1, line.y1, line.x2, line.y2, mode, value);
      };
      for (const int32_t mode : MODES) {
        ExpectDrawn(source, draw, points, mode, 300.9f);
        if (HasFatalFailure()) return;
      }
    }
  }
}

TEST(DrawLine, CutsAndWrapsTheValue) {
  const TestImage image(IMAGE_U8, 4, 4, 0, 3);
  ASSERT_EQ(ZEL_DrawLine(image, 0, 0, 0, 3, 0, DRAW_FRAME, 300.0f), 0);
  EXPECT_EQ(image.Get<uint8_t>(2, 0), 44);
  ASSERT_EQ(ZEL_DrawLine(image, 0, 0, 0, 3, 0, DRAW_FRAME, std::numeric_limits<float>::quiet_NaN()),
            0);
  EXPECT_EQ(image.Get<uint8_t>(2, 0), 0);
}

TEST(DrawRect, RestoresBytesThatAreInvertedTwice) {
  const TestImage image(IMAGE_U8, 14, 9, 1, 3);
  const auto before = image.Block();
  ASSERT_EQ(ZEL_DrawRect(image, 0, 2, -3, 5, 9, DRAW_INVERT_PAINT, 0), 0);
  EXPECT_NE(image.Block(), before);
  ASSERT_EQ(ZEL_DrawRect(image, 0, 2, -3, 5, 9, DRAW_INVERT_PAINT, 0), 0);
  EXPECT_EQ(image.Block(), before);
}

TEST(DrawRect, LimitsModes) {
  for (const auto& [given, acts] : {std::pair<int32_t, int32_t>{-1, DRAW_FRAME},
                                    {INT32_MIN, DRAW_FRAME},
                                    {4, DRAW_INVERT_PAINT},
                                    {INT32_MAX, DRAW_INVERT_PAINT}}) {
    const TestImage a(IMAGE_U8, 14, 9, 1, 3);
    const TestImage b(IMAGE_U8, 14, 9, 1, 3);
    ASSERT_EQ(ZEL_DrawRect(a, 0, 2, 3, 5, 9, given, 7), 0);
    ASSERT_EQ(ZEL_DrawRect(b, 0, 2, 3, 5, 9, acts, 7), 0);
    EXPECT_EQ(a.Block(), b.Block());
  }
}

TEST(DrawRect, InvertsByTheRangeOfTheWholeImage) {
  const TestImage negative(IMAGE_I16, 3, 1);
  for (int32_t x = 0; x < 3; x++) negative.Set<int16_t>(x, 0, static_cast<int16_t>(-5 - x));
  ASSERT_EQ(ZEL_DrawRect(negative, 0, 0, 0, 1, 1, DRAW_INVERT_PAINT, 0), 0);
  EXPECT_EQ(negative.Get<int16_t>(0, 0), -7 + 0 + 5);  // the largest is at least 0

  const TestImage even(IMAGE_SGL, 3, 1);
  ASSERT_EQ(ZEL_FillImage(even, 0, 2.5f, 0, 0, 0), 0);
  ASSERT_EQ(ZEL_DrawRect(even, 0, 0, 0, 1, 1, DRAW_INVERT_PAINT, 0), 0);
  EXPECT_EQ(even.Get<float>(0, 0), -2.5f);

  const TestImage odd(IMAGE_SGL, 3, 1);
  odd.Set(0, 0, std::numeric_limits<float>::quiet_NaN());
  odd.Set(1, 0, 1.0f);
  odd.Set(2, 0, 4.0f);
  ASSERT_EQ(ZEL_DrawRect(odd, 0, 0, 0, 1, 3, DRAW_INVERT_PAINT, 0), 0);
  EXPECT_TRUE(std::isnan(odd.Get<float>(0, 0)));
  EXPECT_EQ(odd.Get<float>(1, 0), 4.0f);
  EXPECT_EQ(odd.Get<float>(2, 0), 1.0f);
}

TEST(Drawing, TakesPixelsCalibrationAndOffset) {
  const TestImage source(IMAGE_I16, 9, 7, 1, 2);
  ASSERT_EQ(ZEL_SetImageOffset(source, 3, -4), 0);
  const TestImage destination(IMAGE_I16, 1, 1);
  ASSERT_EQ(ZEL_DrawRect(source, destination, 50, 50, 5, 5, DRAW_PAINT, 1), 0);
  EXPECT_EQ(PixelDifference(destination, source), "");
  EXPECT_EQ(destination.Info().offsetX, 3);
  EXPECT_EQ(destination.Info().offsetY, -4);
}

TEST(Drawing, RefusesWhatItCannotWorkWith) {
  constexpr ImageRef unknown = 0x7FFFFFFF;
  const TestImage source(IMAGE_U8, 9, 7, 1, 2);
  const TestImage words(IMAGE_I16, 9, 7, 1, 2);
  for (const auto& draw : {Rect({1, 1, 3, 3}), Oval({1, 1, 3, 3}),
                           Draw([](ImageRef from, ImageRef to, int32_t mode, float value) {
                             return ZEL_DrawLine(from, to, 0, 0, 5, 5, mode, value);
                           })}) {
    EXPECT_EQ(draw(unknown, source, 0, 1), -200);
    EXPECT_EQ(draw(0, source, 0, 1), -200);
    for (const int32_t type : {IMAGE_COMPLEX, IMAGE_RGB, IMAGE_OPAQUE}) {
      const int32_t size = type == IMAGE_OPAQUE ? 0 : 9;
      const TestImage other(type, size, size, 0, 4);
      EXPECT_EQ(draw(other, unknown, 0, 1), -301);
    }
    EXPECT_EQ(draw(source, unknown, 0, 1), -200);
    EXPECT_EQ(draw(source, words, 0, 1), -304);
    const TestImage empty(IMAGE_U8, 0, 0, 1);
    EXPECT_EQ(draw(empty, 0, DRAW_INVERT_PAINT, 1), 0);
  }
}

}  // namespace
