// Complex images and planes of them as whole arrays, and the complex constant 1.
#include <algorithm>

#include "core/pixel_types.h"
#include "core/rectangles.h"
#include "frequency/complex_planes.h"
#include "frequency/spectra.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

// An array as rows of pixels of a type. What is only read may be constant.
PixelView ArrayOfPixels(const void* array, int16_t type, int32_t width, int32_t height) {
  const auto bytes = static_cast<int16_t>(PixelBytesOf(type));
  PixelView view;
  view.origin = static_cast<uint8_t*>(const_cast<void*>(array));
  view.pitch = int64_t{width} * bytes;
  view.width = width;
  view.height = height;
  view.type = type;
  view.pixelBytes = bytes;
  return view;
}

void CopyRows(const PixelView& from, const PixelView& to) {
  const size_t bytes = static_cast<size_t>(from.RowBytes());
  for (int64_t y = 0; y < from.height; y++) {
    std::copy_n(from.Row<const uint8_t>(y), bytes, to.Row<uint8_t>(y));
  }
}

Status ArrayToComplexImage(ImageRef reference, const ComplexValue* array, int32_t width,
                           int32_t height) {
  if (!array && width > 0 && height > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = LookupOfTypes(reference, &TypeIsComplex, STATUS_BAD_TYPE, &image);
  if (status == STATUS_OK) status = ImageLayoutSize(image, width, height, true);
  if (status != STATUS_OK) return status;
  const PixelView pixels = ViewOf(*image);
  CopyRows(ArrayOfPixels(array, IMAGE_COMPLEX, pixels.width, pixels.height), pixels);
  return STATUS_OK;
}

Status ArrayToComplexPlane(ImageRef reference, int32_t plane, const float* array, int32_t width,
                           int32_t height) {
  if (!array && width > 0 && height > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = LookupOfTypes(reference, &TypeIsComplex, STATUS_BAD_TYPE, &image);
  if (status == STATUS_OK) status = SizeForPlane(image, width, height);
  if (status != STATUS_OK) return status;
  const PixelView pixels = ViewOf(*image);
  PlaneReplace(ArrayOfPixels(array, IMAGE_SGL, pixels.width, pixels.height), plane, pixels);
  return STATUS_OK;
}

// The rectangle that leaves an image for an array, and where the call tells its size.
struct ArrayRegion {
  PlacedRect rect;
  int32_t* columns;
  int32_t* rows;
};

// The pixels of the rectangle. Kept: a side of it that lies outside the image is the image's.
Status RegionSettle(ImageRef reference, const ArrayRegion& region, PixelView* pixels) {
  Image* image = nullptr;
  const Status status = LookupOfTypes(reference, &TypeIsComplex, STATUS_BAD_TYPE, &image);
  if (status != STATUS_OK) return status;
  PlacedRect clipped{};
  RectClip({0, 0, image->width, image->height}, region.rect, &clipped);
  const int32_t columns = std::max(clipped.width, 0);
  const int32_t rows = std::max(clipped.height, 0);
  if (region.columns) *region.columns = columns;
  if (region.rows) *region.rows = rows;
  *pixels = columns > 0 && rows > 0
                ? ViewOf(*image).Part({clipped.x, clipped.y, 0, 0, columns, rows})
                : PixelView{};
  return STATUS_OK;
}

Status ComplexImageToArray(ImageRef image, const ArrayRegion& region, ComplexValue* array) {
  if (!array) return STATUS_NULL_POINTER;
  PixelView pixels;
  const Status status = RegionSettle(image, region, &pixels);
  if (status != STATUS_OK || pixels.IsEmpty()) return status;
  CopyRows(pixels, ArrayOfPixels(array, IMAGE_COMPLEX, pixels.width, pixels.height));
  return STATUS_OK;
}

Status ComplexPlaneToArray(ImageRef image, int32_t plane, const ArrayRegion& region, float* array) {
  if (!array) return STATUS_NULL_POINTER;
  PixelView pixels;
  const Status status = RegionSettle(image, region, &pixels);
  if (status != STATUS_OK || pixels.IsEmpty()) return status;
  PlaneExtract(pixels, plane, ArrayOfPixels(array, IMAGE_SGL, pixels.width, pixels.height));
  return STATUS_OK;
}

constexpr ComplexValue COMPLEX_ONE = {1.0f, 0.0f};

}  // namespace
}  // namespace zel

int32_t ZEL_ArrayToComplexImage(ImageRef image, const ComplexValue* array, int32_t width,
                                int32_t height) {
  return ZEL_ProcessError("ZEL_ArrayToComplexImage",
                          zel::ArrayToComplexImage(image, array, width, height));
}

int32_t ZEL_ArrayToComplexPlane(ImageRef image, int32_t plane, const float* array, int32_t width,
                                int32_t height) {
  return ZEL_ProcessError("ZEL_ArrayToComplexPlane",
                          zel::ArrayToComplexPlane(image, plane, array, width, height));
}

int32_t ZEL_ComplexImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height,
                                int32_t width, ComplexValue* array, int32_t* columns,
                                int32_t* rows) {
  const zel::ArrayRegion region{{left, top, width, height}, columns, rows};
  return ZEL_ProcessError("ZEL_ComplexImageToArray",
                          zel::ComplexImageToArray(image, region, array));
}

int32_t ZEL_ComplexPlaneToArray(ImageRef image, int32_t plane, int32_t top, int32_t left,
                                int32_t height, int32_t width, float* array, int32_t* columns,
                                int32_t* rows) {
  const zel::ArrayRegion region{{left, top, width, height}, columns, rows};
  return ZEL_ProcessError("ZEL_ComplexPlaneToArray",
                          zel::ComplexPlaneToArray(image, plane, region, array));
}

const ComplexValue* ZEL_GetCpxConstant1Ptr() {
  return &zel::COMPLEX_ONE;
}
