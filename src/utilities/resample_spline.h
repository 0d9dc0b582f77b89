// Resampling by natural cubic splines, along each row and then down each column of the result.
#pragma once

#include "core/heap.h"
#include "core/status.h"
#include "utilities/resample.h"
#include "utilities/resample_spline_rows.h"

namespace zel {

// Taken before anything is written.
class SplineMemory {
 public:
  // STATUS_MEMORY_FULL.
  Status Allocate(const ResampleAxis& x, const ResampleAxis& y, int32_t numbersAPixel);

  const SplinePivot* pivots() const { return pivots_.data(); }
  // The rows of the rectangle, resampled along themselves: whole groups of lanes, 0 behind the last
  // number.
  double* Row(int64_t y) { return rows_.data() + y * pitch_; }
  int64_t pitch() const { return pitch_; }

  // Of one worker: lanes of samples, second derivatives and results.
  struct Lanes {
    double *samples, *seconds, *results;
  };
  Lanes OfWorker(int32_t worker) {
    double* first = lanes_.data() + worker * (2 * samples_ + results_) * SPLINE_LANES;
    return {first, first + samples_ * SPLINE_LANES, first + 2 * samples_ * SPLINE_LANES};
  }

 private:
  int64_t pitch_ = 0;
  int64_t samples_ = 0, results_ = 0;  // of the longer axis
  WorkArray<SplinePivot> pivots_;
  WorkArray<double> rows_;
  WorkArray<double> lanes_;
};

void SplineRun(const ResampleViews& views, SplineMemory* memory);

}  // namespace zel
