// Labels with a bar code of known digits: Interleaved 2 of 5.
#pragma once

#include <string>
#include <vector>

#include "scenes/render.h"

namespace scenes {

struct Label {
  std::string file;
  std::string digits;
  Picture picture;
};

// 480 x 320 pixels, dark bars on light, lit unevenly, the code in the middle and turned.
Label BarcodeLabel(const std::string& file, const std::string& digits, double degrees);

// Those of the demonstration: upright, and turned.
std::vector<Label> AllLabels();

}  // namespace scenes
