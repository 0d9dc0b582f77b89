// Whole particles kept, removed and filled.
#include "engine/operands.h"
#include "engine/point.h"
#include "morphology/erosion.h"
#include "morphology/particle_filters_rows.h"
#include "morphology/regions.h"
#include "morphology/structuring_element.h"

namespace zel {
namespace {

Status FillHole(ImageRef source, ImageRef destination, bool connectivity8) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();

  // Background surrounds particles: where these hold together by corners, it does not.
  Regions background;
  const Status status = background.Find(operands.From(), RunsOf::ClearPixels, !connectivity8);
  if (status != STATUS_OK) return status;
  background.MarkEdge();

  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  PointWalk({.first = operands.From(), .second = {}, .result = operands.To(), .mask = {}},
            particleFilterRows().lowBit, NoRule{});
  RegionsFill(&background, false, 1, operands.To());
  return STATUS_OK;
}

// Clears in the destination the regions that are marked, or those that are not; all else is the
// source's.
Status RegionsRemove(Operands* operands, Regions* regions, bool marked) {
  operands->TakeSize();
  operands->TakeInfo();
  if (operands->HasFailed()) return operands->status();
  PixelsCopy(operands->From(), operands->To());
  RegionsFill(regions, marked, 0, operands->To());
  return STATUS_OK;
}

Status RejectBorder(ImageRef source, ImageRef destination, bool connectivity8) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Border(BORDER_ZERO, 0);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();

  Regions particles;
  const Status status = particles.Find(operands.From(), RunsOf::SetPixels, connectivity8);
  if (status != STATUS_OK) return status;
  particles.MarkEdge();
  return RegionsRemove(&operands, &particles, true);
}

// Marks the particles of which erosions have left something.
void RegionsMark(Regions* regions, const BitPlane& left) {
  const RunTable& runs = regions->runs();
  for (int32_t y = 0; y < runs.height(); y++) {
    for (uint32_t place = runs.RowBegin(y); place < runs.RowEnd(y); place++) {
      if (BitsAreSet(left.Row(y), runs[place].start, runs[place].end)) regions->Mark(place);
    }
  }
}

Status LowHighPass(ImageRef source, ImageRef destination, bool connectivity8, bool removeLarge,
                   int32_t nbErosions, const StructuringElement* element) {
  Operands operands;
  bool isDone = false;
  Status status = ErosionSettle(source, destination, element, &operands, &isDone);
  if (status != STATUS_OK || isDone) return status;
  operands.Border(BORDER_ZERO, 1);

  Erosion erosion;
  Regions particles;
  status = operands.status();
  if (status == STATUS_OK) status = erosion.Start(operands.From(), *element);
  if (status == STATUS_OK) {
    status = particles.Find(operands.From(), RunsOf::SetPixels, connectivity8);
  }
  if (status != STATUS_OK) return status;
  erosion.Run(nbErosions);
  RegionsMark(&particles, erosion.Left());
  return RegionsRemove(&operands, &particles, removeLarge);
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
