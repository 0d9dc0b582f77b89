// Parts that lie in a scene: exact outlines as distance functions, with the figures that follow.
#pragma once

#include <string>
#include <vector>

namespace scenes {

struct Point {
  double x = 0, y = 0;
};

// Shares of red, green and blue that a surface sends back.
struct Tint {
  double red = 1, green = 1, blue = 1;
  const char* name = "gray";
};

enum class Shape { Washer, Nut, Pin, Chip };

struct Part {
  Shape shape = Shape::Washer;
  Point centre;
  Point along{1, 0};  // direction of its length, a unit vector
  double length = 0;  // washer, nut: outer radius; pin: half length of the shaft; chip: half length
  double width = 0;   // washer, nut: radius of the hole; pin: radius of the shaft; chip: half width
  double detail = 0;  // pin: radius of the head, 0 for none; chip: radius of its hole, 0 for none
  int group = 0;      // parts of one group touch, and are one particle
  Tint tint{};        // for scenes in colour
};

// Distance from the outline in pixels, negative inside the material. Holes are outside.
double Distance(const Part& part, Point at);

// Reaches every point of the part, from its centre.
double Reach(const Part& part);

double Perimeter(const Part& part);  // outline and holes together, pixels
int Holes(const Part& part);
Part WithoutHoles(const Part& part);

// The part's own coordinates of a point of the scene: u along its length, v across.
Point Local(const Part& part, Point at);

// The gap between two parts in pixels, negative when they overlap; found by sampling the smaller
// one, to half a pixel.
double Gap(const Part& a, const Part& b);

}  // namespace scenes
