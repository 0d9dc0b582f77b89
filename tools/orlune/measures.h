// The 50 measures of a particle: names, units and meanings.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace front {

// What a measure counts in. Length and Area follow the scale of the picture.
enum class Unit { Count, Pixels, SquarePixels, Length, Area, Percent, Degrees, Ratio };

struct Measure {
  uint32_t number;  // as ZEL_ParticleCoeffs knows it
  std::string_view name;
  Unit unit;
  std::string_view meaning;
};

constexpr size_t MEASURE_COUNT = 50;

std::span<const Measure, MEASURE_COUNT> AllMeasures();

// By name, in any mix of upper and lower case. Throws std::invalid_argument that tells the nearest
// name.
const Measure& FindMeasure(std::string_view name);

// "px", "mm", "mm2", "%", "deg"; empty for counts and ratios.
std::string UnitText(Unit unit, const std::string& lengthUnit);

}  // namespace front
