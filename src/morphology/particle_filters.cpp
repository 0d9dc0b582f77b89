// Whole particles kept, removed and filled.
#include "engine/bit_rows.h"
#include "engine/operands.h"
#include "engine/point.h"
#include "morphology/erosion.h"
#include "morphology/flood.h"
#include "morphology/particle_filters_rows.h"
#include "morphology/structuring_element.h"
#include "morphology/whole_images.h"

namespace zel {
namespace {

// Writes a value where bits are set.
void ValueWrite(const BitPlane& bits, uint8_t value, const PixelView& to) {
  for (int32_t y = 0; y < to.height; y++) {
    bitRows().store(to.Row<uint8_t>(y), bits.Row(y), to.width, value);
  }
}

Status FillHole(ImageRef source, ImageRef destination, bool connectivity8) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();

  // Background surrounds particles: where these hold together by corners, it does not.
  const PixelView from = operands.From();
  BitPlane background;
  Flood flood;
  if (!ClearPixelsTake(from, &background) ||
      !flood.Create(from.width, from.height, !connectivity8)) {
    return STATUS_MEMORY_FULL;
  }
  flood.StartFromEdge(background);
  flood.Run(&background);
  flood.ReachedRemove(&background);

  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  PointWalk({.first = operands.From(), .second = {}, .result = operands.To(), .mask = {}},
            particleFilterRows().lowBit, NoRule{});
  ValueWrite(background, 1, operands.To());
  return STATUS_OK;
}

// Clears some pixels in the destination; all else is the source's.
Status PixelsRemove(Operands* operands, const BitPlane& pixels) {
  operands->TakeSize();
  operands->TakeInfo();
  if (operands->HasFailed()) return operands->status();
  PixelsCopy(operands->From(), operands->To());
  ValueWrite(pixels, 0, operands->To());
  return STATUS_OK;
}

Status RejectBorder(ImageRef source, ImageRef destination, bool connectivity8) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Border(BORDER_ZERO, 0);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();

  const PixelView from = operands.From();
  BitPlane pixels;
  Flood flood;
  if (!SetPixelsTake(from, &pixels) || !flood.Create(from.width, from.height, connectivity8)) {
    return STATUS_MEMORY_FULL;
  }
  flood.StartFromEdge(pixels);
  flood.Run(&pixels);
  return PixelsRemove(&operands, flood.reached());
}

Status LowHighPass(ImageRef source, ImageRef destination, bool connectivity8, bool removeLarge,
                   int32_t nbErosions, const StructuringElement* element) {
  Operands operands;
  bool isDone = false;
  Status status = ErosionSettle(source, destination, element, &operands, &isDone);
  if (status != STATUS_OK || isDone) return status;
  operands.Border(BORDER_ZERO, 1);

  const PixelView from = operands.From();
  Erosion erosion;
  BitPlane pixels;
  Flood flood;
  status = operands.status();
  if (status == STATUS_OK) status = erosion.Start(from, *element);
  if (status != STATUS_OK) return status;
  if (!SetPixelsTake(from, &pixels) || !flood.Create(from.width, from.height, connectivity8)) {
    return STATUS_MEMORY_FULL;
  }
  erosion.Run(nbErosions);
  for (int32_t y = 0; y < from.height; y++) {
    flood.StartFromBits(y, pixels.Row(y), erosion.Left().Row(y));
  }
  flood.Run(&pixels);
  if (removeLarge) return PixelsRemove(&operands, flood.reached());
  flood.ReachedRemove(&pixels);
  return PixelsRemove(&operands, pixels);
}

}  // namespace
}  // namespace zel

int32_t ZEL_FillHole(ImageRef source, ImageRef dest, uint16_t connectivity8) {
  return ZEL_ProcessError("ZEL_FillHole", zel::FillHole(source, dest, connectivity8 != 0));
}

int32_t ZEL_RejectBorder(ImageRef source, ImageRef dest, uint16_t connectivity8) {
  return ZEL_ProcessError("ZEL_RejectBorder", zel::RejectBorder(source, dest, connectivity8 != 0));
}

int32_t ZEL_LowHighPass(ImageRef source, ImageRef dest, uint16_t connectivity8,
                        uint16_t removeLarge, int32_t nbErosions,
                        const StructuringElement* element) {
  return ZEL_ProcessError(
      "ZEL_LowHighPass",
      zel::LowHighPass(source, dest, connectivity8 != 0, removeLarge != 0, nbErosions, element));
}
