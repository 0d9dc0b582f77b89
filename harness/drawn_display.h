// A picture of a display of seven segments.
#pragma once

#include "orlune_ptk.h"

namespace test {

// The corners of its first digit, of which the lower right one is past the last pixel, and how far
// the next one is.
constexpr int32_t DRAWN_DIGIT[4] = {4, 4, 13, 19};
constexpr int32_t DRAWN_DIGIT_STEP = 15;
constexpr int32_t DRAWN_DIGITS = 2;
// What holds them, with ground around.
constexpr int32_t DRAWN_DIGITS_REGION[4] = {1, 1, 31, 22};
constexpr float DRAWN_DIGITS_THRESHOLD = 20;

// Makes an IMAGE_U8 that says 86, dark on light. Returns the status of what failed.
int32_t DrawDisplay(ImageRef* image);

}  // namespace test
