// Pens and the brush that callers set.
#pragma once

#include <cstdint>

#include "display/commands.h"

namespace zel {

// The colour of finished shapes: red, green, blue. Fewer values do nothing.
void ShapeColourSet(const int32_t* values, int64_t count);

// The pen for outlines of a brush: red, green and blue of foreground and background, eight rows of
// the pattern, width, mode. Fewer values do nothing; all but the mode are answered.
void PenSet(const int32_t* values, int64_t count);
Status PenAnswer(const DisplayOutput& output);

// The brush is kept and answered as it was given: seven values, a table of 256, the height and
// width of a pattern, and its words. Too few of them do nothing. STATUS_MEMORY_FULL.
Status BrushSet(const int32_t* values, int64_t count);
Status BrushAnswer(const DisplayOutput& output);

}  // namespace zel
