// Writing to what nobody reads any more must not end the program.
#pragma once

#include <signal.h>
#include <time.h>

namespace zel {

// Holds back the signal of a broken pipe in this thread.
class WithoutPipeSignal {
 public:
  WithoutPipeSignal() {
    sigemptyset(&pipe_);
    sigaddset(&pipe_, SIGPIPE);
    wasPending_ = IsPending();
    isBlocked_ = pthread_sigmask(SIG_BLOCK, &pipe_, &former_) == 0;
  }
  WithoutPipeSignal(const WithoutPipeSignal&) = delete;
  WithoutPipeSignal& operator=(const WithoutPipeSignal&) = delete;
  ~WithoutPipeSignal() {
    if (!isBlocked_) return;
    // One of the caller's own, which it has held back, stays.
    const timespec atOnce{};
    if (!wasPending_ && IsPending()) sigtimedwait(&pipe_, nullptr, &atOnce);
    pthread_sigmask(SIG_SETMASK, &former_, nullptr);
  }

 private:
  static bool IsPending() {
    sigset_t pending;
    return sigpending(&pending) == 0 && sigismember(&pending, SIGPIPE) == 1;
  }

  sigset_t pipe_{};
  sigset_t former_{};
  bool wasPending_ = false;
  bool isBlocked_ = false;
};

}  // namespace zel
