// Colour pixels, lines and arrays.
#include <gtest/gtest.h>

#include <vector>

#include "colour/colour_test.h"
#include "harness/test_image.h"
#include "tests/support/walks.h"

namespace {

using test::ColorImage;
using test::TestImage;

TEST(ColorPixels, ReadingTakesTheNearestPixel) {
  const TestImage image = ColorImage(7, 5, 2, 3);
  RGBValue value = 0;
  for (const auto& [x, y, nearX, nearY] : std::vector<std::array<int32_t, 4>>{
           {0, 0, 0, 0}, {6, 4, 6, 4}, {-5, 99999, 0, 4}, {7, -1, 6, 0}, {INT32_MAX, 2, 6, 2}}) {
    ASSERT_EQ(ZEL_GetColorPixel(image, x, y, &value), 0);
    EXPECT_EQ(value, image.Get<RGBValue>(nearX, nearY));
  }
}

TEST(ColorPixels, WritingOutsideDoesNothing) {
  const TestImage image = ColorImage(7, 5, 2, 3);
  const std::vector<uint8_t> before = image.Block();
  for (const auto& [x, y] : std::vector<std::pair<int32_t, int32_t>>{
           {-1, 0}, {0, -1}, {7, 0}, {0, 5}, {-5, 99999}, {INT32_MIN, INT32_MAX}}) {
    EXPECT_EQ(ZEL_SetColorPixel(image, x, y, 0x12345678), 0);
  }
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(ZEL_SetColorPixel(image, 6, 4, 0x12345678), 0);
  RGBValue value = 0;
  EXPECT_EQ(ZEL_GetColorPixel(image, 6, 4, &value), 0);
  EXPECT_EQ(value, 0x12345678u);  // the fourth byte too
}

TEST(ColorPixels, OtherTypesAreLeftAlone) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX}) {
    const TestImage image(type, 7, 5);
    const std::vector<uint8_t> before = image.Block();
    RGBValue value = 77;
    EXPECT_EQ(ZEL_GetColorPixel(image, 1, 1, &value), 0);
    EXPECT_EQ(value, 77u);
    EXPECT_EQ(ZEL_SetColorPixel(image, 1, 1, 5), 0);
    EXPECT_EQ(image.Block(), before);
  }
}

TEST(ColorPixels, EmptyImagesUnknownReferencesAndNull) {
  const TestImage empty(IMAGE_RGB, 0, 0);
  RGBValue value = 77;
  EXPECT_EQ(ZEL_GetColorPixel(empty, 0, 0, &value), 0);
  EXPECT_EQ(value, 77u);
  EXPECT_EQ(ZEL_SetColorPixel(empty, 0, 0, 1), 0);
  EXPECT_EQ(ZEL_GetColorPixel(0, 0, 0, &value), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_GetColorPixel(99999, 0, 0, nullptr), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_SetColorPixel(99999, 0, 0, 1), ZEL_ERR_BAD_IMAGE);
}

// The points of a line that lies inside: those that ZEL_GetLine reads of an image of numbers.
std::vector<int32_t> PointsOf(int32_t width, int32_t height, int32_t x1, int32_t y1, int32_t x2,
                              int32_t y2) {
  const TestImage numbers(IMAGE_I16, width, height);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) numbers.Set(x, y, static_cast<int16_t>(y * width + x));
  }
  std::vector<int32_t> points(500);
  int32_t count = 0;
  EXPECT_EQ(ZEL_GetLine(numbers, x1, y1, x2, y2, ARRAY_I32, points.data(), &count), 0);
  points.resize(static_cast<size_t>(count));
  return points;
}

TEST(ColorLines, AreClippedAndWalkedLikeOthers) {
  const TestImage image = ColorImage(19, 13, 2, 3);
  test::Random random(4);
  for (int32_t i = 0; i < 300; i++) {
    const int32_t x1 = random.Between(-10, 30), y1 = random.Between(-10, 25);
    const int32_t x2 = random.Between(-10, 30), y2 = random.Between(-10, 25);
    const std::vector<int32_t> points = PointsOf(19, 13, x1, y1, x2, y2);
    std::vector<RGBValue> read(points.size() + 1, 7);
    int32_t count = -1;
    ASSERT_EQ(ZEL_GetColorLine(image, x1, y1, x2, y2, read.data(), &count), 0);
    ASSERT_EQ(count, static_cast<int32_t>(points.size()));
    for (size_t p = 0; p < points.size(); p++) {
      ASSERT_EQ(read[p], image.Get<RGBValue>(points[p] % 19, points[p] / 19));
    }
    ASSERT_EQ(read.back(), 7u);

    const int32_t length = random.Between(0, 25);
    const TestImage expected = test::CloneOf(image);
    const TestImage written = test::CloneOf(image);
    std::vector<RGBValue> colors(static_cast<size_t>(length));
    for (RGBValue& color : colors) color = random.Next();
    for (size_t p = 0; p < points.size() && p < colors.size(); p++) {
      expected.Set(points[p] % 19, points[p] / 19, colors[p]);
    }
    ASSERT_EQ(ZEL_SetColorLine(written, x1, y1, x2, y2, colors.data(), length), 0);
    ASSERT_EQ(written.Block(), expected.Block());
  }
}

TEST(ColorLines, OfOtherTypesAreCountedOnly) {
  const TestImage image(IMAGE_U8, 9, 9);
  const std::vector<uint8_t> before = image.Block();
  RGBValue array[9] = {7};
  int32_t count = -1;
  EXPECT_EQ(ZEL_GetColorLine(image, 1, 1, 5, 2, array, &count), 0);
  EXPECT_EQ(count, 5);
  EXPECT_EQ(array[0], 7u);
  EXPECT_EQ(ZEL_SetColorLine(image, 1, 1, 5, 2, array, 9), 0);
  EXPECT_EQ(image.Block(), before);
}

TEST(ColorLines, OutsideEmptyOrWithoutArrays) {
  const TestImage image = ColorImage(9, 9, 0, 1);
  const TestImage empty(IMAGE_RGB, 0, 0);
  const std::vector<uint8_t> before = image.Block();
  RGBValue array[9] = {7};
  int32_t count = -1;
  EXPECT_EQ(ZEL_GetColorLine(image, -9, 0, -1, 5, array, &count), 0);
  EXPECT_EQ(count, 0);
  count = -1;
  EXPECT_EQ(ZEL_GetColorLine(empty, 0, 0, 0, 0, array, &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(ZEL_GetColorLine(image, 0, 0, 3, 3, array, nullptr), 0);
  EXPECT_EQ(ZEL_GetColorLine(99999, 0, 0, 3, 3, nullptr, &count), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_GetColorLine(99999, 0, 0, 3, 3, array, &count), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_SetColorLine(image, 0, 0, 3, 3, nullptr, 1), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_SetColorLine(image, 0, 0, 3, 3, nullptr, 0), 0);
  EXPECT_EQ(ZEL_SetColorLine(image, 0, 0, 3, 3, array, -5), 0);
  EXPECT_EQ(ZEL_SetColorLine(99999, 0, 0, 3, 3, array, 1), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(image.Block(), before);
}

TEST(ColorArrayExchange, RectanglesAreLimitedSideBySide) {
  const TestImage image = ColorImage(20, 12, 2, 8);
  struct Case {
    int32_t top, left, height, width, x, y, columns, rows;
  };
  for (const Case& c : std::vector<Case>{{0, 0, 32767, 32767, 0, 0, 20, 12},
                                         {2, 3, 4, 5, 3, 2, 5, 4},
                                         {-2, -3, 4, 5, 0, 0, 2, 2},
                                         {10, 15, 9, 9, 15, 10, 5, 2},
                                         {5, 8, -3, -4, 4, 2, 4, 3},
                                         {50, 3, 4, 5, 3, 12, 5, 0},
                                         {2, 50, 4, 5, 20, 2, 0, 4},
                                         {INT32_MAX, INT32_MAX, INT32_MAX, INT32_MAX, 20, 12, 0, 0},
                                         {INT32_MIN, 0, INT32_MAX, 20, 0, 0, 20, 0}}) {
    std::vector<RGBValue> array(20 * 12 + 1, 7);
    int32_t columns = -1;
    int32_t rows = -1;
    ASSERT_EQ(ZEL_ColorImageToArray(image, c.top, c.left, c.height, c.width, array.data(), &columns,
                                    &rows),
              0);
    EXPECT_EQ(columns, c.columns);
    EXPECT_EQ(rows, c.rows);
    for (int32_t y = 0; y < c.rows; y++) {
      for (int32_t x = 0; x < c.columns; x++) {
        ASSERT_EQ(array[static_cast<size_t>(y * c.columns + x)],
                  image.Get<RGBValue>(c.x + x, c.y + y));
      }
    }
    EXPECT_EQ(array[static_cast<size_t>(c.columns * c.rows)], 7u);
  }
}

TEST(ColorArrayExchange, ArraysResizeTheImageAndComeBack) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage image = ColorImage(width, height, 3, 8);  // of the size: the border is seen
    ZEL_SetImageCalibration(image, 5, 2.0f, 3.0f);
    const std::vector<uint8_t> around = image.Surroundings();
    std::vector<RGBValue> array(static_cast<size_t>(width * height));
    test::Random random(6);
    for (RGBValue& value : array) value = random.Next();
    ASSERT_EQ(ZEL_ArrayToColorImage(image, array.data(), width, height), 0);
    ASSERT_EQ(image.Surroundings(), around);
    const TestImage resized(IMAGE_RGB, 3, 2, 1);
    ASSERT_EQ(ZEL_ArrayToColorImage(resized, array.data(), width, height), 0);
    ASSERT_EQ(PixelDifference(resized, image), "");
    EXPECT_EQ(image.Info().unit, 5);
    std::vector<RGBValue> back(array.size() + 1, 7);
    ASSERT_EQ(ZEL_ColorImageToArray(image, 0, 0, height, width, back.data(), nullptr, nullptr), 0);
    back.pop_back();
    ASSERT_EQ(back, array);
  }
}

TEST(ColorArrayExchange, NeedsColourImagesAndArrays) {
  const TestImage gray(IMAGE_U8, 4, 4);
  const TestImage image = ColorImage(4, 4, 0, 1);
  RGBValue array[16] = {};
  int32_t columns = 9;
  int32_t rows = 9;
  EXPECT_EQ(ZEL_ColorImageToArray(gray, 0, 0, 0, 0, array, &columns, &rows), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(ZEL_ColorImageToArray(99999, 0, 0, 4, 4, nullptr, &columns, &rows),
            ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_ColorImageToArray(99999, 0, 0, 4, 4, array, &columns, &rows), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(columns, 9);
  EXPECT_EQ(rows, 9);
  EXPECT_EQ(ZEL_ArrayToColorImage(gray, array, 2, 2), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(gray.width(), 4);
  EXPECT_EQ(ZEL_ArrayToColorImage(99999, array, 2, 2), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_ArrayToColorImage(99999, nullptr, 2, 2), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(ZEL_ArrayToColorImage(image, array, INT32_MAX, INT32_MAX), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(image.width(), 4);
  EXPECT_EQ(ZEL_ArrayToColorImage(image, nullptr, 0, 2), 0);
  EXPECT_EQ(image.width(), 0);
}

}  // namespace
