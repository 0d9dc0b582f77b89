// The display that windows are shown on: whether there is one, whether it is still there, and
// whether something happens on it.
#pragma once

#include <vector>

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
  // Whether it still answers.
  bool Answers() const;
  // Sleeps until the display has something for the program's windows, a signal asks the program to
  // end, or the time is over; below 0 there is no end to it. False at once when the display goes.
  bool Wait(int milliseconds);

 private:
  int Descriptor() const;
  void FindNeighbours();

  void* library_ = nullptr;
  void* connection_ = nullptr;
  // Descriptors of the program's other connections to the display: the windows' own.
  std::vector<int> neighbours_;
};

}  // namespace front
