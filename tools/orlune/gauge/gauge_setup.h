// Set-up files of gauges, written once by `orlune calibrate` and taken by `orlune read`.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "orlune_ptk.h"

namespace front {

// A dial with a needle.
struct MeterSetup {
  PointFloat base{}, start{}, end{};  // what turns, and the needle's tip at both ends of the scale
  bool isLight = false;               // a light needle on a dark dial
  double low = 0, high = 100;         // what the scale says at its ends
  std::string unit = "%";

  double ValueAt(double percent) const { return low + (high - low) * percent / 100; }
};

// A display of seven segments.
struct DisplaySetup {
  // A rectangle's two corners, or a slanted digit's four, each x and y.
  using Digit = std::vector<int32_t>;
  std::vector<Digit> digits;
  bool isLight = false;  // light segments on a dark ground
  double threshold = 10;
  bool hasSign = false, hasPoints = false;
};

// As the text of a file; and back, which throws std::invalid_argument for a text that is no such
// set-up.
std::string SetupText(const MeterSetup& setup);
std::string SetupText(const DisplaySetup& setup);
MeterSetup ParseMeterSetup(const std::string& text);
DisplaySetup ParseDisplaySetup(const std::string& text);

}  // namespace front
