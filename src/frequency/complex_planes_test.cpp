// Planes out of complex images and back, pixel by pixel from the stated rules.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "frequency/frequency_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::ComplexAt;
using test::SameBits;
using test::SpectrumImage;
using test::TestImage;

double StatedValue(ComplexValue pixel, int32_t plane) {
  const auto re = static_cast<double>(pixel.real);
  const auto im = static_cast<double>(pixel.imaginary);
  if (plane <= 0) return re;
  if (plane == 1) return im;
  if (plane == 2) return std::sqrt(re * re + im * im);
  if (std::fabs(re) < 1e-10) return im < 0 ? -90.0 : 90.0;
  double phase = std::atan(im / re) * 57.29577867;
  if (re < 0) phase += im < 0 ? -180.0 : 180.0;
  return phase;
}

ComplexValue StatedPixel(double value, int32_t plane, int32_t type) {
  double number = value;
  if (type == IMAGE_U8) {
    if (plane >= 3) number = std::fabs(number);
    number = std::isnan(number) ? 0.0 : std::trunc(std::clamp(number, 0.0, 255.0));
  } else if (type == IMAGE_I16) {
    const bool isHuge = !(std::fabs(number) < 9223372036854775808.0);
    const auto bits = isHuge ? int64_t{0} : static_cast<int64_t>(number);
    number = static_cast<int16_t>(static_cast<uint16_t>(bits & 0xFFFF));
  }
  const bool isInteger = type == IMAGE_U8 || type == IMAGE_I16;
  return {static_cast<float>(isInteger ? number + 0.0 : number), 0.0f};  // without a sign of 0
}

void ExpectPlane(const TestImage& actual, const TestImage& source, int32_t plane) {
  const ImageInfo info = actual.Info();
  ASSERT_EQ(info.width, source.width());
  ASSERT_EQ(info.height, source.height());
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const ComplexValue pixel = ComplexAt(source, x, y);
      const ComplexValue stated = StatedPixel(StatedValue(pixel, plane), plane, info.type);
      ASSERT_TRUE(SameBits(test::NumberAt(actual, x, y), stated.real))
          << "type " << info.type << ", plane " << plane << " of " << pixel.real << ' '
          << pixel.imaginary << ": " << test::NumberAt(actual, x, y) << " and " << stated.real;
      if (info.type == IMAGE_COMPLEX) {
        ASSERT_TRUE(SameBits(ComplexAt(actual, x, y).imaginary, 0.0f));
      }
    }
  }
}

TEST(ComplexPlanes, AreExtractedIntoAllTypes) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 1, 2);
    for (const int32_t type : test::FREQUENCY_TYPES) {
      for (const int32_t plane : {0, 1, 2, 3}) {
        const TestImage result(type, 2, 3, 1);
        ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, plane), 0);
        ExpectPlane(result, source, plane);
      }
    }
  }
}

TEST(ComplexPlanes, NumbersOfPlanesAreLimited) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 9, 4, 0, 3);
  const TestImage result(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, 7), 0);
  ExpectPlane(result, source, 3);
  ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, -1), 0);
  ExpectPlane(result, source, 0);
}

TEST(ComplexPlanes, PhasesHaveTheirQuadrant) {
  const TestImage source(IMAGE_COMPLEX, 8, 1);
  const ComplexValue pixels[] = {{1, 1},  {-1, 1}, {-1, -1},    {1, -1},
                                 {0, -2}, {0, 0},  {-3, -0.0f}, {5e-11f, 3}};
  const float degrees[] = {45, 135, -135, -45, -90, 90, 180, 90};
  for (int32_t x = 0; x < 8; x++) source.Set(x, 0, pixels[x]);
  const TestImage result(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, COMPLEX_PLANE_PHASE), 0);
  for (int32_t x = 0; x < 8; x++) EXPECT_NEAR(result.Get<float>(x, 0), degrees[x], 1e-4f) << x;
}

// All kinds of quotients, and angles next to where results are rounded to another number or cut.
TEST(ComplexPlanes, PhasesAreTheStatedOnesToTheLastBit) {
  constexpr int32_t width = 512;
  constexpr int32_t height = 300;
  const float infinite = std::numeric_limits<float>::infinity();
  const float odd[] = {0.0f,          -0.0f,  1.0f,   -1.0f,    infinite,  -infinite,
                       std::nanf(""), 1e-38f, -3e38f, 9.9e-11f, 1.01e-10f, -1e-10f};
  test::Random random(3);
  const TestImage source(IMAGE_COMPLEX, width, height);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const double degrees =
          random.Between(-180, 180) + (y % 3 == 0 ? 0 : random.Between(0, 999) / 1e3);
      const double size = std::exp(random.Between(-20, 20));
      const double angle = degrees / 57.29577867;
      const bool isOdd = y % 10 == 9;
      source.Set(x, y,
                 isOdd ? ComplexValue{odd[random.Between(0, 11)], odd[random.Between(0, 11)]}
                       : ComplexValue{static_cast<float>(std::cos(angle) * size),
                                      static_cast<float>(std::sin(angle) * size)});
    }
  }
  for (const int32_t type : test::FREQUENCY_TYPES) {
    const TestImage result(type, 1, 1);
    ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, COMPLEX_PLANE_PHASE), 0);
    ExpectPlane(result, source, COMPLEX_PLANE_PHASE);
  }
}

// Of all sizes: any numbers, roots next to the middle between two floats and next to powers of two,
// and squares that are no floats.
TEST(ComplexPlanes, MagnitudesAreTheStatedOnesToTheLastBit) {
  constexpr int32_t width = 512;
  constexpr int32_t height = 240;
  const float infinite = std::numeric_limits<float>::infinity();
  const float odd[] = {0.0f,          -0.0f,  1.0f,   -4.0f,  infinite, -infinite,
                       std::nanf(""), 1e-45f, 1e-38f, 1e-20f, 2e19f,    -3e38f};
  test::Random random(4);
  const TestImage source(IMAGE_COMPLEX, width, height);
  const auto pixelOf = [&](int32_t kind, int32_t exponent) -> ComplexValue {
    double real = static_cast<double>(random.Float(-1, 1));
    double imaginary = static_cast<double>(random.Float(-1, 1));
    if (kind == 1) {
      real = static_cast<double>(random.Float(0.5f, 1));
      const double middle = real + 0x1p-25;
      imaginary = std::sqrt(middle * middle - real * real) *
                  (1 + std::ldexp(imaginary, -random.Between(6, 30)));
    } else if (kind == 2) {
      const double angle = imaginary * 4;
      real = std::cos(angle);
      imaginary = std::sin(angle);
    } else if (kind == 3) {
      return {odd[random.Between(0, 11)], odd[random.Between(0, 11)]};
    }
    return {static_cast<float>(std::ldexp(real, exponent)),
            static_cast<float>(std::ldexp(imaginary, exponent))};
  };
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) source.Set(x, y, pixelOf(y % 4, y / 2 - 60));
  }
  const TestImage result(IMAGE_SGL, 1, 1);
  ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, COMPLEX_PLANE_MAGNITUDE), 0);
  ExpectPlane(result, source, COMPLEX_PLANE_MAGNITUDE);
}

TEST(ComplexPlanes, AreExtractedInPlace) {
  for (const int32_t plane : {0, 1, 2, 3}) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, 33, 4, 2, 4);
    const TestImage result = test::CloneOf(source);
    const auto surroundings = result.Surroundings();
    ASSERT_EQ(ZEL_ExtractComplexPlane(result, plane % 2 == 0 ? 0 : ImageRef{result}, plane), 0);
    ExpectPlane(result, source, plane);
    EXPECT_EQ(test::SurroundingsDifference(surroundings, result), "");
  }
}

TEST(ComplexPlanes, AreReplacedFromAllTypesAndTheOtherPartStays) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    for (const int32_t type : test::FREQUENCY_TYPES) {
      const TestImage source = SpectrumImage(type, width, height, 1, 5);
      for (const int32_t plane : {0, 1, -1, 7}) {
        const TestImage before = SpectrumImage(IMAGE_COMPLEX, width, height, 2, 6);
        const TestImage result = test::CloneOf(before);
        const auto surroundings = result.Surroundings();
        ASSERT_EQ(ZEL_ReplaceComplexPlane(source, result, plane), 0);
        EXPECT_EQ(test::SurroundingsDifference(surroundings, result), "");
        for (int32_t y = 0; y < height; y++) {
          for (int32_t x = 0; x < width; x++) {
            ComplexValue stated = ComplexAt(before, x, y);
            (plane == 0 ? stated.real : stated.imaginary) = test::NumberAt(source, x, y);
            ASSERT_TRUE(SameBits(ComplexAt(result, x, y), stated)) << x << ", " << y;
          }
        }
      }
    }
  }
}

TEST(ComplexPlanes, TheOtherPartIsZeroWhereTheImageIsResized) {
  const TestImage source = SpectrumImage(IMAGE_SGL, 9, 5, 0, 7);
  for (const int32_t plane : {0, 1}) {
    const TestImage result = SpectrumImage(IMAGE_COMPLEX, 20, 30, 1, 8);
    ASSERT_EQ(ZEL_ReplaceComplexPlane(source, result, plane), 0);
    ASSERT_EQ(result.width(), 9);
    for (int32_t y = 0; y < 5; y++) {
      for (int32_t x = 0; x < 9; x++) {
        const float number = source.Get<float>(x, y);
        const ComplexValue stated =
            plane == 0 ? ComplexValue{number, 0.0f} : ComplexValue{0.0f, number};
        ASSERT_TRUE(SameBits(ComplexAt(result, x, y), stated));
      }
    }
  }
}

TEST(ComplexPlanes, AComplexImageGivesItsOwnRealPart) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 9, 5, 0, 9);
  const TestImage result = test::CloneOf(source);
  ASSERT_EQ(ZEL_ReplaceComplexPlane(result, 0, 0), 0);
  EXPECT_EQ(test::PixelDifference(result, source), "");
  ASSERT_EQ(ZEL_ReplaceComplexPlane(result, 0, 1), 0);
  for (int32_t x = 0; x < 9; x++) {
    const float real = ComplexAt(source, x, 2).real;
    EXPECT_TRUE(SameBits(ComplexAt(result, x, 2), {real, real}));
  }
}

TEST(ComplexPlanes, AreTheSameForAnyNumberOfWorkers) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 129, 40, 1, 10);
  for (const int32_t count : {1, 2, 3}) {
    const test::Workers workers(count);
    const TestImage result(IMAGE_I16, 1, 1);
    ASSERT_EQ(ZEL_ExtractComplexPlane(source, result, 2), 0);
    ExpectPlane(result, source, 2);
  }
}

TEST(ComplexPlanes, RefuseImagesInTheOrderOfTheTests) {
  const TestImage complex(IMAGE_COMPLEX, 4, 3);
  ZEL_SetImageCalibration(complex, 5, 1, 1);
  const TestImage floats(IMAGE_SGL, 2, 2);
  const TestImage colors(IMAGE_RGB, 2, 2);
  EXPECT_EQ(ZEL_ExtractComplexPlane(test::NO_IMAGE, complex, 0), -200);
  EXPECT_EQ(ZEL_ExtractComplexPlane(floats, test::NO_IMAGE, 0), -2003);
  EXPECT_EQ(ZEL_ExtractComplexPlane(complex, test::NO_IMAGE, 0), -200);
  EXPECT_EQ(ZEL_ExtractComplexPlane(complex, colors, 0), -304);
  EXPECT_EQ(colors.width(), 0);
  EXPECT_EQ(colors.Info().unit, 5);

  const TestImage other(IMAGE_RGB, 2, 2);
  EXPECT_EQ(ZEL_ReplaceComplexPlane(test::NO_IMAGE, 0, 0), -200);
  EXPECT_EQ(ZEL_ReplaceComplexPlane(floats, test::NO_IMAGE, 0), -200);
  EXPECT_EQ(ZEL_ReplaceComplexPlane(floats, 0, 0), -2003);
  EXPECT_EQ(ZEL_ReplaceComplexPlane(other, floats, 0), -2003);
  EXPECT_EQ(ZEL_ReplaceComplexPlane(other, complex, 0), -304);
  EXPECT_EQ(complex.Info().unit, 5);
}

TEST(ComplexPlanes, RefusedMemoryIsAFailureOfTheCall) {
  const TestImage complex = SpectrumImage(IMAGE_COMPLEX, 33, 9, 0, 11);
  const TestImage result(IMAGE_SGL, 1, 1);
  const TestImage target(IMAGE_COMPLEX, 1, 1);
  test::RefuseEachAllocation([&result] { ZEL_SetImageSize(result, 1, 1); },
                             [&] { return ZEL_ExtractComplexPlane(complex, result, 2); });
  test::RefuseEachAllocation([&target] { ZEL_SetImageSize(target, 1, 1); },
                             [&] { return ZEL_ReplaceComplexPlane(result, target, 1); });
}

}  // namespace
