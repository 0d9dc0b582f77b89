// The directory of a TIFF file: the tags that are kept, their values as numbers, and what they say
// about the image.
#pragma once

#include "files/access.h"
#include "files/context.h"

namespace zel {

enum TiffType : uint16_t {
  TIFF_BYTE = 1,
  TIFF_ASCII = 2,
  TIFF_SHORT = 3,
  TIFF_LONG = 4,
  TIFF_RATIONAL = 5,
};

enum TiffTagNumber : uint16_t {
  TAG_NEW_SUBFILE_TYPE = 254,
  TAG_SUBFILE_TYPE = 255,
  TAG_WIDTH = 256,
  TAG_HEIGHT = 257,
  TAG_BITS_PER_SAMPLE = 258,
  TAG_COMPRESSION = 259,
  TAG_PHOTOMETRIC = 262,
  TAG_STRIP_OFFSETS = 273,
  TAG_SAMPLES_PER_PIXEL = 277,
  TAG_ROWS_PER_STRIP = 278,
  TAG_STRIP_BYTE_COUNTS = 279,
  TAG_PLANAR_CONFIGURATION = 284,
  TAG_COLOUR_MAP = 320,
};

constexpr uint16_t TIFF_MARK = 42;
constexpr int64_t TIFF_HEADER_BYTES = 8;
constexpr int64_t TIFF_ENTRY_BYTES = 12;

struct TiffEssentials {
  int32_t width, height;
  uint16_t samplesPerPixel, bitsPerSample, planarConfiguration;
  int32_t rowsPerStrip;
  uint16_t compression, photometric;
};

// Loads the kept tags of the directory at the context's data offset. STATUS_BAD_FILE_FORMAT, and
// STATUS_FILE_SEEK for a value at a negative offset.
Status TiffLoadDirectory(const OpenFile& file, FileContext* context);

// Null for a tag that the directory does not have.
const TiffTag* TiffFind(const FileContext& context, TiffTagNumber number);

// Defaults stand in for what is missing or makes no sense. STATUS_BAD_FILE_FORMAT without a size
// that an image can have, and for compressed files.
Status TiffDecodeEssentials(const FileContext& context, TiffEssentials* essentials);

// The first bytes of a tag's value in host order, as many as there are and the caller has room for.
Status TiffReadValue(const OpenFile& file, const FileContext& context, const TiffTag& tag,
                     uint8_t* value, int64_t room, int64_t* bytes);

// The elements of an array tag, one after the other, through a window on the file.
class TiffArrayReader {
 public:
  TiffArrayReader(const OpenFile& file, const FileContext& context, const TiffTag& tag)
      : file_(file), context_(context), tag_(tag) {}

  // Elements that are no BYTE, SHORT or LONG are 0.
  Status Element(int64_t index, uint32_t* value);

 private:
  static constexpr int64_t WINDOW_BYTES = 2048;

  const OpenFile& file_;
  const FileContext& context_;
  const TiffTag& tag_;
  int64_t firstByte_ = 0;  // of the value, at the start of the window
  int64_t bytes_ = 0;      // in the window
  uint8_t window_[WINDOW_BYTES] = {};
};

}  // namespace zel
