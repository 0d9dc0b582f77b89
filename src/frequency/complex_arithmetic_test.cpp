// Arithmetic of complex images, pixel by pixel from the stated rules.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "frequency/frequency_test.h"
#include "tests/support/refused_memory.h"
#include "tests/support/walks.h"

namespace {

using test::ComplexAt;
using test::SameBits;
using test::SpectrumImage;
using test::TestImage;

using Call = int32_t (*)(ImageRef, ImageRef, ImageRef, float, float);
constexpr Call CALLS[] = {ZEL_ComplexAdd, ZEL_ComplexSubtract, ZEL_ComplexMultiply,
                          ZEL_ComplexDivide};

ComplexValue Rounded(double re, double im) {
  return {static_cast<float>(re), static_cast<float>(im)};
}

ComplexValue WithReal(Call call, ComplexValue pixel, float number) {
  const auto re = static_cast<double>(pixel.real);
  const auto im = static_cast<double>(pixel.imaginary);
  const auto v = static_cast<double>(number);
  if (call == ZEL_ComplexAdd) return Rounded(re + v, im);
  if (call == ZEL_ComplexSubtract) return Rounded(re - v, im);
  if (call == ZEL_ComplexMultiply) return Rounded(re * v, im * v);
  return v == 0 ? pixel : Rounded(re / v, im / v);
}

ComplexValue WithComplex(Call call, ComplexValue pixel, ComplexValue other, bool isConstant) {
  const auto re = static_cast<double>(pixel.real);
  const auto im = static_cast<double>(pixel.imaginary);
  const auto vr = static_cast<double>(other.real);
  const auto vi = static_cast<double>(other.imaginary);
  if (call == ZEL_ComplexAdd) return Rounded(re + vr, im + vi);
  if (call == ZEL_ComplexSubtract) return Rounded(re - vr, im - vi);
  if (call == ZEL_ComplexMultiply) return Rounded(re * vr - im * vi, re * vi + im * vr);
  if (vr == 0 && vi == 0) return pixel;
  double d = vr * vr + vi * vi;
  if (isConstant) d = static_cast<double>(static_cast<float>(d));
  return Rounded((re * vr + im * vi) / d, (im * vr - re * vi) / d);
}

void ExpectPixels(const TestImage& actual, int32_t width, int32_t height,
                  const std::function<ComplexValue(int32_t, int32_t)>& stated) {
  ASSERT_EQ(actual.width(), width);
  ASSERT_EQ(actual.height(), height);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const ComplexValue value = ComplexAt(actual, x, y);
      const ComplexValue expected = stated(x, y);
      ASSERT_TRUE(SameBits(value, expected))
          << x << ", " << y << ": " << value.real << ' ' << value.imaginary << " and "
          << expected.real << ' ' << expected.imaginary;
    }
  }
}

TEST(ComplexArithmetic, CombinesPixelsOfAllTypes) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 1, 2);
    for (const int32_t type : test::FREQUENCY_TYPES) {
      const TestImage operand = SpectrumImage(type, width, height, 2, 3);
      for (int32_t x = 0; x < width; x += 3) {  // some zeros
        if (type == IMAGE_U8) operand.Set<uint8_t>(x, 0, 0);
        if (type == IMAGE_I16) operand.Set<int16_t>(x, 0, 0);
        if (type == IMAGE_COMPLEX) operand.Set<ComplexValue>(x, 0, {0.0f, -0.0f});
      }
      for (const Call call : CALLS) {
        const TestImage result(IMAGE_COMPLEX, 2, 2, 1);
        ASSERT_EQ(call(source, operand, result, 7, 7), 0);
        ExpectPixels(result, width, height, [&](int32_t x, int32_t y) {
          const ComplexValue pixel = ComplexAt(source, x, y);
          return type == IMAGE_COMPLEX ? WithComplex(call, pixel, ComplexAt(operand, x, y), false)
                                       : WithReal(call, pixel, test::NumberAt(operand, x, y));
        });
      }
    }
  }
}

TEST(ComplexArithmetic, CombinesWithConstants) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 65, 3, 1, 4);
  const ComplexValue constants[] = {{2.5f, -3.25f}, {0.0f, 1e-30f}, {1e30f, -1e25f},
                                    {-0.0f, 7.0f},  {1e-3f, -0.0f}, {-5.0f, 0.0f}};
  for (const Call call : CALLS) {
    for (const ComplexValue& constant : constants) {
      const TestImage result(IMAGE_COMPLEX, 2, 2, 2);
      ASSERT_EQ(call(source, 0, result, constant.real, constant.imaginary), 0);
      ExpectPixels(result, 65, 3, [&](int32_t x, int32_t y) {
        return WithComplex(call, ComplexAt(source, x, y), constant, true);
      });
    }
  }
}

// A sum or difference with 0 leaves even another destination unwritten; a quotient is the source.
TEST(ComplexArithmetic, AConstantOfZeroIsNotAddedButDividesAsOne) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 17, 5, 1, 5);
  ZEL_SetImageCalibration(source, 3, 2.0f, 2.0f);
  for (const Call call : {ZEL_ComplexAdd, ZEL_ComplexSubtract}) {
    const TestImage result(IMAGE_COMPLEX, 17, 5, 2, 6);
    const auto before = result.Block();
    EXPECT_EQ(call(source, 0, result, 0.0f, -0.0f), 0);
    EXPECT_EQ(result.Block(), before);
    EXPECT_EQ(result.Info().unit, 3);
    const TestImage other(IMAGE_COMPLEX, 2, 2, 0, 6);
    EXPECT_EQ(call(source, 0, other, -0.0f, 0.0f), 0);
    EXPECT_EQ(other.width(), 17);
  }
  const TestImage result(IMAGE_COMPLEX, 1, 1);
  EXPECT_EQ(ZEL_ComplexDivide(source, 0, result, -0.0f, 0.0f), 0);
  EXPECT_EQ(test::PixelDifference(result, source), "");
  EXPECT_EQ(ZEL_ComplexMultiply(source, 0, result, 0.0f, 0.0f), 0);
  ExpectPixels(result, 17, 5, [&](int32_t x, int32_t y) {
    return WithComplex(ZEL_ComplexMultiply, ComplexAt(source, x, y), {0.0f, 0.0f}, true);
  });
}

TEST(ComplexArithmetic, TheResultMayTakeThePlaceOfEitherOperand) {
  for (const Call call : CALLS) {
    const TestImage first = SpectrumImage(IMAGE_COMPLEX, 33, 4, 1, 7);
    const TestImage second = SpectrumImage(IMAGE_COMPLEX, 33, 4, 0, 8);
    const TestImage stated(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(call(first, second, stated, 0, 0), 0);
    const TestImage firstToo = test::CloneOf(first);
    const auto surroundings = firstToo.Surroundings();
    ASSERT_EQ(call(firstToo, second, 0, 0, 0), 0);
    EXPECT_EQ(test::PixelDifference(firstToo, stated), "");
    EXPECT_EQ(test::SurroundingsDifference(surroundings, firstToo), "");
    const TestImage secondToo = test::CloneOf(second);
    ASSERT_EQ(call(first, secondToo, secondToo, 0, 0), 0);
    EXPECT_EQ(test::PixelDifference(secondToo, stated), "");
  }
}

TEST(ComplexArithmetic, IsTheSameForAnyNumberOfWorkers) {
  const TestImage first = SpectrumImage(IMAGE_COMPLEX, 129, 40, 1, 9);
  const TestImage second = SpectrumImage(IMAGE_COMPLEX, 129, 40, 0, 10);
  const TestImage stated(IMAGE_COMPLEX, 1, 1);
  ASSERT_EQ(ZEL_ComplexDivide(first, second, stated, 0, 0), 0);
  for (const int32_t count : {2, 3}) {
    const test::Workers workers(count);
    const TestImage result(IMAGE_COMPLEX, 1, 1);
    ASSERT_EQ(ZEL_ComplexDivide(first, second, result, 0, 0), 0);
    EXPECT_EQ(test::PixelDifference(result, stated), "");
  }
}

TEST(ComplexArithmetic, ImagesThatDoNotFitAreRefusedInTheOrderOfTheTests) {
  const TestImage complex(IMAGE_COMPLEX, 4, 3);
  const TestImage floats(IMAGE_SGL, 4, 3);
  const TestImage narrow(IMAGE_SGL, 3, 3);
  const TestImage colors(IMAGE_RGB, 3, 3);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  for (const Call call : CALLS) {
    EXPECT_EQ(call(test::NO_IMAGE, test::NO_IMAGE, test::NO_IMAGE, 1, 1), -200);
    EXPECT_EQ(call(0, 0, complex, 1, 1), -200);
    EXPECT_EQ(call(floats, test::NO_IMAGE, test::NO_IMAGE, 1, 1), -2003);
    EXPECT_EQ(call(complex, test::NO_IMAGE, test::NO_IMAGE, 1, 1), -200);
    EXPECT_EQ(call(complex, colors, test::NO_IMAGE, 1, 1), -305);
    EXPECT_EQ(call(complex, opaque, test::NO_IMAGE, 1, 1), -305);
    EXPECT_EQ(call(complex, narrow, test::NO_IMAGE, 1, 1), -306);
    EXPECT_EQ(call(complex, floats, test::NO_IMAGE, 1, 1), -200);
    EXPECT_EQ(call(complex, floats, floats, 1, 1), -2003);
    EXPECT_EQ(call(complex, 0, colors, 0, 0), -2003);
  }
}

TEST(ComplexArithmetic, RefusedMemoryIsAFailureOfTheCall) {
  const TestImage source = SpectrumImage(IMAGE_COMPLEX, 33, 9, 0, 11);
  const TestImage result(IMAGE_COMPLEX, 1, 1);
  test::RefuseEachAllocation([&result] { ZEL_SetImageSize(result, 1, 1); },
                             [&] { return ZEL_ComplexMultiply(source, 0, result, 1, 2); });
  test::RefuseEachAllocation([&result] { ZEL_SetImageSize(result, 1, 1); },
                             [&] { return ZEL_ComplexConjugate(source, result); });
}

TEST(ComplexConjugate, ChangesTheSignOfImaginaryParts) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    const TestImage source = SpectrumImage(IMAGE_COMPLEX, width, height, 1, 12);
    const TestImage result(IMAGE_COMPLEX, 2, 2, 1);
    ASSERT_EQ(ZEL_ComplexConjugate(source, result), 0);
    ExpectPixels(result, width, height, [&](int32_t x, int32_t y) {
      const ComplexValue pixel = ComplexAt(source, x, y);
      return ComplexValue{pixel.real, -pixel.imaginary};
    });
    const TestImage copy = test::CloneOf(source);
    const auto surroundings = copy.Surroundings();
    ASSERT_EQ(ZEL_ComplexConjugate(copy, copy), 0);
    EXPECT_EQ(test::PixelDifference(copy, result), "");
    EXPECT_EQ(test::SurroundingsDifference(surroundings, copy), "");
  }
}

TEST(ComplexConjugate, RefusesOtherTypes) {
  const TestImage complex(IMAGE_COMPLEX, 4, 3);
  const TestImage floats(IMAGE_SGL, 2, 2);
  EXPECT_EQ(ZEL_ComplexConjugate(test::NO_IMAGE, complex), -200);
  EXPECT_EQ(ZEL_ComplexConjugate(floats, complex), -2003);
  EXPECT_EQ(ZEL_ComplexConjugate(complex, test::NO_IMAGE), -200);
  EXPECT_EQ(ZEL_ComplexConjugate(complex, floats), -304);
  EXPECT_EQ(floats.width(), 0);
}

}  // namespace
