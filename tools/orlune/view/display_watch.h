// The display that windows are shown on: whether there is one, and whether it is still there.
#pragma once

namespace front {

// A connection of its own, by which nothing is shown.
class DisplayWatch {
 public:
  DisplayWatch();
  DisplayWatch(const DisplayWatch&) = delete;
  DisplayWatch& operator=(const DisplayWatch&) = delete;
  ~DisplayWatch();

  // That the environment names, and that answers.
  bool IsThere() const { return connection_ != nullptr; }
  // Waits for so long. False at once when the display goes.
  bool Wait(int milliseconds) const;

 private:
  void* library_ = nullptr;
  void* connection_ = nullptr;
};

}  // namespace front
