// The tools window: cells to choose tools by, and a box that tells of the pointer.
#pragma once

#include <cstdint>

#include "display/painting.h"
#include "display/tools.h"

namespace zel {

struct ToolsSetup {
  bool showsCoordinates;
  int32_t toolsPerRow;   // below 1: all in one row
  const int32_t* tools;  // WindowTool; others are left out
  int64_t toolCount;     // below 1: the standard ones
};
// Lays the window out anew. STATUS_MEMORY_FULL leaves it as it was.
Status ToolsWindowSetup(const ToolsSetup& setup);

// Moves the selection to a tool that is in the list of an open window.
void ToolsWindowSelect(int32_t tool);
int32_t ToolsWindowSelected();  // internal number, or TOOL_UNKNOWN
void ToolsWindowForget();       // when the window closes

// What lies on the window's image: the selection and the coordinates.
void ToolsWindowPaint();
void ToolsWindowPress(int32_t x, int32_t y);

// Tells where the pointer is in an image window, and of the shape being drawn there.
void CoordinatesShow(int32_t window, PointInt at, const Shape* shape);

}  // namespace zel
