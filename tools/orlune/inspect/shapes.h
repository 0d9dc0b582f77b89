// Shapes of particles: moments, convex hulls and what is measured on them, outlines by counting
// crossings. Lengths are in the picture's unit: a pixel is a rectangle of the scale's sides.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "orlune/inspect/labels.h"

namespace front {

struct Scale {
  float x = 1, y = 1;  // width and height of a pixel
};

// Sums over a particle's pixels, exact: pixel (x, y) counts as its centre's column and row.
__extension__ typedef __int128 Int128;
struct Moments {
  int64_t area = 0;
  int64_t sumX = 0, sumY = 0;
  Int128 sumXX = 0, sumYY = 0, sumXY = 0;

  void Add(const PixelRun& run);
  double CentreX() const { return static_cast<double>(sumX) / static_cast<double>(area); }
  double CentreY() const { return static_cast<double>(sumY) / static_cast<double>(area); }
  // Second moments about the centre, sums over pixels.
  double InertiaXX() const { return Central(sumXX, sumX, sumX); }
  double InertiaYY() const { return Central(sumYY, sumY, sumY); }
  double InertiaXY() const { return Central(sumXY, sumX, sumY); }

 private:
  double Central(Int128 squares, int64_t a, int64_t b) const;
};

// Of the long axis in degrees, counter-clockwise from the direction of rows, 0 up to and without
// 180; 0 where no axis is longer than another.
double AxisAngle(double xx, double yy, double xy);

// The ellipse with the same second moments as the particle, whose pixels are rectangles, not
// points.
struct Ellipse {
  double major = 0, minor = 0, angle = 0, eccentricity = 0;
};
Ellipse EllipseOf(const Moments& moments, const Scale& scale);

struct Corner {
  int64_t x = 0, y = 0;  // pixel (0, 0) reaches from corner (0, 0) to (1, 1)
};

// The corners of the smallest convex shape that the corners of all runs lie in, without those in
// the middle of sides. Runs are of one particle, in raster order.
std::vector<Corner> ConvexHull(std::span<const PixelRun> runs);

struct HullMeasures {
  double area = 0, perimeter = 0;
  double feretMaximum = 0, feretMaximumAngle = 0;
  double feretMinimum = 0, feretMinimumAngle = 0;
  double boxLength = 0, boxWidth = 0, boxAngle = 0;  // the smallest rectangle by area
};
HullMeasures MeasureHull(const std::vector<Corner>& hull, const Scale& scale);

// Starts of particle on lines in four directions, from which the outline's length is estimated,
// holes' outlines included.
struct Crossings {
  std::array<int64_t, 4> starts{};  // along rows, rising diagonals, columns, falling diagonals

  double Perimeter(const Scale& scale) const;
};
// By label - 1.
std::vector<Crossings> CountCrossings(const LabelPicture& labels, uint32_t count);

}  // namespace front
