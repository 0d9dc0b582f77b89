// The centre of energy of an image.
#include "statistics/histogram.h"
#include "statistics/sums_rows.h"
#include "core/kernels.h"

namespace zel {
namespace {

template <class T>
void MomentsInOrder(const void* row, const uint8_t* mask, int32_t width, int32_t y,
                    MomentSums* sums) {
  const auto* pixels = static_cast<const T*>(row);
  MomentSums result = *sums;
  for (int32_t x = 0; x < width; x++) {
    if (mask && mask[x] == 0) continue;
    const auto value = static_cast<double>(pixels[x]);
    result.sum += value;
    result.x += x * value;
    result.y += y * value;
  }
  *sums = result;
}

// Whole numbers may be summed in any order as long as no sum of theirs can be rounded.
MomentRow MomentRowFor(const PixelRegion& region) {
  const double width = region.width;
  const double height = region.height;
  const double limit = EXACT_SUM_LIMIT / (width * height * (width > height ? width : height));
  switch (region.type) {
    case IMAGE_U8:
      return limit > UINT8_MAX ? sumsRows().moments[IMAGE_U8] : &MomentsInOrder<uint8_t>;
    case IMAGE_I16:
      return limit > -INT16_MIN ? sumsRows().moments[IMAGE_I16] : &MomentsInOrder<int16_t>;
    default:
      return &MomentsInOrder<float>;
  }
}

void CentroidKernel(ImageRef image, ImageRef mask, float* x, float* y, Status* status) {
  PixelRegion region{};
  PixelRegionOf(image, mask, &region, status);
  if (*status != STATUS_OK) return;
  MomentSums sums;
  if (TypeIsScalar(region.type) && region.pixels) {
    const MomentRow addRow = MomentRowFor(region);
    for (int32_t row = 0; row < region.height; row++) {
      addRow(region.pixels + row * region.pitch,
             region.mask ? region.mask + row * region.maskPitch : nullptr, region.width, row,
             &sums);
    }
  }
  // Without any energy 0 / 0: not a number.
  *x = static_cast<float>(sums.x / sums.sum);
  *y = static_cast<float>(sums.y / sums.sum);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Centroid(ImageRef image, ImageRef mask, float* x, float* y) {
  zel::Status status = x && y ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  if (status == zel::STATUS_OK) zel::CentroidKernel(image, mask, x, y, &status);
  return ZEL_ProcessError("ZEL_Centroid", status);
}
