// Row routines that build colour pixels from components.
#pragma once

#include "engine/levels.h"
#include "orlune_ptk/types.h"

namespace zel {

// Pixels that lie side by side. What no plane gives, and the fourth byte, comes from pixels that
// are there already, which may be those that are written.
struct MergeRun {
  const RGBValue* from;      // null: all planes are given, and the fourth byte is 0
  const uint8_t* planes[3];  // null: the component is kept
  RGBValue* to;
  int64_t count;
};
using MergeRoutine = void (*)(const MergeRun& run);

// to = mask ? chosen : others, for pixels side by side.
using SelectRoutine = void (*)(const uint8_t* mask, const RGBValue* chosen, const RGBValue* others,
                               RGBValue* to, int64_t count);

struct MergeRows {
  MergeRoutine rgb, hsl, hsv;
  SelectRoutine select;
};
ZEL_ROW_TABLE(MergeRows, mergeRows)

}  // namespace zel
