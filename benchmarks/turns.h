// Timing by turns: ours and the peer's in short alternations, so that whatever else the machine
// does hits both alike, and the least time of each.
#pragma once

#include <sys/resource.h>
#include <time.h>

#include <algorithm>
#include <cstdint>
#include <limits>

namespace bench {

// Nanoseconds of a call; 0: not measured.
struct Times {
  double ours = 0, theirs = 0;
  // Other programs took the processor away in every turn of a side. Processor times stand even so;
  // wall times are too long then, and the longer the call, the more.
  bool disturbed = false;
};

struct Effort {
  double slice;   // nanoseconds that a turn takes at least
  double total;   // ... that all turns of a case take at least
  int32_t turns;  // least number of turns
};

constexpr Effort THOROUGH = {1e6, 1e8, 5};
constexpr Effort QUICK = {3e5, 1e7, 2};

inline double Now(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) * 1e9 + static_cast<double>(now.tv_nsec);
}

// How often the processor was taken away from this process's threads.
inline int64_t Interruptions() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return usage.ru_nivcsw;
}

// One side of a pair: how many of its calls fill a slice, and the least time of one.
template <class Call>
class Side {
 public:
  Side(Call call, clockid_t clock, double slice) : call_(call), clock_(clock) {
    call_();  // whatever a first call sets up
    while (Turn() * static_cast<double>(calls_) < slice) calls_ *= 2;
    least_ = INFINITE;
    leastDisturbed_ = INFINITE;
  }

  // Nanoseconds of a call, as the mean of a slice.
  double Turn() {
    if (calls_ > 1) call_();  // brings back into the caches what the other side drove out
    const int64_t interruptions = Interruptions();
    const double begun = Now(clock_);
    for (int64_t i = 0; i < calls_; i++) call_();
    const double time = (Now(clock_) - begun) / static_cast<double>(calls_);
    double& least = Interruptions() == interruptions ? least_ : leastDisturbed_;
    least = std::min(least, time);
    return time;
  }

  bool Disturbed() const { return least_ == INFINITE; }
  double Least() const { return Disturbed() ? leastDisturbed_ : least_; }

 private:
  static constexpr double INFINITE = std::numeric_limits<double>::infinity();

  Call call_;
  clockid_t clock_;
  int64_t calls_ = 1;
  double least_ = INFINITE;
  double leastDisturbed_ = INFINITE;
};

template <class Ours, class Theirs>
Times ByTurns(Ours ours, Theirs theirs, clockid_t clock, const Effort& effort) {
  Side first(ours, clock, effort.slice);
  Side second(theirs, clock, effort.slice);
  const double begun = Now(CLOCK_MONOTONIC);
  for (int32_t turn = 0; turn < effort.turns || Now(CLOCK_MONOTONIC) - begun < effort.total;
       turn++) {
    first.Turn();
    second.Turn();
  }
  return {first.Least(), second.Least(), first.Disturbed() || second.Disturbed()};
}

template <class Ours>
Times Alone(Ours ours, clockid_t clock, const Effort& effort) {
  Side side(ours, clock, effort.slice);
  const double begun = Now(CLOCK_MONOTONIC);
  for (int32_t turn = 0; turn < effort.turns || Now(CLOCK_MONOTONIC) - begun < effort.total / 2;
       turn++) {
    side.Turn();
  }
  return {side.Least(), 0, side.Disturbed()};
}

}  // namespace bench
