// Signals along paths: the gray levels of an image's pixels, and values interpolated between them.
#pragma once

#include <cstdint>

#include "core/images.h"
#include "vision/local_array.h"

namespace zel {

constexpr int64_t LEAST_PATH = 5;  // points that edges along a path are looked for on

// Points beyond 32 bits of coordinates do not occur: of those outside the image the nearest pixel
// is read. An image of a type other than U8, I16 and SGL gives zeros: programs in the field meet no
// failure there.
void PathSample(const PixelView& view, const PointInt* points, int64_t count, float* samples);

// The image of a path of the caller's. STATUS_BAD_IMAGE; STATUS_INTERNAL for one without pixels.
Status PathImageLookup(ImageRef reference, Image** image);

// Values between samples.
class Oversampler {
 public:
  // `factor` values for each sample, for signals of at most so many samples.
  // STATUS_BAD_INTERPOLATION, STATUS_MEMORY_FULL.
  Status Prepare(int32_t method, int64_t factor, int64_t mostSamples);

  // Writes (count - 1) x factor + 1 values.
  void Oversample(const float* samples, int64_t count, float* values);

 private:
  void Linear(const float* samples, int64_t count, float* values) const;
  void Quadratic(const float* samples, int64_t count, float* values) const;
  void Spline(const float* samples, int64_t count, float* values);
  void PrepareSweep(int64_t count);
  // The second derivatives of a natural spline: no curvature at either end.
  void SplineSweep(const float* samples, int64_t count);

  static constexpr uint32_t ROOM = 256;

  int32_t method_ = 0;
  int64_t factor_ = 1;
  LocalArray<double, ROOM> seconds_;  // derivatives of the spline
  LocalArray<double, ROOM> factors_;  // of its sweep
};

// The signal of a path as edges are looked for in.
class PathSignal {
 public:
  // For paths of at most so many points. An oversampling of 0 or below takes the samples as they
  // are. STATUS_BAD_INTERPOLATION, STATUS_MEMORY_FULL.
  Status Prepare(int32_t method, int32_t oversampling, int64_t mostPoints);
  void Take(const PixelView& view, const PointInt* points, int64_t count);

  const float* values() const { return factor_ > 1 ? values_.data() : samples_.data(); }
  int64_t count() const { return count_; }
  int64_t factor() const { return factor_; }  // values for each sample

 private:
  int64_t factor_ = 1;
  int64_t count_ = 0;
  Oversampler oversampler_;
  LocalArray<float, 256> samples_;
  LocalArray<float, 1024> values_;
};

}  // namespace zel
