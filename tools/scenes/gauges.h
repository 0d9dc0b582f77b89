// Gauges that say a known value: dials with a needle, and displays of seven segments.
#pragma once

#include <string>
#include <vector>

#include "scenes/render.h"

namespace scenes {

struct Gauge {
  std::string file;
  std::string says;  // what a person reads
  Picture picture;
};

// A dial of 320 x 320 pixels around (160, 160), light, with a dark needle that reaches to 112
// pixels from there. The scale goes over three quarters of the circle, from 0 at the lower left to
// 10 bar.
constexpr double DIAL_CENTRE = 160;
constexpr double DIAL_NEEDLE = 112;
Gauge Dial(const std::string& file, double bar);

// A display of 4 digits of 40 x 72 pixels, light on dark, lit unevenly; the first one at (40, 34),
// and 62 pixels from one to the next. Points may stand behind digits.
Gauge Display(const std::string& file, const std::string& digits);

// Those of the demonstration: a dial at both ends of its scale and between, and a display of all
// eights and of other numbers.
std::vector<Gauge> AllGauges();

}  // namespace scenes
