// Moments of particles and what of them stays when a particle is moved, turned or scaled.
#pragma once

#include <cstdint>

#include "particles/particle_scan.h"

namespace zel {

// Sums over the pixels of a particle, exact.
class ShapeMoments {
 public:
  __extension__ using Sum = unsigned __int128;

  void AddRun(const Run& run, int32_t y);

  Sum count = 0;
  Sum x = 0, xx = 0, xxx = 0;
  Sum y = 0, yy = 0, yyy = 0;
  Sum xy = 0, xxy = 0, xyy = 0;
};

struct ShapeInvariants {
  static constexpr int32_t COUNT = 7;
  double values[COUNT];

  // Of no pixels all are NaN.
  static ShapeInvariants Of(const ShapeMoments& moments);

  double Length() const;
  double DistanceTo(const ShapeInvariants& other) const;
};

}  // namespace zel
