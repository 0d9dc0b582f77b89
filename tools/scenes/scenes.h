// The scenes of the demonstration and the tests.
#pragma once

#include <string>
#include <vector>

#include "scenes/render.h"

namespace scenes {

struct Scene {
  std::string name;
  std::string subject;  // one line for people
  std::string file;     // the name of its file; the ending tells the format
  bool darkParts = false;
  Setup setup;
  std::vector<Part> parts;
};

// Dark steel washers on a bright tray, two of them touching. 640 x 480, 8 bits.
Scene Washers();
// Bright pins with and without heads on a dark tray. 801 x 601, 8 bits: an odd width.
Scene Pins();
// Ceramic chips, some with a hole, on a dark tray. 800 x 600, 12 bits in 16-bit pixels.
Scene Chips();
// Washers, nuts, pins and chips together, with touching ones. 1024 x 768, 8 bits.
Scene Mixed();

// Plastic washers, nuts and chips of four colours and gray ones on a gray tray, in colour. 480 x
// 360; parts of different colours touch.
Scene Tokens();

std::vector<Scene> AllScenes();

}  // namespace scenes
