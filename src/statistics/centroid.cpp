// The centre of energy of an image.
#include "engine/operands.h"
#include "statistics/sums_rows.h"

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
MomentRow MomentRowFor(const PixelView& view) {
  const double width = view.width;
  const double height = view.height;
  const double limit = EXACT_SUM_LIMIT / (width * height * (width > height ? width : height));
  switch (view.type) {
    case IMAGE_U8:
      return limit > LimitsOf(IMAGE_U8).high ? sumsRows().moments[IMAGE_U8]
                                             : &MomentsInOrder<uint8_t>;
    case IMAGE_I16:
      return limit > -LimitsOf(IMAGE_I16).low ? sumsRows().moments[IMAGE_I16]
                                              : &MomentsInOrder<int16_t>;
    default:
      return &MomentsInOrder<float>;
  }
}

Status Centroid(ImageRef image, ImageRef mask, float* x, float* y) {
  if (!x || !y) return STATUS_NULL_POINTER;
  Region region{};
  const Status status = RegionOf(image, mask, &region);
  if (status != STATUS_OK) return status;
  MomentSums sums;
  const PixelView& view = region.view;
  if (TypeIsScalar(view.type) && !view.IsEmpty()) {
    const MomentRow addRow = MomentRowFor(view);
    for (int32_t row = 0; row < view.height; row++) {
      addRow(view.Row<void>(row), region.mask.Row(row), view.width, row, &sums);
    }
  }
  // Without any energy 0 / 0: not a number.
  *x = static_cast<float>(sums.x / sums.sum);
  *y = static_cast<float>(sums.y / sums.sum);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Centroid(ImageRef image, ImageRef mask, float* x, float* y) {
  return ZEL_ProcessError("ZEL_Centroid", zel::Centroid(image, mask, x, y));
}
