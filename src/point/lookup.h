// Tables over pixel values: the steps that table kernels share, and the routine that applies a
// table.
#pragma once

#include "core/heap.h"
#include "core/numbers.h"
#include "engine/operands.h"
#include "engine/point.h"

namespace zel {

// What lookups, equalisation and thresholds check before they make their tables, so that a failure
// leaves the destination as it was.
void LookupCheck(ImageRef source, ImageRef mask, ImageRef destination, TypeTest takesType,
                 Operands* operands);

// Makes the destination a copy of the source's size and information, with the source's pixels where
// a mask leaves some unselected. A destination that is the mask itself is replaced at the end of
// the operands' life. The views are empty after a failure and where there is nothing to map.
PointViews LookupSettle(Operands* operands);

// A table of all levels of an integer type, for U8 without a block from the heap. Made before the
// destination is settled; its entries are 0 then.
class LevelTable {
 public:
  Status Create(int32_t type) {
    isWords_ = type == IMAGE_I16;
    return !isWords_ || words_.AllocateZeroed(LEVELS_I16) ? STATUS_OK : STATUS_MEMORY_FULL;
  }
  int32_t levels() const { return isWords_ ? LEVELS_I16 : LEVELS_U8; }
  uint16_t* entries() { return isWords_ ? words_.data() : bytes_; }

 private:
  bool isWords_ = false;
  uint16_t bytes_[LEVELS_U8] = {};
  WorkArray<uint16_t> words_;
};

// What the computed tables stretch between: the limits of the results, 0 and 255 for U8 and the
// extremes of the selected pixels for other types, and the range of pixel values, brought within
// these limits. A range of 0 to 0 is that of the limits.
struct LookupLimits {
  float low, high;
  float rangeMin, rangeMax;
  // Integer pixels only: a mask that selects none leaves no extremes.
  bool IsEmpty() const { return low > high; }
};
LookupLimits LookupLimitsOf(const PixelView& source, const MaskView& mask, float rangeMin,
                            float rangeMax);

// Maps U8 or I16 pixels through a table of LEVELS_U8 entries, of which the low bytes count, or
// LEVELS_I16 entries, indexed by the pixel read as unsigned.
void LookupApply(const PointViews& views, const uint16_t* table);

}  // namespace zel
