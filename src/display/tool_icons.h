// The pictures of the tools window, by their numbers: those of tools, WindowTool, with the frame of
// their cell, 12 to 16 of the image types, and 7 of no type.
#pragma once

#include <cstdint>

namespace zel {

constexpr int32_t TOOL_ICON_COUNT = 17;
constexpr int32_t TOOL_ICON_ROWS = 25;
constexpr int32_t TYPE_ICON_ROWS = 24;  // of those of types
constexpr int32_t TYPE_ICON = 12;
constexpr int32_t NO_TYPE_ICON = 7;

// A row is a word, its leftmost pixel in the top bit; set ones are black.
extern const uint32_t TOOL_ICONS[TOOL_ICON_COUNT][TOOL_ICON_ROWS];

}  // namespace zel
