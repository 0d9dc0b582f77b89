// Gray levels along a line, smoothed, as displays are read by.
#pragma once

#include "core/handles.h"
#include "core/heap.h"
#include "core/rectangles.h"

namespace zel {

class LineSamples {
 public:
  Status Create() { return profile_.Create(); }

  // The pixels of the line, clipped to the image; none where it misses it. STATUS_BAD_IMAGE;
  // STATUS_BAD_TYPE for an image that is not U8, I16 or SGL, unless the line misses it.
  Status Read(ImageRef image, const KernelLine& line);
  // Each sample becomes the mean of those at most `reach` from it, of as many as there are.
  Status Smooth(int64_t reach);

  int64_t count() const { return count_; }
  double operator[](int64_t index) const { return samples_[static_cast<size_t>(index)]; }

  // Whether the standard deviation of the samples is above a threshold. No samples have none.
  bool HasContrast(double threshold) const;

 private:
  ScopedVector profile_;
  WorkArray<double> samples_;
  int64_t count_ = 0;
};

}  // namespace zel
