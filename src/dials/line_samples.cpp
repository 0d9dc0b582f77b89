// Gray levels along a line: read, smoothed, and looked at for contrast.
#include "dials/line_samples.h"

#include <algorithm>
#include <cmath>

#include "statistics/line_profile.h"

namespace zel {

Status LineSamples::Read(ImageRef image, const KernelLine& line) {
  const KernelRect ends{line.startX, line.startY, line.endX, line.endY};
  LineProfileResult result{profile_.handle(), {}};
  const Status status = LineProfileKernel(image, &ends, &result);
  if (status != STATUS_OK) return status;
  const int64_t count = result.report.nbPixels;
  if (!samples_.Allocate(static_cast<uint64_t>(count))) return STATUS_MEMORY_FULL;
  const auto* pixels = VectorData<float>(profile_.handle());
  std::copy_n(pixels, count, samples_.data());
  count_ = count;
  return STATUS_OK;
}

Status LineSamples::Smooth(int64_t reach) {
  WorkArray<double> raw;
  if (!raw.Allocate(static_cast<uint64_t>(count_))) return STATUS_MEMORY_FULL;
  std::copy_n(samples_.data(), count_, raw.data());
  for (int64_t i = 0; i < count_; i++) {
    const int64_t first = std::max<int64_t>(i - reach, 0);
    const int64_t last = std::min(i + reach, count_ - 1);
    double sum = 0.0;
    for (int64_t k = first; k <= last; k++) sum += raw[static_cast<size_t>(k)];
    samples_[static_cast<size_t>(i)] = sum / static_cast<double>(last - first + 1);
  }
  return STATUS_OK;
}

bool LineSamples::HasContrast(double threshold) const {
  if (count_ == 0) return false;
  double sum = 0.0;
  double squares = 0.0;
  for (int64_t i = 0; i < count_; i++) {
    const double sample = (*this)[i];
    sum += sample;
    squares += sample * sample;
  }
  const auto number = static_cast<double>(count_);
  const double mean = sum / number;
  const double variance = squares / number - mean * mean;
  return threshold < (variance < 0.0 ? 0.0 : std::sqrt(variance));
}

}  // namespace zel
