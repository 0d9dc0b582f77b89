// The loop of a tool or a scroll bar: it follows the pointer while events go on arriving.
#pragma once

#include <cstdint>

#include "display/window_records.h"

namespace zel {

class PointerLoop {
 public:
  explicit PointerLoop(int32_t window) : window_(window), opening_(RecordOf(window).opening) {
    display.isInLoop = true;
    display.waitingPresses = 0;
  }
  PointerLoop(const PointerLoop&) = delete;
  PointerLoop& operator=(const PointerLoop&) = delete;
  ~PointerLoop() {
    display.isInLoop = false;
    display.waitingPresses = 0;
  }

  // Takes the next state of the pointer. False when there is none: the window was closed
  // meanwhile, or nobody moves the pointer any more.
  bool Next();
  const PointerState& pointer() const { return pointer_; }
  bool WasCut() const { return wasCut_; }

  // The first press that waits.
  bool TakePress(DesktopEvent* press);

 private:
  bool IsWindowThere() const {
    return RecordOf(window_).isOpen && RecordOf(window_).opening == opening_;
  }

  int32_t window_;
  uint32_t opening_;
  PointerState pointer_{};
  bool isFirst_ = true;
  bool wasCut_ = false;
};

}  // namespace zel
