// Distances to the background, spread from pixel to pixel, and their map.
#include "morphology/distance_planes.h"

#include <algorithm>
#include <cstring>

#include "engine/operands.h"
#include "morphology/distance_rows.h"

namespace zel {

constexpr uint16_t FAR_AWAY = 0xFFFF;

template <class Work>
void DistancePlanes::EachStretch(int32_t y, const Work& work) const {
  constexpr int64_t columnsOfACall = 16;
  const uint32_t begin = runs_.RowBegin(y);
  const uint32_t end = runs_.RowEnd(y);
  if ((end - begin) * columnsOfACall > width_) {
    work(Run{runs_[begin].start, runs_[end - 1].end});
    return;
  }
  for (uint32_t i = begin; i < end; i++) work(runs_[i]);
}

void DistancePlanes::RowImprove(int32_t y, int32_t from) {
  const DistanceRows& rows = distanceRows();
  EachStretch(y, [&](const Run& stretch) {
    rows.improveFromRow(Row(y), Row(from), stretch.start, stretch.end);
    rows.improveFromLeft(Row(y), std::max(stretch.start, 1), stretch.end);
    rows.improveFromRight(Row(y), stretch.start, std::min(stretch.end, width_ - 1));
  });
}

Status DistancePlanes::Find(const PixelView& view) {
  width_ = view.width;
  height_ = view.height;
  const uint64_t pixels = static_cast<uint64_t>(width_) * static_cast<uint64_t>(height_);
  if (!runs_.Extract(view) || !steps_.AllocateZeroed(pixels)) return STATUS_MEMORY_FULL;
  for (int32_t y = 0; y < height_; y++) {
    for (uint32_t i = runs_.RowBegin(y); i < runs_.RowEnd(y); i++) {
      std::fill(Row(y) + runs_[i].start, Row(y) + runs_[i].end, FAR_AWAY);
    }
  }
  for (int32_t y = 1; y < height_; y++) RowImprove(y, y - 1);
  for (int32_t y = height_ - 2; y >= 0; y--) RowImprove(y, y + 1);
  return STATUS_OK;
}

void DistancePlanes::Write(const PixelView& to) const {
  for (int32_t y = 0; y < height_; y++) {
    auto* row = to.Row<uint8_t>(y);
    std::memset(row, 0, static_cast<size_t>(width_));
    EachStretch(y, [&](const Run& stretch) {
      distanceRows().lengths(row, Row(y), stretch.start, stretch.end);
    });
  }
}

namespace {

Status Danielsson(ImageRef source, ImageRef destination) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Destination(destination, IMAGE_U8, STATUS_BAD_TYPE);
  if (operands.HasFailed()) return operands.status();
  DistancePlanes planes;
  const Status status = planes.Find(operands.From());
  if (status != STATUS_OK) return status;
  operands.TakeSize();
  if (!operands.HasFailed()) planes.Write(operands.To());
  return operands.status();
}

}  // namespace
}  // namespace zel

int32_t ZEL_Danielsson(ImageRef source, ImageRef dest) {
  return ZEL_ProcessError("ZEL_Danielsson", zel::Danielsson(source, dest));
}
