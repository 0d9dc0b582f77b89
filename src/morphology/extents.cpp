// Extents of labels, gathered in one sweep.
#include "morphology/extents.h"

#include <algorithm>

#include "core/pixel_types.h"
#include "particles/runs.h"

namespace zel {

bool LabelExtents::Add(uint32_t label, const RowExtent& extent) {
  Ends& ends = ends_[label];
  if (ends.first != NO_EXTENT && extents_[ends.last].y == extent.y) {
    extents_[ends.last].right = extent.right;
    return true;
  }
  if (count_ == capacity_) {
    const uint32_t grown = 2 * capacity_ + 256;
    if (!extents_.Resize(grown)) return false;
    capacity_ = grown;
  }
  (ends.first == NO_EXTENT ? ends.first : extents_[ends.last].next) = count_;
  ends.last = count_;
  extents_[count_++] = extent;
  return true;
}

// A run of pixels that are not 0 can have several labels.
template <class T>
bool LabelExtents::AddRun(const T* row, int32_t y, int32_t start, int32_t end) {
  for (int32_t x = start; x < end;) {
    const T label = row[x];
    const int32_t left = x;
    while (++x < end && row[x] == label) {
    }
    labels_ = std::max(labels_, uint32_t{label} + 1);
    if (!Add(label, {y, left, x - 1, NO_EXTENT})) return false;
  }
  return true;
}

template <class T>
bool LabelExtents::FindLabels(const PixelView& view) {
  RunTable runs;
  if (!runs.Extract(view)) return false;
  for (int32_t y = 0; y < view.height; y++) {
    for (uint32_t i = runs.RowBegin(y); i < runs.RowEnd(y); i++) {
      if (!AddRun(view.Row<T>(y), y, runs[i].start, runs[i].end)) return false;
    }
  }
  return true;
}

Status LabelExtents::Find(const PixelView& view) {
  const bool isU8 = view.type == IMAGE_U8;
  const size_t labels = static_cast<size_t>(isU8 ? LEVELS_U8 : LEVELS_I16);
  if (!ends_.Allocate(labels)) return STATUS_MEMORY_FULL;
  std::fill_n(ends_.data(), labels, Ends{NO_EXTENT, NO_EXTENT});
  const bool found = isU8 ? FindLabels<uint8_t>(view) : FindLabels<uint16_t>(view);
  return found ? STATUS_OK : STATUS_MEMORY_FULL;
}

}  // namespace zel
