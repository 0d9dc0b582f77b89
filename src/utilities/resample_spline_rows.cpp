// Routines of cubic splines: several lines of numbers side by side.
#include "utilities/resample_spline_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

constexpr int64_t LANES = SPLINE_LANES;

// The tridiagonal sweep for natural ends: no curvature at either.
void Sweep(const SplineLines& of, const SplinePivot* pivots, double* __restrict seconds) {
  const SplineLines lines = of;
  const int64_t last = lines.count - 1;
  for (int64_t k = 0; k < LANES; k++) seconds[k] = 0.0;
  for (int64_t i = 1; i < last; i++) {
    const double* y = lines.samples + i * lines.pitch;
    const double* before = y - lines.pitch;
    const double* after = y + lines.pitch;
    double* __restrict u = seconds + i * LANES;
    const double* formerU = u - LANES;
    const double divisor = pivots[i].divisor;
    for (int64_t k = 0; k < LANES; k++) {
      const double bend = (after[k] - y[k]) - (y[k] - before[k]);
      u[k] = (3.0 * bend - 0.5 * formerU[k]) / divisor;
    }
  }
  for (int64_t k = 0; k < LANES; k++) seconds[last * LANES + k] = 0.0;
  for (int64_t i = last - 1; i >= 0; i--) {
    double* __restrict second = seconds + i * LANES;
    const double* next = second + LANES;
    const double factor = pivots[i].factor;
    for (int64_t k = 0; k < LANES; k++) second[k] = factor * next[k] + second[k];
  }
}

void Evaluate(const SplineLines& of, const double* seconds, double step, double* __restrict to,
              int32_t results) {
  const SplineLines lines = of;
  for (int64_t result = 0; result < results; result++) {
    double* __restrict value = to + result * LANES;
    const double position = static_cast<double>(result) * step;
    const auto left = static_cast<int64_t>(position);
    const double* yA = lines.samples + left * lines.pitch;
    if (left + 1 >= lines.count) {
      for (int64_t k = 0; k < LANES; k++) value[k] = yA[k];
      continue;
    }
    const double* yB = yA + lines.pitch;
    const double* secondA = seconds + left * LANES;
    const double* secondB = secondA + LANES;
    const double a = (static_cast<double>(left) + 1.0) - position;
    const double b = 1.0 - a;
    const double curveA = a * a * a - a;
    const double curveB = b * b * b - b;
    for (int64_t k = 0; k < LANES; k++) {
      value[k] = a * yA[k] + b * yB[k] + (curveA * secondA[k] + curveB * secondB[k]) / 6.0;
    }
  }
}

template <class T>
void Load(const void* source, int32_t stride, double* __restrict lane, int32_t count) {
  const T* from = static_cast<const T*>(source);
  for (int64_t i = 0; i < count; i++) lane[i * LANES] = static_cast<double>(from[i * stride]);
}

}  // namespace

extern const SplineRows splineRows = {
    .sweep = &Sweep,
    .evaluate = &Evaluate,
    .load = {.u8 = &Load<uint8_t>, .i16 = &Load<int16_t>, .sgl = &Load<float>},
};

}  // namespace zel::ZEL_LEVEL
