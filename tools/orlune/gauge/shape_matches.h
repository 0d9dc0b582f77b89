// The objects of a picture that have the shape of a template, wherever they lie and however they
// are turned.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/gauge/poses.h"
#include "orlune/inspect/inspection.h"

namespace front {

struct MatchSettings {
  InspectSettings finding;      // of objects, in the template's picture too
  double tolerance = 0.05;      // of the shape's invariants, as a part of their length
  std::optional<Range> scales;  // sizes by the template's; none: areas within 10 percent
};

// The largest object of a picture.
struct Template {
  Image mask;  // IMAGE_U8 of 0 and 1, cut to the object
  ObjectPose object;
};
// Throws as Locate, and std::runtime_error where there is no object.
Template ReadTemplate(const std::string& path, const InspectSettings& finding);

struct ShapeMatch {
  uint32_t number = 0;            // of the object, by its first pixel from 1
  Place at;                       // centre of mass
  std::optional<double> degrees;  // turned clockwise against the template; none for round shapes
  bool hasFront = false;          // else the shape looks the same after half a turn
  double scale = 1;               // size by the template's: root of the areas' ratio
  double score = 0;               // 1000 for the very shape, 1 at the tolerance
  double area = 0;                // pixels
};

struct Matching {
  Inspection inspection;  // its particles are all objects, without measures; the matches are kept
  std::vector<ShapeMatch> matches;
};
// Throws as Locate.
Matching FindMatches(const std::string& path, const Template& shape, const MatchSettings& settings);
// The same among objects that were located.
Matching FindMatches(Inspection located, const Template& shape, const MatchSettings& settings);

}  // namespace front
