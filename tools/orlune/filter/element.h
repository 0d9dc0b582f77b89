// Structuring elements of plain shapes.
#pragma once

#include <cstdint>
#include <vector>

#include "orlune_ptk.h"

namespace front {

enum ElementShape : int32_t { RECTANGLE, DISK, HEXAGON };

// An element that owns its numbers. A disk is the ellipse that fills the rectangle.
class Element {
 public:
  Element(int32_t width, int32_t height, ElementShape shape);
  Element(const Element&) = delete;
  Element& operator=(const Element&) = delete;

  const StructuringElement* record() const { return &record_; }

 private:
  std::vector<int32_t> members_;
  StructuringElement record_;
};

// The pixels around an image that an element of this width and height reaches.
int32_t ElementBorder(int32_t width, int32_t height);

}  // namespace front
