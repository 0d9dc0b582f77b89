// Reading the headers of bitmaps.
#include "platform/packed_bitmap.h"

#include <algorithm>
#include <cstring>

namespace zel {

int64_t BitmapHeader::Bytes() const {
  int64_t pixels = 0;
  int64_t all = 0;
  const int64_t rowBytes = BitmapRowBytes(width, std::max<int64_t>(bits, 1));
  const bool isTooMuch = __builtin_mul_overflow(rowBytes, height, &pixels) ||
                         __builtin_add_overflow(PixelsAt(), pixels, &all);
  return isTooMuch ? INT64_MAX : all;
}

BitmapHeader BitmapHeaderOf(const uint8_t* bytes, size_t size) {
  uint8_t fields[BITMAP_HEADER_BYTES] = {};
  std::memcpy(fields, bytes, std::min(size, sizeof fields));
  const auto height = static_cast<int32_t>(GetLowFirst(fields + 8, 4));
  BitmapHeader header{};
  header.bytes = GetLowFirst(fields, 4);
  header.width = static_cast<int32_t>(GetLowFirst(fields + 4, 4));
  header.height = height < 0 ? -int64_t{height} : height;
  header.isTopDown = height < 0;
  header.bits = GetLowFirst(fields + 14, 2);
  header.isPacked = GetLowFirst(fields + 16, 4) != 0;
  header.colours = GetLowFirst(fields + 32, 4);
  if (header.colours == 0 && header.bits == 8) header.colours = BITMAP_COLOURS;
  return header;
}

}  // namespace zel
