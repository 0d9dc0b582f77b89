// Pictures of the recipes' demonstration: lots of which some parts are wrong, and what is wrong.
#pragma once

#include <string>
#include <vector>

#include "scenes/render.h"

namespace scenes {

struct LotPicture {
  std::string file;
  bool good = true;
  std::string truth;  // of a tray: parts, holes and outer radii; of a label: code and display
  Picture picture;
};

// Trays of 480 x 360 pixels with eight washers of one size: of the wrong ones one has a part too
// few, one a part without its hole, and one a part that is too large.
std::vector<LotPicture> Trays();

// Labels of 480 x 460 pixels: a bar code above the display of a scale. Of the wrong ones one has
// the code of another article, and one a weight that is too low. The first one is the display's
// test: all eights, and no code.
std::vector<LotPicture> Packages();

}  // namespace scenes
