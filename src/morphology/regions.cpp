// Runs put together to regions.
#include "morphology/regions.h"

#include <cstring>

namespace zel {

Status Regions::Find(const PixelView& view, RunsOf pixels, bool connectivity8) {
  width_ = view.width;
  if (!runs_.Extract(view, pixels) || !labels_.Allocate(runs_.size()) ||
      !sets_.Create(runs_.size() + 1)) {
    return STATUS_MEMORY_FULL;
  }
  sets_.Add();  // MARKED
  RunsConnect(runs_, connectivity8, labels_.data(), &sets_);
  return STATUS_OK;
}

void Regions::MarkEdge() {
  const int32_t height = runs_.height();
  for (int32_t y = 0; y < height; y++) {
    const uint32_t begin = runs_.RowBegin(y);
    const uint32_t end = runs_.RowEnd(y);
    if (begin == end) continue;
    if (y == 0 || y == height - 1) {
      for (uint32_t place = begin; place < end; place++) Mark(place);
      continue;
    }
    if (runs_[begin].start == 0) Mark(begin);
    if (runs_[end - 1].end == width_) Mark(end - 1);
  }
}

void RegionsFill(Regions* regions, bool marked, uint8_t value, const PixelView& view) {
  const RunTable& runs = regions->runs();
  for (int32_t y = 0; y < view.height; y++) {
    auto* row = view.Row<uint8_t>(y);
    for (uint32_t place = runs.RowBegin(y); place < runs.RowEnd(y); place++) {
      if (regions->IsMarked(place) != marked) continue;
      const Run run = runs[place];
      std::memset(row + run.start, value, static_cast<size_t>(run.end - run.start));
    }
  }
}

void PixelsCopy(const PixelView& from, const PixelView& to) {
  if (from.origin == to.origin) return;
  for (int32_t y = 0; y < from.height; y++) {
    std::memcpy(to.Row<void>(y), from.Row<void>(y), static_cast<size_t>(from.RowBytes()));
  }
}

void PixelsClear(const PixelView& view) {
  for (int32_t y = 0; y < view.height; y++) {
    std::memset(view.Row<void>(y), 0, static_cast<size_t>(view.RowBytes()));
  }
}

}  // namespace zel
