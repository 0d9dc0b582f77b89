// Gray levels along paths, and ZEL_Interpolate1D, which tells the values between them.
#include "vision/path_signal.h"

#include <algorithm>

#include "core/numbers.h"
#include "core/pixel_types.h"
#include "vision/result_table.h"

namespace zel {
namespace {

template <class T>
void SampleOf(const PixelView& view, const PointInt* points, int64_t count, float* samples) {
  const int32_t right = view.width - 1;
  const int32_t bottom = view.height - 1;
  for (int64_t i = 0; i < count; i++) {
    const int32_t x = std::clamp(points[i].x, 0, right);
    const int32_t y = std::clamp(points[i].y, 0, bottom);
    samples[i] = *view.At<T>(x, y);
  }
}

// The number of values, in 64 bits for any number of samples and factor.
int64_t ValuesOf(int64_t samples, int64_t factor) {
  return (samples - 1) * factor + 1;
}

int64_t FactorOf(int32_t oversampling) {
  return int64_t{std::max(oversampling, 0)} + 1;
}

}  // namespace

void PathSample(const PixelView& view, const PointInt* points, int64_t count, float* samples) {
  switch (view.type) {
    case IMAGE_U8:
      return SampleOf<uint8_t>(view, points, count, samples);
    case IMAGE_I16:
      return SampleOf<int16_t>(view, points, count, samples);
    case IMAGE_SGL:
      return SampleOf<float>(view, points, count, samples);
    default:
      std::fill_n(samples, count, 0.0f);
  }
}

Status PathImageLookup(ImageRef reference, Image** image) {
  const Status status = ImageLookup(reference, image);
  if (status != STATUS_OK) return status;
  return (*image)->width < 1 || (*image)->height < 1 ? STATUS_INTERNAL : STATUS_OK;
}

Status Oversampler::Prepare(int32_t method, int64_t factor, int64_t mostSamples) {
  if (method < INTERP_LINEAR || method > INTERP_SPLINE) return STATUS_BAD_INTERPOLATION;
  method_ = method;
  factor_ = factor;
  if (method != INTERP_SPLINE) return STATUS_OK;
  if (!seconds_.Allocate(mostSamples) || !factors_.Allocate(mostSamples)) {
    return STATUS_MEMORY_FULL;
  }
  PrepareSweep(mostSamples);
  return STATUS_OK;
}

// Factors are the same for all signals, and soon do not change any more.
void Oversampler::PrepareSweep(int64_t count) {
  factors_[0] = 0.0;
  for (int64_t i = 1; i < count; i++) {
    factors_[i] = -0.5 / (0.5 * factors_[i - 1] + 2.0);
    if (factors_[i] != factors_[i - 1]) continue;
    std::fill_n(factors_.data() + i, count - i, factors_[i]);
    return;
  }
}

void Oversampler::Oversample(const float* samples, int64_t count, float* values) {
  // With one sample, or two under the quadratic method, there is nothing to interpolate.
  if (count == 1 || (count == 2 && method_ == INTERP_QUADRATIC)) {
    std::fill_n(values, ValuesOf(count, factor_), samples[0]);
  } else if (method_ == INTERP_QUADRATIC) {
    Quadratic(samples, count, values);
  } else if (method_ == INTERP_SPLINE && count > 2) {
    Spline(samples, count, values);
  } else {
    Linear(samples, count, values);
  }
}

void Oversampler::Linear(const float* samples, int64_t count, float* values) const {
  const auto factor = static_cast<double>(factor_);
  for (int64_t j = 0; j + 1 < count; j++, values += factor_) {
    const double first = static_cast<double>(samples[j]);
    const double step = static_cast<double>(samples[j + 1]) - first;
    for (int64_t i = 0; i < factor_; i++) {
      values[i] = static_cast<float>(first + static_cast<double>(i) / factor * step);
    }
  }
  *values = samples[count - 1];
}

// The parabola through three samples is followed from the second on, so the signal begins at the
// second sample and its end is not written, which reads 0. Both are kept: programs in the field
// have settled their positions by them.
void Oversampler::Quadratic(const float* samples, int64_t count, float* values) const {
  const auto factor = static_cast<double>(factor_);
  for (int64_t j = 0; j + 2 < count; j++, values += factor_) {
    const double d0 = static_cast<double>(samples[j]);
    const double d1 = static_cast<double>(samples[j + 1]);
    const double bend = d1 * -2.0 + d0 + static_cast<double>(samples[j + 2]);
    for (int64_t i = 0; i < factor_; i++) {
      const double t = 1.0 + static_cast<double>(i) / factor;
      values[i] = static_cast<float>(d0 + (bend * (t - 1.0) * 0.5 + (d1 - d0)) * t);
    }
  }
  *values++ = samples[count - 2];
  std::fill_n(values, factor_, 0.0f);
}

void Oversampler::SplineSweep(const float* samples, int64_t count) {
  const auto sample = [samples](int64_t i) { return static_cast<double>(samples[i]); };
  seconds_[0] = 0.0;
  for (int64_t i = 1; i + 1 < count; i++) {
    const double divisor = 0.5 * factors_[i - 1] + 2.0;
    const double bend = (sample(i + 1) - sample(i)) - (sample(i) - sample(i - 1));
    seconds_[i] = (3.0 * bend - 0.5 * seconds_[i - 1]) / divisor;
  }
  seconds_[count - 1] = 0.0;
  for (int64_t i = count - 2; i >= 0; i--) {
    seconds_[i] = factors_[i] * seconds_[i + 1] + seconds_[i];
  }
}

namespace {

// What some values between two samples take of these and of the spline's derivatives there.
struct SplineWeights {
  static constexpr int64_t MOST = 32;
  double first[MOST], second[MOST], bendFirst[MOST], bendSecond[MOST];

  SplineWeights(int64_t start, int64_t count, int64_t factor) {
    for (int64_t i = 0; i < count; i++) {
      const double t = static_cast<double>(start + i) / static_cast<double>(factor);
      const double s = 1.0 - t;
      first[i] = s;
      second[i] = t;
      bendFirst[i] = (s * s - 1.0) * s;
      bendSecond[i] = (t * t - 1.0) * t;
    }
  }
};

}  // namespace

void Oversampler::Spline(const float* samples, int64_t count, float* values) {
  SplineSweep(samples, count);
  for (int64_t start = 0; start < factor_; start += SplineWeights::MOST) {
    const int64_t places = std::min(SplineWeights::MOST, factor_ - start);
    const SplineWeights w(start, places, factor_);
    float* to = values + start;
    for (int64_t j = 0; j + 1 < count; j++, to += factor_) {
      const double first = static_cast<double>(samples[j]);
      const double second = static_cast<double>(samples[j + 1]);
      const double m0 = seconds_[j];
      const double m1 = seconds_[j + 1];
      for (int64_t i = 0; i < places; i++) {
        const double curve = w.bendFirst[i] * m0 + w.bendSecond[i] * m1;
        to[i] = static_cast<float>(w.second[i] * second + w.first[i] * first + curve / 6.0);
      }
    }
  }
  values[(count - 1) * factor_] = samples[count - 1];
}

Status PathSignal::Prepare(int32_t method, int32_t oversampling, int64_t mostPoints) {
  factor_ = FactorOf(oversampling);
  if (!samples_.Allocate(mostPoints)) return STATUS_MEMORY_FULL;
  if (factor_ == 1) return STATUS_OK;
  const Status status = oversampler_.Prepare(method, factor_, mostPoints);
  if (status != STATUS_OK) return status;
  return values_.Allocate(ValuesOf(mostPoints, factor_)) ? STATUS_OK : STATUS_MEMORY_FULL;
}

void PathSignal::Take(const PixelView& view, const PointInt* points, int64_t count) {
  PathSample(view, points, count, samples_.data());
  count_ = ValuesOf(count, factor_);
  if (factor_ > 1) oversampler_.Oversample(samples_.data(), count, values_.data());
}

namespace {

Status Interpolate(ImageRef reference, const PointInt* points, int32_t pointCount, int32_t method,
                   int32_t oversampling, float** values, int32_t* valueCount) {
  if ((!points && pointCount > 0) || !values) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = PathImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (pointCount < LEAST_PATH) return STATUS_TOO_FEW_POINTS;

  Oversampler oversampler;
  const int64_t factor = FactorOf(oversampling);
  status = oversampler.Prepare(method, factor, pointCount);
  if (status != STATUS_OK) return status;
  const int64_t count = ValuesOf(pointCount, factor);
  LocalArray<float, 256> samples;
  WorkArray<float> table;
  if (!TableMake(&table, count) || !samples.Allocate(pointCount)) return STATUS_MEMORY_FULL;
  PathSample(ViewOf(*image), points, pointCount, samples.data());
  oversampler.Oversample(samples.data(), pointCount, table.data());
  TableHandOver(&table, values);
  CountTell(count, valueCount);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Interpolate1D(ImageRef image, const PointInt* points, int32_t pointCount,
                          int32_t method, int32_t oversampling, float** values,
                          int32_t* valueCount) {
  return ZEL_ProcessError("ZEL_Interpolate1D", zel::Interpolate(image, points, pointCount, method,
                                                                oversampling, values, valueCount));
}
