// Images cleared where a mask is 0 or does not reach.
#include <cstring>

#include "engine/operands.h"
#include "point/logic_rows.h"

namespace zel {
namespace {

// Clears bytes one after the other up to a place: the gaps between the rows of a narrow part are
// too short for calls of the library function to pay.
void ClearUpTo(uint8_t* from, const uint8_t* end) {
  constexpr int64_t shortGap = 64;
  int64_t bytes = end - from;
  if (bytes > shortGap) {
    std::memset(from, 0, static_cast<size_t>(bytes));
    return;
  }
  for (; bytes >= 8; bytes -= 8, from += 8) std::memset(from, 0, 8);
  for (; bytes > 0; bytes--) *from++ = 0;
}

// Clears the pixel block but for a part of the image.
void ClearOutside(const Image& image, const PixelView& kept) {
  auto* from = VectorData<uint8_t>(image.pixels);
  const uint8_t* end = from + HandleByteSize(image.pixels);
  for (int64_t y = 0; y < kept.height; y++) {
    auto* row = kept.Row<uint8_t>(y);
    ClearUpTo(from, row);
    from = row + kept.RowBytes();
  }
  ClearUpTo(from, end);
}

// A result in place of the source or of the mask is made beside it, since pixels that the mask does
// not cover have to be cleared.
Status MaskPixels(ImageRef source, ImageRef mask, ImageRef destination) {
  Operands operands;
  operands.Source(source, &TypeHasPixels);
  operands.Destination(destination);
  operands.Mask(mask);
  if (operands.HasFailed()) return operands.status();
  if (operands.HasMask() && operands.overlap().IsEmpty()) return STATUS_OK;

  operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  if (!operands.HasMask()) {
    operands.TakePixels();
    return operands.status();
  }
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  const MaskView over = operands.MaskOver();
  PointViews views = {.first = operands.From(), .second = {}, .result = operands.To(), .mask = {}};
  views.second = {.origin = const_cast<uint8_t*>(over.origin),
                  .pitch = over.pitch,
                  .width = views.first.width,
                  .height = views.first.height,
                  .type = IMAGE_U8,
                  .pixelBytes = 1};
  ClearOutside(*operands.destination(), views.result);
  PointWalk(views, logicRows().mask[PixelWidthOf(views.first)], NoRule());
  operands.Written();
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Mask(ImageRef source, ImageRef mask, ImageRef destination) {
  return ZEL_ProcessError("ZEL_Mask", zel::MaskPixels(source, mask, destination));
}
