// How far each label of a labelled image reaches on each row.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/status.h"
#include "core/views.h"

namespace zel {

// A label's first and last column on a row.
struct RowExtent {
  int32_t y;
  int32_t left, right;
  uint32_t next;  // its next row
};
constexpr uint32_t NO_EXTENT = UINT32_MAX;

class LabelExtents {
 public:
  // Of a U8 or I16 image, whose pixels are read as numbers without sign. STATUS_MEMORY_FULL.
  Status Find(const PixelView& view);

  uint32_t labels() const { return labels_; }  // one more than the largest
  // The row on which a label appears first, or NO_EXTENT.
  uint32_t First(uint32_t label) const { return ends_[label].first; }
  const RowExtent& operator[](uint32_t index) const { return extents_[index]; }

 private:
  template <class T>
  bool FindLabels(const PixelView& view);
  template <class T>
  bool AddRun(const T* row, int32_t y, int32_t start, int32_t end);
  bool Add(uint32_t label, const RowExtent& extent);

  struct Ends {
    uint32_t first, last;
  };
  WorkArray<Ends> ends_;  // by label
  uint32_t labels_ = 0;
  WorkArray<RowExtent> extents_;
  uint32_t count_ = 0;
  uint32_t capacity_ = 0;
};

}  // namespace zel
