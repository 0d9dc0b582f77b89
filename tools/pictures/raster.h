// Pixels as a file holds them, and an account of what it holds.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace pictures {

using Bytes = std::span<const uint8_t>;

// A file that cannot be read, in the file's own words: what it is, and what is wrong with it.
class BadFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Pixels in memory take at most what an image of the library takes.
constexpr int64_t MOST_BYTES = 0x7FFFFFFF;

enum class Sample { U8, U16, U32, I8, I16, I32, F32, F64 };

int32_t BytesOf(Sample sample);

struct Raster {
  int32_t width = 0, height = 0;
  int32_t channels = 1;  // 1, or 3 for red, green and blue
  Sample sample = Sample::U8;
  std::vector<uint8_t> bytes;     // rows without gaps, in the machine's byte order
  std::vector<uint32_t> palette;  // 256 colours 0x00RRGGBB, or none: U8 samples are their numbers
  // Instead of the bytes, where the rows lie in the file as they are wanted: the first one, and how
  // far on the next one is.
  const uint8_t* lent = nullptr;
  int64_t lentPitch = 0;

  int64_t PixelBytes() const { return int64_t{channels} * BytesOf(sample); }
  int64_t RowBytes() const { return width * PixelBytes(); }
  uint8_t* Row(int64_t y) { return bytes.data() + y * RowBytes(); }  // of one with bytes
  const uint8_t* Row(int64_t y) const {
    return lent != nullptr ? lent + y * lentPitch : bytes.data() + y * RowBytes();
  }
};

// Throws BadFile for a size that no image can have.
void RefuseSize(int64_t width, int64_t height, int64_t pixelBytes);

// Black pixels. Throws as RefuseSize.
Raster MakeRaster(int64_t width, int64_t height, int32_t channels, Sample sample);

// What a file says of one of its pictures.
struct Account {
  std::string format;           // "TIFF"
  int32_t page = 1, pages = 1;  // which picture of how many
  int64_t width = 0, height = 0;
  int32_t bits = 8;           // of a sample
  int32_t samples = 1;        // a pixel, alpha and others included
  std::string kind = "gray";  // "gray", "colour", "palette", "float", "signed", "complex"
  std::string byteOrder;      // "little-endian"; empty where the format knows but one
  std::string compression = "none";
  std::string layout;               // "strips of 16 rows"; empty where the format knows but one
  std::string meaning;              // "0 is white"; empty for the usual one
  int32_t orientation = 1;          // as in EXIF: 1 upright; others are turned when they are read
  std::string alpha;                // "straight", "premultiplied"; empty for none
  int32_t colours = 0;              // of a palette
  std::string resolution;           // "300 x 300 pixels an inch"; empty for none
  std::vector<std::string> losses;  // what of the file is not in the pixels that were read

  int32_t PixelBits() const { return bits * samples; }
};

struct Picture {
  Account account;
  Raster raster;  // empty when only the account was asked for
};

// Whether each number of 256 means itself, as a gray.
bool IsRamp(std::span<const uint32_t> colours);

// A palette of grays alone gives way to the grays themselves.
void SettlePalette(Raster* raster);

// Says whether a file's colours are grays alone: then its picture is gray.
void DescribePalette(std::span<const uint32_t> colours, Account* account);

// Where the whole file is one picture: throws BadFile for a page that is not 1.
void OnlyPage(int32_t page, const std::string& format);

std::string Count(int64_t number, const std::string& one);  // "2 bytes"

}  // namespace pictures
