// What is known of an image file while it is read or written: the record that every format works
// on.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace zel {

enum FileFormat : int32_t {
  FORMAT_NATIVE = 0,
  FORMAT_TIFF = 1,
  FORMAT_PICT = 2,  // has a number, and neither reader nor writer
  FORMAT_BMP = 3,
  FORMAT_RSTR = 4,     // a size of 4 bytes, then pixels; never recognised, only asked for
  FORMAT_RAW = 5,      // pixels alone; only asked for
  FORMAT_UNKNOWN = 6,  // no signature matched; asks for recognition
};

// How samples lie in a file.
enum PixelClass : int32_t {
  CLASS_BITS1 = 0,  // packed, most significant bit first
  CLASS_BITS2 = 1,
  CLASS_BITS4 = 2,
  CLASS_U8 = 3,
  CLASS_U12 = 4,  // in a 16-bit word
  CLASS_U16 = 5,  // unsigned by name, and signed wherever it becomes a float
  CLASS_I16 = 6,
  CLASS_RGB15 = 7,       // 5 bits each: blue in bits 0-4, green, red
  CLASS_RGB24 = 8,       // interleaved
  CLASS_RGB_PLANES = 9,  // three planes of bytes: red, green, blue
  CLASS_U32 = 10,
  CLASS_I32 = 11,
  CLASS_RGB32 = 12,
  CLASS_SGL = 13,
  CLASS_COMPLEX24 = 14,  // two signed 24-bit integers
  CLASS_COMPLEX = 15,    // two floats
};
constexpr int32_t PIXEL_CLASSES = 16;

constexpr uint32_t TABLE_ENTRIES = 256;
constexpr uint32_t TABLE_GRAY_STEP = 0x010101;  // entry i of a gray ramp is i times this
constexpr int32_t UNIT_DEFAULT = 3;             // the calibration unit of files that have none

// One kept entry of a TIFF directory. Larger values stay in the file until they are needed.
struct TiffTag {
  bool present;
  uint16_t type;
  uint32_t count;
  int64_t offset;    // of the value in the file
  uint8_t field[4];  // the first bytes of the value, as they lie in the file
};
constexpr int32_t TIFF_TAGS_KEPT = 13;

// What is known of a file while it is read or written.
struct FileContext {
  FileFormat format;
  int32_t imageType;  // of the image being written
  int64_t dataSize;   // the length of the file being read
  int32_t width, height;
  float ratioX, ratioY;  // calibration
  int32_t unit;
  bool tableWanted;
  uint32_t tableCount;            // valid entries of `table`, 0 for a file without one
  uint32_t table[TABLE_ENTRIES];  // 0x00RRGGBB
  PixelClass pixelClass;
  int64_t dataOffset;    // of the pixels; in a TIFF of the directory
  int32_t scaleToRange;  // samples are stretched; 1: from the range found in the file
  float rangeMin, rangeMax;
  int32_t swapBytes;  // 1: sample bytes are reversed, in the sense that each format gives it
  TiffTag tags[TIFF_TAGS_KEPT];
  int32_t planeIndex;    // the plane being read of CLASS_RGB_PLANES
  int32_t rowsPerStrip;  // of a TIFF being written
  int32_t littleEndian;
};

}  // namespace zel
