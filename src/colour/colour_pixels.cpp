// Colour pixels one by one, along lines, and as whole arrays.
#include <algorithm>
#include <utility>

#include "core/images.h"
#include "core/numbers.h"
#include "core/rectangles.h"
#include "engine/array_convert.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// Another type than RGB is no failure here: nothing is read.
Status GetColorPixel(ImageRef reference, int32_t x, int32_t y, RGBValue* value) {
  if (!value) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK || image->type != IMAGE_RGB) return status;
  const PixelView view = ViewOf(*image);
  if (view.IsEmpty()) return STATUS_OK;
  *value = *view.At<const RGBValue>(Clamped(x, 0, view.width - 1), Clamped(y, 0, view.height - 1));
  return STATUS_OK;
}

// Unlike reading, which takes the nearest pixel, this leaves points outside the image alone.
Status SetColorPixel(ImageRef reference, int32_t x, int32_t y, RGBValue value) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK || image->type != IMAGE_RGB) return status;
  if (x < 0 || y < 0 || x >= image->width || y >= image->height) return STATUS_OK;
  *ViewOf(*image).At<RGBValue>(x, y) = value;
  return STATUS_OK;
}

// Calls visit(pixel, index) for the first `count` pixels of a clipped line.
template <class Visit>
void LineVisit(const Image& image, const KernelLine& line, int64_t count, const Visit& visit) {
  LinePixels<RGBValue> pixels(ViewOf(image), line);
  for (int64_t i = 0; i < count; i++) visit(*pixels.Take(), i);
}

Status GetColorLine(ImageRef reference, KernelLine line, RGBValue* array, int32_t* count) {
  if (!array) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  int64_t points = 0;
  if (LineClipToSize(image->width, image->height, &line)) points = LineSteps(line).points();
  if (image->type == IMAGE_RGB && points > 0) {
    LineVisit(*image, line, points, [array](RGBValue pixel, int64_t i) { array[i] = pixel; });
  }
  if (count) *count = static_cast<int32_t>(points);
  return STATUS_OK;
}

Status SetColorLine(ImageRef reference, KernelLine line, const RGBValue* array, int32_t length) {
  if (!array && length > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK || image->type != IMAGE_RGB) return status;
  if (!LineClipToSize(image->width, image->height, &line)) return STATUS_OK;
  const int64_t written = std::min<int64_t>(LineSteps(line).points(), length);
  LineVisit(*image, line, written, [array](RGBValue& pixel, int64_t i) { pixel = array[i]; });
  return STATUS_OK;
}

// Two bounds limited to 0..size and put in order: the first pixel, and how many there are.
std::pair<int32_t, int32_t> LimitedSpan(int32_t from, int32_t to, int32_t size) {
  const int32_t a = Clamped(from, 0, size);
  const int32_t b = Clamped(to, 0, size);
  return {std::min(a, b), std::max(a, b) - std::min(a, b)};
}

Status ColorImageToArray(ImageRef reference, const ApiRect& rectangle, RGBValue* array,
                         int32_t* columns, int32_t* rows) {
  if (!array) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  KernelRect rect{};
  RectFromApi(&rectangle, &rect);
  const auto [x, width] = LimitedSpan(rect.left, rect.right, image->width);
  const auto [y, height] = LimitedSpan(rect.top, rect.bottom, image->height);
  if (width > 0 && height > 0) {
    const OverlapRect part{x, y, 0, 0, width, height};
    ArrayConvertRows(ViewOf(*image).Part(part), ARRAY_U32,
                     ArrayView(array, ARRAY_U32, width, height), ARRAY_U32);
  }
  if (columns) *columns = width;
  if (rows) *rows = height;
  return STATUS_OK;
}

Status ArrayToColorImage(ImageRef reference, const RGBValue* array, int32_t width, int32_t height) {
  if (!array && width > 0 && height > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_RGB) return STATUS_BAD_TYPE;
  status = ImageSetSize(reference, width, height);
  const PixelView pixels = ViewOf(*image);
  if (status != STATUS_OK || pixels.IsEmpty()) return status;
  ArrayConvertRows(ArrayView(array, ARRAY_U32, width, height), ARRAY_U32, pixels, ARRAY_U32);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_GetColorPixel(ImageRef image, int32_t x, int32_t y, RGBValue* value) {
  return ZEL_ProcessError("ZEL_GetColorPixel", zel::GetColorPixel(image, x, y, value));
}

int32_t ZEL_SetColorPixel(ImageRef image, int32_t x, int32_t y, RGBValue value) {
  return ZEL_ProcessError("ZEL_SetColorPixel", zel::SetColorPixel(image, x, y, value));
}

int32_t ZEL_GetColorLine(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                         RGBValue* array, int32_t* count) {
  const zel::KernelLine line{x1, y1, x2, y2};
  return ZEL_ProcessError("ZEL_GetColorLine", zel::GetColorLine(image, line, array, count));
}

int32_t ZEL_SetColorLine(ImageRef image, int32_t x1, int32_t y1, int32_t x2, int32_t y2,
                         const RGBValue* array, int32_t length) {
  const zel::KernelLine line{x1, y1, x2, y2};
  return ZEL_ProcessError("ZEL_SetColorLine", zel::SetColorLine(image, line, array, length));
}

int32_t ZEL_ColorImageToArray(ImageRef image, int32_t top, int32_t left, int32_t height,
                              int32_t width, RGBValue* array, int32_t* columns, int32_t* rows) {
  const ApiRect rect{top, left, height, width};
  return ZEL_ProcessError("ZEL_ColorImageToArray",
                          zel::ColorImageToArray(image, rect, array, columns, rows));
}

int32_t ZEL_ArrayToColorImage(ImageRef image, const RGBValue* array, int32_t width,
                              int32_t height) {
  return ZEL_ProcessError("ZEL_ArrayToColorImage",
                          zel::ArrayToColorImage(image, array, width, height));
}
