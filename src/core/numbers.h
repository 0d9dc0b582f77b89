// Numbers that all rooms share: how floats become integers, by the name of the rule that holds, and
// what is counted alike everywhere. Row routines compiled for several processor levels include
// this, so everything is inlined where it is used.
#pragma once

#include <cstdint>

#define ZEL_INLINE [[gnu::always_inline]] inline

namespace zel {

constexpr double PI = 3.14159274;  // to the digits that results are defined with

// Truncated, low bits kept: 300.7 as uint8_t is 44. NaN, infinities and values beyond
// 64 bits have low bits of 0.
template <class T>
ZEL_INLINE T CutLow(double value) {
  const bool inRange = value > -9223372036854775808.0 && value < 9223372036854775808.0;
  return static_cast<T>(inRange ? static_cast<uint64_t>(static_cast<int64_t>(value)) : 0);
}

// Limited first, then truncated. NaN counts as 0.
ZEL_INLINE int32_t CutLimited(double value, int32_t low, int32_t high) {
  if (!(value == value)) value = 0.0;
  if (value <= low) return low;
  if (value >= high) return high;
  return static_cast<int32_t>(value);
}

// The whole range of a 32-bit integer.
ZEL_INLINE int32_t CutSaturated(double value) {
  return CutLimited(value, INT32_MIN, INT32_MAX);
}

ZEL_INLINE int32_t Clamped(int64_t value, int32_t low, int32_t high) {
  return static_cast<int32_t>(value < low ? low : value > high ? high : value);
}

// a + b for rectangle sides that a caller may place anywhere: the low 32 bits.
ZEL_INLINE int32_t SumWrapped(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) + static_cast<uint32_t>(b));
}

ZEL_INLINE int32_t DifferenceWrapped(int32_t a, int32_t b) {
  return static_cast<int32_t>(static_cast<uint32_t>(a) - static_cast<uint32_t>(b));
}

// The sum limited to 32 bits.
ZEL_INLINE int32_t SumSaturated(int32_t a, int32_t b) {
  return Clamped(int64_t{a} + b, INT32_MIN, INT32_MAX);
}

// That hold a bit for each pixel of a row.
ZEL_INLINE int64_t WordsOfBits(int32_t width) {
  return (int64_t{width} + 63) / 64;
}

}  // namespace zel
