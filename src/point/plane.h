// The rectangle that the row routines of operators and casts work through, and the loops over it. A
// loop is written once and takes the rule for one pixel; it may run in place, since every pixel
// depends on the pixels at the same place only.
#pragma once

#include <cstdint>

#include "core/numbers.h"

namespace zel {

// Every bitwise operation with a constant: (pixel and keep) xor flip.
struct PlaneBits {
  uint32_t keep;
  uint32_t flip;
};

// A constant in the forms that rules take.
struct PlaneConstant {
  int32_t value;  // integers; also the value that stands in for a second operand
  int32_t low;    // a range of first operands
  int32_t high;
  int32_t odd;    // 0 or 1: added before a pixel is halved
  float real;     // for float pixels
  double factor;  // for products that are cut
  PlaneBits bits;
};

struct Plane {
  const uint8_t* first;
  const uint8_t* second;
  uint8_t* result;
  int64_t firstPitch;  // bytes from one row to the next
  int64_t secondPitch;
  int64_t resultPitch;
  int64_t firstBytes;  // of a pixel
  int64_t secondBytes;
  int64_t resultBytes;
  int64_t width;  // pixels
  int64_t height;
  PlaneConstant constant;
  const void* table;  // of the values that a lookup gives
};

using PlaneRoutine = void (*)(const Plane& plane);

// The scalar types, and a routine for each pair of them in which the second is not above the first.
constexpr int32_t SCALAR_TYPES = 3;
constexpr int32_t SCALAR_PAIRS = 6;
constexpr int32_t ScalarPair(int32_t type1, int32_t type2) {
  return type1 * (type1 + 1) / 2 + type2;
}
struct PairRoutines {
  PlaneRoutine byPair[SCALAR_PAIRS];
};

// result = rule(first, second)
template <class First, class Second, class Result, class Rule>
ZEL_INLINE void ForPixelPairs(const Plane& plane, Rule rule) {
  const int64_t width = plane.width;
  const int64_t height = plane.height;
  const int64_t firstPitch = plane.firstPitch;
  const int64_t secondPitch = plane.secondPitch;
  const int64_t resultPitch = plane.resultPitch;
  const uint8_t* first = plane.first;
  const uint8_t* second = plane.second;
  uint8_t* result = plane.result;
  for (int64_t y = 0; y < height; y++) {
    const auto* a = reinterpret_cast<const First*>(first + y * firstPitch);
    const auto* b = reinterpret_cast<const Second*>(second + y * secondPitch);
    auto* to = reinterpret_cast<Result*>(result + y * resultPitch);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) to[x] = rule(a[x], b[x]);
  }
}

// result = rule(first)
template <class First, class Result, class Rule>
ZEL_INLINE void ForPixels(const Plane& plane, Rule rule) {
  const int64_t width = plane.width;
  const int64_t height = plane.height;
  const int64_t firstPitch = plane.firstPitch;
  const int64_t resultPitch = plane.resultPitch;
  const uint8_t* first = plane.first;
  uint8_t* result = plane.result;
  for (int64_t y = 0; y < height; y++) {
    const auto* a = reinterpret_cast<const First*>(first + y * firstPitch);
    auto* to = reinterpret_cast<Result*>(result + y * resultPitch);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) to[x] = rule(a[x]);
  }
}

}  // namespace zel
