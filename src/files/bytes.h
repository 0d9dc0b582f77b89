// Numbers as they lie in files, byte by byte, in either order.
#pragma once

#include <cstdint>

#include "core/numbers.h"

namespace zel {

ZEL_INLINE uint16_t LittleAt16(const uint8_t* bytes) {
  return static_cast<uint16_t>(bytes[0] | bytes[1] << 8);
}

ZEL_INLINE uint32_t LittleAt32(const uint8_t* bytes) {
  return LittleAt16(bytes) | uint32_t{LittleAt16(bytes + 2)} << 16;
}

ZEL_INLINE uint16_t BigAt16(const uint8_t* bytes) {
  return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
}

ZEL_INLINE uint32_t BigAt32(const uint8_t* bytes) {
  return uint32_t{BigAt16(bytes)} << 16 | BigAt16(bytes + 2);
}

ZEL_INLINE void LittlePut16(uint8_t* bytes, uint32_t value) {
  bytes[0] = static_cast<uint8_t>(value);
  bytes[1] = static_cast<uint8_t>(value >> 8);
}

ZEL_INLINE void LittlePut32(uint8_t* bytes, uint32_t value) {
  LittlePut16(bytes, value);
  LittlePut16(bytes + 2, value >> 16);
}

ZEL_INLINE void BigPut16(uint8_t* bytes, uint32_t value) {
  bytes[0] = static_cast<uint8_t>(value >> 8);
  bytes[1] = static_cast<uint8_t>(value);
}

ZEL_INLINE void BigPut32(uint8_t* bytes, uint32_t value) {
  BigPut16(bytes, value >> 16);
  BigPut16(bytes + 2, value);
}

}  // namespace zel
