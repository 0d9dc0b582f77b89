#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;

TEST(Arrays, RectanglesAreCopiedRowAfterRow) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 11, 7, 2, 3);
    const int32_t native[] = {ARRAY_U8, ARRAY_I16, ARRAY_SGL};
    const auto bytes = static_cast<size_t>(image.Info().pixelBytes);
    std::vector<uint8_t> array(11 * 7 * bytes + 8, 0xEE);
    int32_t columns = 0;
    int32_t rows = 0;
    ASSERT_EQ(ZEL_ImageToArray(image, 2, 3, 4, 5, native[type], array.data(), &columns, &rows), 0);
    EXPECT_EQ(columns, 5);
    EXPECT_EQ(rows, 4);
    for (int32_t y = 0; y < 4; y++) {
      EXPECT_EQ(std::memcmp(array.data() + static_cast<size_t>(y) * 5 * bytes,
                            image.At<uint8_t>(3, 2 + y), 5 * bytes),
                0);
    }
    EXPECT_EQ(array[20 * bytes], 0xEE);
  }
}

TEST(Arrays, RectanglesAreLimitedToTheImageAndMayBeReversed) {
  const TestImage image(IMAGE_U8, 10, 8);
  struct Case {
    int32_t top, left, height, width;
    int32_t firstX, firstY, columns, rows;
  };
  const Case cases[] = {
      {0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT, 0, 0, 10, 8},
      {-3, -2, 6, 5, 0, 0, 3, 3},
      {6, 8, 100, 100, 8, 6, 2, 2},
      {5, 7, -3, -4, 3, 2, 4, 3},      // reversed
      {5, 7, -100, -100, 0, 0, 7, 5},  // reversed beyond the corner
      {2, 2, 3, 0, 0, 0, 0, 0},        // no columns: no rows either
      {2, 20, 3, 5, 0, 0, 0, 0},       // beside the image
      {INT32_MIN, 0, INT32_MAX, 5, 0, 0, 0, 0},
      {1, 1, INT32_MAX, INT32_MAX, 1, 1, 9, 7},
      {-1, INT32_MIN, INT32_MIN, -1, 0, 0, 0, 0},
  };
  for (const Case& c : cases) {
    std::vector<double> array(200, -1.0);
    int32_t columns = 77;
    int32_t rows = 77;
    ASSERT_EQ(ZEL_ImageToArray(image, c.top, c.left, c.height, c.width, ARRAY_DBL, array.data(),
                               &columns, &rows),
              0);
    ASSERT_EQ(columns, c.columns) << c.top << " " << c.left;
    ASSERT_EQ(rows, c.rows) << c.top << " " << c.left;
    for (int32_t y = 0; y < rows; y++) {
      for (int32_t x = 0; x < columns; x++) {
        ASSERT_EQ(array[static_cast<size_t>(y * columns + x)],
                  image.Get<uint8_t>(c.firstX + x, c.firstY + y));
      }
    }
    EXPECT_EQ(array[static_cast<size_t>(columns * rows)], -1.0);
    EXPECT_EQ(ZEL_ImageToArray(image, c.top, c.left, c.height, c.width, ARRAY_DBL, array.data(),
                               nullptr, nullptr),
              0);
  }
}

TEST(Arrays, EmptyRectangleOfAColourImageIsNoFailure) {
  const TestImage colour(IMAGE_RGB, 4, 4);
  uint8_t array[64];
  int32_t columns = 7;
  int32_t rows = 7;
  EXPECT_EQ(ZEL_ImageToArray(colour, 0, 0, 4, 4, ARRAY_U8, array, &columns, &rows), -301);
  EXPECT_EQ(columns, 7);
  EXPECT_EQ(ZEL_ImageToArray(colour, 0, 0, 4, 0, ARRAY_U8, array, &columns, &rows), 0);
  EXPECT_EQ(columns, 0);
  EXPECT_EQ(rows, 0);
}

TEST(Arrays, ImageTakesSizeAndPixelsOfTheArrayAndKeepsItsBorder) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage image(type, 13, 6, 3, 9);
    const auto around = image.Surroundings();
    std::vector<int32_t> array;
    for (int32_t i = 0; i < 78; i++) array.push_back(i * 3);
    ASSERT_EQ(ZEL_ArrayToImage(image, ARRAY_I32, array.data(), 13, 6), 0);
    for (int32_t y = 0; y < 6; y++) {
      for (int32_t x = 0; x < 13; x++) {
        float value = 0;
        ZEL_GetPixelValue(image, x, y, &value);
        ASSERT_EQ(value, static_cast<float>((y * 13 + x) * 3 % 256));
      }
    }
    EXPECT_EQ(image.Surroundings(), around);
    ASSERT_EQ(ZEL_ArrayToImage(image, ARRAY_I32, array.data(), 3, 2), 0);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
  }
}

TEST(Arrays, DoublesAreCutTowardZero) {
  const TestImage image(IMAGE_U8, 1, 1);
  const double array[] = {1.99, 300.7, -0.99, -1.0};
  ASSERT_EQ(ZEL_ArrayToImage(image, ARRAY_DBL, array, 4, 1), 0);
  const uint8_t expected[] = {1, 44, 0, 255};
  for (int32_t x = 0; x < 4; x++) EXPECT_EQ(image.Get<uint8_t>(x, 0), expected[x]);
}

TEST(Arrays, RoundTripThroughEveryArrayType) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    TestImage image(type, 17, 5);
    for (int32_t y = 0; y < 5; y++) {
      for (int32_t x = 0; x < 17; x++) {
        ZEL_SetPixelValue(image, x, y, static_cast<float>((x * 31 + y * 7) % 128));
      }
    }
    for (const int32_t arrayType :
         {ARRAY_I8, ARRAY_I32, ARRAY_I16, ARRAY_SGL, ARRAY_DBL, ARRAY_U16, ARRAY_U32, ARRAY_U8}) {
      std::vector<double> room(17 * 5);
      const TestImage copy(type, 1, 1);
      ASSERT_EQ(ZEL_ImageToArray(image, 0, 0, 5, 17, arrayType, room.data(), nullptr, nullptr), 0);
      ASSERT_EQ(ZEL_ArrayToImage(copy, arrayType, room.data(), 17, 5), 0);
      EXPECT_EQ(test::PixelDifference(copy, image), "") << "array type " << arrayType;
    }
  }
}

TEST(Arrays, UnknownArrayTypeGivesAnImageOfZeros) {
  const TestImage image(IMAGE_I16, 5, 5);
  uint8_t array[64] = {1, 2, 3};
  ASSERT_EQ(ZEL_ArrayToImage(image, 5, array, 3, 2), 0);
  EXPECT_EQ(image.Pixels(), std::vector<uint8_t>(12, 0));
  int32_t columns = 0;
  ASSERT_EQ(ZEL_ImageToArray(image, 0, 0, 9, 9, 5, array, &columns, nullptr), 0);
  EXPECT_EQ(columns, 3);
  EXPECT_EQ(array[0], 1);
}

TEST(Arrays, SizesOfZeroEmptyTheImageAndTwoOfThemAreRefused) {
  const TestImage image(IMAGE_U8, 5, 5);
  const auto before = image.Block();
  const uint8_t array[1] = {};
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, array, 0, 0), -304);
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, nullptr, -3, 0), -304);
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, nullptr, 4, -1), 0);
  EXPECT_EQ(image.width(), 0);
  EXPECT_EQ(image.height(), 0);
}

TEST(Arrays, WrongArgumentsLeaveTheImageAlone) {
  const TestImage image(IMAGE_SGL, 5, 5);
  const TestImage colour(IMAGE_RGB, 5, 5);
  const TestImage complex(IMAGE_COMPLEX, 5, 5);
  const auto before = image.Block();
  uint8_t array[8] = {};
  EXPECT_EQ(ZEL_ArrayToImage(999, ARRAY_U8, array, 2, 2), -200);
  EXPECT_EQ(ZEL_ArrayToImage(colour, ARRAY_U8, array, 0, 0), -301);
  EXPECT_EQ(ZEL_ArrayToImage(complex, ARRAY_U8, array, 2, 2), -301);
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, nullptr, 2, 2), -3009);
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, array, INT32_MAX, 2), -101);
  EXPECT_EQ(ZEL_ArrayToImage(image, ARRAY_U8, array, INT32_MAX, INT32_MAX), -101);
  EXPECT_EQ(ZEL_ImageToArray(999, 0, 0, 1, 1, ARRAY_U8, array, nullptr, nullptr), -200);
  EXPECT_EQ(ZEL_ImageToArray(image, 0, 0, 1, 1, ARRAY_U8, nullptr, nullptr, nullptr), -3009);
  EXPECT_EQ(image.Block(), before);
}

}  // namespace
