#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "harness/test_image.h"
#include "platform/processor.h"
#include "point/operator_test.h"

namespace {

using test::Border;
using test::Difference;
using test::ODD_SIZES;
using test::Operands;
using test::TestImage;

constexpr int32_t ALL[] = {COMPARISON_MEAN,       COMPARISON_MINIMUM,
                           COMPARISON_MAXIMUM,    COMPARISON_KEEP_NOT_BELOW,
                           COMPARISON_KEEP_ABOVE, COMPARISON_KEEP_DIFFERENT,
                           COMPARISON_KEEP_BELOW, COMPARISON_KEEP_NOT_ABOVE};

// The rules, one pixel at a time. Comparisons are stated by what clears a pixel.
double Ordered(int32_t operation, double a, double b) {
  switch (operation) {
    case COMPARISON_MINIMUM:
      return b < a ? b : a;
    case COMPARISON_MAXIMUM:
      return b > a ? b : a;
    case COMPARISON_KEEP_NOT_BELOW:
      return a < b ? 0 : a;
    case COMPARISON_KEEP_ABOVE:
      return a <= b ? 0 : a;
    case COMPARISON_KEEP_DIFFERENT:
      return a == b ? 0 : a;
    case COMPARISON_KEEP_BELOW:
      return a >= b ? 0 : a;
    default:
      return a > b ? 0 : a;
  }
}

double OfImages(int32_t operation, int32_t type, double a, double b) {
  if (operation != COMPARISON_MEAN) return Ordered(operation, a, b);
  return type == IMAGE_SGL ? (a + b) * 0.5 : std::floor((a + b) / 2);
}

double WithConstant(int32_t operation, int32_t type, double a, float constant, bool grouped) {
  if (type == IMAGE_SGL) return OfImages(operation, type, a, static_cast<double>(constant));
  const auto truncated = static_cast<double>(test::CutInt(constant));
  const double low = type == IMAGE_U8 ? 0 : -32768;
  const double high = type == IMAGE_U8 ? 255 : 32767;
  if (operation == COMPARISON_MEAN) {
    if (type == IMAGE_U8 && grouped) {
      return std::floor((a + static_cast<double>(test::CutInt(constant) & 255)) / 2);
    }
    return std::fmin(std::fmax(std::floor((a + truncated) / 2), low), high);
  }
  if (operation == COMPARISON_MINIMUM) return std::fmin(a, std::fmax(truncated, low));
  if (operation == COMPARISON_MAXIMUM) return std::fmax(a, std::fmin(truncated, high));
  return Ordered(operation, a, truncated);
}

TestImage ImagesResult(int32_t operation, const TestImage& first, const TestImage& second) {
  const int32_t type = first.Info().type;
  return test::Combined(first, second, type,
                        [=](double a, double b) { return OfImages(operation, type, a, b); });
}

TestImage ConstantResult(int32_t operation, const TestImage& first, float constant, bool mmx) {
  const int32_t type = first.Info().type;
  const int32_t width = first.width();
  const int32_t grouped = mmx && width > 7 ? width - width % 4 : 0;
  return test::Mapped(first, type, [=](double a, int32_t x) {
    return WithConstant(operation, type, a, constant, x < grouped);
  });
}

// Pixels that often meet.
void Coarsen(const TestImage& image) {
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < info.height; y++) {
    const test::Row row(image, info.type, y);
    for (int32_t x = 0; x < info.width; x++) {
      if ((x + y) % 3 != 0) row.Set(x, std::trunc(row[x] / 100) * 100);
    }
  }
}

TEST(Compare, ImagesOfAllTypePairsAndSizesFollowTheRules) {
  for (const int32_t operation : ALL) {
    for (int32_t type1 = IMAGE_U8; type1 <= IMAGE_SGL; type1++) {
      for (int32_t type2 = IMAGE_U8; type2 <= type1; type2++) {
        uint64_t seed = 1;
        for (const auto& [width, height] : ODD_SIZES) {
          const TestImage first(type1, width, height, Border(seed), seed);
          const TestImage second(type2, width, height, Border(seed + 1), seed + 50);
          Coarsen(first);
          Coarsen(second);
          TestImage destination(type1, width, height, Border(seed + 2), seed + 70);
          const auto surroundings = destination.Surroundings();
          seed++;
          ASSERT_EQ(ZEL_Compare(first, second, destination, operation, 3.0f), 0);
          ASSERT_EQ(Difference(destination, ImagesResult(operation, first, second)), "")
              << operation << " types " << type1 << ' ' << type2;
          ASSERT_EQ(destination.Surroundings(), surroundings);
        }
      }
    }
  }
}

TEST(Compare, EveryPairOfBytesFollowsTheRules) {
  const auto [first, second] = test::PairsOfBytes();
  TestImage destination(IMAGE_U8, 0, 0);
  for (const int32_t operation : ALL) {
    const TestImage expected = ImagesResult(operation, first, second);
    ASSERT_EQ(ZEL_Compare(first, second, destination, operation, 0), 0);
    ASSERT_EQ(Difference(destination, expected), "") << operation;
  }
}

TEST(Compare, ConstantsOfAllTypesFollowTheRulesColumnByColumn) {
  constexpr float constants[] = {
      0.0f,      -0.0f,     1.0f,      -1.0f,    2.5f,     10.7f,    -10.7f,   100.0f,    127.0f,
      128.0f,    200.9f,    254.0f,    255.0f,   256.0f,   300.0f,   510.0f,   511.0f,    -255.0f,
      -256.0f,   -257.0f,   32766.0f,  32767.0f, 32768.0f, 65534.0f, 65535.0f, 1e5f,      -32767.0f,
      -32768.0f, -32769.0f, -65537.0f, -1e6f,    3e9f,     -3e9f,    INFINITY, -INFINITY, NAN,
  };
  for (const int32_t mmx : {0, 1}) {
    zel::MmxForce(mmx);
    for (const int32_t operation : ALL) {
      for (int32_t type = IMAGE_U8; type <= IMAGE_SGL; type++) {
        for (const float constant : constants) {
          for (const int32_t width : {1, 7, 8, 9, 15, 16, 17, 31, 33, 70}) {
            const TestImage first(type, width, 3, Border(width), static_cast<uint64_t>(width));
            Coarsen(first);
            const test::Row row(first, type, 0);
            row.Set(0, 255.0);  // the extremes, whatever the random pixels are
            if (type != IMAGE_U8) row.Set(width - 1, -32768.0);
            TestImage destination(type, 2, 2, 1, 9);
            ASSERT_EQ(ZEL_Compare(first, 0, destination, operation, constant), 0);
            ASSERT_EQ(Difference(destination, ConstantResult(operation, first, constant, mmx != 0)),
                      "")
                << operation << " type " << type << " constant " << constant;
          }
        }
      }
    }
  }
}

TEST(Compare, ConstantOfTheMeanActsByItsLowByteInGroupedColumnsOnly) {
  const TestImage image(IMAGE_U8, 9, 1);
  for (int32_t x = 0; x < 9; x++) image.Set<uint8_t>(x, 0, 100);
  TestImage destination(IMAGE_U8, 0, 0);
  zel::MmxForce(1);
  ASSERT_EQ(ZEL_Compare(image, 0, destination, COMPARISON_MEAN, 300.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(7, 0), (100 + (300 & 255)) / 2);
  EXPECT_EQ(destination.Get<uint8_t>(8, 0), 200);
  ASSERT_EQ(ZEL_Compare(image, 0, destination, COMPARISON_MEAN, -1.0f), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), (100 + 255) / 2);
  EXPECT_EQ(destination.Get<uint8_t>(8, 0), 49);
}

TEST(Compare, FloatsKeepInfinitiesNanAndZeros) {
  const std::vector<float> values = {0.0f,      -0.0f, 1.0f,   -1.5f,         INFINITY,
                                     -INFINITY, NAN,   1e-42f, 3.4028235e38f, -3e38f};
  const auto [first, second] = test::Pairs<float>(IMAGE_SGL, values);
  TestImage destination(IMAGE_SGL, 0, 0);
  for (const int32_t operation : ALL) {
    ASSERT_EQ(ZEL_Compare(first, second, destination, operation, 0), 0);
    ASSERT_EQ(Difference(destination, ImagesResult(operation, first, second)), "") << operation;
    for (const float constant : values) {
      ASSERT_EQ(ZEL_Compare(first, 0, destination, operation, constant), 0);
      ASSERT_EQ(Difference(destination, ConstantResult(operation, first, constant, true)), "")
          << operation << " constant " << constant;
    }
  }
}

// Every exponent, subnormal numbers and sums beyond the type among them.
TEST(Compare, MeanOfFloatsIsRoundedOnce) {
  const TestImage first(IMAGE_SGL, 1000, 200);
  const TestImage second(IMAGE_SGL, 1000, 200);
  test::Random random(31);
  for (int32_t y = 0; y < 200; y++) {
    for (int32_t x = 0; x < 1000; x++) {
      const uint32_t bits = random.Next() ^ (random.Next() << 16);
      const uint32_t near = bits + static_cast<uint32_t>(random.Between(-1, 1) << 23) + 12345;
      std::memcpy(first.At<float>(x, y), &bits, 4);
      std::memcpy(second.At<float>(x, y), &near, 4);
    }
  }
  for (int32_t x = 0; x < 1000; x++) {  // subnormal ones
    const uint32_t a = random.Next() & 0x80FFFFFF;
    const uint32_t b = random.Next() & 0x80FFFFFF;
    std::memcpy(first.At<float>(x, 0), &a, 4);
    std::memcpy(second.At<float>(x, 0), &b, 4);
  }
  const TestImage expected = ImagesResult(COMPARISON_MEAN, first, second);
  TestImage destination(IMAGE_SGL, 0, 0);
  ASSERT_EQ(ZEL_Compare(first, second, destination, COMPARISON_MEAN, 0), 0);
  ASSERT_EQ(Difference(destination, expected), "");
  for (const float constant : {0.1f, -3.4e-38f, 1.4e-45f, 9e29f, 1.1e30f, -3.4e38f}) {
    TestImage mean(IMAGE_SGL, 0, 0);
    ASSERT_EQ(ZEL_Compare(first, 0, mean, COMPARISON_MEAN, constant), 0);
    ASSERT_EQ(Difference(mean, ConstantResult(COMPARISON_MEAN, first, constant, true)), "")
        << constant;
  }
}

TEST(Compare, ResultsMayReplaceEitherOperandAndLeaveItsSurroundings) {
  for (const int32_t operation : ALL) {
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      for (const int32_t width : {1, 9, 33, 64, 131}) {
        const Operands pair(type, width);
        const TestImage expected = ImagesResult(operation, pair.first, pair.second);
        const Operands firstUsed(type, width);
        const auto aroundFirst = firstUsed.first.Surroundings();
        ASSERT_EQ(ZEL_Compare(firstUsed.first, firstUsed.second, 0, operation, 0), 0);
        ASSERT_EQ(Difference(firstUsed.first, expected), "");
        ASSERT_EQ(firstUsed.first.Surroundings(), aroundFirst);
        const Operands secondUsed(type, width);
        const auto aroundSecond = secondUsed.second.Surroundings();
        ASSERT_EQ(ZEL_Compare(secondUsed.first, secondUsed.second, secondUsed.second, operation, 0),
                  0);
        ASSERT_EQ(Difference(secondUsed.second, expected), "");
        ASSERT_EQ(secondUsed.second.Surroundings(), aroundSecond);
        const Operands both(type, width);
        ASSERT_EQ(ZEL_Compare(both.first, both.first, 0, operation, 0), 0);
        ASSERT_EQ(Difference(both.first, ImagesResult(operation, pair.first, pair.first)), "");
      }
    }
  }
}

TEST(Compare, OperatorsOutOfRangeAreLimited) {
  const TestImage first(IMAGE_U8, 40, 2, 0, 5);
  const TestImage second(IMAGE_U8, 40, 2, 0, 6);
  TestImage destination(IMAGE_U8, 0, 0);
  for (const int32_t operation : {99, 8, INT32_MAX}) {
    ASSERT_EQ(ZEL_Compare(first, second, destination, operation, 0), 0);
    EXPECT_EQ(Difference(destination, ImagesResult(COMPARISON_KEEP_NOT_ABOVE, first, second)), "");
  }
  for (const int32_t operation : {-1, INT32_MIN}) {
    ASSERT_EQ(ZEL_Compare(first, second, destination, operation, 0), 0);
    EXPECT_EQ(Difference(destination, ImagesResult(COMPARISON_MEAN, first, second)), "");
  }
}

TEST(Compare, WrongImagesGiveTheirNumbers) {
  const TestImage bytes(IMAGE_U8, 10, 10);
  const TestImage words(IMAGE_I16, 10, 10);
  const TestImage rgb(IMAGE_RGB, 10, 10);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  const TestImage small(IMAGE_U8, 9, 10);
  EXPECT_EQ(ZEL_Compare(0, bytes, bytes, COMPARISON_MINIMUM, 0), -200);
  EXPECT_EQ(ZEL_Compare(bytes, 99, bytes, COMPARISON_MINIMUM, 0), -200);
  EXPECT_EQ(ZEL_Compare(bytes, bytes, 99, COMPARISON_MINIMUM, 0), -200);
  EXPECT_EQ(ZEL_Compare(bytes, words, words, COMPARISON_MINIMUM, 0), -305);
  EXPECT_EQ(ZEL_Compare(bytes, 0, words, COMPARISON_MINIMUM, 0), -305);
  EXPECT_EQ(ZEL_Compare(rgb, 0, 0, COMPARISON_MINIMUM, 0), -302);
  EXPECT_EQ(ZEL_Compare(opaque, 0, 0, COMPARISON_MINIMUM, 0), -300);
  EXPECT_EQ(ZEL_Compare(bytes, small, 0, COMPARISON_MINIMUM, 0), -306);
  char name[256];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_Compare");
}

}  // namespace
