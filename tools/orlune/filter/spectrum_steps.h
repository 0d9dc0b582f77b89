// The steps of filter chains that see a picture as a sum of waves.
#pragma once

#include <vector>

#include "orlune/filter/steps.h"

namespace front {

std::vector<Step> SpectrumSteps();

}  // namespace front
