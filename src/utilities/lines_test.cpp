#include "utilities/lines.h"

#include <gtest/gtest.h>

#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;
using Points = std::vector<std::pair<int64_t, int64_t>>;

// The walk as it is stated, point by point.
Points Walk(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
  const int64_t sx = x1 < x0 ? -1 : 1;
  const int64_t sy = y1 < y0 ? -1 : 1;
  const int64_t adx = sx * (x1 - x0);
  const int64_t ady = sy * (y1 - y0);
  const bool steep = ady > adx;
  const int64_t major = steep ? ady : adx;
  const int64_t minor = steep ? adx : ady;
  int64_t error = 2 * minor - major;
  Points points;
  for (int64_t i = 0; i <= major; i++) {
    points.emplace_back(x0, y0);
    if (error >= 0) {
      (steep ? x0 : y0) += steep ? sx : sy;
      error -= 2 * major;
    }
    error += 2 * minor;
    (steep ? y0 : x0) += steep ? sy : sx;
  }
  return points;
}

// The clip as it is stated, with products beyond 64 bits.
struct Clip {
  __extension__ using Wide = __int128;
  Wide x0, y0, x1, y1;

  bool Run(Wide width, Wide height) {
    if (width < 1 || height < 1) return false;
    const auto ofY = [&](Wide y) { return y < 0 ? 2 : y > height - 1 ? 1 : 0; };
    const auto ofX = [&](Wide x) { return x < 0 ? 8 : x > width - 1 ? 4 : 0; };
    int a = ofX(x0) | ofY(y0);
    int b = ofX(x1) | ofY(y1);
    if ((a & b) != 0) return false;
    if ((a | b) == 0) return true;
    if ((a ^ b) > 7) {
      const Wide y = ((y0 - y1) * x1) / (x1 - x0) + y1;
      if (a >= 8) {
        x0 = 0, y0 = y, a = ofY(y);
      } else {
        x1 = 0, y1 = y, b = ofY(y);
      }
      if ((a | b) == 0) return true;
      if ((a & b) != 0) return false;
    }
    if (((a ^ b) & 4) != 0) {
      const Wide y = y1 + ((y1 - y0) * (width - 1 - x1)) / (x1 - x0);
      if ((a & 4) != 0) {
        x0 = width - 1, y0 = y, a = ofY(y);
      } else {
        x1 = width - 1, y1 = y, b = ofY(y);
      }
      if ((a | b) == 0) return true;
      if ((a & b) != 0) return false;
    }
    if (((a ^ b) & 2) != 0) {
      const Wide x = x1 + ((x0 - x1) * y1) / (y1 - y0);
      if ((a & 2) != 0) {
        x0 = x, y0 = 0, a = 0;
      } else {
        x1 = x, y1 = 0, b = 0;
      }
      if ((a | b) == 0) return true;
    }
    if (((a ^ b) & 1) != 0) {
      const Wide x = x1 + ((y1 - (height - 1)) * (x0 - x1)) / (y1 - y0);
      if ((a & 1) != 0) {
        x0 = x, y0 = height - 1;
      } else {
        x1 = x, y1 = height - 1;
      }
    }
    return true;
  }
};

TEST(LineClip, FollowsTheRuleForLinesNearAndFar) {
  test::Random random(3);
  int64_t visibleLines = 0;
  for (int32_t i = 0; i < 300000; i++) {
    const int32_t width = random.Between(0, 40);
    const int32_t height = random.Between(0, 40);
    zel::KernelLine line{};
    for (int32_t* value : {&line.startX, &line.startY, &line.endX, &line.endY}) {
      const int32_t kind = random.Between(0, 3);
      *value = kind == 0                  ? random.Between(-60, 100)
               : kind == 1                ? static_cast<int32_t>(random.Next())
               : kind == 2                ? random.Between(-2, 42)
               : (random.Next() & 1) != 0 ? INT32_MAX
                                          : INT32_MIN;
    }
    const zel::KernelLine given = line;
    Clip clip{line.startX, line.startY, line.endX, line.endY};
    const bool expected = clip.Run(width, height);
    ASSERT_EQ(zel::LineClipToSize(width, height, &line), expected);
    if (expected) {
      visibleLines++;
      ASSERT_TRUE(clip.x0 == line.startX && clip.y0 == line.startY && clip.x1 == line.endX &&
                  clip.y1 == line.endY);
      for (const int32_t x : {line.startX, line.endX}) ASSERT_TRUE(x >= 0 && x < width);
      for (const int32_t y : {line.startY, line.endY}) ASSERT_TRUE(y >= 0 && y < height);
    } else {
      ASSERT_TRUE(given.startX == line.startX && given.startY == line.startY &&
                  given.endX == line.endX && given.endY == line.endY);
    }
  }
  EXPECT_GT(visibleLines, 20000);
}

TEST(LineClip, LooksTheImageUp) {
  const TestImage image(IMAGE_U8, 10, 5);
  zel::KernelLine line{0, 0, WHOLE_IMAGE_EXTENT, 0};
  uint16_t visible = 7;
  EXPECT_EQ(zel::LineClip(999, &line, &visible), 200);
  EXPECT_EQ(visible, 7);
  EXPECT_EQ(zel::LineClip(image, &line, &visible), 0);
  EXPECT_EQ(visible, 1);
  EXPECT_EQ(line.endX, 9);
}

TEST(LineWalk, GivesPointsOrStepsInEveryDirection) {
  for (int32_t dy = -9; dy <= 9; dy++) {
    for (int32_t dx = -9; dx <= 9; dx++) {
      const zel::KernelLine line{20, -30, 20 + dx, -30 + dy};
      const Points expected = Walk(20, -30, 20 + dx, -30 + dy);
      for (const bool relative : {false, true}) {
        zel::ScopedVector vector;
        ASSERT_EQ(vector.Create(), 0);
        int32_t count = 0;
        ASSERT_EQ(zel::LineWalk(line, relative, vector.handle(), &count), 0);
        ASSERT_EQ(count, static_cast<int32_t>(expected.size()));
        const auto* points = zel::VectorData<zel::LinePoint>(vector.handle());
        int64_t x = relative ? 20 : 0;
        int64_t y = relative ? -30 : 0;
        for (size_t i = 0; i < expected.size(); i++) {
          x = points[i].x + (relative ? x : 0);
          y = points[i].y + (relative ? y : 0);
          ASSERT_EQ(x, expected[i].first) << dx << ", " << dy;
          ASSERT_EQ(y, expected[i].second) << dx << ", " << dy;
        }
      }
    }
  }
}

TEST(LineWalk, LineTooLongForABlockIsRefused) {
  zel::ScopedVector vector;
  ASSERT_EQ(vector.Create(), 0);
  int32_t count = 0;
  EXPECT_EQ(zel::LineWalk({INT32_MIN, 0, INT32_MAX, 1}, false, vector.handle(), &count), 101);
}

std::vector<double> Line(const TestImage& image, int32_t x0, int32_t y0, int32_t x1, int32_t y1) {
  std::vector<double> array(2000, -1.0);
  int32_t count = -1;
  EXPECT_EQ(ZEL_GetLine(image, x0, y0, x1, y1, ARRAY_DBL, array.data(), &count), 0);
  EXPECT_EQ(array[static_cast<size_t>(count)], -1.0);
  array.resize(static_cast<size_t>(count));
  return array;
}

double ValueOf(const TestImage& image, int64_t x, int64_t y) {
  float value = 0;
  EXPECT_EQ(ZEL_GetPixelValue(image, static_cast<int32_t>(x), static_cast<int32_t>(y), &value), 0);
  return static_cast<double>(value);
}

TEST(Line, FromTheOriginToFourTwoStepsOnTies) {
  const TestImage image(IMAGE_U8, 5, 3);
  for (int32_t y = 0; y < 3; y++) {
    for (int32_t x = 0; x < 5; x++) image.Set<uint8_t>(x, y, static_cast<uint8_t>(10 * x + y));
  }
  EXPECT_EQ(Line(image, 0, 0, 4, 2), (std::vector<double>{0, 11, 21, 32, 42}));
  EXPECT_EQ(Line(image, 4, 2, 0, 0), (std::vector<double>{42, 31, 21, 10, 0}));
  EXPECT_EQ(Line(image, 3, 1, 3, 1), std::vector<double>{31});
}

TEST(Line, LinesOfAllTypesAreReadAndWritten) {
  test::Random random(8);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 600, 33, 3, 4);
    const auto around = image.Surroundings();
    for (int32_t i = 0; i < 300; i++) {
      const int32_t x0 = random.Between(-50, 650);
      const int32_t y0 = random.Between(-20, 50);
      const int32_t x1 = random.Between(-50, 650);
      const int32_t y1 = random.Between(-20, 50);
      Clip clip{x0, y0, x1, y1};
      Points points;
      if (clip.Run(600, 33)) {
        points = Walk(static_cast<int64_t>(clip.x0), static_cast<int64_t>(clip.y0),
                      static_cast<int64_t>(clip.x1), static_cast<int64_t>(clip.y1));
      }
      std::vector<double> expected;
      for (const auto& [x, y] : points) expected.push_back(ValueOf(image, x, y));
      ASSERT_EQ(Line(image, x0, y0, x1, y1), expected);

      std::vector<int32_t> numbers(700);
      for (int32_t& number : numbers) number = random.Between(0, 255);
      const int32_t count = random.Between(-1, 700);
      ASSERT_EQ(ZEL_SetLine(image, x0, y0, x1, y1, ARRAY_I32, numbers.data(), count), 0);
      for (size_t k = 0; k < points.size(); k++) {
        const double wanted = static_cast<int32_t>(k) < count ? numbers[k] : expected[k];
        ASSERT_EQ(ValueOf(image, points[k].first, points[k].second), wanted);
      }
    }
    EXPECT_EQ(image.Surroundings(), around);
  }
}

TEST(Line, EndBeyondTheImageIsClipped) {
  const TestImage image(IMAGE_I16, 12, 9);
  EXPECT_EQ(Line(image, 0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT).size(), 9u);
  EXPECT_EQ(Line(image, 0, 4, INT32_MAX, 4).size(), 12u);
}

TEST(Line, LineOutsideAnyImageHasNoPixels) {
  for (const int32_t type : {IMAGE_U8, IMAGE_RGB, IMAGE_COMPLEX}) {
    const TestImage image(type, 8, 8);
    uint8_t array[64] = {9};
    int32_t count = 7;
    EXPECT_EQ(ZEL_GetLine(image, -5, 0, -1, 7, ARRAY_U8, array, &count), 0);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(array[0], 9);
    EXPECT_EQ(ZEL_SetLine(image, -5, 0, -1, 7, ARRAY_U8, array, 8), 0);
  }
  const TestImage empty(IMAGE_U8, 0, 0, 1);
  EXPECT_TRUE(Line(empty, 0, 0, 3, 3).empty());
}

TEST(Line, WrongArgumentsLeaveTheOutputsAlone) {
  const TestImage colour(IMAGE_RGB, 8, 8);
  const TestImage floats(IMAGE_SGL, 8, 8);
  float array[8] = {9};
  int32_t count = 7;
  EXPECT_EQ(ZEL_GetLine(999, 0, 0, 7, 7, ARRAY_SGL, array, &count), -200);
  EXPECT_EQ(ZEL_GetLine(colour, 0, 0, 7, 7, ARRAY_SGL, array, &count), -301);
  EXPECT_EQ(ZEL_GetLine(floats, 0, 0, 7, 7, ARRAY_SGL, nullptr, &count), -3009);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(array[0], 9.0f);
  EXPECT_EQ(ZEL_GetLine(floats, 0, 0, 7, 7, ARRAY_SGL, array, nullptr), 0);
  EXPECT_EQ(ZEL_SetLine(999, 0, 0, 7, 7, ARRAY_SGL, array, 8), -200);
  EXPECT_EQ(ZEL_SetLine(colour, 0, 0, 7, 7, ARRAY_SGL, array, 8), -301);
  EXPECT_EQ(ZEL_SetLine(floats, 0, 0, 7, 7, ARRAY_SGL, nullptr, 1), -3009);
  EXPECT_EQ(ZEL_SetLine(floats, 0, 0, 7, 7, ARRAY_SGL, nullptr, 0), 0);
  EXPECT_EQ(ZEL_SetLine(floats, 0, 0, 7, 7, ARRAY_SGL, array, INT32_MAX), -101);
}

}  // namespace
