// Uncompressed TIFF files of one strip.
#include <algorithm>
#include <bit>
#include <stdexcept>

#include "pictures/writers.h"

namespace pictures {
namespace {

enum Tag : uint16_t {
  WIDTH = 256,
  HEIGHT = 257,
  BITS = 258,
  COMPRESSION = 259,
  PHOTOMETRIC = 262,
  STRIP_OFFSETS = 273,
  SAMPLES = 277,
  ROWS_PER_STRIP = 278,
  STRIP_BYTES = 279,
  COLOUR_MAP = 320,
  SAMPLE_FORMAT = 339
};
constexpr uint16_t SHORT = 3, LONG = 4;
constexpr uint32_t UNSIGNED = 1, SIGNED = 2, FLOAT = 3;  // sample formats

class BigEndian {
 public:
  void Short(uint32_t value) {
    bytes_.push_back(static_cast<uint8_t>(value >> 8));
    bytes_.push_back(static_cast<uint8_t>(value));
  }
  void Long(uint32_t value) {
    Short(value >> 16);
    Short(value);
  }
  void Entry(Tag tag, uint16_t type, uint32_t count, uint32_t value) {
    Short(tag);
    Short(type);
    Long(count);
    if (type == SHORT && count == 1) {
      Short(value);
      Short(0);
    } else {
      Long(value);
    }
  }
  std::vector<uint8_t>& bytes() { return bytes_; }

 private:
  std::vector<uint8_t> bytes_;
};

uint32_t FormatOf(Sample sample) {
  return sample == Sample::I16 ? SIGNED : sample == Sample::F32 ? FLOAT : UNSIGNED;
}

void CheckHeld(const Raster& raster) {
  const Sample s = raster.sample;
  const bool held = s == Sample::U8 || (raster.channels == 1 &&
                                        (s == Sample::U16 || s == Sample::I16 || s == Sample::F32));
  if (!held) throw std::invalid_argument("TIFF is written with other samples only");
}

// The samples themselves, the highest byte first.
void AppendPixels(const Raster& raster, std::vector<uint8_t>* bytes) {
  const auto size = static_cast<size_t>(BytesOf(raster.sample));
  const size_t start = bytes->size();
  bytes->insert(bytes->end(), raster.bytes.begin(), raster.bytes.end());
  if (size == 1 || std::endian::native == std::endian::big) return;
  for (size_t at = start; at < bytes->size(); at += size) {
    const auto first = bytes->begin() + static_cast<std::ptrdiff_t>(at);
    std::reverse(first, first + static_cast<std::ptrdiff_t>(size));
  }
}

}  // namespace

std::vector<uint8_t> EncodeTiff(const Raster& raster) {
  constexpr uint32_t HEADER = 8, ENTRY = 12, COLOURS = 256;
  CheckHeld(raster);
  const bool colour = raster.channels == 3, palette = !raster.palette.empty();
  const uint32_t format = FormatOf(raster.sample);
  const uint32_t entries = 9u + (palette ? 1 : 0) + (format != UNSIGNED ? 1 : 0);
  const uint32_t afterDirectory = HEADER + 2 + entries * ENTRY + 4;
  const uint32_t bitsAt = afterDirectory;  // of each of three colours, where there are some
  const uint32_t coloursAt = bitsAt + (colour ? 6 : 0);
  const uint32_t pixelsAt = (coloursAt + (palette ? 3 * COLOURS * 2 : 0) + 3) / 4 * 4;
  const auto bits = static_cast<uint32_t>(8 * BytesOf(raster.sample));

  BigEndian file;
  file.bytes().reserve(pixelsAt + raster.bytes.size());
  file.Short('M' << 8 | 'M');
  file.Short(42);
  file.Long(HEADER);
  file.Short(entries);
  file.Entry(WIDTH, LONG, 1, static_cast<uint32_t>(raster.width));
  file.Entry(HEIGHT, LONG, 1, static_cast<uint32_t>(raster.height));
  file.Entry(BITS, SHORT, colour ? 3 : 1, colour ? bitsAt : bits);
  file.Entry(COMPRESSION, SHORT, 1, 1);
  file.Entry(PHOTOMETRIC, SHORT, 1, palette ? 3 : colour ? 2 : 1);
  file.Entry(STRIP_OFFSETS, LONG, 1, pixelsAt);
  file.Entry(SAMPLES, SHORT, 1, static_cast<uint32_t>(raster.channels));
  file.Entry(ROWS_PER_STRIP, LONG, 1, static_cast<uint32_t>(raster.height));
  file.Entry(STRIP_BYTES, LONG, 1, static_cast<uint32_t>(raster.bytes.size()));
  if (palette) file.Entry(COLOUR_MAP, SHORT, 3 * COLOURS, coloursAt);
  if (format != UNSIGNED) file.Entry(SAMPLE_FORMAT, SHORT, 1, format);
  file.Long(0);
  for (int i = 0; colour && i < 3; ++i) file.Short(bits);
  for (int shift = 16; palette && shift >= 0; shift -= 8) {
    for (const uint32_t entry : raster.palette) file.Short((entry >> shift & 255) * 257);
  }
  file.bytes().resize(pixelsAt);
  AppendPixels(raster, &file.bytes());
  return std::move(file.bytes());
}

}  // namespace pictures
