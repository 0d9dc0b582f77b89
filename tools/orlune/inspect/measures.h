// The measures of a particle: names, units and meanings.
#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace front {

// What a measure counts in. Length and Area follow the scale of the picture, Level is that of the
// picture's own values.
enum class Unit { Count, Pixels, SquarePixels, Length, Area, Percent, Degrees, Ratio, Level };

// Who computes it: the library, the front, or the library under a name of its own beside the
// front's.
enum class Maker { Library, Front, LibraryByName };

struct Measure {
  size_t number;  // in the list; below 50 as ZEL_ParticleCoeffs knows it
  std::string_view name;
  Unit unit;
  Maker maker;
  std::string_view meaning;
  uint32_t inLibrary = 0;  // of one by name: the number that it has in the library

  // Of a 32-bit float, which is shown with no more figures than it has.
  bool IsFloat() const { return maker != Maker::Front; }
};

constexpr size_t LIBRARY_MEASURES = 50;

// Those of the front, in the order of the list, behind the 50.
enum FrontMeasure : size_t {
  FIRST_OWN = LIBRARY_MEASURES,
  GRAY_MEAN = FIRST_OWN,
  GRAY_DEVIATION,
  GRAY_MINIMUM,
  GRAY_MAXIMUM,
  GRAY_SUM,
  FERET_MAXIMUM,
  FERET_MAXIMUM_ANGLE,
  FERET_MINIMUM,
  FERET_MINIMUM_ANGLE,
  MINIMAL_BOX_LENGTH,
  MINIMAL_BOX_WIDTH,
  MINIMAL_BOX_ANGLE,
  HULL_AREA,
  HULL_PERIMETER,
  SOLIDITY,
  MOMENT_ELLIPSE_MAJOR_AXIS,
  MOMENT_ELLIPSE_MINOR_AXIS,
  MOMENT_ELLIPSE_ANGLE,
  ECCENTRICITY,
  CROFTON_PERIMETER,
  CROFTON_CIRCULARITY,
  FIRST_BY_NAME  // the library's own numbers for what the front computes itself
};

const std::vector<Measure>& AllMeasures();

// Some of them, by number.
constexpr size_t MOST_MEASURES = 128;
using MeasureSet = std::bitset<MOST_MEASURES>;

// By name, in any mix of upper and lower case. Throws std::invalid_argument that tells the nearest
// name.
const Measure& FindMeasure(std::string_view name);

// "px", "mm", "mm2", "%", "deg"; empty for counts and ratios.
std::string UnitText(Unit unit, const std::string& lengthUnit);

}  // namespace front
