// Images filled with one value, whole or under a mask, and images cleared.
#include <cstring>

#include "core/numbers.h"
#include "engine/operands.h"
#include "utilities/fill_rows.h"

namespace zel {
namespace {

// One value for each image type.
struct FillValue {
  float scalar;
  RGBValue colour;
  float complex[2];  // real, imaginary
};

struct alignas(8) Pixel {
  uint8_t bytes[8];  // those of the image type, at the front
};

template <class T>
Pixel PixelWith(const T& value) {
  Pixel pixel{};
  static_assert(sizeof(value) <= sizeof(pixel));
  std::memcpy(&pixel, &value, sizeof(value));
  return pixel;
}

Pixel PixelOf(int32_t type, const FillValue& value) {
  const auto number = static_cast<double>(value.scalar);
  switch (type) {
    case IMAGE_U8:
      return PixelWith(CutLow<uint8_t>(number));
    case IMAGE_I16:
      return PixelWith(CutLow<int16_t>(number));
    case IMAGE_SGL:
      return PixelWith(value.scalar);
    case IMAGE_COMPLEX:
      return PixelWith(value.complex);
    default:
      return PixelWith(value.colour);
  }
}

Status Fill(ImageRef reference, ImageRef mask, const FillValue& value) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (!TypeHasPixels(image->type)) return STATUS_BAD_TYPE;
  const Pixel pixel = PixelOf(image->type, value);
  if (mask == 0 || mask == reference) return ImageFillAll(reference, &pixel);

  Region region{};
  status = RegionOf(*image, mask, &region);
  if (status != STATUS_OK || region.view.IsEmpty()) return status;
  const PixelView& view = region.view;
  const MaskedFillRow fillRow = fillRows().byType[view.type];
  for (int32_t y = 0; y < view.height; y++) {
    fillRow(view.Row<void>(y), region.mask.Row(y), &pixel, view.width);
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_FillImage(ImageRef image, ImageRef mask, float value, uint32_t rgbValue,
                      float complexReal, float complexImaginary) {
  const zel::FillValue values{value, rgbValue, {complexReal, complexImaginary}};
  return ZEL_ProcessError("ZEL_FillImage", zel::Fill(image, mask, values));
}

int32_t ZEL_ClearPixels(ImageRef image) {
  return ZEL_ProcessError("ZEL_ClearPixels", zel::ImageClearAll(image));
}
