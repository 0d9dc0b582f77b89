// Touching particles cut apart, where the zones of what erosions leave of them meet.
#include <algorithm>
#include <cstring>

#include "core/numbers.h"
#include "engine/operands.h"
#include "morphology/element_shape.h"
#include "morphology/erosion.h"
#include "morphology/separation_rows.h"
#include "morphology/structuring_element.h"
#include "morphology/whole_images.h"
#include "morphology/zones.h"
#include "particles/particle_scan.h"

namespace zel {
namespace {

constexpr uint32_t LARGEST_LABEL = 255;  // stands for all from there on

// Labels the particles of a U8 image in place.
Status LabelInPlace(const PixelView& view) {
  ParticleRuns particles;
  const Status status = ParticleRunsFind(view, true, &particles);
  if (status != STATUS_OK) return status;
  uint32_t* numbers = particles.numbers.Numbers();
  for (uint32_t i = 0; i < particles.numbers.count(); i++) {
    numbers[i] = std::min(numbers[i], LARGEST_LABEL);
  }
  LabelsWrite(particles, view);
  return STATUS_OK;
}

// Zones around what erosions leave of each particle.
Status ZonesFind(const PixelView& source, int32_t nbErosions, const StructuringElement& element,
                 const PixelView& zones) {
  Status status = STATUS_OK;
  if (ElementPositions(element) < LEAST_ELEMENT_POSITIONS) {
    PixelsCopy(source, zones);
  } else {
    Erosion erosion;
    status = erosion.Start(source, element);
    if (status != STATUS_OK) return status;
    erosion.Run(nbErosions);
    erosion.Left().Write(zones);
  }
  status = LabelInPlace(zones);
  return status != STATUS_OK ? status : ZonesGrow(zones);
}

// Continues rows beyond both ends.
void RowsReplicate(const PixelView& view, int32_t reach) {
  for (int32_t y = 0; y < view.height; y++) {
    auto* row = view.Row<uint8_t>(y);
    std::fill_n(row - reach, reach, row[0]);
    std::fill_n(row + view.width, reach, row[view.width - 1]);
  }
}

// Copies the source, and clears each pixel that has a higher zone among the element's members
// around it. The zones have a border that the members reach into.
void CutWrite(const PixelView& source, const PixelView& zones, const ElementShape& shape,
              const PixelView& to, uint8_t* highest) {
  const SeparationRows& rows = separationRows();
  for (int32_t y = 0; y < source.height; y++) {
    std::memset(highest, 0, static_cast<size_t>(source.width));
    const RunList members = shape.members();
    for (int32_t i = 0; i < members.count; i++) {
      const ElementRun& run = members.runs[i];
      const auto* row = zones.Row<uint8_t>(Clamped(int64_t{y} + run.row, 0, zones.height - 1));
      rows.raise(highest, row + shape.ColumnAt(run, y), run.length, source.width);
    }
    rows.cut(to.Row<uint8_t>(y), source.Row<uint8_t>(y), zones.Row<uint8_t>(y), highest,
             source.width);
  }
}

Status Separation(ImageRef source, ImageRef destination, int32_t nbErosions,
                  const StructuringElement* element) {
  if (ElementIsMissing(element)) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(source, &image);
  if (status == STATUS_OK && destination != 0) status = ImageLookup(destination, &image);
  if (status != STATUS_OK) return status;

  Operands operands;
  operands.Source(source, &TypeIsU8);
  const bool isNeighbourhood = ElementPositions(*element) >= LEAST_ELEMENT_POSITIONS;
  if (isNeighbourhood) operands.Border(BORDER_REPLICATE, ElementBorder(*element));
  if (operands.HasFailed()) return operands.status();
  if (operands.source().border < ParticleBorder(true)) return STATUS_BORDER_TOO_SMALL;

  const PixelView from = operands.From();
  ElementShape shape;  // without members nothing is cut
  if (isNeighbourhood) status = shape.Make(*element, EvenWidth::LAST_COLUMN_UNUSED);
  const int32_t reach = shape.MemberReach();
  ScratchImage scratch;
  if (status == STATUS_OK) status = scratch.Create(IMAGE_U8, from.width, from.height, reach);
  WorkArray<uint8_t> highest;
  if (status == STATUS_OK && !highest.Allocate(static_cast<uint64_t>(from.width))) {
    status = STATUS_MEMORY_FULL;
  }
  if (status != STATUS_OK) return status;
  const PixelView zones = ViewOf(*scratch.image());
  status = ZonesFind(from, nbErosions, *element, zones);
  if (status != STATUS_OK) return status;
  RowsReplicate(zones, reach);

  operands.Destination(destination);
  operands.TakeSize();
  operands.TakeInfo();
  if (!operands.HasFailed()) CutWrite(from, zones, shape, operands.To(), highest.data());
  return operands.status();
}

}  // namespace
}  // namespace zel

int32_t ZEL_Separation(ImageRef source, ImageRef dest, int32_t nbErosions,
                       const StructuringElement* element) {
  return ZEL_ProcessError("ZEL_Separation", zel::Separation(source, dest, nbErosions, element));
}
