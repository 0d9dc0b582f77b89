// How far each pixel of a particle is from the background, as columns and rows.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "core/views.h"
#include "particles/runs.h"

namespace zel {

// Columns and rows to a pixel of the background that is near, of each pixel; found by two sweeps
// over the image, in which each pixel learns from the neighbours above and beside it, then from
// those below. Either number is kept in a byte: 255 stands for far away, and one of 256 for 0.
class DistancePlanes {
 public:
  // For the non-zero pixels of a U8 image. STATUS_MEMORY_FULL.
  Status Find(const PixelView& view);

  // The distances, cut to whole numbers, of which the low 8 bits are kept.
  void Write(const PixelView& to) const;

 private:
  uint16_t* Row(int32_t y) { return steps_.data() + int64_t{y} * width_; }
  const uint16_t* Row(int32_t y) const { return steps_.data() + int64_t{y} * width_; }
  // Calls work(Run) for the runs of a row or, where these are short, for all between the first and
  // the last at once: it does nothing to the background, which has no steps.
  template <class Work>
  void EachStretch(int32_t y, const Work& work) const;
  void RowImprove(int32_t y, int32_t from);

  RunTable runs_;              // the background is never changed
  WorkArray<uint16_t> steps_;  // the columns in the low byte
  int32_t width_ = 0;
  int32_t height_ = 0;
};

}  // namespace zel
