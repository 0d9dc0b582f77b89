// Reading and writing of image files, with the options that only the library itself can pass.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "files/context.h"
#include "orlune_ptk.h"

namespace zel {

// Options of a read: with rawMode the file is FORMAT_RAW, of the image's size.
struct ReadOptions {
  int32_t rawMode;
  int32_t pixelClass;
  int32_t dataOffset;
  int32_t scaleToRange;  // as in FileContext, for raw files only: a header switches it off
  float rangeMin, rangeMax;
  int32_t littleEndian;
};

// Options of a TIFF write. Files of 16-bit and colour images are little-endian whatever is asked.
struct WriteOptions {
  int32_t rowsPerStrip;  // limited to 1..height
  int32_t littleEndian;
};

struct ReadRequest {
  bool tableWanted = false;
  FileFormat format = FORMAT_UNKNOWN;
  const ReadOptions* options = nullptr;  // required for FORMAT_RSTR and FORMAT_RAW
};

// The first `tableCount` colours of the table come from `table`, the rest is a gray ramp.
struct WriteRequest {
  FileFormat format = FORMAT_NATIVE;
  const RGBValue* table = nullptr;
  uint32_t tableCount = 0;
  const WriteOptions* options = nullptr;
};

// Reads the header alone.
Status FileInfoKernel(const char* path, FileContext* context);

// Reads a file into an image, which takes the file's height and its width rounded up to even. The
// context holds the file's class and colour table afterwards.
Status FileReadKernel(ImageRef image, const char* path, const ReadRequest& request,
                      FileContext* context);

Status FileWriteKernel(ImageRef image, const char* path, const WriteRequest& request);

}  // namespace zel
