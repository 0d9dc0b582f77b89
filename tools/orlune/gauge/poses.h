// Where objects lie in a picture, and which way they point.
#pragma once

#include <optional>
#include <stdexcept>

#include "orlune/inspect/labels.h"

namespace front {

// In pixels; pixel (0, 0) has its centre at (0, 0).
struct Place {
  double x = 0, y = 0;
};

struct Pose {
  Place at;
  double degrees = 0;  // from the direction of rows clockwise, as y points down
};

// What a picture was searched for is not in it.
class NotFound : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Where a point goes that is fixed to what has moved from one pose to another.
Place Carried(Place point, const Pose& from, const Pose& to);

// The angle brought into -180 up to and without 180.
double Turned(double degrees);

struct ObjectPose {
  Pose pose;              // centre of mass, and direction of the long axis
  double area = 0;        // pixels
  bool hasAxis = false;   // no disc or square: one axis is longer than the other
  bool hasFront = false;  // its ends differ: the long axis has a direction, not 0 to 180 alone
};

// Of the particle of a label; of the one with the most pixels, the first of equals, for label 0.
// None where there is no such particle.
std::optional<ObjectPose> PoseOf(const Labels& labels, uint32_t label);

// The pose that is nearest to the other one among those that look alike: an object without front
// may point either way, and one without axis anywhere.
Pose Resolved(const ObjectPose& object, const Pose& other);

}  // namespace front
