// Tables over pixel values: the record that says which pixels go through one and where the results
// land, the steps that table kernels share, and the routine that applies a table.
#pragma once

#include "statistics/histogram.h"
#include "core/kernels.h"
#include "core/numbers.h"

namespace zel {

constexpr int32_t LEVELS_I16 = 65536;

// A rectangle of pixels to map, row by row. Source and destination may be the same pixels.
struct LookupOperation {
  int32_t type;  // ImageType of source and destination
  const uint8_t* source;
  int64_t sourcePitch;  // bytes from one row to the next
  uint8_t* destination;
  int64_t destinationPitch;
  const uint8_t* mask;  // pixels with a mask byte of 0 are copied, not mapped; null without a mask
  int64_t maskPitch;
  int32_t width, height;  // below 1: nothing to map

  bool IsEmpty() const { return width < 1 || height < 1; }
  template <class T>
  ZEL_INLINE const T* SourceRow(int64_t y) const {
    return reinterpret_cast<const T*>(source + y * sourcePitch);
  }
  template <class T>
  ZEL_INLINE T* DestinationRow(int64_t y) const {
    return reinterpret_cast<T*>(destination + y * destinationPitch);
  }
  ZEL_INLINE const uint8_t* MaskRow(int64_t y) const { return mask + y * maskPitch; }
};

// The whole of two images of the same type and size.
LookupOperation LookupOfImages(const Image& source, const Image& destination);

// The same pixels as one long row where no border or padding lies between the rows.
LookupOperation LookupAsOneRow(const LookupOperation& operation);

// The steps of a table kernel before the mapping. Checks source, destination and mask; makes the
// destination a copy of the source's size and information, with the source's pixels where a mask
// leaves some unselected; places the mask. A destination that is the mask itself is replaced at
// the end of the replacement's life. The result is empty after a failure and where there is nothing
// to map.
LookupOperation LookupPrepare(ImageRef source, ImageRef mask, ImageRef destination,
                              bool (*takesType)(int32_t type), ReplacementImage* replacement,
                              Status* status);

// What the computed tables stretch between: the limits of the results, 0 and 255 for U8 and the
// extremes of the selected pixels for other types, and the range of pixel values, brought within
// these limits. A range of 0 to 0 is that of the limits.
struct LookupLimits {
  float low, high;
  float rangeMin, rangeMax;
  // Integer pixels only: a mask that selects none leaves no extremes.
  bool IsEmpty() const { return low > high; }
};
LookupLimits LookupLimitsOf(const LookupOperation& operation, float rangeMin, float rangeMax,
                            Status* status);

// Maps pixels through a table of LEVELS_U8 entries, of which the low bytes count, or LEVELS_I16
// entries, indexed by the pixel read as unsigned. STATUS_BAD_OPERAND_TYPE for other types.
void LookupApply(const LookupOperation& operation, const uint16_t* table, Status* status);

}  // namespace zel
