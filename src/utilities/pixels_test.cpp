#include "utilities/pixels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::PixelOf;
using test::TestImage;

constexpr int32_t SCALAR_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL};

TEST(Pixels, ReadingOutsideTheImageGivesTheNearestPixel) {
  const TestImage image(IMAGE_U8, 10, 10, 2);
  float value = 0;
  ASSERT_EQ(ZEL_GetPixelValue(image, -5, 1000, &value), 0);
  EXPECT_EQ(value, static_cast<float>(image.Get<uint8_t>(0, 9)));
  ASSERT_EQ(ZEL_GetPixelValue(image, INT32_MAX, INT32_MIN, &value), 0);
  EXPECT_EQ(value, static_cast<float>(image.Get<uint8_t>(9, 0)));
}

TEST(Pixels, ReadingGivesTheValueOfEachScalarType) {
  for (const int32_t type : SCALAR_TYPES) {
    const TestImage image(type, 9, 5, 1, 77);
    for (int32_t y = 0; y < 5; y++) {
      for (int32_t x = 0; x < 9; x++) {
        float value = 0;
        ASSERT_EQ(ZEL_GetPixelValue(image, x, y, &value), 0);
        ASSERT_EQ(static_cast<double>(value), PixelOf(image, x, y));
      }
    }
  }
}

TEST(Pixels, WritingOutsideTheImageDoesNothingEvenOnTheBorder) {
  for (const int32_t type : {IMAGE_U8, IMAGE_RGB}) {
    const TestImage image(type, 6, 4, 3);
    const auto before = image.Block();
    for (const auto& [x, y] : {std::pair{-1, 0}, {0, -1}, {6, 0}, {0, 4}, {INT32_MIN, INT32_MAX}}) {
      EXPECT_EQ(ZEL_SetPixelValue(image, x, y, 1.0f), 0);
    }
    EXPECT_EQ(image.Block(), before);
  }
}

TEST(Pixels, WritingKeepsTheLowBitsOfTheCutValue) {
  const TestImage bytes(IMAGE_U8, 3, 3);
  const TestImage words(IMAGE_I16, 3, 3);
  const TestImage floats(IMAGE_SGL, 3, 3);
  struct Case {
    float value;
    uint8_t asByte;
    int16_t asWord;
  };
  const Case cases[] = {{300.0f, 44, 300},
                        {-1.0f, 255, -1},
                        {-0.9f, 0, 0},
                        {40000.0f, 64, -25536},
                        {1e10f, 0, -7168},
                        {1e20f, 0, 0},
                        {std::numeric_limits<float>::quiet_NaN(), 0, 0},
                        {std::numeric_limits<float>::infinity(), 0, 0}};
  for (const Case& c : cases) {
    ASSERT_EQ(ZEL_SetPixelValue(bytes, 1, 2, c.value), 0);
    ASSERT_EQ(ZEL_SetPixelValue(words, 1, 2, c.value), 0);
    ASSERT_EQ(ZEL_SetPixelValue(floats, 1, 2, c.value), 0);
    EXPECT_EQ(bytes.Get<uint8_t>(1, 2), c.asByte) << c.value;
    EXPECT_EQ(words.Get<int16_t>(1, 2), c.asWord) << c.value;
    const float stored = floats.Get<float>(1, 2);
    EXPECT_TRUE(stored == c.value || std::isnan(c.value)) << c.value;
  }
}

TEST(Pixels, SinglePixelsRefuseWrongImages) {
  const TestImage colour(IMAGE_RGB, 4, 4);
  const TestImage complex(IMAGE_COMPLEX, 4, 4);
  const TestImage empty(IMAGE_U8, 0, 0, 2);
  const TestImage emptyColour(IMAGE_RGB, 0, 0);
  float value = 7;
  EXPECT_EQ(ZEL_GetPixelValue(999, 0, 0, &value), -200);
  EXPECT_EQ(ZEL_GetPixelValue(colour, 0, 0, &value), -301);
  EXPECT_EQ(ZEL_GetPixelValue(complex, 0, 0, &value), -301);
  EXPECT_EQ(ZEL_GetPixelValue(emptyColour, 0, 0, &value), -301);
  EXPECT_EQ(ZEL_GetPixelValue(empty, 0, 0, &value), -1001);
  EXPECT_EQ(ZEL_GetPixelValue(999, 0, 0, nullptr), -3009);
  EXPECT_EQ(value, 7.0f);
  EXPECT_EQ(ZEL_SetPixelValue(999, -1, 0, 1), -200);
  EXPECT_EQ(ZEL_SetPixelValue(colour, 0, 0, 1), -301);
  EXPECT_EQ(ZEL_SetPixelValue(empty, 0, 0, 1), 0);
}

TEST(RowCol, EveryRowAndColumnIsRead) {
  for (const int32_t type : SCALAR_TYPES) {
    for (const auto& [width, height] : {std::pair{5, 7}, {1, 1}, {300, 2}, {3, 700}}) {
      const TestImage image(type, width, height, 2, 5);
      for (const int16_t column : {int16_t{0}, int16_t{1}, int16_t{-7}}) {
        const int32_t limit = column != 0 ? width : height;
        for (int32_t index = -1; index <= limit; index += limit > 10 ? 7 : 1) {
          const int32_t nearest = index < 0 ? 0 : index >= limit ? limit - 1 : index;
          std::vector<double> row(800, -1.0);
          int32_t count = 0;
          ASSERT_EQ(ZEL_GetRowCol(image, column, index, ARRAY_DBL, row.data(), &count), 0);
          ASSERT_EQ(count, column != 0 ? height : width);
          for (int32_t i = 0; i < count; i++) {
            ASSERT_EQ(row[static_cast<size_t>(i)],
                      column != 0 ? PixelOf(image, nearest, i) : PixelOf(image, i, nearest));
          }
          EXPECT_EQ(row[static_cast<size_t>(count)], -1.0);
        }
      }
    }
  }
}

TEST(RowCol, ArrayLongerThanTheRowWritesOnlyTheRow) {
  const TestImage image(IMAGE_U8, 5, 3, 2);
  const auto around = image.Surroundings();
  const std::vector<uint8_t> row = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const auto former = image.Get<uint8_t>(0, 2);
  ASSERT_EQ(ZEL_SetRowCol(image, 0, 1, ARRAY_U8, row.data(), 9), 0);
  for (int32_t x = 0; x < 5; x++) EXPECT_EQ(image.Get<uint8_t>(x, 1), x + 1);
  EXPECT_EQ(image.Get<uint8_t>(0, 2), former);
  EXPECT_EQ(image.Surroundings(), around);
}

TEST(RowCol, ArrayShorterThanTheColumnWritesItsPart) {
  for (const int32_t type : SCALAR_TYPES) {
    const TestImage image(type, 4, 900, 1);
    std::vector<double> numbers;
    for (int32_t i = 0; i < 600; i++) numbers.push_back(i % 251);
    const double former = PixelOf(image, 3, 600);
    ASSERT_EQ(ZEL_SetRowCol(image, 1, 99, ARRAY_DBL, numbers.data(), 600), 0);
    for (int32_t i = 0; i < 600; i++) ASSERT_EQ(PixelOf(image, 3, i), i % 251);
    EXPECT_EQ(PixelOf(image, 3, 600), former);
  }
}

TEST(RowCol, EqualBitsPassUnchangedAndOthersThroughDoubles) {
  const TestImage bytes(IMAGE_U8, 2, 1);
  const int8_t negative[] = {-1, -128};
  ASSERT_EQ(ZEL_SetRowCol(bytes, 0, 0, ARRAY_I8, negative, 2), 0);
  EXPECT_EQ(bytes.Get<uint8_t>(0, 0), 255);
  int8_t back[2];
  ASSERT_EQ(ZEL_GetRowCol(bytes, 0, 0, ARRAY_I8, back, nullptr), 0);
  EXPECT_EQ(back[1], -128);

  const TestImage words(IMAGE_I16, 2, 1);
  const uint16_t large[] = {65535, 40000};
  ASSERT_EQ(ZEL_SetRowCol(words, 0, 0, ARRAY_U16, large, 2), 0);
  EXPECT_EQ(words.Get<int16_t>(1, 0), -25536);
  uint16_t wordsBack[2];
  ASSERT_EQ(ZEL_GetRowCol(words, 0, 0, ARRAY_U16, wordsBack, nullptr), 0);
  EXPECT_EQ(wordsBack[0], 65535);

  const float floats[] = {300.7f, -1.5f};
  ASSERT_EQ(ZEL_SetRowCol(bytes, 0, 0, ARRAY_SGL, floats, 2), 0);
  EXPECT_EQ(bytes.Get<uint8_t>(0, 0), 44);
  EXPECT_EQ(bytes.Get<uint8_t>(1, 0), 255);
}

TEST(RowCol, UnknownArrayTypeWritesZerosAndReadsNothing) {
  const TestImage image(IMAGE_I16, 3, 2);
  uint8_t numbers[24] = {9, 9, 9};
  for (const int32_t arrayType : {5, -1, 9}) {
    image.Set<int16_t>(1, 1, 77);
    int32_t count = 0;
    ASSERT_EQ(ZEL_GetRowCol(image, 0, 1, arrayType, numbers, &count), 0);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(numbers[0], 9);
    ASSERT_EQ(ZEL_SetRowCol(image, 0, 1, arrayType, numbers, 2), 0);
    EXPECT_EQ(image.Get<int16_t>(1, 1), 0);
  }
}

TEST(RowCol, EmptyImageHasNoElements) {
  const TestImage image(IMAGE_SGL, 0, 0, 2);
  float number = 7;
  int32_t count = 7;
  EXPECT_EQ(ZEL_GetRowCol(image, 1, 3, ARRAY_SGL, &number, &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(number, 7.0f);
  EXPECT_EQ(ZEL_SetRowCol(image, 0, 3, ARRAY_SGL, &number, 1), 0);
}

TEST(RowCol, WrongArgumentsLeaveTheOutputsAlone) {
  const TestImage colour(IMAGE_RGB, 4, 4);
  const TestImage floats(IMAGE_SGL, 4, 4);
  float numbers[4] = {7, 7, 7, 7};
  int32_t count = 7;
  EXPECT_EQ(ZEL_GetRowCol(999, 0, 0, ARRAY_SGL, numbers, &count), -200);
  EXPECT_EQ(ZEL_GetRowCol(colour, 0, 0, ARRAY_SGL, numbers, &count), -301);
  EXPECT_EQ(ZEL_GetRowCol(floats, 0, 0, ARRAY_SGL, nullptr, &count), -3009);
  EXPECT_EQ(count, 7);
  EXPECT_EQ(numbers[0], 7.0f);
  EXPECT_EQ(ZEL_SetRowCol(999, 0, 0, ARRAY_SGL, numbers, 4), -200);
  EXPECT_EQ(ZEL_SetRowCol(colour, 0, 0, ARRAY_SGL, numbers, 4), -301);
  EXPECT_EQ(ZEL_SetRowCol(floats, 0, 0, ARRAY_SGL, nullptr, 1), -3009);
  EXPECT_EQ(ZEL_SetRowCol(floats, 0, 0, ARRAY_SGL, nullptr, 0), 0);
  EXPECT_EQ(ZEL_SetRowCol(floats, 0, 0, ARRAY_SGL, numbers, -3), 0);
  const auto before = floats.Block();
  EXPECT_EQ(ZEL_SetRowCol(floats, 0, 0, ARRAY_SGL, numbers, INT32_MAX), -101);
  EXPECT_EQ(floats.Block(), before);
}

TEST(StridedGather, CopiesEveryStridePixelAndRefusesOtherTypes) {
  const uint32_t pixels[] = {1, 2, 3, 4, 5, 6, 7, 8};
  uint32_t gathered[4] = {};
  EXPECT_EQ(zel::StridedGather(pixels, gathered, IMAGE_RGB, 3, 3), 0);
  EXPECT_EQ(gathered[0], 1u);
  EXPECT_EQ(gathered[1], 4u);
  EXPECT_EQ(gathered[2], 7u);
  EXPECT_EQ(gathered[3], 0u);
  for (const int16_t type : {int16_t{IMAGE_COMPLEX}, int16_t{IMAGE_OPAQUE}, int16_t{-1}}) {
    EXPECT_EQ(zel::StridedGather(pixels, gathered, type, 1, 1), 300);
  }
}

}  // namespace
