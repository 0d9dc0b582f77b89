// The row routines of cutting particles apart.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

struct SeparationRows {
  // highest = the larger of itself and of so many pixels from `row` on, for each column.
  void (*raise)(uint8_t* highest, const uint8_t* row, int32_t members, int32_t width);
  // to = source, or 0 where the highest zone is above the pixel's own.
  void (*cut)(uint8_t* to, const uint8_t* source, const uint8_t* zones, const uint8_t* highest,
              int32_t width);
};
ZEL_ROW_TABLE(SeparationRows, separationRows)

}  // namespace zel
