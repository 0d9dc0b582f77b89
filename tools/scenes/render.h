// Renders parts on a lit tray as a camera would see them, and works out what is really there.
#pragma once

#include <cstdint>
#include <vector>

#include "scenes/parts.h"

namespace scenes {

struct Tray {
  double level = 0.2;     // light that the empty tray sends back, 0 to 1 of the sensor's range
  double shading = 0.15;  // how much darker the far corner is, as a part of the level
  double texture = 0.02;  // depth of the fine streaks of a brushed surface
  double mottle = 0.02;   // depth of the broad clouds
  double shadow = 0.3;    // depth of the shadow that parts cast
};

struct Material {
  double level = 0.7;    // light that a flat part sends back
  double relief = 0.15;  // how far bevels and round shafts go above and below that level
  double gloss = 0.2;    // strength of the highlights
  double grain = 0.015;  // fine grain of the surface
};

struct Camera {
  double blur = 0.8;     // deviation of the lens blur, pixels
  double noise = 0.006;  // deviation of the sensor noise at full light, as a part of the range
  int bits = 8;          // 8, or 12 in 16-bit pixels
  bool colour = false;   // red, green and blue of 8 bits each
};

struct Setup {
  int width = 640;
  int height = 480;
  uint64_t seed = 1;
  Tray tray;
  Material material;
  Camera camera;
};

// What a perfect instrument would find for one group of touching parts.
struct Truth {
  int parts = 0;
  int holes = 0;
  double area = 0;       // pixels, holes not counted
  double perimeter = 0;  // pixels, outlines and holes of all its parts
  Point centre;          // of the area
};

struct Picture {
  int width = 0;
  int height = 0;
  int bits = 8;
  std::vector<uint16_t> pixels;   // row after row; none of a picture in colour
  std::vector<uint32_t> colours;  // 0x00RRGGBB, of a picture in colour
};

Picture Render(const Setup& setup, const std::vector<Part>& parts);

// One record for each group, in the order of the group numbers from 0.
std::vector<Truth> TruthOf(const Setup& setup, const std::vector<Part>& parts);

// Of each part alone, as if no other touched it, and holes belonged to it.
std::vector<Truth> TruthOfOutlines(const Setup& setup, const std::vector<Part>& parts);

}  // namespace scenes
