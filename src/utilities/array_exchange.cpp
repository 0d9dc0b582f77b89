// Rectangles of pixels into callers' arrays, and arrays into images.
#include "utilities/array_exchange.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "engine/array_convert.h"
#include "core/heap.h"
#include "core/kernels.h"
#include "core/numbers.h"

namespace zel {
namespace {

// The array type whose numbers have the bits of a caller's type and go into pixels unchanged: those
// of the other sign do.
int32_t ArrayTypeOfBits(int32_t arrayType, int32_t imageType) {
  const bool sameBits = (imageType == IMAGE_U8 && arrayType == ARRAY_I8) ||
                        (imageType == IMAGE_I16 && arrayType == ARRAY_U16);
  return sameBits ? NativeArrayType(imageType) : arrayType;
}

int64_t PixelBytes(int32_t imageType) {
  int32_t bytes = 0;
  PixelSize(imageType, &bytes);
  return bytes;
}

// Rows of pixels, joined into one where nothing lies between them.
struct PixelRuns {
  int64_t count;
  int64_t length;  // pixels
};

PixelRuns RunsOf(int32_t width, int32_t height, int64_t pitch, int64_t pixelBytes) {
  if (width * pixelBytes == pitch) return {1, int64_t{width} * height};
  return {height, width};
}

// What a rectangle and an array have in common.
struct ArrayPart {
  int32_t left, top, width, height;  // width and height 0 for nothing
};

// Each side by itself is limited to the image, and then reversed ones are exchanged.
ArrayPart PartOf(const KernelRect& rect, const Image& image) {
  const int32_t x0 = Clamped(rect.left, 0, image.width);
  const int32_t x1 = Clamped(rect.right, 0, image.width);
  const int32_t y0 = Clamped(rect.top, 0, image.height);
  const int32_t y1 = Clamped(rect.bottom, 0, image.height);
  if (x0 == x1 || y0 == y1) return {0, 0, 0, 0};
  return {std::min(x0, x1), std::min(y0, y1), std::abs(x1 - x0), std::abs(y1 - y0)};
}

void ImageToArrayKernel(ImageRef reference, const KernelRect* rect, const int32_t* arrayType,
                        void* array, int32_t* width, int32_t* height, Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  const ArrayPart part = PartOf(*rect, *image);
  // An empty part of any image is no failure.
  if (part.width > 0 && !TypeIsScalar(image->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  if (part.width > 0) {
    const PixelGrid grid = PixelGridOf(*image);
    const int64_t pixelBytes = PixelBytes(image->type);
    const uint8_t* first = grid.Row<uint8_t>(part.top) + part.left * pixelBytes;
    const PixelRuns runs = RunsOf(part.width, part.height, grid.pitch, pixelBytes);
    for (int64_t y = 0; y < runs.count; y++) {
      PixelsToArray(first + y * grid.pitch, image->type, runs.length, array, *arrayType,
                    y * runs.length);
    }
  }
  *width = part.width;
  *height = part.height;
}

void ArrayToImageKernel(ImageRef reference, const int32_t* arrayType, const void* array,
                        const int32_t* width, const int32_t* height, Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  if (!TypeIsScalar(image->type)) {
    *status = STATUS_BAD_TYPE;
  } else if (*width < 1 && *height < 1) {
    *status = STATUS_DESTINATION_TYPE_DIFFERS;
  } else {
    *status = ImageSetSize(reference, *width, *height);
  }
  if (*status != STATUS_OK) return;
  const PixelGrid grid = PixelGridOf(*image);
  const PixelRuns runs = RunsOf(grid.width, grid.height, grid.pitch, PixelBytes(image->type));
  for (int64_t y = 0; y < runs.count; y++) {
    PixelsFromArray(array, *arrayType, y * runs.length, image->type, grid.Row<uint8_t>(y),
                    runs.length);
  }
}

}  // namespace

void PixelsFromArray(const void* array, int32_t arrayType, int64_t first, int32_t imageType,
                     void* pixels, int64_t count) {
  if (count < 1) return;
  const int32_t numberBytes = ArrayTypeBits(arrayType, nullptr);
  if (numberBytes == 0) {
    std::memset(pixels, 0, static_cast<size_t>(count * PixelBytes(imageType)));
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
  const int64_t limit = static_cast<int64_t>(HEAP_BLOCK_LIMIT) / PixelBytes(imageType);
  return count > limit ? STATUS_MEMORY_FULL : STATUS_OK;
}

}  // namespace zel

int32_t ZEL_ImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height, int32_t width,
                         int32_t arrayType, void* array, int32_t* outWidth, int32_t* outHeight) {
  zel::Status status = array ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  if (status == zel::STATUS_OK) {
    const ApiRect given{top, left, height, width};
    zel::KernelRect rect{};
    zel::RectFromApi(&given, &rect);
    int32_t columns = 0;
    int32_t rows = 0;
    zel::ImageToArrayKernel(image, &rect, &arrayType, array, &columns, &rows, &status);
    if (status == zel::STATUS_OK && outWidth) *outWidth = columns;
    if (status == zel::STATUS_OK && outHeight) *outHeight = rows;
  }
  return ZEL_ProcessError("ZEL_ImageToArray", status);
}

int32_t ZEL_ArrayToImage(ImageRef image, int32_t arrayType, const void* array, int32_t width,
                         int32_t height) {
  const bool missing = !array && width > 0 && height > 0;
  zel::Status status = missing ? zel::STATUS_NULL_POINTER : zel::STATUS_OK;
  if (!missing) zel::ArrayToImageKernel(image, &arrayType, array, &width, &height, &status);
  return ZEL_ProcessError("ZEL_ArrayToImage", status);
}
