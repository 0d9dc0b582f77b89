// Images shifted by whole pixels.
#include <algorithm>
#include <cstring>

#include "core/pixel_types.h"
#include "engine/bands.h"
#include "engine/operands.h"
#include "geometry/geometry.h"
#include "geometry/outside.h"

namespace zel {
namespace {

// One row of results: what lies outside is filled to both sides of the pixels that are copied.
void RowShift(const PixelView& from, const PixelView& to, const OverlapRect& overlap, int64_t y,
              const OutsidePixel& outside) {
  const bool isCovered = y >= overlap.imageY && y < int64_t{overlap.imageY} + overlap.height;
  if (overlap.IsEmpty() || !isCovered) return outside.Fill(to.Row<void>(y), to.width);
  const int64_t bytes = to.pixelBytes;
  const int32_t end = overlap.imageX + overlap.width;
  uint8_t* row = to.Row<uint8_t>(y);
  outside.Fill(row, overlap.imageX);
  std::memcpy(row + overlap.imageX * bytes,
              from.Row<uint8_t>(y - overlap.imageY + overlap.maskY) + overlap.maskX * bytes,
              static_cast<size_t>(overlap.width * bytes));
  outside.Fill(row + end * bytes, to.width - end);
}

Status Shift(ImageRef source, ImageRef destination, int32_t x, int32_t y, float fill) {
  Operands operands;
  operands.Source(source, &TypeCanBeMoved);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  operands.WriteSized(operands.source().width, operands.source().height);
  if (operands.HasFailed()) return operands.status();
  operands.Written();

  Image placed = operands.source();
  placed.offsetX = x;
  placed.offsetY = y;
  const OverlapRect overlap = MaskOverlap(operands.source(), placed);
  const OutsidePixel outside(placed.type, fill);
  const PixelView from = operands.From();
  const PixelView to = operands.To();
  BandsRun({.units = to.height, .bytes = 2 * to.Bytes()}, [&](const Band& band) {
    for (int64_t row = band.begin; row < band.end; row++) {
      RowShift(from, to, overlap, row, outside);
    }
  });
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Shift(ImageRef source, ImageRef dest, int32_t shiftX, int32_t shiftY, float fill) {
  return ZEL_ProcessError("ZEL_Shift", zel::Shift(source, dest, shiftX, shiftY, fill));
}
