// What copies of parts of images share.
#pragma once

#include "core/images.h"
#include "core/rectangles.h"

namespace zel {

// The part of an image that a rectangle covers, which may be empty.
struct ClippedRect {
  int32_t left, top, width, height;

  bool IsEmpty() const { return width < 1 || height < 1; }
};
ClippedRect RectOn(const Image& image, const ApiRect& rect);

}  // namespace zel
