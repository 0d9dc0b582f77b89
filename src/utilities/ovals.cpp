// Ovals over the pixels of a box, by exact integers.
#include "utilities/ovals.h"

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

int64_t Magnitude(int64_t value) {
  return value < 0 ? -value : value;
}

}  // namespace

bool Oval::EllipseHolds(int64_t x, int64_t y) const {
  const Wide u = Size(Magnitude(2 * (x - box_.left) + 1 - width_));
  const Wide v = Size(Magnitude(2 * (y - box_.top) + 1 - height_));
  if (u > Size(width_) || v > Size(height_)) return false;
  return Square(Size(height_) * u) <= Rest(v);
}

int64_t Oval::First(int64_t y) const {
  const int64_t v = Magnitude(2 * (y - box_.top) + 1 - height_);
  if (v > height_) return box_.right + 1;
  if (v <= 1) return box_.left;
  return box_.left + (width_ - 1 - Reach(v)) / 2;
}

// Of what H^2 u^2 may be in a row. Sides have 32 bits, so that all products fit.
Oval::Wide Oval::Rest(Wide v) const {
  return Square(Size(width_)) * (Square(Size(height_)) - Square(v));
}

// The largest u in a row: of the width's parity, and at least that of the middle.
int64_t Oval::Reach(int64_t v) const {
  const Wide rest = Rest(Size(v));
  const auto holds = [&](int64_t u) { return Square(Size(height_) * Size(u)) <= rest; };
  const auto h = static_cast<double>(height_);
  const double share = std::sqrt((h - static_cast<double>(v)) * (h + static_cast<double>(v))) / h;
  const int64_t least = (width_ - 1) & 1;
  auto u = std::max(static_cast<int64_t>(static_cast<double>(width_) * share), least);
  u -= (u ^ least) & 1;
  while (u > least && !holds(u)) u -= 2;
  while (u + 2 < width_ && holds(u + 2)) u += 2;
  return u;
}

// Rows are the shorter the further they are from the middle.
OvalOutline OvalOutlineOf(const Oval& oval, int64_t y) {
  const int64_t first = oval.First(y);
  const int64_t last = oval.Mirrored(first);
  const int64_t inside = std::max({first + 1, oval.First(y - 1), oval.First(y + 1)});
  const int64_t insideLast = oval.Mirrored(inside);
  if (inside > insideLast) return {{first, last}, {last + 1, last}};
  return {{first, inside - 1}, {insideLast + 1, last}};
}

OvalCoverage OvalCoverageOf(const PixelBox& box, int64_t width, int64_t height) {
  if (box.IsInside(width, height)) return OvalCoverage::PART;
  const Oval oval(box);
  int32_t corners = 0;
  for (const int64_t y : {int64_t{0}, height - 1}) {
    for (const int64_t x : {int64_t{0}, width - 1}) corners += oval.EllipseHolds(x, y) ? 1 : 0;
  }
  if (corners == 4) return OvalCoverage::ALL_OF_IMAGE;
  const int64_t centreX = box.left + box.Width() / 2;
  const int64_t centreY = box.top + box.Height() / 2;
  const bool hasCentre = centreX >= 0 && centreX < width && centreY >= 0 && centreY < height;
  return corners == 0 && !hasCentre ? OvalCoverage::NOTHING : OvalCoverage::PART;
}

}  // namespace zel
