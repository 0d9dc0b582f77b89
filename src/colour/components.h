// What the three planes of a colour mode hold: how they come out of pixels and back.
#pragma once

#include "colour/components_rows.h"
#include "colour/merge_rows.h"

namespace zel {

// Pixels are worked through in blocks of so many, whose components lie in buffers.
constexpr int64_t COLOUR_BLOCK = 512;
constexpr int32_t COLOUR_PLANES = 3;

bool IsColourMode(int32_t mode);

// The planes in their order. What takes components out knows three modes, and counts any other
// number as MODE_HSV.
struct ComponentSet {
  ComponentRoutine planes[COLOUR_PLANES];
};
ComponentSet ComponentsOf(int32_t mode);

// Null for a number that is no mode: nothing is written then.
MergeRoutine MergeOf(int32_t mode);

}  // namespace zel
