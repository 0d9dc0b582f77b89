#include "engine/array_convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

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

}  // namespace
