// Edges along a straight line of a picture, to a fraction of a pixel and without bias.
#pragma once

#include <optional>
#include <vector>

#include "orlune/gauge/poses.h"
#include "orlune/shared/pictures.h"

namespace front {

struct Line {
  Place from, to;

  double Length() const;
  Place At(double along) const;  // pixels from its start
};

struct EdgeSearch {
  std::optional<double> threshold;  // gray levels that an edge differs by; none: by the share
  double share = 0.3;               // of the range from the darkest to the lightest on the line
  int32_t edgeWidth = 3;            // pixels on either side of an edge that are looked at
  int32_t band = 5;                 // pixels across the line whose mean is looked at
};
constexpr int32_t WIDEST_EDGE = 200;
constexpr int32_t WIDEST_BAND = 999;
constexpr double FARTHEST = 65535;  // coordinates of lines, either sign

struct LineEdge {
  double along = 0;     // pixels from the line's start
  bool rises = false;   // from dark to light
  double contrast = 0;  // gray levels from one side to the other
};

// In the order of the line. The picture is an IMAGE_U8, IMAGE_I16 or IMAGE_SGL; beyond its sides
// its outermost pixels go on. Values between pixels are those of a plane through four of them, so
// that lines may begin anywhere and run at any angle. Throws LibraryFailure.
std::vector<LineEdge> EdgesAlong(const Image& picture, const Line& line, const EdgeSearch& search);

}  // namespace front
