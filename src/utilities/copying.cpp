// Blocks of pixels moved from image to image: whole, repeated, thinned out, pasted.
#include "utilities/copying.h"

#include <algorithm>
#include <cstring>

#include "core/numbers.h"
#include "engine/bands.h"
#include "engine/operands.h"
#include "utilities/copying_rows.h"

namespace zel {

ClippedRect RectOn(const Image& image, const ApiRect& rect) {
  KernelRect sides{};
  RectFromApi(&rect, &sides);
  const int32_t left = std::clamp(sides.left, 0, image.width);
  const int32_t top = std::clamp(sides.top, 0, image.height);
  // Sides before the image give a negative size.
  const int64_t width = int64_t{std::min(sides.right, image.width)} - left;
  const int64_t height = int64_t{std::min(sides.bottom, image.height)} - top;
  return {left, top, Clamped(width, 0, INT32_MAX), Clamped(height, 0, INT32_MAX)};
}

namespace {

// How often a pixel is repeated, or how far the next one is, in both directions.
struct Factors {
  int32_t x, y;

  Factors AtLeastOne() const { return {std::max(x, 1), std::max(y, 1)}; }
};

PixelView RectOf(const PixelView& view, const ClippedRect& rect) {
  return view.Rows(rect.top, rect.top + rect.height).Columns(rect.left, rect.left + rect.width);
}

void RowCopy(const void* from, const PixelView& to, int64_t y) {
  std::memcpy(to.Row<void>(y), from, static_cast<size_t>(to.RowBytes()));
}

Status Expand(ImageRef source, ImageRef destination, const ApiRect& rect, Factors anyFactors) {
  Operands operands;
  operands.Source(source, &TypeHasPixels);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  const Factors factors = anyFactors.AtLeastOne();
  const ClippedRect part = RectOn(operands.source(), rect);
  operands.WriteSized(int64_t{part.width} * factors.x, int64_t{part.height} * factors.y);
  if (operands.HasFailed()) return operands.status();
  operands.Written();
  if (part.IsEmpty()) return STATUS_OK;

  const PixelView from = RectOf(operands.From(), part);
  const PixelView to = operands.To();
  const RepeatRow repeat = copyingRows().repeat.For(from.pixelBytes);
  BandsRun({.units = from.height, .bytes = from.Bytes() + to.Bytes()}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      const int64_t first = y * factors.y;
      if (factors.x == 1) {
        RowCopy(from.Row<void>(y), to, first);
      } else {
        repeat(from.Row<void>(y), to.Row<void>(first), from.width, factors.x);
      }
      for (int64_t k = 1; k < factors.y; k++) RowCopy(to.Row<void>(first), to, first + k);
    }
  });
  return STATUS_OK;
}

bool TypeCanBeThinned(int32_t type) {
  return TypeIsScalar(type) || type == IMAGE_RGB;
}

int64_t CeilDivide(int64_t number, int64_t by) {
  return (number + by - 1) / by;
}

Status Extract(ImageRef source, ImageRef destination, const ApiRect& rect, Factors anyFactors) {
  Operands operands;
  operands.Source(source, &TypeCanBeThinned, STATUS_BAD_LAYOUT_TYPE);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  const Factors factors = anyFactors.AtLeastOne();
  const ClippedRect part = RectOn(operands.source(), rect);
  operands.WriteSized(CeilDivide(part.width, factors.x), CeilDivide(part.height, factors.y));
  if (operands.HasFailed()) return operands.status();
  operands.Written();
  if (part.IsEmpty()) return STATUS_OK;

  const PixelView from = RectOf(operands.From(), part);
  const PixelView to = operands.To();
  const SkipRow skip = copyingRows().skip.For(from.pixelBytes);
  BandsRun({.units = to.height, .bytes = (1 + int64_t{factors.x}) * to.Bytes()},
           [&](const Band& band) {
             for (int64_t y = band.begin; y < band.end; y++) {
               const void* row = from.Row<void>(y * factors.y);
               if (factors.x == 1) {
                 RowCopy(row, to, y);
               } else {
                 skip(row, to.Row<void>(y), to.width, factors.x);
               }
             }
           });
  return STATUS_OK;
}

Status ImagePaste(ImageRef source, ImageRef destination, int32_t x, int32_t y) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK) return status;
  Image* to = from;
  if (destination != 0 && destination != source) {
    status = ImageLookup(destination, &to);
    if (status != STATUS_OK) return status;
    if (to->type != from->type) return STATUS_DESTINATION_TYPE_DIFFERS;
  }
  Image placed = *from;
  placed.offsetX = x;
  placed.offsetY = y;
  const OverlapRect overlap = MaskOverlap(*to, placed);
  if (overlap.IsEmpty()) return STATUS_OK;
  if (!TypeHasPixels(from->type)) return STATUS_BAD_LAYOUT_TYPE;

  const PixelView read = ViewOf(*from)
                             .Rows(overlap.maskY, overlap.maskY + overlap.height)
                             .Columns(overlap.maskX, overlap.maskX + overlap.width);
  const PixelView write = ViewOf(*to).Part(overlap);
  const auto copyRows = [&](const Band& band) {
    for (int64_t row = band.begin; row < band.end; row++) {
      std::memmove(write.Row<void>(row), read.Row<void>(row),
                   static_cast<size_t>(write.RowBytes()));
    }
  };
  if (from == to) {
    // Row by row from the first: moved down, rows are read again that were written before.
    copyRows({0, write.height, 0});
  } else {
    BandsRun({.units = write.height, .bytes = 2 * write.Bytes()}, copyRows);
  }
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Copy(ImageRef source, ImageRef destination) {
  return ZEL_ProcessError("ZEL_Copy", zel::ImageClone(source, destination));
}

int32_t ZEL_Expand(ImageRef source, ImageRef destination, int32_t top, int32_t left, int32_t height,
                   int32_t width, int32_t xFactor, int32_t yFactor) {
  return ZEL_ProcessError("ZEL_Expand", zel::Expand(source, destination, {top, left, height, width},
                                                    {xFactor, yFactor}));
}

int32_t ZEL_Extract(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                    int32_t height, int32_t width, int32_t xFactor, int32_t yFactor) {
  return ZEL_ProcessError(
      "ZEL_Extract",
      zel::Extract(source, destination, {top, left, height, width}, {xFactor, yFactor}));
}

int32_t ZEL_ImageToImage(ImageRef source, ImageRef destination, int32_t x, int32_t y) {
  return ZEL_ProcessError("ZEL_ImageToImage", zel::ImagePaste(source, destination, x, y));
}
