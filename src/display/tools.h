// The mouse tools by their two numberings.
#pragma once

#include <cstdint>

#include "display/window_records.h"

namespace zel {

// As records hold them; a region's kind is the tool that draws it.
enum Tool : int32_t {
  TOOL_UNKNOWN = -1,
  TOOL_NONE = 0,
  TOOL_POINT = 1,
  TOOL_LINE = 2,
  TOOL_RECT = 3,
  TOOL_OVAL = 4,
  TOOL_POLYGON = 5,
  TOOL_FREEHAND = 6,
  TOOL_POLYLINE = 7,
  TOOL_FREELINE = 8,
  TOOL_ZOOM = 9,
};

constexpr bool IsMultiPoint(int32_t tool) {
  return tool >= TOOL_POLYGON && tool <= TOOL_FREELINE;
}

// From and to the numbers of callers, WindowTool.
int32_t ToolFromPublic(int32_t tool);  // TOOL_UNKNOWN for any other
int32_t ToolToPublic(int32_t tool);    // 7 for any other

// Gives windows 0 to 14 the tool, and moves the selection of the tools window to it.
void ToolSelect(int32_t tool);

// What a window's tool is before one is chosen.
int32_t ToolAtReset();

}  // namespace zel
