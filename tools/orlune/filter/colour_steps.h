// The steps of filter chains that take colours.
#pragma once

#include <vector>

#include "orlune/filter/steps.h"

namespace front {

std::vector<Step> ColourSteps();

}  // namespace front
