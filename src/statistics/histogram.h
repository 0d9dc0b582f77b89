// What other rooms use of the histogram: the classes of a region and counts of its levels.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/status.h"
#include "engine/operands.h"
#include "orlune_ptk.h"

namespace zel {

// How often each level occurs among the selected pixels of a U8 region.
void CountLevels(const Region& region, uint32_t (&counts)[LEVELS_U8]);

// What ZEL_Histogram does. `histogram` names a vector of uint32_t that the call sizes, or a
// caller's array behind a handle, which must be large enough (STATUS_MEMORY_ERROR). The report may
// be null. STATUS_BAD_IMAGE, STATUS_BAD_TYPE.
Status Histogram(ImageRef image, ImageRef mask, int32_t nbClasses, float min, float max,
                 Handle histogram, HistogramReport* report);

}  // namespace zel
