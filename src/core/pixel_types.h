// Pixel types: their groups, sizes and ranges.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace zel {

constexpr bool TypeIsU8(int32_t type) {
  return type == IMAGE_U8;
}
constexpr bool TypeIsInteger(int32_t type) {
  return type == IMAGE_U8 || type == IMAGE_I16;
}
constexpr bool TypeIsScalar(int32_t type) {
  return TypeIsInteger(type) || type == IMAGE_SGL;
}
constexpr bool TypeHasPixels(int32_t type) {
  return type >= IMAGE_U8 && type <= IMAGE_RGB;
}

// 0 for a type without pixels.
constexpr int32_t PixelBytesOf(int32_t type) {
  constexpr int32_t bytes[] = {1, 2, 4, 8, 4};
  return TypeHasPixels(type) ? bytes[type] : 0;
}

// The lowest and the highest value of an integer type.
struct IntegerLimits {
  int32_t low, high;
};
constexpr IntegerLimits LimitsOf(int32_t type) {
  return type == IMAGE_U8 ? IntegerLimits{0, UINT8_MAX} : IntegerLimits{INT16_MIN, INT16_MAX};
}
// The same by the type of a pixel in a row routine.
template <class T>
constexpr IntegerLimits LIMITS_OF = LimitsOf(sizeof(T) == 1 ? IMAGE_U8 : IMAGE_I16);

// What there is one of for pixels of 1, 2, 4 and 8 bytes.
template <class Item>
struct ByPixelBytes {
  Item one, two, four, eight;

  Item For(int32_t pixelBytes) const {
    return pixelBytes == 1 ? one : pixelBytes == 2 ? two : pixelBytes == 4 ? four : eight;
  }
};

constexpr int32_t LEVELS_U8 = 256;  // values that a pixel can have
constexpr int32_t LEVELS_I16 = 65536;

}  // namespace zel
