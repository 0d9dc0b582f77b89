// Outlines of the parts.
#include "scenes/parts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace scenes {
namespace {

constexpr double CHIP_CORNER = 3.0;  // radius of a chip's corners, pixels

double CircleDistance(Point p, double radius) {
  return std::hypot(p.x, p.y) - radius;
}

double BoxDistance(Point p, double halfLength, double halfWidth, double corner) {
  const double dx = std::abs(p.x) - (halfLength - corner);
  const double dy = std::abs(p.y) - (halfWidth - corner);
  const double outside = std::hypot(std::max(dx, 0.0), std::max(dy, 0.0));
  return outside + std::min(std::max(dx, dy), 0.0) - corner;
}

// A hexagon with its flat sides at the given distance from the centre.
double HexagonDistance(Point p, double flat) {
  const double kx = -std::numbers::sqrt3 / 2, ky = 0.5;
  double x = std::abs(p.x), y = std::abs(p.y);
  const double inward = 2.0 * std::min(kx * x + ky * y, 0.0);
  x -= inward * kx;
  y -= inward * ky;
  const double reach = flat / std::numbers::sqrt3;
  x -= std::clamp(x, -reach, reach);
  y -= flat;
  return std::copysign(std::hypot(x, y), y);
}

double CapsuleDistance(Point p, double halfLength, double radius) {
  const double along = std::clamp(p.x, -halfLength, halfLength);
  return std::hypot(p.x - along, p.y) - radius;
}

}  // namespace

Point Local(const Part& part, Point at) {
  const double dx = at.x - part.centre.x, dy = at.y - part.centre.y;
  return {dx * part.along.x + dy * part.along.y, dy * part.along.x - dx * part.along.y};
}

double Distance(const Part& part, Point at) {
  const Point p = Local(part, at);
  switch (part.shape) {
    case Shape::Washer:
      return std::max(CircleDistance(p, part.length), -CircleDistance(p, part.width));
    case Shape::Nut:
      return std::max(HexagonDistance(p, part.length), -CircleDistance(p, part.width));
    case Shape::Pin: {
      const double shaft = CapsuleDistance(p, part.length, part.width);
      if (part.detail <= 0) return shaft;
      return std::min(shaft, CircleDistance({p.x - part.length, p.y}, part.detail));
    }
    case Shape::Chip: {
      const double body = BoxDistance(p, part.length, part.width, CHIP_CORNER);
      return part.detail <= 0 ? body : std::max(body, -CircleDistance(p, part.detail));
    }
  }
  return 1e9;
}

double Reach(const Part& part) {
  switch (part.shape) {
    case Shape::Washer:
      return part.length;
    case Shape::Nut:
      return part.length * 2 / std::numbers::sqrt3;
    case Shape::Pin:
      return part.length + std::max(part.width, part.detail);
    case Shape::Chip:
      return std::hypot(part.length, part.width);
  }
  return 0;
}

double Perimeter(const Part& part) {
  const double turn = 2 * std::numbers::pi;
  switch (part.shape) {
    case Shape::Washer:
      return turn * (part.length + part.width);
    case Shape::Nut:
      return 12 / std::numbers::sqrt3 * part.length + turn * part.width;
    case Shape::Pin:
      return 4 * part.length + turn * (part.width + part.detail);
    case Shape::Chip:
      return 4 * (part.length + part.width) + turn * part.detail;
  }
  return 0;
}

int Holes(const Part& part) {
  switch (part.shape) {
    case Shape::Washer:
    case Shape::Nut:
      return 1;
    case Shape::Pin:
      return 0;
    case Shape::Chip:
      return part.detail > 0;
  }
  return 0;
}

Part WithoutHoles(const Part& part) {
  Part filled = part;
  if (part.shape == Shape::Washer || part.shape == Shape::Nut) filled.width = 0;
  if (part.shape == Shape::Chip) filled.detail = 0;
  return filled;
}

double Gap(const Part& a, const Part& b) {
  const double centres = std::hypot(a.centre.x - b.centre.x, a.centre.y - b.centre.y);
  const double apart = centres - Reach(a) - Reach(b);
  if (apart > 20) return apart;
  const Part& sampled = Reach(a) < Reach(b) ? a : b;
  const Part& other = Reach(a) < Reach(b) ? b : a;
  constexpr double STEP = 0.5;
  const int steps = static_cast<int>(std::ceil(Reach(sampled) / STEP));
  double gap = 1e9;
  for (int j = -steps; j <= steps; ++j) {
    for (int i = -steps; i <= steps; ++i) {
      const Point at{sampled.centre.x + i * STEP, sampled.centre.y + j * STEP};
      if (Distance(sampled, at) < 0) gap = std::min(gap, Distance(other, at));
    }
  }
  return gap;
}

}  // namespace scenes
