// Shapes drawn with the mouse.
#pragma once

#include "display/window_records.h"

namespace zel {

// Follows the pointer from the first point of a shape of the window's tool, and makes what was
// drawn the window's region. isShift: lines keep to an axis, boxes are square, and a region that
// is there stays beside the new shape.
void ShapeDraw(int32_t window, PointInt start, bool isShift);

}  // namespace zel
