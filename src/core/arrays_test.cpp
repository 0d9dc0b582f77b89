#include "core/arrays.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "core/numbers.h"

namespace {

using namespace zel;

constexpr int32_t TYPES[] = {ARRAY_I8,  ARRAY_I32, ARRAY_I16, ARRAY_SGL,
                             ARRAY_DBL, ARRAY_U16, ARRAY_U32, ARRAY_U8};

// The bits that a value leaves in an integer of some width, told without a conversion of the
// float: by remainders.
uint64_t LowBits(double value, int bits) {
  if (std::isnan(value) || std::fabs(value) >= 9223372036854775808.0) return 0;
  const double size = std::ldexp(1.0, bits);
  double rest = std::fmod(std::trunc(value), size);
  if (rest < 0) rest += size;
  return static_cast<uint64_t>(rest);
}

double Read(const void* array, int32_t type, size_t i) {
  switch (type) {
    case ARRAY_I8:
      return static_cast<const int8_t*>(array)[i];
    case ARRAY_I32:
      return static_cast<const int32_t*>(array)[i];
    case ARRAY_I16:
      return static_cast<const int16_t*>(array)[i];
    case ARRAY_SGL:
      return static_cast<double>(static_cast<const float*>(array)[i]);
    case ARRAY_DBL:
      return static_cast<const double*>(array)[i];
    case ARRAY_U16:
      return static_cast<const uint16_t*>(array)[i];
    case ARRAY_U32:
      return static_cast<const uint32_t*>(array)[i];
    default:
      return static_cast<const uint8_t*>(array)[i];
  }
}

TEST(ArrayConvert, EveryPairOfTypesWidensAndKeepsLowBits) {
  const std::vector<double> values = {
      0,     1,     -1,     127.9,   -128.9, 255,  256,          300.7,        -300.7,
      32767, 32768, -32769, 65535.5, 65536,  1e9,  2147483647.0, 2147483648.0, 4294967295.0,
      1e10,  -1e10, 1e19,   -1e19,   1e300,  -0.5, NAN,          INFINITY,     -INFINITY};
  const auto count = static_cast<int64_t>(values.size());
  for (const int32_t from : TYPES) {
    double source[40];
    ArrayConvert(values.data(), ARRAY_DBL, source, from, count);
    for (const int32_t to : TYPES) {
      double result[40];
      ArrayConvert(source, from, result, to, count);
      for (size_t i = 0; i < values.size(); i++) {
        const double value = Read(source, from, i);
        const double got = Read(result, to, i);
        if (to == ARRAY_DBL) {
          EXPECT_TRUE(got == value || (std::isnan(got) && std::isnan(value)));
        } else if (to == ARRAY_SGL) {
          const auto rounded = static_cast<double>(static_cast<float>(value));
          EXPECT_TRUE(got == rounded || (std::isnan(got) && std::isnan(rounded)));
        } else {
          int32_t bits = 0;
          ArrayTypeBits(to, &bits);
          const uint64_t mask = (uint64_t{1} << bits) - 1;
          const auto gotBits = static_cast<uint64_t>(static_cast<int64_t>(got)) & mask;
          EXPECT_EQ(gotBits, LowBits(value, bits)) << from << " to " << to << " of " << value;
        }
      }
    }
  }
}

TEST(ArrayConvert, MinusOneBecomesTheLargestUnsigned) {
  const int8_t source = -1;
  uint16_t result = 0;
  ArrayConvert(&source, ARRAY_I8, &result, ARRAY_U16, 1);
  EXPECT_EQ(result, 65535);
}

TEST(ArrayConvert, UnknownTypesAndCountsBelowOneTouchNothing) {
  const int32_t source[2] = {1, 2};
  int32_t result[2] = {7, 7};
  for (const int32_t unknown : {5, -1, 9, INT32_MAX, INT32_MIN}) {
    ArrayConvert(source, ARRAY_I32, result, unknown, 2);
    ArrayConvert(source, unknown, result, ARRAY_I32, 2);
    EXPECT_EQ(ArrayTypeBits(unknown, nullptr), 0);
  }
  ArrayConvert(source, ARRAY_I32, result, ARRAY_I32, 0);
  ArrayConvert(source, ARRAY_I32, result, ARRAY_U32, -5);
  EXPECT_EQ(result[0], 7);
  EXPECT_EQ(result[1], 7);
}

TEST(ArrayTypes, BitsAndBytes) {
  const int32_t bits[] = {8, 32, 16, 32, 64, 16, 32, 8};
  for (size_t i = 0; i < 8; i++) {
    int32_t told = 0;
    EXPECT_EQ(ArrayTypeBits(TYPES[i], &told), bits[i] / 8);
    EXPECT_EQ(told, bits[i]);
  }
  EXPECT_EQ(NativeArrayType(IMAGE_U8), ARRAY_U8);
  EXPECT_EQ(NativeArrayType(IMAGE_I16), ARRAY_I16);
  EXPECT_EQ(NativeArrayType(IMAGE_SGL), ARRAY_SGL);
  EXPECT_EQ(NativeArrayType(IMAGE_RGB), -1);
}

TEST(Rectangles, NullIsTheWholeImage) {
  KernelRect kernel{};
  RectFromApi(nullptr, &kernel);
  EXPECT_EQ(kernel.left, 0);
  EXPECT_EQ(kernel.top, 0);
  EXPECT_EQ(kernel.right, 32767);
  EXPECT_EQ(kernel.bottom, 32767);
  ApiRect api{};
  RectToApi(nullptr, &api);
  EXPECT_EQ(api.height, 32767);
  EXPECT_EQ(api.width, 32767);
}

TEST(Rectangles, SidesAreLimitedAndNotWrapped) {
  const ApiRect far{2147483000, -5, 1000, 2147483647};
  KernelRect kernel{};
  RectFromApi(&far, &kernel);
  EXPECT_EQ(kernel.bottom, 2147483647);
  EXPECT_EQ(kernel.right, 2147483642);
  const KernelRect corners{INT32_MAX, 3, INT32_MIN, 1};
  ApiRect api{};
  RectToApi(&corners, &api);
  EXPECT_EQ(api.left, INT32_MIN);
  EXPECT_EQ(api.top, 1);
  EXPECT_EQ(api.width, INT32_MAX);
  EXPECT_EQ(api.height, 2);
}

TEST(Lines, NullPointsAreTheCorners) {
  KernelLine line{};
  const ApiPoint end{3, 4};
  LineFromPoints(nullptr, &end, &line);
  EXPECT_EQ(line.startX, 0);
  EXPECT_EQ(line.endY, 4);
  LineFromPoints(nullptr, nullptr, &line);
  EXPECT_EQ(line.endX, 32767);
  ApiPoint a{};
  ApiPoint b{};
  PointsFromLine(&line, &a, &b);
  EXPECT_EQ(b.y, 32767);
  PointsFromLine(nullptr, &a, nullptr);
  EXPECT_EQ(a.x, 0);
  PointsFromLine(nullptr, nullptr, &b);
  EXPECT_EQ(b.x, 32767);
}

TEST(RectClip, TakesTheSecondRectanglesEdgesWhereTheyLieInTheFirst) {
  const PlacedRect first{10, 20, 30, 40};
  PlacedRect clipped{};
  RectClip(first, {15, 25, 10, 10}, &clipped);
  EXPECT_EQ(clipped.x, 15);
  EXPECT_EQ(clipped.y, 25);
  EXPECT_EQ(clipped.width, 10);
  EXPECT_EQ(clipped.height, 10);
  RectClip(first, {40, 60, 100, 100}, &clipped);  // both ends belong to it
  EXPECT_EQ(clipped.x, 40);
  EXPECT_EQ(clipped.width, 0);
  RectClip(first, {41, 61, 5, 5}, &clipped);  // beyond it: the whole first rectangle
  EXPECT_EQ(clipped.x, 10);
  EXPECT_EQ(clipped.width, 30);
  EXPECT_EQ(clipped.height, 40);
  RectClip({INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX}, {INT32_MAX, 0, INT32_MAX, INT32_MIN},
           &clipped);
  EXPECT_EQ(clipped.x, INT32_MIN);
}

TEST(Numbers, LimitedCutsDecideInFloats) {
  EXPECT_EQ(CutLimited(NAN, 5, 9), 5);
  EXPECT_EQ(CutLimited(NAN, -5, 9), 0);
  EXPECT_EQ(CutLimited(1e300, 0, 255), 255);
  EXPECT_EQ(CutLimited(-INFINITY, 0, 255), 0);
  EXPECT_EQ(CutLimited(-0.9, -5, 5), 0);
  EXPECT_EQ(CutSaturated(3e9), INT32_MAX);
  EXPECT_EQ(CutSaturated(-3e9), INT32_MIN);
  EXPECT_EQ(SumSaturated(INT32_MAX, 1), INT32_MAX);
  EXPECT_EQ(SumSaturated(INT32_MIN, -1), INT32_MIN);
  EXPECT_EQ(CutLow<int32_t>(1e10), 1410065408);
  EXPECT_EQ(CutLow<uint8_t>(-1.0), 255);
  EXPECT_EQ(CutLow<uint8_t>(300.7), 44);
}

}  // namespace
