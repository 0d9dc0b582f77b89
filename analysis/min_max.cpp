// The smallest and the largest pixel of a region.
#include "analysis/histogram.h"

namespace zel {
namespace {

// Running extremes of the selected pixels, from the values that stand for "none yet".
template <class T, class Extreme>
void Extremes(const PixelRegion& region, Extreme none, Extreme noneMax, float* min, float* max) {
  Extreme low = none;
  Extreme high = noneMax;
  for (int32_t y = 0; y < region.height; y++) {
    const auto* row = reinterpret_cast<const T*>(region.pixels + y * region.pitch);
    const uint8_t* mask = region.mask ? region.mask + y * region.maskPitch : nullptr;
    for (int32_t x = 0; x < region.width; x++) {
      if (mask && mask[x] == 0) continue;
      if (row[x] < low) low = row[x];
      if (row[x] > high) high = row[x];
    }
  }
  *min = static_cast<float>(low);
  *max = static_cast<float>(high);
}

}  // namespace

void ImageMinMax(const PixelRegion& region, float* min, float* max, Status* status) {
  switch (region.type) {
    case IMAGE_U8:
      return Extremes<uint8_t, uint8_t>(region, 255, 0, min, max);
    case IMAGE_I16:
      return Extremes<int16_t, int32_t>(region, INT32_MAX, INT32_MIN, min, max);
    case IMAGE_SGL:
      return Extremes<float, float>(region, 1e38f, -1e38f, min, max);
    default:
      *status = STATUS_BAD_OPERAND_TYPE;
  }
}

}  // namespace zel
