// The steps of filter chains that change shapes and gray levels by a structuring element.
#pragma once

#include <vector>

#include "orlune/filter/steps.h"

namespace front {

std::vector<Step> MorphologySteps();

}  // namespace front
