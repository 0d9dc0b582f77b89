// User windows: panels of buttons that are parts of two images.
#pragma once

#include <cstdint>

#include "core/images.h"
#include "display/window_records.h"

namespace zel {

enum ButtonKind : int32_t { BUTTON_TOGGLE = 0 };  // any other: down while the mouse is

struct ImageButton {
  int32_t state;  // 1: down
  int32_t kind;
  int32_t left, top, right, bottom;
};

// The background, which the window takes the size of. STATUS_BAD_IMAGE changes nothing;
// STATUS_MEMORY_FULL.
Status BackgroundLoad(int32_t window, ImageRef image);
// The image of the buttons when they are down, and five numbers a button: kind, left, top, right,
// bottom. STATUS_BAD_IMAGE for an image that is not 0; STATUS_MEMORY_FULL.
Status ButtonsLoad(int32_t window, ImageRef image, const int32_t* values, int64_t count);

struct Buttons {
  ImageButton* buttons;
  int64_t count;
};
Buttons ButtonsOf(const WindowRecord& record);
// A toggle takes a state, drawn into the window's image.
void ButtonStateSet(int32_t window, int64_t index, int32_t state);

void ButtonPress(int32_t window, int32_t x, int32_t y);

}  // namespace zel
