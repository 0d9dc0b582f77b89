// The smallest and the largest pixel of a region.
#include "statistics/min_max.h"

#include "statistics/sums_rows.h"

namespace zel {

Status ImageMinMax(const Region& region, float* min, float* max) {
  const PixelView& view = region.view;
  if (!TypeIsScalar(view.type)) return STATUS_BAD_OPERAND_TYPE;
  // What stands for "none": the ends of the type, of 32 bits for words.
  constexpr float lowest[] = {LimitsOf(IMAGE_U8).high, 0x1p31f, EXTREME_NONE};
  constexpr float highest[] = {LimitsOf(IMAGE_U8).low, -0x1p31f, -EXTREME_NONE};
  float low = lowest[view.type];
  float high = highest[view.type];
  const ExtremesRow extremesOf = sumsRows().extremes[view.type];
  for (int32_t y = 0; y < view.height; y++) {
    extremesOf(view.Row<void>(y), region.mask.Row(y), view.width, &low, &high);
  }
  *min = low;
  *max = high;
  return STATUS_OK;
}

}  // namespace zel
