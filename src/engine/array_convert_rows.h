// Conversions of arrays between every pair of numeric types, at each processor level.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

constexpr int32_t ARRAY_TYPES = 9;  // the codes of ArrayType, the unused 5 among them

using ArrayConverter = PointRoutine<NoRule>;  // of the first view into the result

// By the code of the destination; null for the unused code.
struct ArrayConverters {
  ArrayConverter to[ARRAY_TYPES];
};

struct ArrayRows {
  ArrayConverters from[ARRAY_TYPES];  // by the code of the source
};
ZEL_ROW_TABLE(ArrayRows, arrayRows)

}  // namespace zel
