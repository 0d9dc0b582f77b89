// How a device-independent bitmap is laid out: header, colour table, rows. Numbers stand with their
// low byte first.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

constexpr int32_t BITMAP_COLOURS = 256;
constexpr int64_t BITMAP_HEADER_BYTES = 40;

inline void PutLowFirst(uint8_t* to, uint32_t value, int32_t bytes) {
  for (int32_t i = 0; i < bytes; i++) to[i] = static_cast<uint8_t>(value >> (8 * i));
}

inline uint32_t GetLowFirst(const uint8_t* from, int32_t bytes) {
  uint32_t value = 0;
  for (int32_t i = 0; i < bytes; i++) value |= uint32_t{from[i]} << (8 * i);
  return value;
}

inline int64_t BitmapRowBytes(int64_t width, int64_t bits) {
  return (width * bits + 31) / 32 * 4;
}

// What the header tells. Numbers that a short header does not have are 0.
struct BitmapHeader {
  int64_t bytes, width, height;  // of the header; rows are counted without their direction
  bool isTopDown;
  int64_t bits, colours;
  bool isPacked;

  bool IsEmpty() const { return width < 1 || height < 1; }
  int64_t PixelsAt() const { return bytes + 4 * colours; }
  // With its pixels; the least where the number of bits is not one to be read, and the most where
  // there is no number for it.
  int64_t Bytes() const;
  bool IsReadable() const {
    return bytes >= BITMAP_HEADER_BYTES && !isPacked && (bits == 8 || bits == 24);
  }
};
BitmapHeader BitmapHeaderOf(const uint8_t* bytes, size_t size);

}  // namespace zel
