// A clock for the parts of a task.
#pragma once

#include <chrono>
#include <utility>

namespace front {

using Seconds = std::chrono::duration<double>;

class Clock {
 public:
  // The time since the last call, or since the clock was made.
  Seconds Lap() {
    const auto now = std::chrono::steady_clock::now();
    return Seconds(now - std::exchange(start_, now));
  }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace front
