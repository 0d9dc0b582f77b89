// What other rooms use of the pixel statistics: regions under a mask, extremes and counts of
// levels.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// The pixels of an image, or of the part of it that a mask covers, as row loops walk them. Valid
// until the image or the mask is resized.
struct PixelRegion {
  const uint8_t* pixels;  // first pixel of the region; null for an image without pixels
  int64_t pitch;          // bytes from one row to the next
  int32_t width, height;  // below 1: nothing to walk
  int32_t type;           // ImageType
  const uint8_t* mask;    // the mask pixel over the first pixel, or null without a mask
  int64_t maskPitch;      // bytes
};

// A mask of 0 or the image itself is no mask. STATUS_BAD_IMAGE for either reference,
// STATUS_BAD_TYPE for a mask that is not U8. The image may have any type.
void PixelRegionOf(ImageRef image, ImageRef mask, PixelRegion* region, Status* status);

// The extremes of the selected pixels, NaN left out. With none selected 255 and 0 (U8), 2^31 and
// -2^31 (I16), 1e38 and -1e38 (SGL); values beyond 1e38 never show. STATUS_BAD_OPERAND_TYPE for
// another type.
void ImageMinMax(const PixelRegion& region, float* min, float* max, Status* status);

// How often each level occurs among the selected pixels of a U8 region.
constexpr int32_t LEVELS_U8 = 256;
void CountLevels(const PixelRegion& region, uint32_t (&counts)[LEVELS_U8]);

// The kernel of ZEL_Histogram. `histogram` names a vector of uint32_t that the call sizes, or a
// caller's array behind a handle, which must be large enough (STATUS_MEMORY_ERROR).
void HistogramKernel(ImageRef image, ImageRef mask, const int32_t* nbClasses, const float* min,
                     const float* max, Handle histogram, HistogramReport* report, Status* status);

}  // namespace zel
