// The smallest and the largest pixel of a region.
#include "statistics/histogram.h"
#include "statistics/sums_rows.h"
#include "core/kernels.h"

namespace zel {

void ImageMinMax(const PixelRegion& region, float* min, float* max, Status* status) {
  if (!TypeIsScalar(region.type)) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return;
  }
  // What stands for "none": the ends of the type, of 32 bits for words.
  constexpr float lowest[] = {UINT8_MAX, 0x1p31f, EXTREME_NONE};
  constexpr float highest[] = {0, -0x1p31f, -EXTREME_NONE};
  float low = lowest[region.type];
  float high = highest[region.type];
  const ExtremesRow extremesOf = sumsRows().extremes[region.type];
  for (int32_t y = 0; y < region.height; y++) {
    extremesOf(region.pixels + y * region.pitch,
               region.mask ? region.mask + y * region.maskPitch : nullptr, region.width, &low,
               &high);
  }
  *min = low;
  *max = high;
}

}  // namespace zel
