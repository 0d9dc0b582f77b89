// Binary morphology, for the operations of other topics that are made of it.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {

// ZEL_Morphology without its report.
Status BinaryMorphology(ImageRef source, ImageRef destination, int32_t operation,
                        const StructuringElement* element);

}  // namespace zel
