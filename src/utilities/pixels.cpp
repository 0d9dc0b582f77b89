// Single pixels, and the rows and columns of an image.
#include "utilities/pixels.h"

#include <algorithm>

#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
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
  const PixelView view = ViewOf(image);
  if (view.IsEmpty()) return {nullptr, 0, 1, 0};
  if (column) {
    const int32_t x = Clamped(index, 0, view.width - 1);
    return {view.Columns(x, x + 1).origin, view.pitch, image.lineWidth, view.height};
  }
  const int32_t y = Clamped(index, 0, view.height - 1);
  return {view.Row<uint8_t>(y), view.pixelBytes, 1, view.width};
}

// Pixels of a column go through a buffer of this many.
constexpr int32_t COLUMN_RUN = 256;
using ColumnBuffer = float[COLUMN_RUN];  // the widest scalar pixel

Status GetRowCol(ImageRef reference, bool column, int32_t index, int32_t arrayType, void* array,
                 int32_t* count) {
  if (!array) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (!TypeIsScalar(image->type)) return STATUS_BAD_TYPE;
  const PixelLine line = PixelLineOf(*image, column, index);
  if (line.stride == 1) {
    PixelsToArray(line.first, image->type, line.count, array, arrayType, 0);
  } else {
    ColumnBuffer buffer;
    for (int32_t done = 0; done < line.count; done += COLUMN_RUN) {
      const int32_t run = std::min(COLUMN_RUN, line.count - done);
      StridedGather(line.first + done * line.pitch, buffer, image->type, line.stride, run);
      PixelsToArray(buffer, image->type, run, array, arrayType, done);
    }
  }
  if (count) *count = line.count;
  return STATUS_OK;
}

Status SetRowCol(ImageRef reference, bool column, int32_t index, int32_t arrayType,
                 const void* array, int32_t count) {
  if (!array && count > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  status = TypeIsScalar(image->type) ? ArrayCountCheck(image->type, count) : STATUS_BAD_TYPE;
  if (status != STATUS_OK) return status;
  const PixelLine line = PixelLineOf(*image, column, index);
  const int32_t written = std::min(line.count, count);
  if (line.stride == 1) {
    PixelsFromArray(array, arrayType, 0, image->type, line.first, written);
    return STATUS_OK;
  }
  ColumnBuffer buffer;
  for (int32_t done = 0; done < written; done += COLUMN_RUN) {
    const int32_t run = std::min(COLUMN_RUN, written - done);
    PixelsFromArray(array, arrayType, done, image->type, buffer, run);
    StridedScatter(buffer, line.first + done * line.pitch, image->type, line.stride, run);
  }
  return STATUS_OK;
}

Status GetPixelValue(ImageRef reference, int32_t x, int32_t y, float* value) {
  if (!value) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (!TypeIsScalar(image->type)) return STATUS_BAD_TYPE;
  const PixelView view = ViewOf(*image);
  if (view.IsEmpty()) return STATUS_INTERNAL;
  const int32_t column = Clamped(x, 0, view.width - 1);
  const int32_t row = Clamped(y, 0, view.height - 1);
  if (view.type == IMAGE_U8) *value = *view.At<uint8_t>(column, row);
  if (view.type == IMAGE_I16) *value = *view.At<int16_t>(column, row);
  if (view.type == IMAGE_SGL) *value = *view.At<float>(column, row);
  return STATUS_OK;
}

// Unlike reading, which takes the nearest pixel, this leaves points outside the image alone.
Status SetPixelValue(ImageRef reference, int32_t x, int32_t y, float value) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (x < 0 || y < 0 || x >= image->width || y >= image->height) return STATUS_OK;
  if (!TypeIsScalar(image->type)) return STATUS_BAD_TYPE;
  const PixelView view = ViewOf(*image);
  const auto number = static_cast<double>(value);
  if (view.type == IMAGE_U8) *view.At<uint8_t>(x, y) = CutLow<uint8_t>(number);
  if (view.type == IMAGE_I16) *view.At<int16_t>(x, y) = CutLow<int16_t>(number);
  if (view.type == IMAGE_SGL) *view.At<float>(x, y) = value;
  return STATUS_OK;
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
  return ZEL_ProcessError("ZEL_GetPixelValue", zel::GetPixelValue(image, x, y, value));
}

int32_t ZEL_SetPixelValue(ImageRef image, int32_t x, int32_t y, float value) {
  return ZEL_ProcessError("ZEL_SetPixelValue", zel::SetPixelValue(image, x, y, value));
}

int32_t ZEL_GetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType, void* array,
                      int32_t* count) {
  return ZEL_ProcessError("ZEL_GetRowCol",
                          zel::GetRowCol(image, column != 0, index, arrayType, array, count));
}

int32_t ZEL_SetRowCol(ImageRef image, int16_t column, int32_t index, int32_t arrayType,
                      const void* array, int32_t count) {
  return ZEL_ProcessError("ZEL_SetRowCol",
                          zel::SetRowCol(image, column != 0, index, arrayType, array, count));
}
