// Complex images and planes of them as arrays.
#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "frequency/frequency_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::ComplexAt;
using test::SameBits;
using test::SpectrumImage;
using test::TestImage;

std::vector<ComplexValue> ComplexArray(size_t count) {
  test::Random random(count);
  std::vector<ComplexValue> array(count);
  for (ComplexValue& value : array) value = {random.Float(-9, 9), test::ExtremeFloat(&random)};
  return array;
}

TEST(ComplexArrays, ComeIntoImagesWhichTakeTheirSize) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const auto array = ComplexArray(static_cast<size_t>(width * height));
    const TestImage image(IMAGE_COMPLEX, width, height, 2, 3);
    const auto surroundings = image.Surroundings();
    ASSERT_EQ(ZEL_ArrayToComplexImage(image, array.data(), width, height), 0);
    EXPECT_EQ(test::SurroundingsDifference(surroundings, image), "");
    const TestImage other(IMAGE_COMPLEX, 4, 4, 1);
    ASSERT_EQ(ZEL_ArrayToComplexImage(other, array.data(), width, height), 0);
    ASSERT_EQ(other.width(), width);
    for (int32_t y = 0; y < height; y++) {
      for (int32_t x = 0; x < width; x++) {
        const ComplexValue& stated = array[static_cast<size_t>(y * width + x)];
        ASSERT_TRUE(SameBits(ComplexAt(image, x, y), stated));
        ASSERT_TRUE(SameBits(ComplexAt(other, x, y), stated));
      }
    }
  }
}

TEST(ComplexArrays, ComeIntoOnePartOfThePixels) {
  test::Random random(5);
  std::vector<float> array(9 * 5);
  for (float& number : array) number = test::ExtremeFloat(&random);
  for (const int32_t plane : {0, 1, 7, -1}) {
    const TestImage before = SpectrumImage(IMAGE_COMPLEX, 9, 5, 1, 4);
    const TestImage image = SpectrumImage(IMAGE_COMPLEX, 9, 5, 1, 4);
    const TestImage resized = SpectrumImage(IMAGE_COMPLEX, 5, 9, 1, 4);
    ASSERT_EQ(ZEL_ArrayToComplexPlane(image, plane, array.data(), 9, 5), 0);
    ASSERT_EQ(ZEL_ArrayToComplexPlane(resized, plane, array.data(), 9, 5), 0);
    EXPECT_EQ(test::SurroundingsDifference(before.Surroundings(), image), "");
    for (int32_t y = 0; y < 5; y++) {
      for (int32_t x = 0; x < 9; x++) {
        const float number = array[static_cast<size_t>(y * 9 + x)];
        ComplexValue stated = ComplexAt(before, x, y);
        ComplexValue alone = {0.0f, 0.0f};
        (plane == 0 ? stated.real : stated.imaginary) = number;
        (plane == 0 ? alone.real : alone.imaginary) = number;
        ASSERT_TRUE(SameBits(ComplexAt(image, x, y), stated));
        ASSERT_TRUE(SameBits(ComplexAt(resized, x, y), alone));
      }
    }
  }
}

struct Rectangle {
  int32_t top, left, height, width;
  int32_t firstRow, firstColumn, rows, columns;  // what it comes to on an image of 16 x 12
};

// A side beyond the image is the image's, both ends of which still lie within it.
constexpr Rectangle RECTANGLES[] = {
    {0, 0, 12, 16, 0, 0, 12, 16},
    {2, 3, 5, 6, 2, 3, 5, 6},
    {0, 20, 12, 5, 0, 0, 12, 16},
    {0, -10, 12, 5, 0, 0, 12, 16},
    {0, -5, 12, 5, 0, 0, 12, 0},
    {0, 20, 12, -5, 0, 0, 12, 15},
    {0, 10, 12, -5, 0, 0, 12, 0},
    {0, 16, 12, 0, 0, 16, 12, 0},
    {0, 16, 12, 5, 0, 16, 12, 0},
    {4, 5, 100, 100, 4, 5, 8, 11},
    {-3, -3, 5, 5, 0, 0, 2, 2},
    {20, 4, 5, 6, 0, 4, 12, 6},
    {-2147483647, 2147483647, 5, 2147483647, 0, 0, 12, 16},
};

TEST(ComplexArrays, TakeRectanglesOutOfImages) {
  const TestImage image = SpectrumImage(IMAGE_COMPLEX, 16, 12, 3, 6);
  for (const Rectangle& r : RECTANGLES) {
    const ComplexValue unset = {123.0f, 456.0f};
    std::vector<ComplexValue> array(16 * 12, unset);
    int32_t columns = -1;
    int32_t rows = -1;
    ASSERT_EQ(ZEL_ComplexImageToArray(image, r.top, r.left, r.height, r.width, array.data(),
                                      &columns, &rows),
              0);
    EXPECT_EQ(columns, r.columns);
    EXPECT_EQ(rows, r.rows);
    const auto count = static_cast<size_t>(r.columns * r.rows);
    for (size_t i = 0; i < array.size(); i++) {
      const auto place = static_cast<int32_t>(i);
      const ComplexValue stated = i < count ? ComplexAt(image, r.firstColumn + place % r.columns,
                                                        r.firstRow + place / r.columns)
                                            : unset;
      ASSERT_TRUE(SameBits(array[i], stated)) << i;
    }
  }
}

TEST(ComplexArrays, TakePlanesOfRectanglesOutOfImages) {
  const TestImage image = SpectrumImage(IMAGE_COMPLEX, 16, 12, 3, 7);
  for (const int32_t plane : {-1, 0, 1, 2, 3, 7}) {
    const TestImage extracted(IMAGE_SGL, 1, 1);
    ASSERT_EQ(ZEL_ExtractComplexPlane(image, extracted, plane), 0);
    for (const Rectangle& r : RECTANGLES) {
      std::vector<float> array(16 * 12, 77.0f);
      int32_t columns = -1;
      int32_t rows = -1;
      ASSERT_EQ(ZEL_ComplexPlaneToArray(image, plane, r.top, r.left, r.height, r.width,
                                        array.data(), &columns, &rows),
                0);
      EXPECT_EQ(columns, r.columns);
      EXPECT_EQ(rows, r.rows);
      const auto count = static_cast<size_t>(r.columns * r.rows);
      for (size_t i = 0; i < array.size(); i++) {
        const auto place = static_cast<int32_t>(i);
        const float stated = i < count ? extracted.Get<float>(r.firstColumn + place % r.columns,
                                                              r.firstRow + place / r.columns)
                                       : 77.0f;
        ASSERT_TRUE(SameBits(array[i], stated)) << i;
      }
    }
  }
}

TEST(ComplexArrays, SizesNeedNotBeAskedFor) {
  const TestImage image = SpectrumImage(IMAGE_COMPLEX, 4, 3, 0, 8);
  ComplexValue values[12];
  float numbers[12];
  EXPECT_EQ(ZEL_ComplexImageToArray(image, 0, 0, 3, 4, values, nullptr, nullptr), 0);
  EXPECT_EQ(ZEL_ComplexPlaneToArray(image, 1, 0, 0, 3, 4, numbers, nullptr, nullptr), 0);
  EXPECT_TRUE(SameBits(values[11].imaginary, numbers[11]));
}

TEST(ComplexArrays, SidesBelowOneMakeAnEmptyImage) {
  for (const int32_t side : {0, -5}) {
    const TestImage image(IMAGE_COMPLEX, 4, 3);
    EXPECT_EQ(ZEL_ArrayToComplexImage(image, nullptr, side, 3), 0);
    EXPECT_EQ(image.width(), 0);
    const TestImage other(IMAGE_COMPLEX, 4, 3);
    EXPECT_EQ(ZEL_ArrayToComplexPlane(other, 0, nullptr, 4, side), 0);
    EXPECT_EQ(other.height(), 0);
  }
}

TEST(ComplexArrays, AreRefusedInTheOrderOfTheTests) {
  const TestImage complex(IMAGE_COMPLEX, 4, 3);
  const TestImage floats(IMAGE_SGL, 4, 3);
  ComplexValue values[12] = {};
  float numbers[12] = {};
  int32_t columns = 5;
  int32_t rows = 6;
  EXPECT_EQ(ZEL_ArrayToComplexImage(test::NO_IMAGE, nullptr, 4, 3), -3009);
  EXPECT_EQ(ZEL_ArrayToComplexImage(test::NO_IMAGE, values, 4, 3), -200);
  EXPECT_EQ(ZEL_ArrayToComplexImage(floats, values, 4, 3), -301);
  EXPECT_EQ(ZEL_ArrayToComplexPlane(test::NO_IMAGE, 0, nullptr, 4, 3), -3009);
  EXPECT_EQ(ZEL_ArrayToComplexPlane(test::NO_IMAGE, 0, numbers, 4, 3), -200);
  EXPECT_EQ(ZEL_ArrayToComplexPlane(floats, 0, numbers, 4, 3), -301);
  EXPECT_EQ(ZEL_ComplexImageToArray(complex, 0, 0, 3, 4, nullptr, &columns, &rows), -3009);
  EXPECT_EQ(ZEL_ComplexImageToArray(test::NO_IMAGE, 0, 0, 3, 4, values, &columns, &rows), -200);
  EXPECT_EQ(ZEL_ComplexImageToArray(floats, 0, 0, 3, 4, values, &columns, &rows), -301);
  EXPECT_EQ(ZEL_ComplexPlaneToArray(complex, 0, 0, 0, 3, 4, nullptr, &columns, &rows), -3009);
  EXPECT_EQ(ZEL_ComplexPlaneToArray(test::NO_IMAGE, 0, 0, 0, 3, 4, numbers, &columns, &rows), -200);
  EXPECT_EQ(ZEL_ComplexPlaneToArray(floats, 0, 0, 0, 3, 4, numbers, &columns, &rows), -301);
  EXPECT_EQ(columns, 5);
  EXPECT_EQ(rows, 6);
}

TEST(ComplexArrays, RefusedMemoryIsAFailureOfTheCall) {
  const auto array = ComplexArray(300);
  const std::vector<float> numbers(300);
  const TestImage image(IMAGE_COMPLEX, 1, 1);
  const auto shrink = [&image] { ZEL_SetImageSize(image, 1, 1); };
  test::RefuseEachAllocation(shrink,
                             [&] { return ZEL_ArrayToComplexImage(image, array.data(), 20, 15); });
  test::RefuseEachAllocation(
      shrink, [&] { return ZEL_ArrayToComplexPlane(image, 1, numbers.data(), 20, 15); });
}

TEST(ComplexConstant, IsOne) {
  const ComplexValue* one = ZEL_GetCpxConstant1Ptr();
  EXPECT_EQ(one->real, 1.0f);
  EXPECT_EQ(one->imaginary, 0.0f);
  EXPECT_EQ(ZEL_GetCpxConstant1Ptr(), one);
}

}  // namespace
