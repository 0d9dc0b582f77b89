// Pictures that lie on a side or are mirrored, as cameras and scanners store them.
#include "pictures/orientation.h"

#include <cstring>
#include <utility>

namespace pictures {
namespace {

struct Turn {
  bool transposed, flippedX, flippedY;  // stored x and y, seen from the upright picture
};

Turn TurnOf(int32_t orientation) {
  switch (orientation) {
    case 2:
      return {false, true, false};
    case 3:
      return {false, true, true};
    case 4:
      return {false, false, true};
    case 5:
      return {true, false, false};
    case 6:
      return {true, false, true};
    case 7:
      return {true, true, true};
    case 8:
      return {true, true, false};
    default:
      return {false, false, false};
  }
}

// Numbers of either byte order; 0 beyond the end.
class ExifNumbers {
 public:
  explicit ExifNumbers(Bytes data)
      : data_(data), big_(data.size() > 1 && data[0] == 'M' && data[1] == 'M') {}
  uint32_t Read(size_t at, size_t bytes) const {
    uint32_t value = 0;
    if (at > data_.size() || bytes > data_.size() - at) return 0;
    for (size_t i = 0; i < bytes; ++i) {
      value |= uint32_t{data_[at + i]} << (8 * (big_ ? bytes - 1 - i : i));
    }
    return value;
  }

 private:
  Bytes data_;
  bool big_;
};

}  // namespace

Raster Upright(Raster stored, int32_t orientation) {
  const Turn turn = TurnOf(orientation);
  if (!turn.transposed && !turn.flippedX && !turn.flippedY) return stored;
  Raster upright =
      MakeRaster(turn.transposed ? stored.height : stored.width,
                 turn.transposed ? stored.width : stored.height, stored.channels, stored.sample);
  upright.palette = std::move(stored.palette);
  const auto pixelBytes = static_cast<size_t>(stored.PixelBytes());
  for (int32_t y = 0; y < upright.height; ++y) {
    uint8_t* to = upright.Row(y);
    for (int32_t x = 0; x < upright.width; ++x, to += pixelBytes) {
      int32_t storedX = turn.transposed ? y : x, storedY = turn.transposed ? x : y;
      if (turn.flippedX) storedX = stored.width - 1 - storedX;
      if (turn.flippedY) storedY = stored.height - 1 - storedY;
      std::memcpy(to, stored.Row(storedY) + static_cast<size_t>(storedX) * pixelBytes, pixelBytes);
    }
  }
  return upright;
}

int32_t OrientationIn(Bytes exif) {
  constexpr uint32_t ORIENTATION_TAG = 0x0112;
  constexpr size_t ENTRY_BYTES = 12;
  const ExifNumbers numbers(exif);
  const size_t directory = numbers.Read(4, 4);
  const uint32_t entries = numbers.Read(directory, 2);
  for (uint32_t i = 0; i < entries; ++i) {
    const size_t entry = directory + 2 + i * ENTRY_BYTES;
    if (entry >= exif.size()) break;
    if (numbers.Read(entry, 2) != ORIENTATION_TAG) continue;
    const uint32_t orientation = numbers.Read(entry + 8, 2);
    return orientation >= 1 && orientation <= 8 ? static_cast<int32_t>(orientation) : 1;
  }
  return 1;
}

}  // namespace pictures
