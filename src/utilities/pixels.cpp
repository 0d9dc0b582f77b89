// Single pixels, and the rows and columns of an image.
#include "utilities/pixels.h"

#include <algorithm>

#include "core/kernels.h"
#include "core/numbers.h"
#include "utilities/array_exchange.h"

namespace zel {
namespace {

template <class T>
void Gather(const void* source, void* destination, int64_t stride, int64_t count) {
  const auto* from = static_cast<const T*>(source);
  auto* to = static_cast<T*>(destination);
  for (int64_t i = 0; i < count; i++) to[i] = from[i * stride];
}

template <class T>
void Scatter(const void* source, void* destination, int64_t stride, int64_t count) {
  const auto* from = static_cast<const T*>(source);
  auto* to = static_cast<T*>(destination);
  for (int64_t i = 0; i < count; i++) to[i * stride] = from[i];
}

void StridedScatter(const void* source, void* destination, int32_t type, int64_t stride,
                    int64_t count) {
  if (type == IMAGE_U8) Scatter<uint8_t>(source, destination, stride, count);
  if (type == IMAGE_I16) Scatter<int16_t>(source, destination, stride, count);
  if (type == IMAGE_SGL) Scatter<float>(source, destination, stride, count);
}

// A row or a column.
struct PixelLine {
  uint8_t* first;
  int64_t pitch;   // bytes from one pixel to the next
  int64_t stride;  // the same in pixels
  int32_t count;
};

// An index outside the image is that of the nearest row or column. An empty image has a line of
// no pixels.
PixelLine PixelLineOf(const Image& image, bool column, int32_t index) {
  if (image.width < 1 || image.height < 1) return {nullptr, 0, 1, 0};
  const PixelGrid grid = PixelGridOf(image);
  int32_t pixelBytes = 0;
  PixelSize(image.type, &pixelBytes);
  if (column) {
    const int32_t x = Clamped(index, 0, image.width - 1);
    return {grid.origin + int64_t{x} * pixelBytes, grid.pitch, image.lineWidth, image.height};
  }
  const int32_t y = Clamped(index, 0, image.height - 1);
  return {grid.Row<uint8_t>(y), pixelBytes, 1, image.width};
}

// Pixels of a column go through a buffer of this many.
constexpr int32_t COLUMN_RUN = 256;
using ColumnBuffer = float[COLUMN_RUN];  // the widest scalar pixel

void GetRowColKernel(ImageRef reference, const int16_t* column, const int32_t* index,
                     const int32_t* arrayType, void* array, int32_t* count, Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  if (!TypeIsScalar(image->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const PixelLine line = PixelLineOf(*image, *column != 0, *index);
  *count = line.count;
  if (line.stride == 1) {
    PixelsToArray(line.first, image->type, line.count, array, *arrayType, 0);
    return;
  }
  ColumnBuffer buffer;
  for (int32_t done = 0; done < line.count; done += COLUMN_RUN) {
    const int32_t run = std::min(COLUMN_RUN, line.count - done);
    StridedGather(line.first + done * line.pitch, buffer, image->type, line.stride, run);
    PixelsToArray(buffer, image->type, run, array, *arrayType, done);
  }
}

void SetRowColKernel(ImageRef reference, const int16_t* column, const int32_t* index,
                     const int32_t* arrayType, const void* array, const int32_t* count,
                     Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  *status = TypeIsScalar(image->type) ? ArrayCountCheck(image->type, *count) : STATUS_BAD_TYPE;
  if (*status != STATUS_OK) return;
  const PixelLine line = PixelLineOf(*image, *column != 0, *index);
  const int32_t written = std::min(line.count, *count);
  if (line.stride == 1) {
    PixelsFromArray(array, *arrayType, 0, image->type, line.first, written);
    return;
  }
  ColumnBuffer buffer;
  for (int32_t done = 0; done < written; done += COLUMN_RUN) {
    const int32_t run = std::min(COLUMN_RUN, written - done);
    PixelsFromArray(array, *arrayType, done, image->type, buffer, run);
    StridedScatter(buffer, line.first + done * line.pitch, image->type, line.stride, run);
  }
}

void GetPixelValueKernel(ImageRef reference, const int32_t* x, const int32_t* y, float* value,
                         Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  if (!TypeIsScalar(image->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  if (image->width < 1 || image->height < 1) {
    *status = STATUS_INTERNAL;
    return;
  }
  const PixelGrid grid = PixelGridOf(*image);
  const int32_t column = Clamped(*x, 0, grid.width - 1);
  const int32_t row = Clamped(*y, 0, grid.height - 1);
  if (image->type == IMAGE_U8) *value = *grid.At<uint8_t>(column, row);
  if (image->type == IMAGE_I16) *value = *grid.At<int16_t>(column, row);
  if (image->type == IMAGE_SGL) *value = *grid.At<float>(column, row);
}

// Unlike reading, which takes the nearest pixel, this leaves points outside the image alone.
void SetPixelValueKernel(ImageRef reference, const int32_t* x, const int32_t* y, const float* value,
                         Status* status) {
  const Image* image = ImageLookup(reference, status);
  if (!image) return;
  if (*x < 0 || *y < 0 || *x >= image->width || *y >= image->height) return;
  if (!TypeIsScalar(image->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const PixelGrid grid = PixelGridOf(*image);
  const auto number = static_cast<double>(*value);
  if (image->type == IMAGE_U8) *grid.At<uint8_t>(*x, *y) = CutLow<uint8_t>(number);
  if (image->type == IMAGE_I16) *grid.At<int16_t>(*x, *y) = CutLow<int16_t>(number);
  if (image->type == IMAGE_SGL) *grid.At<float>(*x, *y) = *value;
}

}  // namespace

Status StridedGather(const void* source, void* destination, int16_t type, int64_t stride,
                     int64_t count) {
  switch (type) {
    case IMAGE_U8:
      Gather<uint8_t>(source, destination, stride, count);
      return STATUS_OK;
    case IMAGE_I16:
      Gather<int16_t>(source, destination, stride, count);
      return STATUS_OK;
    case IMAGE_SGL:
      Gather<float>(source, destination, stride, count);
      return STATUS_OK;
    case IMAGE_RGB:
      Gather<RGBValue>(source, destination, stride, count);
      return STATUS_OK;
    default:
      return STATUS_BAD_LAYOUT_TYPE;
  }
}

}  // namespace zel

int32_t ZEL_GetPixelValue(ImageRef image, int32_t x, int32_t y, float* value) {
  zel::Status status = value ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  if (value) zel::GetPixelValueKernel(image, &x, &y, value, &status);
  return ZEL_ProcessError("ZEL_GetPixelValue", status);
}

int32_t ZEL_SetPixelValue(ImageRef image, int32_t x, int32_t y, float value) {
  zel::Status status = zel::STATUS_OK;
  zel::SetPixelValueKernel(image, &x, &y, &value, &status);
  return ZEL_ProcessError("ZEL_SetPixelValue", status);
}

int32_t ZEL_GetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType, void* array,
                      int32_t* count) {
  zel::Status status = array ? zel::STATUS_OK : zel::STATUS_NULL_POINTER;
  int32_t read = 0;
  if (array) zel::GetRowColKernel(image, &column, &index, &arrayType, array, &read, &status);
  if (status == zel::STATUS_OK && count) *count = read;
  return ZEL_ProcessError("ZEL_GetRowCol", status);
}

int32_t ZEL_SetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType,
                      const void* array, int32_t count) {
  const bool missing = !array && count > 0;
  zel::Status status = missing ? zel::STATUS_NULL_POINTER : zel::STATUS_OK;
  if (!missing) {
    zel::SetRowColKernel(image, &column, &index, &arrayType, array, &count, &status);
  }
  return ZEL_ProcessError("ZEL_SetRowCol", status);
}
