// The samples of a TIFF page: strips or tiles, together or in planes, of any number of bits.
#include "pictures/tiff_samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace pictures {
namespace {

constexpr uint32_t HALF_BITS = 16, TRIPLE_BITS = 24, MOST_PACKED_BITS = 32;

bool IsFloat(const TiffLayout& layout) {
  return layout.format == SAMPLEFORMAT_IEEEFP;
}

// Colour differences that are not part of a JPEG stream come out of libtiff's own conversion.
bool NeedsConversion(const TiffLayout& layout) {
  return layout.photometric == PHOTOMETRIC_YCBCR && layout.compression != COMPRESSION_JPEG;
}

Sample SampleOf(const TiffLayout& layout) {
  if (IsFloat(layout)) return layout.bits == 64 ? Sample::F64 : Sample::F32;
  const bool isSigned = layout.format == SAMPLEFORMAT_INT;
  if (layout.bits <= 8) return isSigned ? Sample::I8 : Sample::U8;
  if (layout.bits <= 16) return isSigned ? Sample::I16 : Sample::U16;
  return isSigned ? Sample::I32 : Sample::U32;
}

float FromHalf(uint16_t half) {
  const int exponent = half >> 10 & 31, fraction = half & 1023;
  float value;
  if (exponent == 31) {
    value = fraction != 0 ? std::nanf("") : INFINITY;
  } else if (exponent == 0) {
    value = std::ldexp(static_cast<float>(fraction), -24);
  } else {
    value = std::ldexp(static_cast<float>(fraction + 1024), exponent - 25);
  }
  return (half & 0x8000) != 0 ? -value : value;
}

// Takes samples out of a row as libtiff gives it: whole numbers of bytes in the machine's order,
// other samples as a stream of bits, the highest first.
class RowUnpacker {
 public:
  RowUnpacker(const TiffLayout& layout, Sample to)
      : bits_(layout.bits), half_(IsFloat(layout) && layout.bits == HALF_BITS), to_(to) {
    const bool whole = bits_ == 8 || bits_ == 16 || bits_ == 32 || bits_ == 64;
    bytes_ = whole && !half_ ? bits_ / 8u : 0;
  }

  // Sample `first` of the row and those at the given distance from it, into every stepTh element.
  void Unpack(const uint8_t* row, size_t first, size_t distance, size_t count, uint8_t* to,
              size_t step) const {
    const size_t size = static_cast<size_t>(BytesOf(to_));
    for (size_t i = 0; i < count; ++i, to += step * size) {
      const size_t index = first + i * distance;
      if (bytes_ != 0) {
        std::memcpy(to, row + index * bytes_, bytes_);
      } else if (half_) {
        uint16_t half;
        std::memcpy(&half, row + index * 2, 2);
        const float value = FromHalf(half);
        std::memcpy(to, &value, sizeof value);
      } else {
        PutInteger(bits_ == TRIPLE_BITS ? Triple(row + index * 3) : Packed(row, index), to);
      }
    }
  }

 private:
  static uint32_t Triple(const uint8_t* at) {
    if constexpr (std::endian::native == std::endian::big) {
      return uint32_t{at[0]} << 16 | uint32_t{at[1]} << 8 | at[2];
    }
    return uint32_t{at[2]} << 16 | uint32_t{at[1]} << 8 | at[0];
  }

  uint32_t Packed(const uint8_t* row, size_t index) const {
    uint64_t value = 0;
    size_t bit = index * bits_;
    for (uint32_t left = bits_; left > 0;) {
      const uint32_t here = std::min<uint32_t>(left, static_cast<uint32_t>(8 - bit % 8));
      const uint32_t part = uint32_t{row[bit / 8]} >> (8 - bit % 8 - here) & ((1u << here) - 1);
      value = value << here | part;
      bit += here;
      left -= here;
    }
    return static_cast<uint32_t>(value);
  }

  void PutInteger(uint32_t value, uint8_t* to) const {
    const auto put = [&](auto narrow) { std::memcpy(to, &narrow, sizeof narrow); };
    if (to_ == Sample::U8) {
      put(static_cast<uint8_t>(value));
    } else if (to_ == Sample::U16) {
      put(static_cast<uint16_t>(value));
    } else {
      put(value);
    }
  }

  uint32_t bits_;
  bool half_;
  Sample to_;
  uint32_t bytes_;  // of a sample that is copied as it is, else 0
};

// Uncompressed pixels that the file has no room for are told before memory is taken for them.
void CheckRoom(const TiffInput& file, const TiffLayout& layout) {
  if (layout.compression != COMPRESSION_NONE) return;
  const double needed =
      static_cast<double>(layout.width) * layout.height * layout.bits * layout.samples / 8;
  const bool subsampled = layout.photometric == PHOTOMETRIC_YCBCR;
  if (subsampled || needed <= static_cast<double>(file.size())) return;
  throw BadFile("the TIFF file is cut: its " + std::to_string(layout.width) + " x " +
                std::to_string(layout.height) + " pixels take " +
                std::to_string(static_cast<uint64_t>(needed)) + " bytes, and the whole file has " +
                std::to_string(file.size()));
}

// Strips are tiles as wide as the picture.
struct Grid {
  uint32_t blockWidth, blockHeight, across, down;
  tmsize_t blockBytes, rowBytes;
};

Grid GridOf(const TiffInput& file, const TiffLayout& layout) {
  Grid grid{};
  if (layout.tiled) {
    grid.blockWidth = file.Field<uint32_t>(TIFFTAG_TILEWIDTH, 0);
    grid.blockHeight = file.Field<uint32_t>(TIFFTAG_TILELENGTH, 0);
    grid.blockBytes = TIFFTileSize(file.handle());
    grid.rowBytes = TIFFTileRowSize(file.handle());
  } else {
    grid.blockWidth = layout.width;
    grid.blockHeight =
        std::min(file.Field<uint32_t>(TIFFTAG_ROWSPERSTRIP, layout.height), layout.height);
    grid.blockBytes = TIFFStripSize(file.handle());
    grid.rowBytes = TIFFScanlineSize(file.handle());
  }
  if (grid.blockWidth == 0 || grid.blockHeight == 0) throw BadFile("the TIFF file has empty tiles");
  grid.across = (layout.width - 1) / grid.blockWidth + 1;
  grid.down = (layout.height - 1) / grid.blockHeight + 1;
  return grid;
}

class SampleReader {
 public:
  SampleReader(TiffInput* file, const TiffLayout& layout)
      : file_(file),
        layout_(layout),
        grid_(GridOf(*file, layout)),
        unpacker_(layout, SampleOf(layout)),
        channels_(layout.Channels()) {}

  Raster Read() {
    // What a row takes is told by libtiff; what is taken out of it must lie within.
    const uint64_t samples =
        uint64_t{grid_.blockWidth} * (layout_.planesApart ? 1 : layout_.samples);
    if (grid_.blockBytes <= 0 || grid_.rowBytes <= 0 ||
        static_cast<uint64_t>(grid_.rowBytes) < (samples * layout_.bits + 7) / 8) {
      file_->Fail("has rows of an odd size");
    }
    raster_ = MakeRaster(layout_.width, layout_.height, channels_, SampleOf(layout_));
    block_.resize(static_cast<size_t>(grid_.blockBytes));
    const int32_t planes = layout_.planesApart ? channels_ : 1;
    const uint32_t perPlane = grid_.across * grid_.down;
    for (int32_t plane = 0; plane < planes; ++plane) {
      for (uint32_t block = 0; block < perPlane; ++block) {
        ReadBlock(static_cast<uint32_t>(plane) * perPlane + block, block, plane);
      }
    }
    return std::move(raster_);
  }

 private:
  void ReadBlock(uint32_t number, uint32_t place, int32_t plane) {
    const uint32_t left = place % grid_.across * grid_.blockWidth;
    const uint32_t top = place / grid_.across * grid_.blockHeight;
    const uint32_t width = std::min(grid_.blockWidth, layout_.width - left);
    const uint32_t height = std::min(grid_.blockHeight, layout_.height - top);
    const tmsize_t needed = static_cast<tmsize_t>(height) * grid_.rowBytes;
    const tmsize_t wanted = std::min(grid_.blockBytes, layout_.tiled ? grid_.blockBytes : needed);
    const tmsize_t got = layout_.tiled
                             ? TIFFReadEncodedTile(file_->handle(), number, block_.data(), wanted)
                             : TIFFReadEncodedStrip(file_->handle(), number, block_.data(), wanted);
    if (got < 0 || got < std::min(needed, wanted) || needed > grid_.blockBytes) {
      file_->Fail(std::string("is cut or damaged in ") + (layout_.tiled ? "tile " : "strip ") +
                  std::to_string(number + 1));
    }
    for (uint32_t y = 0; y < height; ++y) {
      const uint8_t* row =
          block_.data() + static_cast<size_t>(y) * static_cast<size_t>(grid_.rowBytes);
      uint8_t* to = raster_.Row(top + y) + left * raster_.PixelBytes();
      if (layout_.planesApart) {
        PutChannel(row, 0, 1, width, to, plane);
        continue;
      }
      for (int32_t c = 0; c < channels_; ++c) {
        PutChannel(row, static_cast<size_t>(c), layout_.samples, width, to, c);
      }
    }
  }

  void PutChannel(const uint8_t* row, size_t first, size_t distance, uint32_t count, uint8_t* to,
                  int32_t channel) const {
    unpacker_.Unpack(row, first, distance, count, to + channel * BytesOf(raster_.sample),
                     static_cast<size_t>(channels_));
  }

  TiffInput* file_;
  const TiffLayout& layout_;
  Grid grid_;
  RowUnpacker unpacker_;
  int32_t channels_;
  Raster raster_;
  std::vector<uint8_t> block_;
};

// As 0 is black: the highest value becomes 0.
void Invert(const TiffLayout& layout, Raster* raster) {
  if (IsFloat(layout)) return;
  const auto invert = [&](auto most) {
    using T = decltype(most);
    for (size_t at = 0; at < raster->bytes.size(); at += sizeof(T)) {
      T value;
      std::memcpy(&value, raster->bytes.data() + at, sizeof(T));
      value = static_cast<T>(most - value);
      std::memcpy(raster->bytes.data() + at, &value, sizeof(T));
    }
  };
  // The complement of a signed number is -1 minus it.
  const bool isSigned = layout.format == SAMPLEFORMAT_INT;
  const uint32_t most = isSigned ? ~0u : ~0u >> (32 - layout.bits);
  switch (BytesOf(raster->sample)) {
    case 1:
      return invert(static_cast<uint8_t>(most));
    case 2:
      return invert(static_cast<uint16_t>(most));
    default:
      return invert(most);
  }
}

Raster ReadConverted(TiffInput* file, const TiffLayout& layout) {
  Raster raster = MakeRaster(layout.width, layout.height, 3, Sample::U8);
  MakeRaster(layout.width, layout.height, 1, Sample::U32);  // room for what libtiff gives
  std::vector<uint32_t> pixels(size_t{layout.width} * layout.height);
  // In the order of the file: turning is the caller's.
  const int orientation = file->Field<uint16_t>(TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
  if (TIFFReadRGBAImageOriented(file->handle(), layout.width, layout.height, pixels.data(),
                                orientation, 1) == 0) {
    file->Fail("is cut or damaged");
  }
  for (size_t i = 0; i < pixels.size(); ++i) {
    raster.bytes[3 * i] = static_cast<uint8_t>(TIFFGetR(pixels[i]));
    raster.bytes[3 * i + 1] = static_cast<uint8_t>(TIFFGetG(pixels[i]));
    raster.bytes[3 * i + 2] = static_cast<uint8_t>(TIFFGetB(pixels[i]));
  }
  return raster;
}

}  // namespace

std::string TiffSampleRefusal(const TiffLayout& layout) {
  const std::string bits = std::to_string(layout.bits);
  const auto oneOf = [&](std::initializer_list<int> sizes) {
    return std::find(sizes.begin(), sizes.end(), layout.bits) != sizes.end();
  };
  if (layout.photometric == PHOTOMETRIC_YCBCR && layout.bits != 8) {
    return bits + "-bit colour differences are not read; convert it to RGB";
  }
  switch (layout.format) {
    case SAMPLEFORMAT_UINT:
      return layout.bits >= 1 && layout.bits <= MOST_PACKED_BITS
                 ? ""
                 : bits + "-bit samples are not read; 1 to 32 bits are";
    case SAMPLEFORMAT_INT:
      return oneOf({8, 16, 32}) ? "" : bits + "-bit signed samples are not read; 8, 16 and 32 are";
    case SAMPLEFORMAT_IEEEFP:
      return oneOf({16, 32, 64}) ? "" : bits + "-bit floats are not read; 16, 32 and 64 are";
    default:
      return "sample format " + std::to_string(layout.format) +
             " (complex numbers) is not read; save real and imaginary part as two pages";
  }
}

Raster ReadTiffSamples(TiffInput* file, const TiffLayout& layout) {
  CheckRoom(*file, layout);
  if (layout.width == 0 || layout.height == 0) throw BadFile("the TIFF picture has no pixels");
  if (NeedsConversion(layout)) return ReadConverted(file, layout);
  if (layout.photometric == PHOTOMETRIC_YCBCR) {
    TIFFSetField(file->handle(), TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
  }
  Raster raster = SampleReader(file, layout).Read();
  if (layout.photometric == PHOTOMETRIC_MINISWHITE) Invert(layout, &raster);
  return raster;
}

}  // namespace pictures
