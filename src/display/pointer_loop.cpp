// Following the pointer.
#include "display/pointer_loop.h"

#include <algorithm>
#include <utility>

namespace zel {
namespace {

// A hundred looks a second are smooth, and leave the processor to others.
constexpr int32_t PAUSE = 10;

}  // namespace

bool PointerLoop::Next() {
  const Desktop& desktop = DesktopInUse();
  if (!std::exchange(isFirst_, false)) desktop.idle(PAUSE);
  // Handlers can close the window, and callbacks do anything.
  desktop.pump();
  wasCut_ = !IsWindowThere();
  if (wasCut_) return false;
  const PanelBinding& binding = display.bindings[window_];
  pointer_ = desktop.pointer(binding.panel, binding.canvas);
  // Presses that have come are still to be served.
  wasCut_ = !pointer_.isFollowed && display.waitingPresses == 0;
  return !wasCut_;
}

bool PointerLoop::TakePress(DesktopEvent* press) {
  if (display.waitingPresses == 0) return false;
  *press = display.presses[0];
  display.waitingPresses--;
  std::copy_n(display.presses + 1, display.waitingPresses, display.presses);
  return true;
}

}  // namespace zel
