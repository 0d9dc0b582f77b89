// BMP files of 8 bits with a palette, or 24 bits.
#include <stdexcept>

#include "pictures/writers.h"

namespace pictures {
namespace {

class LittleEndian {
 public:
  void Short(uint32_t value) {
    bytes_.push_back(static_cast<uint8_t>(value));
    bytes_.push_back(static_cast<uint8_t>(value >> 8));
  }
  void Long(uint32_t value) {
    Short(value);
    Short(value >> 16);
  }
  std::vector<uint8_t>& bytes() { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

}  // namespace

std::vector<uint8_t> EncodeBmp(const Raster& raster) {
  constexpr uint32_t FILE_HEADER = 14, INFO_HEADER = 40, COLOURS = 256;
  if (raster.sample != Sample::U8) throw std::invalid_argument("BMP holds bytes only");
  const bool gray = raster.channels == 1;
  const auto rowBytes = static_cast<size_t>(raster.RowBytes());
  const size_t pitch = (rowBytes + 3) / 4 * 4;  // rows are filled up with zeros
  const uint32_t pixelsAt = FILE_HEADER + INFO_HEADER + (gray ? 4 * COLOURS : 0);
  const size_t size = pixelsAt + pitch * static_cast<size_t>(raster.height);
  if (size > UINT32_MAX) throw std::invalid_argument("the picture is too large for a BMP file");

  LittleEndian file;
  file.bytes().reserve(size);
  file.Short('B' | 'M' << 8);
  file.Long(static_cast<uint32_t>(size));
  file.Long(0);
  file.Long(pixelsAt);
  file.Long(INFO_HEADER);
  file.Long(static_cast<uint32_t>(raster.width));
  file.Long(static_cast<uint32_t>(raster.height));
  file.Short(1);
  file.Short(gray ? 8 : 24);
  file.Long(0);
  file.Long(static_cast<uint32_t>(size) - pixelsAt);
  file.Long(0);
  file.Long(0);
  file.Long(gray ? COLOURS : 0);
  file.Long(0);
  for (uint32_t i = 0; gray && i < COLOURS; ++i) {
    file.Long(raster.palette.empty() ? i * 0x010101 : raster.palette[i] & 0xFFFFFF);
  }
  for (int64_t y = raster.height - 1; y >= 0; --y) {
    const uint8_t* row = raster.Row(y);
    std::vector<uint8_t>& bytes = file.bytes();
    if (gray) {
      bytes.insert(bytes.end(), row, row + rowBytes);
    } else {
      for (size_t x = 0; x < rowBytes; x += 3) {
        bytes.insert(bytes.end(), {row[x + 2], row[x + 1], row[x]});
      }
    }
    bytes.insert(bytes.end(), pitch - rowBytes, 0);
  }
  return std::move(file.bytes());
}

}  // namespace pictures
