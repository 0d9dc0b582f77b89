// The smallest and the largest pixel of a region, for all rooms that stretch values.
#pragma once

#include "core/status.h"
#include "engine/operands.h"

namespace zel {

// The extremes of the selected pixels, NaN left out. With none selected 255 and 0 (U8), 2^31 and
// -2^31 (I16), 1e38 and -1e38 (SGL); values beyond 1e38 never show. STATUS_BAD_OPERAND_TYPE for
// another type, with the extremes left alone.
Status ImageMinMax(const Region& region, float* min, float* max);

}  // namespace zel
