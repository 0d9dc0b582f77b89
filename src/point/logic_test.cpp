#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "harness/test_image.h"
#include "platform/processor.h"
#include "point/operator_test.h"
#include "point/operators.h"

namespace {

using test::Border;
using test::ODD_SIZES;
using test::Operands;
using test::PixelDifference;
using test::TestImage;

enum class Logic { And, NotAnd, Or, NotOr, Xor, NotXor, Diff };
constexpr Logic ALL[] = {Logic::And, Logic::NotAnd, Logic::Or,  Logic::NotOr,
                         Logic::Xor, Logic::NotXor, Logic::Diff};
constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_RGB};

int32_t Call(Logic operation, ImageRef first, ImageRef second, ImageRef destination,
             uint32_t constant) {
  switch (operation) {
    case Logic::And:
      return ZEL_And(first, second, destination, 0, constant);
    case Logic::NotAnd:
      return ZEL_And(first, second, destination, 1, constant);
    case Logic::Or:
      return ZEL_Or(first, second, destination, 0, constant);
    case Logic::NotOr:
      return ZEL_Or(first, second, destination, -1, constant);
    case Logic::Xor:
      return ZEL_Xor(first, second, destination, 0, constant);
    case Logic::NotXor:
      return ZEL_Xor(first, second, destination, 256, constant);
    default:
      return ZEL_LogDiff(first, second, destination, constant);
  }
}

uint32_t Bits(Logic operation, uint32_t a, uint32_t b) {
  uint32_t result = 0;
  for (uint32_t bit = 1; bit != 0; bit <<= 1) {
    const bool p = (a & bit) != 0;
    const bool q = (b & bit) != 0;
    bool set = false;
    switch (operation) {
      case Logic::And:
        set = p && q;
        break;
      case Logic::NotAnd:
        set = !(p && q);
        break;
      case Logic::Or:
        set = p || q;
        break;
      case Logic::NotOr:
        set = !p && !q;
        break;
      case Logic::Xor:
        set = p != q;
        break;
      case Logic::NotXor:
        set = p == q;
        break;
      default:
        set = p && !q;
        break;
    }
    if (set) result |= bit;
  }
  return result;
}

// Whole pixels as numbers.
uint32_t PixelBits(const TestImage& image, int32_t x, int32_t y) {
  uint32_t bits = 0;
  std::memcpy(&bits, image.At<uint8_t>(x, y), static_cast<size_t>(image.Info().pixelBytes));
  return bits;
}

TestImage Result(const TestImage& first,
                 const std::function<uint32_t(uint32_t, int32_t, int32_t)>& rule) {
  const ImageInfo info = first.Info();
  TestImage result(info.type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const uint32_t bits = rule(PixelBits(first, x, y), x, y);
      std::memcpy(result.At<uint8_t>(x, y), &bits, static_cast<size_t>(info.pixelBytes));
    }
  }
  return result;
}

TestImage ImagesResult(Logic operation, const TestImage& first, const TestImage& second) {
  return Result(first, [&](uint32_t a, int32_t x, int32_t y) {
    return Bits(operation, a, PixelBits(second, x, y));
  });
}

TestImage ConstantResult(Logic operation, const TestImage& first, uint32_t constant) {
  return Result(first, [=](uint32_t a, int32_t, int32_t) { return Bits(operation, a, constant); });
}

TEST(Logic, ImagesOfAllTypesAndSizesAreCombinedBitByBit) {
  for (const Logic operation : ALL) {
    for (const int32_t type : TYPES) {
      uint64_t seed = 1;
      for (const auto& [width, height] : ODD_SIZES) {
        if (width > 200) continue;
        const TestImage first(type, width, height, Border(seed), seed);
        const TestImage second(type, width, height, Border(seed + 1), seed + 50);
        TestImage destination(type, width, height, Border(seed + 2), seed + 70);
        const auto surroundings = destination.Surroundings();
        seed++;
        const TestImage expected = ImagesResult(operation, first, second);
        ASSERT_EQ(Call(operation, first, second, destination, 5), 0);
        ASSERT_EQ(PixelDifference(destination, expected), "")
            << static_cast<int>(operation) << " type " << type;
        ASSERT_EQ(destination.Surroundings(), surroundings);
      }
    }
  }
}

TEST(Logic, ConstantsActByAsManyLowBitsAsAPixelHas) {
  for (const int32_t mmx : {0, 1}) {
    for (const Logic operation : ALL) {
      for (const int32_t type : TYPES) {
        for (const uint32_t constant :
             {0u, 1u, 0x7Fu, 0x80u, 255u, 256u, 0x1234u, 0xFFFFu, 0x89ABCDEFu, 0xFFFFFFFFu}) {
          for (const int32_t width : {1, 7, 8, 9, 17, 33, 70}) {
            const TestImage first(type, width, 2, Border(width), static_cast<uint64_t>(width));
            TestImage destination(type, 1, 1, 2, 3);
            const TestImage expected = ConstantResult(operation, first, constant);
            zel::MmxForce(mmx);
            ASSERT_EQ(Call(operation, first, 0, destination, constant), 0);
            ASSERT_EQ(PixelDifference(destination, expected), "")
                << static_cast<int>(operation) << " type " << type << " constant " << constant;
          }
        }
      }
    }
  }
}

TEST(Logic, AndWithAllBitsCopiesAndOrWithAllBitsFills) {
  const TestImage image(IMAGE_U8, 50, 3, 0, 4);
  TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_And(image, 0, destination, 0, 255), 0);
  EXPECT_EQ(destination.Pixels(), image.Pixels());
  ASSERT_EQ(ZEL_Or(image, 0, destination, 0, 255), 0);
  EXPECT_EQ(destination.Pixels(), std::vector<uint8_t>(150, 255));
  ASSERT_EQ(ZEL_Or(image, 0, destination, 1, 255), 0);
  EXPECT_EQ(destination.Pixels(), std::vector<uint8_t>(150, 0));
}

TEST(Logic, ResultsMayReplaceEitherOperandAndLeaveItsSurroundings) {
  for (const Logic operation : ALL) {
    for (const int32_t type : TYPES) {
      for (const int32_t width : {1, 9, 33, 64, 131}) {
        const TestImage first(type, width, 3, 3, 7);
        const TestImage second(type, width, 3, 1, 8);
        const TestImage expected = ImagesResult(operation, first, second);
        TestImage changed(type, width, 3, 3, 7);
        const auto aroundFirst = changed.Surroundings();
        ASSERT_EQ(Call(operation, changed, second, 0, 0), 0);
        ASSERT_EQ(PixelDifference(changed, expected), "");
        ASSERT_EQ(changed.Surroundings(), aroundFirst);
        TestImage changedSecond(type, width, 3, 1, 8);
        const auto aroundSecond = changedSecond.Surroundings();
        ASSERT_EQ(Call(operation, first, changedSecond, changedSecond, 0), 0);
        ASSERT_EQ(PixelDifference(changedSecond, expected), "");
        ASSERT_EQ(changedSecond.Surroundings(), aroundSecond);
      }
    }
  }
}

TEST(Logic, ImagesWithoutPixelsTakeAConstant) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_RGB}) {
    const TestImage image(type, 0, 0, 0);
    EXPECT_EQ(ZEL_And(image, 0, 0, 0, 5), 0);
    EXPECT_EQ(ZEL_LogDiff(image, 0, 0, 5), 0);
  }
}

TEST(Logic, WrongImagesGiveTheirNumbers) {
  const TestImage bytes(IMAGE_U8, 10, 10);
  const TestImage words(IMAGE_I16, 10, 10);
  const TestImage floats(IMAGE_SGL, 10, 10);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  const TestImage small(IMAGE_U8, 9, 10);
  const TestImage empty(IMAGE_U8, 0, 0);
  for (const Logic operation : ALL) {
    EXPECT_EQ(Call(operation, 0, bytes, bytes, 0), -200);
    EXPECT_EQ(Call(operation, bytes, 99, bytes, 0), -200);
    EXPECT_EQ(Call(operation, bytes, bytes, 99, 0), -200);
    EXPECT_EQ(Call(operation, floats, floats, floats, 0), -302);
    EXPECT_EQ(Call(operation, floats, 99, floats, 0), -302);
    EXPECT_EQ(Call(operation, opaque, 0, 0, 0), -302);
    EXPECT_EQ(Call(operation, words, bytes, words, 0), -305);
    EXPECT_EQ(Call(operation, words, bytes, 99, 0), -305);
    EXPECT_EQ(Call(operation, bytes, words, words, 0), -305);
    EXPECT_EQ(Call(operation, bytes, bytes, words, 0), -305);
    EXPECT_EQ(Call(operation, bytes, small, 0, 0), -306);
    TestImage destination(IMAGE_U8, 1, 1);
    EXPECT_EQ(Call(operation, empty, bytes, destination, 0), 0);
    EXPECT_EQ(PixelDifference(destination, bytes), "");
  }
}

}  // namespace
