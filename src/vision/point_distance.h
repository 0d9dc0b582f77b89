// How far apart points lie.
#pragma once

#include <cmath>

#include "orlune_ptk.h"

namespace zel {

// In doubles, rounded once.
template <class Point>
float DistanceOf(const Point& a, const PointFloat& b) {
  const double dx = static_cast<double>(b.x) - static_cast<double>(a.x);
  const double dy = static_cast<double>(b.y) - static_cast<double>(a.y);
  return static_cast<float>(std::sqrt(dx * dx + dy * dy));
}

}  // namespace zel
