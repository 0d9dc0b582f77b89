// Grey morphology, for the operations of other topics that are made of it.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// ZEL_GrayMorphology without its report.
Status GrayMorphology(ImageRef source, ImageRef destination, int32_t operation,
                      const StructuringElement* element);

}  // namespace zel
