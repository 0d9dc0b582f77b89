// Conversions of colours, against their statement in 64-bit integers.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "colour/colour_test.h"
#include "harness/caller_arrays.h"
#include "tests/support/walks.h"

namespace {

using test::Color;

Color Converted(int32_t from, const Color& color, int32_t to) {
  uint8_t out[3] = {1, 2, 3};
  EXPECT_EQ(
      ZEL_ColorConversion(from, static_cast<int32_t>(color[0]), static_cast<int32_t>(color[1]),
                          static_cast<int32_t>(color[2]), to, &out[0], &out[1], &out[2]),
      0);
  return {out[0], out[1], out[2]};
}

TEST(ColorConversion, KnownColours) {
  EXPECT_EQ(Converted(MODE_RGB, {255, 0, 0}, MODE_HSL), (Color{0, 255, 127}));
  EXPECT_EQ(Converted(MODE_RGB, {10, 200, 30}, MODE_HSL), (Color{89, 230, 105}));
  EXPECT_EQ(Converted(MODE_RGB, {10, 200, 30}, MODE_HSV), (Color{89, 230, 200}));
  EXPECT_EQ(Converted(MODE_RGB, {200, 100, 50}, MODE_HSL), (Color{14, 153, 125}));
  EXPECT_EQ(Converted(MODE_RGB, {255, 1, 1}, MODE_HSL), (Color{0, 254, 128}));
  EXPECT_EQ(Converted(MODE_RGB, {255, 1, 1}, MODE_HSV), (Color{0, 254, 255}));
  EXPECT_EQ(Converted(MODE_RGB, {1, 2, 3}, MODE_HSL), (Color{148, 127, 2}));
  EXPECT_EQ(Converted(MODE_HSL, {100, 150, 200}, MODE_RGB), (Color{168, 233, 191}));
  EXPECT_EQ(Converted(MODE_HSV, {100, 150, 200}, MODE_RGB), (Color{52, 200, 104}));
  EXPECT_EQ(Converted(MODE_HSL, {0, 255, 127}, MODE_RGB), (Color{254, 0, 0}));
  EXPECT_EQ(Converted(MODE_HSV, {255, 255, 255}, MODE_RGB), (Color{255, 0, 0}));
  EXPECT_EQ(Converted(MODE_HSV, {0, 254, 255}, MODE_RGB), (Color{255, 254, 254}));
  EXPECT_EQ(Converted(MODE_HSL, {10, 100, 200}, MODE_HSV), (Color{10, 100, 222}));
  EXPECT_EQ(Converted(MODE_HSV, {10, 100, 200}, MODE_HSL), (Color{10, 100, 164}));
  EXPECT_EQ(Converted(MODE_HSV, {0, 255, 128}, MODE_HSL), (Color{0, 255, 64}));
}

TEST(ColorConversion, AGrayHasNeitherHueNorSaturationAndComesBack) {
  for (int64_t level = 0; level < 256; level++) {
    const Color gray{level, level, level};
    for (const int32_t mode : {MODE_HSL, MODE_HSV}) {
      ASSERT_EQ(Converted(MODE_RGB, gray, mode), (Color{0, 0, level}));
    }
  }
  EXPECT_EQ(Converted(MODE_HSL, Converted(MODE_RGB, {128, 128, 128}, MODE_HSL), MODE_RGB),
            (Color{128, 128, 128}));
  EXPECT_EQ(Converted(MODE_HSV, Converted(MODE_RGB, {128, 128, 128}, MODE_HSV), MODE_RGB),
            (Color{128, 128, 128}));
}

// All saturations and thirds, by the formulas.
TEST(ColorConversion, BetweenTheHueModesOnlyTheThirdComponentChanges) {
  const auto rounded = [](double value) {
    value = std::min(std::max(value, 0.0), 255.0);
    return static_cast<int64_t>(std::floor(value)) + (value - std::floor(value) >= 0.5 ? 1 : 0);
  };
  for (int64_t s = 0; s < 256; s++) {
    for (int64_t t = 0; t < 256; t++) {
      const auto S = static_cast<double>(s);
      const auto T = static_cast<double>(t);
      const double up = T + (t >= 128 ? 256 - T : T) * S * 0.00390625;
      const double down = 2 * t <= s + 256 ? T - T * S / (S + 256) : T - (256 - T) * S / (256 - S);
      ASSERT_EQ(Converted(MODE_HSL, {77, s, t}, MODE_HSV), (Color{77, s, rounded(up)}));
      ASSERT_EQ(Converted(MODE_HSV, {77, s, t}, MODE_HSL), (Color{77, s, rounded(down)}));
      ASSERT_EQ(Converted(9, {77, s, t}, MODE_HSV), (Color{77, s, rounded(down)}));
      ASSERT_EQ(Converted(MODE_HSL, {77, s, t}, -1), (Color{77, s, rounded(up)}));
    }
  }
}

TEST(ColorConversion, UnknownModesCopyCountAsHsvOrDoNothing) {
  EXPECT_EQ(Converted(7, {1, 222, 3}, 7), (Color{1, 222, 3}));
  EXPECT_EQ(Converted(MODE_RGB, {10, 200, 30}, 7), (Color{89, 230, 200}));
  EXPECT_EQ(Converted(7, {10, 200, 30}, MODE_RGB), (Color{1, 2, 3}));  // as they were
}

TEST(ColorConversion, TakesLowBytesAndSkipsMissingResults) {
  EXPECT_EQ(Converted(MODE_RGB, {255 + 256, -256, 512}, MODE_HSL), (Color{0, 255, 127}));
  uint8_t hue = 9;
  EXPECT_EQ(ZEL_ColorConversion(MODE_RGB, 10, 200, 30, MODE_HSL, &hue, nullptr, nullptr), 0);
  EXPECT_EQ(hue, 89);
  EXPECT_EQ(ZEL_ColorConversion(MODE_HSL, 1, 2, 3, MODE_RGB, nullptr, nullptr, nullptr), 0);
}

// ---- arrays

struct Planes {
  std::vector<uint8_t> bytes[3];
  explicit Planes(size_t size) {
    for (auto& plane : bytes) plane.assign(size, 0xA5);
  }
  void* operator[](size_t p) { return bytes[p].data(); }
};

double ElementAt(const std::vector<uint8_t>& bytes, int32_t type, size_t index) {
  const auto read = [&]<class T>(T value) {
    std::copy_n(bytes.data() + index * sizeof(T), sizeof(T), reinterpret_cast<uint8_t*>(&value));
    return static_cast<double>(value);
  };
  switch (type) {
    case ARRAY_I8:
      return read(int8_t{});
    case ARRAY_U8:
      return read(uint8_t{});
    case ARRAY_I16:
      return read(int16_t{});
    case ARRAY_U16:
      return read(uint16_t{});
    case ARRAY_I32:
      return read(int32_t{});
    case ARRAY_U32:
      return read(uint32_t{});
    case ARRAY_SGL:
      return read(float{});
    default:
      return read(double{});
  }
}

constexpr int32_t ELEMENT_TYPES[] = {ARRAY_I8,  ARRAY_I32, ARRAY_I16, ARRAY_SGL,
                                     ARRAY_DBL, ARRAY_U16, ARRAY_U32, ARRAY_U8};

TEST(ColorArrays, GoApartAndTogetherInEveryElementType) {
  for (const int32_t workers : {1, 3}) {
    const test::Workers some(workers);
    for (const int32_t count : {1, 7, 33, 511, 512, 513, 1500}) {
      test::Random random(static_cast<uint64_t>(count));
      std::vector<RGBValue> values(static_cast<size_t>(count));
      for (RGBValue& value : values) value = random.Next();
      for (const int32_t type : ELEMENT_TYPES) {
        for (const int32_t mode : {MODE_RGB, MODE_HSL, MODE_HSV}) {
          const auto size = static_cast<size_t>(count);
          Planes planes(test::LayoutOf(type, size).bytes);
          ASSERT_EQ(
              ZEL_IntegerToColor(values.data(), count, mode, type, planes[0], planes[1], planes[2]),
              0);
          std::vector<RGBValue> together(size, 7);
          ASSERT_EQ(ZEL_ColorToInteger(planes[0], planes[1], planes[2], count, mode, type,
                                       together.data()),
                    0);
          for (size_t i = 0; i < size; i++) {
            const Color stated = test::StatedComponents(values[i], mode);
            for (size_t p = 0; p < 3; p++) {
              const int64_t kept = type == ARRAY_I8 ? static_cast<int8_t>(stated[p]) : stated[p];
              ASSERT_EQ(ElementAt(planes.bytes[p], type, i), static_cast<double>(kept))
                  << "type " << type << ", mode " << mode;
            }
            ASSERT_EQ(together[i], test::StatedPixel(stated, mode));
          }
        }
      }
    }
  }
}

TEST(ColorArrays, LowBytesOfTruncatedElementsCount) {
  const double red[] = {300.9, -1.5, 0.999, 1e300, std::numeric_limits<double>::quiet_NaN()};
  const double green[] = {1, 2, 3, 4, 5};
  RGBValue values[5] = {};
  ASSERT_EQ(ZEL_ColorToInteger(red, green, green, 5, MODE_RGB, ARRAY_DBL, values), 0);
  EXPECT_EQ(values[0], 44u << 16 | 0x0101);
  EXPECT_EQ(values[1], 255u << 16 | 0x0202);
  EXPECT_EQ(values[2], 0x0303u);
  EXPECT_EQ(values[3], 0x0404u);
  EXPECT_EQ(values[4], 0x0505u);
  const int32_t hues[] = {89 + 256}, saturations[] = {230 - 256}, thirds[] = {105 + 512};
  ASSERT_EQ(ZEL_ColorToInteger(hues, saturations, thirds, 1, MODE_HSL, ARRAY_I32, values), 0);
  EXPECT_EQ(values[0], test::StatedPixel({89, 230, 105}, MODE_HSL));
}

TEST(ColorArrays, DoNothingWithoutElementsModesOrTypes) {
  const uint8_t bytes[4] = {1, 2, 3, 4};
  RGBValue values[4] = {9, 9, 9, 9};
  EXPECT_EQ(ZEL_ColorToInteger(nullptr, nullptr, nullptr, 4, 0, ARRAY_U8, nullptr), 0);
  EXPECT_EQ(ZEL_ColorToInteger(nullptr, nullptr, nullptr, 0, 0, ARRAY_U8, values), 0);
  EXPECT_EQ(ZEL_ColorToInteger(nullptr, nullptr, nullptr, -4, 0, ARRAY_U8, values), 0);
  for (const int32_t type : {5, 9, -1, INT32_MIN, 100}) {
    EXPECT_EQ(ZEL_ColorToInteger(bytes, bytes, bytes, 4, 0, type, values), 0);
  }
  for (const int32_t mode : {3, -1}) {
    EXPECT_EQ(ZEL_ColorToInteger(bytes, bytes, bytes, 4, mode, ARRAY_U8, values), 0);
  }
  for (const RGBValue value : values) EXPECT_EQ(value, 9u);

  uint8_t plane[4] = {5, 5, 5, 5};
  EXPECT_EQ(ZEL_IntegerToColor(nullptr, 0, 0, ARRAY_U8, plane, plane, plane), 0);
  EXPECT_EQ(ZEL_IntegerToColor(values, -1, 0, ARRAY_U8, plane, plane, plane), 0);
  EXPECT_EQ(ZEL_IntegerToColor(values, 4, 0, 5, plane, plane, plane), 0);
  EXPECT_EQ(ZEL_IntegerToColor(values, 4, 0, -8, plane, plane, plane), 0);
  for (const uint8_t byte : plane) EXPECT_EQ(byte, 5);
}

TEST(ColorArrays, APlaneMayTakeThePlaceOfTheValues) {
  RGBValue first[2] = {0x010203, 0x040506};
  int32_t second[2], third[2];
  ASSERT_EQ(ZEL_IntegerToColor(first, 2, MODE_RGB, ARRAY_I32, first, second, third), 0);
  EXPECT_EQ(std::vector<RGBValue>(first, first + 2), (std::vector<RGBValue>{1, 4}));
  EXPECT_EQ(std::vector<int32_t>(second, second + 2), (std::vector<int32_t>{2, 5}));
  EXPECT_EQ(std::vector<int32_t>(third, third + 2), (std::vector<int32_t>{3, 6}));
}

TEST(ColorArrays, MissingOnesGive102) {
  const uint8_t bytes[1] = {1};
  uint8_t plane[1] = {5};
  RGBValue values[1] = {9};
  for (int32_t missing = 0; missing < 3; missing++) {
    const auto given = [&](int32_t p) { return p == missing ? nullptr : bytes; };
    // Before the element type and the mode are looked at.
    EXPECT_EQ(ZEL_ColorToInteger(given(0), given(1), given(2), 1, 9, 5, values),
              ZEL_ERR_MEMORY_ERROR);
  }
  EXPECT_EQ(values[0], 9u);
  for (const int32_t count : {1, -1}) {
    EXPECT_EQ(ZEL_IntegerToColor(nullptr, count, 0, 5, plane, plane, plane), ZEL_ERR_MEMORY_ERROR);
  }
  char name[ERROR_PROCEDURE_BYTES] = "";
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_IntegerToColor");
}

TEST(ColorArrays, ComponentsThatAreNotWantedAreDropped) {
  const RGBValue values[2] = {0x0AC81E, 0xFFFFFFFF};
  uint8_t saturations[2] = {};
  EXPECT_EQ(ZEL_IntegerToColor(values, 2, MODE_HSL, ARRAY_U8, nullptr, saturations, nullptr), 0);
  EXPECT_EQ(saturations[0], 230);
  EXPECT_EQ(saturations[1], 0);
  uint8_t thirds[2] = {};
  EXPECT_EQ(ZEL_IntegerToColor(values, 2, 7, ARRAY_U8, nullptr, nullptr, thirds), 0);
  EXPECT_EQ(thirds[0], 200);  // as HSV
}

}  // namespace
