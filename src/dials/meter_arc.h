// Arcs of pixel positions around the base of a meter.
#pragma once

#include "core/heap.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// A circle of pixel positions, clockwise on the screen from near its top. Only a quarter of it is
// stored. Next to its highest and its lowest point there is a step of two pixels.
class MeterCircle {
 public:
  // Walks the quarter from the right to the bottom. STATUS_TOO_FEW_POINTS for a radius that is lost
  // beside the centre's column.
  Status Walk(PointFloat centre, float radius);
  int64_t count() const { return 4 * steps_ - 2; }
  PointFloat operator[](int64_t index) const;

 private:
  Status Append(PointFloat point);

  PointFloat centre_{};
  WorkArray<PointFloat> quarter_;  // steps_ points, none of them in the centre's column
  int64_t steps_ = 0;
  int64_t capacity_ = 0;
};

// Sets the block to the circle's points from the one nearest to `start` on whose angle is not above
// the angle from `start` to `end`. STATUS_INVALID_PARAMETER, STATUS_TOO_FEW_POINTS,
// STATUS_MEMORY_FULL, and the block is as it was.
Status ArcBetween(PointFloat centre, PointFloat start, PointFloat end, PointFloat** arc,
                  int32_t* count);

}  // namespace zel
