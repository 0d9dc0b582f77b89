#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <vector>

#include "harness/test_image.h"
#include "platform/processor.h"
#include "point/operator_test.h"

namespace {

using test::Border;
using test::CutLimitedOf;
using test::Difference;
using test::ODD_SIZES;
using test::Operands;
using test::TestImage;

enum class Arithmetic { Add, Subtract, Multiply, Divide, Modulo, MulDiv };
constexpr Arithmetic ALL[] = {Arithmetic::Add,    Arithmetic::Subtract, Arithmetic::Multiply,
                              Arithmetic::Divide, Arithmetic::Modulo,   Arithmetic::MulDiv};

int32_t Call(Arithmetic operation, ImageRef first, ImageRef second, ImageRef destination,
             float constant) {
  switch (operation) {
    case Arithmetic::Add:
      return ZEL_Add(first, second, destination, constant);
    case Arithmetic::Subtract:
      return ZEL_Subtract(first, second, destination, constant);
    case Arithmetic::Multiply:
      return ZEL_Multiply(first, second, destination, constant);
    case Arithmetic::Divide:
      return ZEL_Divide(first, second, destination, constant);
    case Arithmetic::Modulo:
      return ZEL_Modulo(first, second, destination, constant);
    default:
      return ZEL_MulDiv(first, second, destination, constant);
  }
}

// The rules, one pixel at a time, in numbers that hold every intermediate result.

double IntegerOfImages(Arithmetic operation, int32_t type1, int32_t type2, int64_t a, int64_t b,
                       float constant) {
  switch (operation) {
    case Arithmetic::Add:
      return CutLimitedOf(type1, static_cast<double>(a + b));
    case Arithmetic::Subtract:
      return CutLimitedOf(type1, static_cast<double>(a - b));
    case Arithmetic::Multiply:
      return CutLimitedOf(type1, static_cast<double>(a * b));
    case Arithmetic::Divide:
      return CutLimitedOf(type1, static_cast<double>(b == 0 ? a : a / b));
    case Arithmetic::Modulo:
      return static_cast<double>(b == 0 ? a : a % b);
    default:
      break;
  }
  if (b == 0) return static_cast<double>(a);
  if (type1 == IMAGE_I16 && type2 == IMAGE_U8) {
    const int64_t quotient = a * test::CutInt(constant) / b;
    return static_cast<int16_t>(static_cast<uint16_t>(quotient & 0xFFFF));
  }
  const double factor =
      type1 == IMAGE_U8 ? std::fabs(static_cast<double>(constant)) : static_cast<double>(constant);
  return CutLimitedOf(type1, static_cast<double>(a) * factor / static_cast<double>(b));
}

float FloatOfImages(Arithmetic operation, double a, double b, float constant) {
  switch (operation) {
    case Arithmetic::Add:
      return static_cast<float>(a + b);
    case Arithmetic::Subtract:
      return static_cast<float>(a - b);
    case Arithmetic::Multiply:
      return static_cast<float>(a * b);
    case Arithmetic::Divide:
      return static_cast<float>(b == 0 ? a : a / b);
    case Arithmetic::Modulo:
      return static_cast<float>(b == 0 ? a : a - std::trunc(a / b) * b);
    default:
      return static_cast<float>(b == 0 ? a : a * static_cast<double>(constant) / b);
  }
}

double IntegerWithConstant(Arithmetic operation, int32_t type, int64_t a, float constant,
                           bool grouped) {
  const int64_t truncated = test::CutInt(constant);
  const double c = static_cast<double>(constant);
  const bool bytes = type == IMAGE_U8;
  switch (operation) {
    case Arithmetic::Add:
      return CutLimitedOf(type, static_cast<double>(a + truncated));
    case Arithmetic::Subtract:
      return CutLimitedOf(type, static_cast<double>(a - truncated));
    case Arithmetic::Multiply:
      if (bytes && grouped) {
        const int64_t factor = truncated < 0 || truncated > 255 ? 255 : truncated;
        return CutLimitedOf(type, static_cast<double>(a * factor));
      }
      return CutLimitedOf(type, static_cast<double>(a) * (bytes ? std::fabs(c) : c));
    case Arithmetic::Divide: {
      const double divisor = c == 0 ? 1.0 : bytes ? std::fabs(c) : c;
      return CutLimitedOf(type, static_cast<double>(a) / divisor);
    }
    default: {
      int64_t divisor = truncated == 0 ? 1 : truncated;
      if (bytes) divisor = (divisor < 0 ? -divisor : divisor) & 255;
      return static_cast<double>(divisor == 0 ? 0 : a % divisor);
    }
  }
}

float FloatWithConstant(Arithmetic operation, double a, float constant) {
  const bool divides = operation == Arithmetic::Divide || operation == Arithmetic::Modulo;
  const double c = divides && constant == 0.0f ? 1.0 : static_cast<double>(constant);
  return FloatOfImages(operation, a, c, 0.0f);
}

TestImage ImagesResult(Arithmetic operation, const TestImage& first, const TestImage& second,
                       float constant) {
  const int32_t type1 = first.Info().type;
  const int32_t type2 = second.Info().type;
  return test::Combined(first, second, type1, [=](double a, double b) {
    if (type1 == IMAGE_SGL) return static_cast<double>(FloatOfImages(operation, a, b, constant));
    return IntegerOfImages(operation, type1, type2, static_cast<int64_t>(a),
                           static_cast<int64_t>(b), constant);
  });
}

TestImage ConstantResult(Arithmetic operation, const TestImage& first, float constant, bool mmx) {
  const int32_t type = first.Info().type;
  const int32_t width = first.width();
  const int32_t grouped = mmx && width > 7 ? width - width % 4 : 0;
  return test::Mapped(first, type, [=](double a, int32_t x) {
    if (type == IMAGE_SGL) return static_cast<double>(FloatWithConstant(operation, a, constant));
    return IntegerWithConstant(operation, type, static_cast<int64_t>(a), constant, x < grouped);
  });
}

constexpr float CONSTANTS[] = {
    0.0f,     -0.0f,    1.0f,      -1.0f,    2.0f,     -2.0f,     0.5f,      -0.5f,
    0.29f,    0.1f,     3.7f,      10.0f,    -10.7f,   127.0f,    128.0f,    254.9f,
    255.0f,   256.0f,   -255.0f,   -256.0f,  300.7f,   1000.0f,   -300.7f,   512.0f,
    32767.0f, 32768.0f, -32768.0f, 65535.0f, 65536.0f, -65535.0f, -65536.0f, 1e-30f,
    1e-42f,   1e10f,    -1e10f,    3e9f,     3e38f,
};

TEST(Arithmetic, ImagesOfAllTypePairsAndSizesFollowTheRules) {
  for (const Arithmetic operation : ALL) {
    for (int32_t type1 = IMAGE_U8; type1 <= IMAGE_SGL; type1++) {
      for (int32_t type2 = IMAGE_U8; type2 <= type1; type2++) {
        uint64_t seed = 1;
        for (const auto& [width, height] : ODD_SIZES) {
          const TestImage first(type1, width, height, Border(seed), seed);
          const TestImage second(type2, width, height, Border(seed + 1), seed + 50);
          test::SprinkleZeros(second, seed);
          TestImage destination(type1, 3, 3, Border(seed + 2), seed + 70);
          seed++;
          const float constant = CONSTANTS[seed % std::size(CONSTANTS)];
          const TestImage expected = ImagesResult(operation, first, second, constant);
          ASSERT_EQ(Call(operation, first, second, destination, constant), 0);
          ASSERT_EQ(Difference(destination, expected), "")
              << static_cast<int>(operation) << " types " << type1 << ' ' << type2;
        }
      }
    }
  }
}

TEST(Arithmetic, ConstantsOfAllTypesFollowTheRulesColumnByColumn) {
  for (const int32_t mmx : {0, 1}) {
    zel::MmxForce(mmx);
    for (const Arithmetic operation : ALL) {
      if (operation == Arithmetic::MulDiv) continue;
      for (int32_t type = IMAGE_U8; type <= IMAGE_SGL; type++) {
        for (const float constant : CONSTANTS) {
          for (const int32_t width : {1, 7, 8, 9, 15, 16, 17, 31, 33, 66}) {
            const TestImage first(type, width, 3, Border(width), static_cast<uint64_t>(width));
            TestImage destination(type, width, 3, 1, 9);
            const auto surroundings = destination.Surroundings();
            const TestImage expected = ConstantResult(operation, first, constant, mmx != 0);
            ASSERT_EQ(Call(operation, first, 0, destination, constant), 0);
            ASSERT_EQ(Difference(destination, expected), "")
                << static_cast<int>(operation) << " type " << type << " constant " << constant;
            ASSERT_EQ(destination.Surroundings(), surroundings);
          }
        }
      }
    }
  }
}

TEST(Arithmetic, EveryPairOfBytesFollowsTheRules) {
  const auto [first, second] = test::PairsOfBytes();
  TestImage destination(IMAGE_U8, 0, 0);
  for (const Arithmetic operation : ALL) {
    for (const float constant : {1.0f, -3.3f, 0.29f, 117.25f, 1e-3f, 1e9f, INFINITY, NAN}) {
      ASSERT_EQ(Call(operation, first, second, destination, constant), 0);
      ASSERT_EQ(Difference(destination, ImagesResult(operation, first, second, constant)), "")
          << static_cast<int>(operation) << " constant " << constant;
    }
  }
}

// All 16-bit dividends against divisors around every power of two.
TEST(Arithmetic, WordsAreDividedExactly) {
  std::vector<int16_t> divisors = {0, 3, 5, 7, 10, 100, 255, 257, 12345, -3, -7, -12345};
  for (int32_t bit = 0; bit < 16; bit++) {
    for (int32_t near = -1; near <= 1; near++) {
      divisors.push_back(static_cast<int16_t>(std::min((1 << bit) + near, 32767)));
      divisors.push_back(static_cast<int16_t>(-(1 << bit) + near));
    }
  }
  const TestImage first = test::EveryWord();
  const TestImage second(IMAGE_I16, 256, 256);
  TestImage destination(IMAGE_I16, 0, 0);
  for (const int16_t divisor : divisors) {
    for (int32_t y = 0; y < 256; y++) {
      for (int32_t x = 0; x < 256; x++) second.Set<int16_t>(x, y, divisor);
    }
    const auto constant = static_cast<float>(divisor);
    for (const Arithmetic operation : {Arithmetic::Divide, Arithmetic::Modulo}) {
      const TestImage byImage = ImagesResult(operation, first, second, 0);
      const TestImage byConstant = ConstantResult(operation, first, constant, true);
      ASSERT_EQ(Call(operation, first, second, destination, 0), 0);
      ASSERT_EQ(Difference(destination, byImage), "") << divisor;
      ASSERT_EQ(Call(operation, first, 0, destination, constant), 0);
      ASSERT_EQ(Difference(destination, byConstant), "") << "constant " << divisor;
    }
  }
}

// Fractional divisors whose quotients lie next to whole numbers.
TEST(Arithmetic, WordsAreDividedExactlyByFractions) {
  const TestImage first = test::EveryWord();
  const TestImage bytes(IMAGE_U8, 256, 1);
  for (int32_t x = 0; x < 256; x++) bytes.Set<uint8_t>(x, 0, static_cast<uint8_t>(x));
  TestImage words(IMAGE_I16, 0, 0);
  TestImage byteResult(IMAGE_U8, 0, 0);
  test::Random random(77);
  for (int32_t round = 0; round < 60; round++) {
    float constant =
        static_cast<float>(random.Between(1, 32767)) / static_cast<float>(random.Between(1, 32767));
    constant = std::nextafter(constant, round % 3 == 0 ? 0.0f : round % 3 == 1 ? 1e9f : constant);
    if (round % 2 != 0) constant = -constant;
    for (const Arithmetic operation : {Arithmetic::Multiply, Arithmetic::Divide}) {
      ASSERT_EQ(Call(operation, first, 0, words, constant), 0);
      ASSERT_EQ(Difference(words, ConstantResult(operation, first, constant, true)), "")
          << constant;
      ASSERT_EQ(Call(operation, bytes, 0, byteResult, constant), 0);
      ASSERT_EQ(Difference(byteResult, ConstantResult(operation, bytes, constant, true)), "")
          << constant;
    }
  }
}

// Factors of all sizes, among them those whose products pass 32 bits.
TEST(Arithmetic, WordsAreMultipliedAndDividedExactly) {
  const TestImage first(IMAGE_I16, 512, 64, 0, 41);
  const TestImage second(IMAGE_I16, 512, 64, 0, 42);
  test::Random random(43);
  for (int32_t y = 0; y < 64; y++) {
    for (int32_t x = 0; x < 512; x++) {
      if (x % 2 == 0) second.Set<int16_t>(x, y, static_cast<int16_t>(random.Between(-40, 40)));
    }
  }
  for (int32_t x = 0; x < 512; x++) {
    first.Set<int16_t>(x, 0, -32768);
    second.Set<int16_t>(x, 1, -32768);
    second.Set<int16_t>(x, 0, static_cast<int16_t>(x % 4 == 0 ? -32768 : x - 256));
  }
  TestImage destination(IMAGE_I16, 0, 0);
  for (int32_t exponent = -40; exponent <= 33; exponent++) {
    for (const float mantissa : {1.0f, -1.0f, 1.9999999f, 1.3333334f, -1.7001f}) {
      const float constant = std::ldexp(mantissa, exponent);
      const TestImage expected = ImagesResult(Arithmetic::MulDiv, first, second, constant);
      ASSERT_EQ(ZEL_MulDiv(first, second, destination, constant), 0);
      ASSERT_EQ(Difference(destination, expected), "") << constant;
    }
  }
}

TEST(Arithmetic, FloatsKeepInfinitiesNanAndZeros) {
  const std::vector<float> values = {0.0f,      -0.0f, 1.0f,   -1.5f, INFINITY,
                                     -INFINITY, NAN,   1e-42f, 3e38f, -3e38f};
  const auto [first, second] = test::Pairs<float>(IMAGE_SGL, values);
  TestImage destination(IMAGE_SGL, 0, 0);
  for (const Arithmetic operation : ALL) {
    for (const float constant : values) {
      ASSERT_EQ(Call(operation, first, second, destination, constant), 0);
      ASSERT_EQ(Difference(destination, ImagesResult(operation, first, second, constant)), "");
      if (operation == Arithmetic::MulDiv) continue;
      ASSERT_EQ(Call(operation, first, 0, destination, constant), 0);
      ASSERT_EQ(Difference(destination, ConstantResult(operation, first, constant, true)), "")
          << static_cast<int>(operation) << " constant " << constant;
    }
  }
}

TEST(Arithmetic, InfiniteAndNanConstantsOnIntegers) {
  for (const int32_t mmx : {0, 1}) {
    zel::MmxForce(mmx);
    for (const Arithmetic operation : ALL) {
      if (operation == Arithmetic::MulDiv) continue;
      for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
        for (const float constant : {INFINITY, -INFINITY, NAN}) {
          const TestImage first(type, 67, 2, 0, 4);
          first.Set<uint8_t>(0, 0, 0);
          TestImage destination(type, 0, 0);
          ASSERT_EQ(Call(operation, first, 0, destination, constant), 0);
          ASSERT_EQ(Difference(destination, ConstantResult(operation, first, constant, mmx != 0)),
                    "")
              << static_cast<int>(operation) << " type " << type << " constant " << constant;
        }
      }
    }
  }
}

TEST(Arithmetic, ResultsMayReplaceEitherOperandAndLeaveItsSurroundings) {
  for (const Arithmetic operation : ALL) {
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      for (const int32_t width : {1, 9, 33, 64, 131}) {
        const Operands pair(type, width);
        const TestImage expected = ImagesResult(operation, pair.first, pair.second, 2.5f);
        const TestImage squared = ImagesResult(operation, pair.first, pair.first, 2.5f);
        {
          const Operands used(type, width);
          const auto before = used.first.Surroundings();
          ASSERT_EQ(Call(operation, used.first, used.second, 0, 2.5f), 0);
          ASSERT_EQ(Difference(used.first, expected), "");
          ASSERT_EQ(used.first.Surroundings(), before);
          ASSERT_EQ(used.second.Block(), pair.second.Block());
        }
        {
          const Operands used(type, width);
          const auto before = used.second.Surroundings();
          ASSERT_EQ(Call(operation, used.first, used.second, used.second, 2.5f), 0);
          ASSERT_EQ(Difference(used.second, expected), "");
          ASSERT_EQ(used.second.Surroundings(), before);
        }
        {
          const Operands used(type, width);
          ASSERT_EQ(Call(operation, used.first, used.first, used.first, 2.5f), 0);
          ASSERT_EQ(Difference(used.first, squared), "");
        }
      }
    }
  }
}

TEST(Arithmetic, SaturatesAtTheLimitsOfTheType) {
  const TestImage bytes(IMAGE_U8, 9, 1);
  const TestImage more(IMAGE_U8, 9, 1);
  for (int32_t x = 0; x < 9; x++) {
    bytes.Set<uint8_t>(x, 0, 200);
    more.Set<uint8_t>(x, 0, 100);
  }
  TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Add(bytes, more, destination, 0), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 255);
  ASSERT_EQ(ZEL_Subtract(more, bytes, destination, 0), 0);
  EXPECT_EQ(destination.Get<uint8_t>(8, 0), 0);
  const TestImage words(IMAGE_I16, 9, 1);
  for (int32_t x = 0; x < 9; x++) words.Set<int16_t>(x, 0, -32768);
  ASSERT_EQ(ZEL_Subtract(words, 0, 0, 1.0f), 0);
  EXPECT_EQ(words.Get<int16_t>(3, 0), -32768);
  const TestImage minus(IMAGE_I16, 9, 1);
  for (int32_t x = 0; x < 9; x++) minus.Set<int16_t>(x, 0, -1);
  ASSERT_EQ(ZEL_Divide(words, minus, 0, 0), 0);
  EXPECT_EQ(words.Get<int16_t>(3, 0), 32767);
}

TEST(Arithmetic, ConstantOfMultiplyActsDifferentlyInGroupedAndRemainingColumns) {
  const TestImage image(IMAGE_U8, 11, 1);
  for (int32_t x = 0; x < 11; x++) image.Set<uint8_t>(x, 0, 10);
  TestImage destination(IMAGE_U8, 0, 0);
  zel::MmxForce(1);
  ASSERT_EQ(ZEL_Multiply(image, 0, destination, -2.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(7, 0), 255);
  EXPECT_EQ(destination.Get<uint8_t>(8, 0), 20);
  ASSERT_EQ(ZEL_Multiply(image, 0, destination, 0.5f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 0);
  EXPECT_EQ(destination.Get<uint8_t>(10, 0), 5);
  zel::MmxForce(0);
  ASSERT_EQ(ZEL_Multiply(image, 0, destination, -2.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 20);
}

TEST(Arithmetic, DividingByZeroLeavesTheDividendAndModuloByConstantZeroIsZero) {
  const TestImage image(IMAGE_U8, 20, 1, 0, 8);
  const TestImage zero(IMAGE_U8, 20, 1);
  for (int32_t x = 0; x < 20; x++) zero.Set<uint8_t>(x, 0, 0);
  TestImage destination(IMAGE_U8, 0, 0);
  for (const Arithmetic operation : {Arithmetic::Divide, Arithmetic::Modulo, Arithmetic::MulDiv}) {
    ASSERT_EQ(Call(operation, image, zero, destination, 3.0f), 0);
    EXPECT_EQ(destination.Pixels(), image.Pixels());
  }
  ASSERT_EQ(ZEL_Divide(image, 0, destination, 0.0f), 0);
  EXPECT_EQ(destination.Pixels(), image.Pixels());
  for (const float constant : {0.0f, 256.0f, -512.0f, 0.9f}) {
    ASSERT_EQ(ZEL_Modulo(image, 0, destination, constant), 0);
    EXPECT_EQ(destination.Pixels(), zero.Pixels());
  }
}

TEST(Arithmetic, OnlyAddAndMultiplyTakeTheWiderOperandSecond) {
  const TestImage bytes(IMAGE_U8, 19, 2, 1, 3);
  const TestImage words(IMAGE_I16, 19, 2, 0, 4);
  const TestImage floats(IMAGE_SGL, 19, 2, 0, 5);
  ZEL_SetImageCalibration(bytes, 7, 2.0f, 3.0f);
  for (const Arithmetic operation : ALL) {
    TestImage destination(IMAGE_I16, 0, 0);
    TestImage floatDestination(IMAGE_SGL, 0, 0);
    const bool swaps = operation == Arithmetic::Add || operation == Arithmetic::Multiply;
    EXPECT_EQ(Call(operation, bytes, words, destination, 1.0f), swaps ? 0 : -305);
    EXPECT_EQ(Call(operation, words, floats, floatDestination, 1.0f), swaps ? 0 : -305);
    if (!swaps) continue;
    EXPECT_EQ(Difference(destination, ImagesResult(operation, words, bytes, 0)), "");
    EXPECT_EQ(Difference(floatDestination, ImagesResult(operation, floats, words, 0)), "");
    EXPECT_EQ(destination.Info().unit, 7);  // from the first image, exchanged or not
    // The destination would be the first operand, which has not the result's type.
    EXPECT_EQ(Call(operation, bytes, words, 0, 1.0f), -305);
    EXPECT_EQ(Call(operation, bytes, words, words, 1.0f), 0);
  }
}

TEST(Arithmetic, CalibrationComesFromTheFirstImageEvenWhenSizesDiffer) {
  const TestImage first(IMAGE_U8, 10, 4);
  const TestImage second(IMAGE_U8, 10, 5);
  TestImage destination(IMAGE_U8, 2, 2);
  ZEL_SetImageCalibration(first, 3, 0.5f, 0.25f);
  ZEL_SetImageOffset(first, 4, -5);
  EXPECT_EQ(ZEL_Add(first, second, destination, 0), -306);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.unit, 3);
  EXPECT_EQ(info.offsetY, -5);
  EXPECT_EQ(info.width, 2);
}

TEST(Arithmetic, AnEmptyOperandCopiesTheOther) {
  const TestImage empty(IMAGE_U8, 0, 0);
  const TestImage image(IMAGE_U8, 10, 10, 1, 6);
  TestImage destination(IMAGE_U8, 3, 3);
  EXPECT_EQ(ZEL_Add(empty, image, destination, 0), 0);
  EXPECT_EQ(Difference(destination, image), "");
  TestImage other(IMAGE_U8, 3, 3);
  EXPECT_EQ(ZEL_Subtract(image, empty, other, 0), 0);
  EXPECT_EQ(Difference(other, image), "");
  EXPECT_EQ(ZEL_Add(image, empty, 0, 0), 0);
  EXPECT_EQ(ZEL_Add(empty, empty, destination, 0), 0);
  EXPECT_EQ(destination.width(), 0);
  const TestImage emptyWords(IMAGE_I16, 0, 0);
  TestImage words(IMAGE_I16, 0, 0);
  EXPECT_EQ(ZEL_Add(emptyWords, image, words, 0), -303);
}

TEST(Arithmetic, WrongImagesGiveTheirNumbers) {
  const TestImage bytes(IMAGE_U8, 10, 10);
  const TestImage words(IMAGE_I16, 10, 10);
  const TestImage rgb(IMAGE_RGB, 10, 10);
  const TestImage complex(IMAGE_COMPLEX, 10, 10);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  for (const Arithmetic operation : ALL) {
    const bool needsSecond = operation == Arithmetic::MulDiv;
    EXPECT_EQ(Call(operation, 0, bytes, bytes, 1), -200);
    EXPECT_EQ(Call(operation, 99, bytes, bytes, 1), -200);
    EXPECT_EQ(Call(operation, bytes, 99, bytes, 1), -200);
    EXPECT_EQ(Call(operation, bytes, bytes, 99, 1), -200);
    EXPECT_EQ(Call(operation, bytes, 0, 99, 1), -200);
    EXPECT_EQ(Call(operation, bytes, bytes, words, 1), -305);
    EXPECT_EQ(Call(operation, bytes, 0, words, 1), -305);
    EXPECT_EQ(Call(operation, rgb, rgb, rgb, 1), -302);
    EXPECT_EQ(Call(operation, complex, complex, complex, 1), -302);
    EXPECT_EQ(Call(operation, rgb, 0, rgb, 1), needsSecond ? -202 : -302);
    EXPECT_EQ(Call(operation, rgb, bytes, rgb, 1), -302);
    EXPECT_EQ(Call(operation, opaque, opaque, opaque, 1), -300);
  }
  EXPECT_EQ(ZEL_MulDiv(bytes, 0, words, 1), -305);
  TestImage destination(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_MulDiv(bytes, 0, destination, 1), -202);
  EXPECT_EQ(destination.width(), 10);  // the check comes after the destination is prepared
}

TEST(Arithmetic, SubtractReportsUnderItsOldName) {
  char name[256];
  ZEL_Subtract(0, 0, 0, 0);
  EXPECT_EQ(ZEL_GetLastError(name), -200);
  EXPECT_STREQ(name, "ZEL_Substract");
  ZEL_MulDiv(0, 0, 0, 0);
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_MulDiv");
}

}  // namespace
