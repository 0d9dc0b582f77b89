// Conditions on measures: which particles are kept, and which gray levels are objects.
#pragma once

#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "orlune/inspect/measures.h"
#include "orlune/inspect/shapes.h"
#include "orlune/shared/pictures.h"

namespace front {

constexpr Range EVERYTHING{-std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::infinity()};

// "100:200", "100:" or ":200". Throws std::invalid_argument.
Range ParseRange(std::string_view text);

// "0.05" or "0.05,0.06". Throws std::invalid_argument.
Scale ParseScale(std::string_view text);

struct Condition {
  const Measure* measure = nullptr;
  Range range = EVERYTHING;
  bool lowExcluded = false;   // the measure must be above the low end
  bool highExcluded = false;  // the measure must be below the high end

  bool Holds(double value) const;
};

// One or more conditions with commas between them: "AreaPixels>=50", "NumberOfHoles=1",
// "AreaPixels=50:500,Left>0". Throws std::invalid_argument that says what is wrong.
std::vector<Condition> ParseConditions(std::string_view text);

// "AreaPixels,Perimeter" or "all": all but those that only their names ask for. Throws
// std::invalid_argument.
std::vector<const Measure*> ParseMeasures(std::string_view text);

MeasureSet SetOf(const std::vector<const Measure*>& measures);

}  // namespace front
