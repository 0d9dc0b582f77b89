// What structuring elements ask of images, whatever the operation.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace zel {

// Positions of an element; 0 where a side is below 1.
int64_t ElementPositions(const StructuringElement& element);

// The numbers of an element that are not 0; none of one with too few positions to be read.
int64_t ElementMembers(const StructuringElement& element);

// Elements with fewer positions are no neighbourhood: operations copy then.
constexpr int64_t LEAST_ELEMENT_POSITIONS = 3;

// The border that an image must have for it.
int32_t ElementBorder(const StructuringElement& element);

// Only 16 bits of the field count.
inline bool IsHexagonal(const StructuringElement& element) {
  return (element.hexagonal & 0xFFFF) != 0;
}

// NULL where a kernel would read: the element itself, or the numbers of a neighbourhood.
bool ElementIsMissing(const StructuringElement* element);

}  // namespace zel
