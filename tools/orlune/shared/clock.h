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

  // The same, and the clock goes on.
  Seconds Passed() const { return Seconds(std::chrono::steady_clock::now() - start_); }

 private:
  std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

}  // namespace front
