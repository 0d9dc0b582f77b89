// Images filled with one value, whole or under a mask, and images cleared.
#include <cstring>

#include "core/kernels.h"
#include "core/numbers.h"
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

void FillKernel(ImageRef reference, ImageRef mask, const FillValue* value, Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  if (!TypeHasPixels(image->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const Pixel pixel = PixelOf(image->type, *value);
  if (mask == 0 || mask == reference) {
    *status = ImageFillAll(reference, &pixel);
    return;
  }
  PlacedMask placed{};
  MaskPlace(reference, mask, &placed, status);
  if (*status != STATUS_OK || placed.IsEmpty()) return;

  const OverlapRect& overlap = placed.overlap;
  const PixelGrid grid = PixelGridOf(*image);
  int32_t pixelBytes = 0;
  PixelSize(image->type, &pixelBytes);
  const MaskedFillRow fillRow = fillRows().byType[image->type];
  for (int64_t y = 0; y < overlap.height; y++) {
    uint8_t* row = grid.Row<uint8_t>(overlap.imageY + y) + int64_t{overlap.imageX} * pixelBytes;
    fillRow(row, placed.pixels + y * placed.pitch, &pixel, overlap.width);
  }
}

}  // namespace
}  // namespace zel

int32_t ZEL_FillImage(ImageRef image, ImageRef mask, float value, uint32_t rgbValue,
                      float complexReal, float complexImaginary) {
  const zel::FillValue values{value, rgbValue, {complexReal, complexImaginary}};
  zel::Status status = zel::STATUS_OK;
  zel::FillKernel(image, mask, &values, &status);
  return ZEL_ProcessError("ZEL_FillImage", status);
}

int32_t ZEL_ClearPixels(ImageRef image) {
  return ZEL_ProcessError("ZEL_ClearPixels", zel::ImageClearAll(image));
}
