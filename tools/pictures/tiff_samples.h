// The samples of a TIFF page: strips or tiles, together or in planes, of any number of bits.
#pragma once

#include "pictures/tiff_file.h"

namespace pictures {

struct TiffLayout {
  uint32_t width = 0, height = 0;
  uint16_t bits = 1, samples = 1;
  uint16_t format = SAMPLEFORMAT_UINT;
  uint16_t photometric = PHOTOMETRIC_MINISBLACK;
  uint16_t compression = COMPRESSION_NONE;
  bool hasPhotometric = false;
  bool planesApart = false;
  bool tiled = false;

  bool IsColour() const {
    return photometric == PHOTOMETRIC_RGB || photometric == PHOTOMETRIC_YCBCR;
  }
  int32_t Channels() const { return IsColour() ? 3 : 1; }  // that are read, the first ones
};

// Why samples of this kind are not read; empty for those that are.
std::string TiffSampleRefusal(const TiffLayout& layout);

// Throws BadFile.
Raster ReadTiffSamples(TiffInput* file, const TiffLayout& layout);

}  // namespace pictures
