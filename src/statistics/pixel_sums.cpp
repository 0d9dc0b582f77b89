// Statistics that follow from sums.
#include "statistics/pixel_sums.h"

#include <cmath>

namespace zel {

double DeviationOf(double squares, double count, float mean) {
  const auto wide = static_cast<double>(mean);
  const double variance = squares / count - wide * wide;
  return variance < 0.0 ? 0.0 : std::sqrt(variance);
}

}  // namespace zel
