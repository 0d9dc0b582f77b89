#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "core/heap.h"
#include "harness/caller_arrays.h"
#include "harness/test_image.h"
#include "point/operator_test.h"

namespace {

using test::Border;
using test::Difference;
using test::ODD_SIZES;
using test::TestImage;

// A pixel as what conversions see of it: a number, for complex pixels its magnitude, for colours
// the sum of the three channels.
long double Number(const TestImage& image, int32_t type, int32_t x, int32_t y) {
  switch (type) {
    case IMAGE_U8:
      return image.Get<uint8_t>(x, y);
    case IMAGE_I16:
      return image.Get<int16_t>(x, y);
    case IMAGE_SGL:
      return static_cast<long double>(image.Get<float>(x, y));
    case IMAGE_COMPLEX: {
      const auto* parts = image.At<float>(x, y);
      const auto re = static_cast<double>(parts[0]);
      const auto im = static_cast<double>(parts[1]);
      return static_cast<long double>(std::sqrt(re * re + im * im));
    }
    default: {
      const auto* channels = image.At<uint8_t>(x, y);
      return channels[0] + channels[1] + channels[2];
    }
  }
}

int64_t IntegerOf(int32_t fromType, long double number, int64_t low, int64_t high) {
  if (fromType == IMAGE_RGB) return static_cast<int64_t>(number) / 3;
  if (fromType == IMAGE_COMPLEX) {
    // Low bits kept; numbers of 64 bits and more have none.
    if (!(number < 9223372036854775808.0L)) return 0;
    return static_cast<int64_t>(number);
  }
  if (std::isnan(number)) return 0;
  if (number <= static_cast<long double>(low)) return low;
  if (number >= static_cast<long double>(high)) return high;
  return static_cast<int64_t>(number);
}

TestImage Converted(const TestImage& source, int32_t type) {
  const ImageInfo info = source.Info();
  TestImage result(type, info.width, info.height);
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      auto* to = result.At<uint8_t>(x, y);
      if (info.type == type) {
        std::memcpy(to, source.At<uint8_t>(x, y), static_cast<size_t>(info.pixelBytes));
        continue;
      }
      const long double number = Number(source, info.type, x, y);
      const auto byte = static_cast<uint8_t>(IntegerOf(info.type, number, 0, 255) & 255);
      const float real = info.type == IMAGE_RGB
                             ? static_cast<float>(static_cast<double>(number) * 0.3333333333333333)
                             : static_cast<float>(number);
      const float complex[2] = {real, 0.0f};
      const uint8_t rgb[4] = {byte, byte, byte, 0};
      switch (type) {
        case IMAGE_U8:
          *to = byte;
          break;
        case IMAGE_I16:
          result.Set<int16_t>(x, y,
                              static_cast<int16_t>(static_cast<uint16_t>(
                                  IntegerOf(info.type, number, -32768, 32767) & 0xFFFF)));
          break;
        case IMAGE_SGL:
          std::memcpy(to, &real, 4);
          break;
        case IMAGE_COMPLEX:
          std::memcpy(to, complex, 8);
          break;
        default:
          std::memcpy(to, rgb, 4);
          break;
      }
    }
  }
  return result;
}

TEST(Convert, AllPairsOfTypesAndSizesFollowTheMatrix) {
  for (int32_t from = IMAGE_U8; from <= IMAGE_RGB; from++) {
    for (int32_t to = IMAGE_U8; to <= IMAGE_RGB; to++) {
      uint64_t seed = 1;
      for (const auto& [width, height] : ODD_SIZES) {
        const TestImage source(from, width, height, Border(seed), seed);
        const TestImage expected = Converted(source, to);
        const auto before = source.Block();
        TestImage destination(to, 3, 2, Border(seed + 1), seed + 9);
        ASSERT_EQ(ZEL_Convert(source, destination), 0);
        ASSERT_EQ(Difference(destination, expected), "") << from << " to " << to;
        ASSERT_EQ(destination.Info().border, source.Info().border);
        ASSERT_EQ(source.Block(), before);
        seed++;
      }
    }
  }
}

TEST(Convert, EverySumOfColoursIsAThirdExactly) {
  const TestImage source(IMAGE_RGB, 766, 1);
  for (int32_t sum = 0; sum < 766; sum++) {
    auto* pixel = source.At<uint8_t>(sum, 0);
    pixel[0] = static_cast<uint8_t>(sum / 3);
    pixel[1] = static_cast<uint8_t>((sum + 1) / 3);
    pixel[2] = static_cast<uint8_t>((sum + 2) / 3);
    pixel[3] = 77;
  }
  for (const int32_t to : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX}) {
    const TestImage expected = Converted(source, to);
    TestImage destination(to, 0, 0);
    ASSERT_EQ(ZEL_Convert(source, destination), 0);
    ASSERT_EQ(Difference(destination, expected), "");
  }
}

TEST(Convert, EveryWordIsLimitedToAByte) {
  const TestImage source = test::EveryWord();
  for (const int32_t to : {IMAGE_U8, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    TestImage destination(to, 0, 0);
    ASSERT_EQ(ZEL_Convert(source, destination), 0);
    ASSERT_EQ(Difference(destination, Converted(source, to)), "");
  }
}

TEST(Convert, FloatsAreTruncatedAndLimitedAndComplexMagnitudesWrap) {
  const std::vector<float> values = {
      0.0f,      -0.0f,     -1.5f,    1.5f,      254.99f,   255.0f,     255.5f,      256.0f,
      300.0f,    32766.9f,  32767.5f, 32768.0f,  -32767.9f, -1e9f,      65535.9f,    65536.0f,
      1e9f,      1e10f,     4.2e9f,   1.2e18f,   9.3e18f,   1e20f,      1e-42f,      3.4e38f,
      -32768.0f, -32769.0f, INFINITY, -INFINITY, NAN,       8388607.5f, 16777217.0f, 9.2233715e18f,
  };
  const auto count = static_cast<int32_t>(values.size());
  const TestImage floats(IMAGE_SGL, count, 1);
  const TestImage complex(IMAGE_COMPLEX, count, count);
  for (int32_t i = 0; i < count; i++) {
    floats.Set<float>(i, 0, values[static_cast<size_t>(i)]);
    for (int32_t j = 0; j < count; j++) {
      complex.At<float>(i, j)[0] = values[static_cast<size_t>(i)];
      complex.At<float>(i, j)[1] = values[static_cast<size_t>(j)];
    }
  }
  for (int32_t to = IMAGE_U8; to <= IMAGE_RGB; to++) {
    TestImage destination(to, 0, 0);
    ASSERT_EQ(ZEL_Convert(floats, destination), 0);
    ASSERT_EQ(Difference(destination, Converted(floats, to)), "") << "to " << to;
    TestImage other(to, 0, 0);
    ASSERT_EQ(ZEL_Convert(complex, other), 0);
    ASSERT_EQ(Difference(other, Converted(complex, to)), "") << "complex to " << to;
  }
}

TEST(Convert, KnownPixels) {
  const TestImage complex(IMAGE_COMPLEX, 2, 1);
  complex.At<float>(0, 0)[0] = 3;
  complex.At<float>(0, 0)[1] = 4;
  complex.At<float>(1, 0)[0] = 300;
  complex.At<float>(1, 0)[1] = 400;
  TestImage bytes(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Convert(complex, bytes), 0);
  EXPECT_EQ(bytes.Get<uint8_t>(0, 0), 5);
  EXPECT_EQ(bytes.Get<uint8_t>(1, 0), 500 - 256);
  const TestImage rgb(IMAGE_RGB, 1, 1);
  rgb.Set<uint32_t>(0, 0, 0xFF1F140A);  // 10, 20, 31
  ASSERT_EQ(ZEL_Convert(rgb, bytes), 0);
  EXPECT_EQ(bytes.Get<uint8_t>(0, 0), 20);
}

TEST(Convert, DestinationTakesBorderAndCalibration) {
  const TestImage source(IMAGE_I16, 13, 4, 3, 6);
  ZEL_SetImageCalibration(source, 5, 0.5f, 0.25f);
  ZEL_SetImageOffset(source, -3, 9);
  TestImage destination(IMAGE_U8, 5, 5, 0, 7);
  ASSERT_EQ(ZEL_Convert(source, destination), 0);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.border, 3);
  EXPECT_EQ(info.unit, 5);
  EXPECT_EQ(info.offsetX, -3);
  EXPECT_EQ(info.lineWidth, 24);
}

TEST(Convert, EqualTypesCopyWholeLines) {
  const TestImage source(IMAGE_U8, 10, 4, 3, 6);
  TestImage destination(IMAGE_U8, 10, 4, 3, 7);
  const TestImage untouched(IMAGE_U8, 10, 4, 3, 7);
  ASSERT_EQ(ZEL_Convert(source, destination), 0);
  EXPECT_EQ(Difference(destination, source), "");
  EXPECT_EQ(destination.Get<uint8_t>(10, 0), source.Get<uint8_t>(10, 0));
  EXPECT_EQ(destination.Get<uint8_t>(-1, 1), source.Get<uint8_t>(-1, 1));
  EXPECT_EQ(destination.Get<uint8_t>(-1, 4), source.Get<uint8_t>(-1, 4));
  EXPECT_EQ(destination.Get<uint8_t>(-1, 0), untouched.Get<uint8_t>(-1, 0));
  EXPECT_EQ(destination.Get<uint8_t>(0, 4), untouched.Get<uint8_t>(0, 4));
}

TEST(Convert, WrongImagesGiveTheirNumbers) {
  const TestImage bytes(IMAGE_U8, 10, 4);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  EXPECT_EQ(ZEL_Convert(0, bytes), -200);
  EXPECT_EQ(ZEL_Convert(99, 0), -200);
  EXPECT_EQ(ZEL_Convert(bytes, 99), -200);
  EXPECT_EQ(ZEL_Convert(opaque, bytes), -302);
  EXPECT_EQ(ZEL_Convert(bytes, opaque), -305);
  const auto before = bytes.Block();
  EXPECT_EQ(ZEL_Convert(bytes, 0), 0);
  EXPECT_EQ(ZEL_Convert(bytes, bytes), 0);
  EXPECT_EQ(bytes.Block(), before);
  EXPECT_EQ(ZEL_Convert(opaque, 0), 0);
}

TEST(Convert, WithoutMemoryTheDestinationKeepsItsLayout) {
  const TestImage source(IMAGE_U8, 30, 20, 3, 6);
  TestImage destination(IMAGE_SGL, 5, 4, 1, 7);
  const auto before = destination.Block();
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  hooks->failAt = hooks->requests + 1;
  EXPECT_EQ(ZEL_Convert(source, destination), -101);
  hooks->failAt = 0;
  EXPECT_EQ(destination.Info().border, 1);
  EXPECT_EQ(destination.Block(), before);
}

TEST(Cast, ReplacesThePixelsBehindTheReference) {
  for (int32_t from = IMAGE_U8; from <= IMAGE_RGB; from++) {
    for (int32_t to = IMAGE_U8; to <= IMAGE_RGB; to++) {
      const TestImage image(from, 19, 5, 2, 8);
      ZEL_SetImageCalibration(image, 6, 0.5f, 0.25f);
      ZEL_SetImageOffset(image, 7, -8);
      const TestImage expected = Converted(image, to);
      ASSERT_EQ(ZEL_Cast(image, to), 0);
      EXPECT_EQ(Difference(image, expected), "") << from << " to " << to;
      const ImageInfo info = image.Info();
      EXPECT_EQ(info.border, 2);
      EXPECT_EQ(info.unit, 6);
      EXPECT_EQ(info.offsetY, -8);
    }
  }
}

TEST(Cast, ToThePresentTypeKeepsEverything) {
  const TestImage image(IMAGE_SGL, 19, 5, 2, 8);
  const auto before = image.Block();
  ASSERT_EQ(ZEL_Cast(image, IMAGE_SGL), 0);
  EXPECT_EQ(image.Block(), before);
  ImageRef listed = 0;
  EXPECT_EQ(ZEL_GetImageReference(0, &listed, nullptr), 0);  // still the image the caller made
}

TEST(Cast, FailuresLeaveTheImage) {
  const TestImage image(IMAGE_U8, 19, 5, 2, 8);
  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  const auto before = image.Block();
  EXPECT_EQ(ZEL_Cast(0, IMAGE_U8), -200);
  for (const int32_t type : {-1, 6, 65536, 65537, INT32_MIN, INT32_MAX}) {
    EXPECT_EQ(ZEL_Cast(image, type), -300) << type;
  }
  EXPECT_EQ(ZEL_Cast(image, IMAGE_OPAQUE), -305);
  EXPECT_EQ(ZEL_Cast(opaque, IMAGE_U8), -302);
  EXPECT_EQ(ZEL_Cast(opaque, IMAGE_OPAQUE), 0);
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  for (uint64_t k = 1; k <= 2; k++) {
    hooks->failAt = hooks->requests + k;
    EXPECT_LT(ZEL_Cast(image, IMAGE_SGL), 0);
    hooks->failAt = 0;
  }
  EXPECT_EQ(image.Block(), before);
}

TEST(ConvertByLookup, BytesAndWordsGoThroughTheTable) {
  std::vector<float> table(65536);
  test::Random random(5);
  for (float& value : table) value = random.Float(-70000.0f, 70000.0f);
  for (const int32_t from : {IMAGE_U8, IMAGE_I16}) {
    for (const int32_t to : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
      if (from == to) continue;
      const TestImage source(from, 67, 9, 1, 4);
      TestImage destination(to, 67, 9, 3, 4);
      const auto surroundings = destination.Surroundings();
      ASSERT_EQ(ZEL_ConvertByLookup(source, destination, ARRAY_SGL, table.data(),
                                    from == IMAGE_U8 ? 256 : 65536),
                0);
      ASSERT_EQ(destination.Surroundings(), surroundings);
      for (int32_t y = 0; y < 9; y++) {
        for (int32_t x = 0; x < 67; x++) {
          const size_t level = from == IMAGE_U8 ? source.Get<uint8_t>(x, y)
                                                : static_cast<uint16_t>(source.Get<int16_t>(x, y));
          const auto truncated = static_cast<int64_t>(table[level]);
          if (to == IMAGE_U8) {
            ASSERT_EQ(destination.Get<uint8_t>(x, y), truncated & 255);
          } else if (to == IMAGE_I16) {
            ASSERT_EQ(static_cast<uint16_t>(destination.Get<int16_t>(x, y)), truncated & 0xFFFF);
          } else {
            ASSERT_EQ(destination.Get<float>(x, y), table[level]);
          }
        }
      }
    }
  }
}

TEST(ConvertByLookup, ShortTablesContinueWithTheirIndex) {
  const TestImage bytes(IMAGE_U8, 256, 1);
  for (int32_t x = 0; x < 256; x++) bytes.Set<uint8_t>(x, 0, static_cast<uint8_t>(x));
  const std::vector<int32_t> table(16, -5);
  TestImage words(IMAGE_I16, 0, 0);
  ASSERT_EQ(ZEL_ConvertByLookup(bytes, words, ARRAY_I32, table.data(), 16), 0);
  EXPECT_EQ(words.Get<int16_t>(15, 0), -5);
  EXPECT_EQ(words.Get<int16_t>(16, 0), 16);
  EXPECT_EQ(words.Get<int16_t>(255, 0), 255);
  const TestImage negative(IMAGE_I16, 1, 1);
  negative.Set<int16_t>(0, 0, -2);
  TestImage floats(IMAGE_SGL, 0, 0);
  for (const int32_t count : {0, -7}) {
    ASSERT_EQ(ZEL_ConvertByLookup(negative, floats, ARRAY_SGL, nullptr, count), 0);
    EXPECT_EQ(floats.Get<float>(0, 0), 65534.0f);
  }
  // An array of unknown type reads as zeros.
  ASSERT_EQ(ZEL_ConvertByLookup(bytes, words, 5, table.data(), 16), 0);
  EXPECT_EQ(words.Get<int16_t>(15, 0), 0);
  EXPECT_EQ(words.Get<int16_t>(16, 0), 16);
}

TEST(ConvertByLookup, EntriesOfLongTablesBeyondTheLevelsAreIgnored) {
  const TestImage bytes(IMAGE_U8, 256, 1);
  std::vector<double> table(70000, 3.9);
  table[255] = 40000.0;
  bytes.Set<uint8_t>(3, 0, 255);
  TestImage words(IMAGE_I16, 0, 0);
  ASSERT_EQ(ZEL_ConvertByLookup(bytes, words, ARRAY_DBL, table.data(), 70000), 0);
  EXPECT_EQ(words.Get<int16_t>(3, 0), 40000 - 65536);
}

TEST(ConvertByLookup, EntriesBeyondTheLevelsAreNotRead) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const size_t levels = type == IMAGE_U8 ? 256 : type == IMAGE_I16 ? 65536 : 0;
    const TestImage source(type, 33, 3);
    const TestImage destination(IMAGE_SGL, 33, 3);
    for (int32_t arrayType = ARRAY_I8; arrayType <= ARRAY_U8; arrayType++) {
      test::CallerArrays arrays;
      const void* table =
          arrays.Make(test::LayoutOf(arrayType, levels), test::ArrayPlace::BeforeGuardPage);
      const int32_t expected = type == IMAGE_SGL ? -301 : 0;
      ASSERT_EQ(ZEL_ConvertByLookup(source, destination, arrayType, table, 70000), expected)
          << arrayType;
    }
  }
}

TEST(ConvertByLookup, WrongArgumentsGiveTheirNumbers) {
  const float table[256] = {};
  const TestImage bytes(IMAGE_U8, 8, 2);
  const TestImage words(IMAGE_I16, 8, 2);
  const TestImage floats(IMAGE_SGL, 8, 2);
  const TestImage rgb(IMAGE_RGB, 8, 2);
  const auto call = [&](ImageRef from, ImageRef to) {
    return ZEL_ConvertByLookup(from, to, ARRAY_SGL, table, 256);
  };
  EXPECT_EQ(call(0, bytes), -200);
  EXPECT_EQ(call(bytes, 99), -200);
  EXPECT_EQ(call(bytes, 0), 0);
  EXPECT_EQ(call(bytes, bytes), 0);
  EXPECT_EQ(call(floats, bytes), -301);
  EXPECT_EQ(call(rgb, floats), -301);
  EXPECT_EQ(call(bytes, rgb), -304);
  EXPECT_EQ(call(words, rgb), -304);
  const TestImage otherBytes(IMAGE_U8, 8, 2);
  EXPECT_EQ(call(bytes, otherBytes), -304);
  EXPECT_EQ(ZEL_ConvertByLookup(0, bytes, ARRAY_SGL, nullptr, 1), -3009);
}

TEST(Shift16To8, ShiftsArithmeticallyAndKeepsTheLowByte) {
  for (const int32_t shift : {-3, 0, 1, 4, 7, 8, 9, 100}) {
    for (const auto& [width, height] : ODD_SIZES) {
      const TestImage source(IMAGE_I16, width, height, Border(width), 5);
      TestImage destination(IMAGE_U8, width, height, 2, 6);
      const auto surroundings = destination.Surroundings();
      ASSERT_EQ(ZEL_Shift16To8(source, destination, shift), 0);
      const int32_t used = shift < 0 ? 0 : shift > 8 ? 8 : shift;
      for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
          const double shifted = std::floor(source.Get<int16_t>(x, y) / std::exp2(used));
          ASSERT_EQ(destination.Get<uint8_t>(x, y), static_cast<int32_t>(shifted) & 255);
        }
      }
      ASSERT_EQ(destination.Surroundings(), surroundings);
    }
  }
  const TestImage known(IMAGE_I16, 1, 1);
  known.Set<int16_t>(0, 0, 0x1234);
  TestImage destination(IMAGE_U8, 0, 0);
  ASSERT_EQ(ZEL_Shift16To8(known, destination, 4), 0);
  EXPECT_EQ(destination.Get<uint8_t>(0, 0), 0x23);
}

TEST(Shift16To8, WrongImagesGiveTheirNumbers) {
  const TestImage bytes(IMAGE_U8, 8, 2);
  const TestImage words(IMAGE_I16, 8, 2);
  EXPECT_EQ(ZEL_Shift16To8(0, bytes, 1), -200);
  EXPECT_EQ(ZEL_Shift16To8(bytes, bytes, 1), -301);
  EXPECT_EQ(ZEL_Shift16To8(words, 99, 1), -200);
  EXPECT_EQ(ZEL_Shift16To8(words, words, 1), -301);
  EXPECT_EQ(ZEL_Shift16To8(words, 0, 1), -301);
  char name[256];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_Shift16to8");
}

}  // namespace
