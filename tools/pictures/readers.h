// The readers of the formats. Each reads one picture of a whole file in memory, or, without pixels,
// only the account of it. All throw BadFile.
#pragma once

#include "pictures/raster.h"

namespace pictures {

enum class Want {
  Account,
  Pixels,
  PixelsOrLent  // pixels that need not be changed may stay in the file
};

bool IsBmp(Bytes file);
Picture ReadBmp(Bytes file, int32_t page, Want want);

bool IsTiff(Bytes file);
Picture ReadTiff(Bytes file, int32_t page, Want want);

bool IsPng(Bytes file);
Picture ReadPng(Bytes file, int32_t page, Want want);

bool IsJpeg(Bytes file);
Picture ReadJpeg(Bytes file, int32_t page, Want want);

}  // namespace pictures
