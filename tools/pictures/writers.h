// Pictures as files of other programs' formats, whole, in memory.
#pragma once

#include "pictures/raster.h"

namespace pictures {

// All throw std::invalid_argument for samples that the format has no place for.

// U8 with or without a palette, U16, I16, F32, and U8 in three channels. Big-endian: the library
// reads 16-bit samples of no other order.
std::vector<uint8_t> EncodeTiff(const Raster& raster);

// U8 with or without a palette, U16, and either in three channels.
std::vector<uint8_t> EncodePng(const Raster& raster);

// U8 with or without a palette, and U8 in three channels.
std::vector<uint8_t> EncodeBmp(const Raster& raster);

}  // namespace pictures
