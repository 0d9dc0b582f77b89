// Rectangles of pixels into callers' arrays, and arrays into images.
#include "utilities/array_exchange.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/heap.h"
#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "core/rectangles.h"
#include "engine/array_convert.h"
#include "engine/point.h"

namespace zel {
namespace {

// The array type whose numbers have the bits of a caller's type and go into pixels unchanged: those
// of the other sign do.
int32_t ArrayTypeOfBits(int32_t arrayType, int32_t imageType) {
  const bool sameBits = (imageType == IMAGE_U8 && arrayType == ARRAY_I8) ||
                        (imageType == IMAGE_I16 && arrayType == ARRAY_U16);
  return sameBits ? NativeArrayType(imageType) : arrayType;
}

// What a rectangle and an image have in common. Each side by itself is limited to the image, and
// then reversed ones are exchanged.
OverlapRect PartOf(const KernelRect& rect, const Image& image) {
  const int32_t x0 = Clamped(rect.left, 0, image.width);
  const int32_t x1 = Clamped(rect.right, 0, image.width);
  const int32_t y0 = Clamped(rect.top, 0, image.height);
  const int32_t y1 = Clamped(rect.bottom, 0, image.height);
  if (x0 == x1 || y0 == y1) return {};
  return {.imageX = std::min(x0, x1),
          .imageY = std::min(y0, y1),
          .maskX = 0,
          .maskY = 0,
          .width = std::abs(x1 - x0),
          .height = std::abs(y1 - y0)};
}

Status ImageToArray(ImageRef reference, const ApiRect& rectangle, int32_t arrayType, void* array,
                    int32_t* width, int32_t* height) {
  if (!array) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  KernelRect rect{};
  RectFromApi(&rectangle, &rect);
  const OverlapRect part = PartOf(rect, *image);
  // An empty part of any image is no failure.
  if (!part.IsEmpty()) {
    if (!TypeIsScalar(image->type)) return STATUS_BAD_TYPE;
    if (ArrayTypeBits(arrayType, nullptr) != 0) {
      ArrayConvertRows(ViewOf(*image).Part(part), NativeArrayType(image->type),
                       ArrayView(array, arrayType, part.width, part.height),
                       ArrayTypeOfBits(arrayType, image->type));
    }
  }
  if (width) *width = part.width;
  if (height) *height = part.height;
  return STATUS_OK;
}

Status ArrayToImage(ImageRef reference, int32_t arrayType, const void* array, int32_t width,
                    int32_t height) {
  if (!array && width > 0 && height > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (!TypeIsScalar(image->type)) return STATUS_BAD_TYPE;
  if (width < 1 && height < 1) return STATUS_DESTINATION_TYPE_DIFFERS;
  status = ImageSetSize(reference, width, height);
  if (status != STATUS_OK) return status;
  const PixelView pixels = ViewOf(*image);
  if (pixels.IsEmpty()) return STATUS_OK;
  if (ArrayTypeBits(arrayType, nullptr) == 0) {
    for (int64_t y = 0; y < pixels.height; y++) {
      std::memset(pixels.Row<void>(y), 0, static_cast<size_t>(pixels.RowBytes()));
    }
    return STATUS_OK;
  }
  ArrayConvertRows(ArrayView(array, arrayType, width, height),
                   ArrayTypeOfBits(arrayType, image->type), pixels, NativeArrayType(image->type));
  return STATUS_OK;
}

}  // namespace

void PixelsFromArray(const void* array, int32_t arrayType, int64_t first, int32_t imageType,
                     void* pixels, int64_t count) {
  if (count < 1) return;
  const int32_t numberBytes = ArrayTypeBits(arrayType, nullptr);
  if (numberBytes == 0) {
    std::memset(pixels, 0, static_cast<size_t>(count * PixelBytesOf(imageType)));
    return;
  }
  const auto* numbers = static_cast<const uint8_t*>(array) + first * numberBytes;
  ArrayConvert(numbers, ArrayTypeOfBits(arrayType, imageType), pixels, NativeArrayType(imageType),
               count);
}

void PixelsToArray(const void* pixels, int32_t imageType, int64_t count, void* array,
                   int32_t arrayType, int64_t first) {
  auto* numbers = static_cast<uint8_t*>(array) + first * ArrayTypeBits(arrayType, nullptr);
  ArrayConvert(pixels, NativeArrayType(imageType), numbers, ArrayTypeOfBits(arrayType, imageType),
               count);
}

Status ArrayCountCheck(int32_t imageType, int64_t count) {
  const int32_t pixelBytes = std::max(PixelBytesOf(imageType), 1);
  const int64_t limit = static_cast<int64_t>(HEAP_BLOCK_LIMIT) / pixelBytes;
  return count > limit ? STATUS_MEMORY_FULL : STATUS_OK;
}

}  // namespace zel

int32_t ZEL_ImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height, int32_t width,
                         int32_t arrayType, void* array, int32_t* outWidth, int32_t* outHeight) {
  const ApiRect rect{top, left, height, width};
  return ZEL_ProcessError("ZEL_ImageToArray",
                          zel::ImageToArray(image, rect, arrayType, array, outWidth, outHeight));
}

int32_t ZEL_ArrayToImage(ImageRef image, int32_t arrayType, const void* array, int32_t width,
                         int32_t height) {
  return ZEL_ProcessError("ZEL_ArrayToImage",
                          zel::ArrayToImage(image, arrayType, array, width, height));
}
