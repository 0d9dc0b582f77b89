// Shafts of known diameters before a lit ground, turned and shifted from picture to picture.
#pragma once

#include <string>
#include <vector>

#include "scenes/render.h"

namespace scenes {

// A piece of a shaft, along its axis; 0 is the middle of the picture of a shaft that is not turned.
struct Section {
  std::string name;
  double from = 0, to = 0;  // pixels
  double diameter = 0;
};

struct Shaft {
  std::string file;
  std::vector<Section> sections;  // joined, from one end to the other
  Picture picture;

  double Length() const { return sections.back().to - sections.front().from; }
};

// 640 x 480 pixels, the shaft dark on light, the middle of its length at a place and turned
// clockwise.
Shaft ShaftAt(const std::string& file, Point place, double degrees,
              const std::vector<Section>& sections);

// Those of the demonstration: the first one upright in the middle, and the last one with a worn
// body.
std::vector<Shaft> AllShafts();

}  // namespace scenes
