// The message box of a machine without a desktop: standard error.
#include "platform/message_box.h"

#include <signal.h>
#include <time.h>

#include <cstdio>
#include <cstring>

namespace zel {
namespace {

// Holds back the signal of a pipe that nobody reads any more: a terminal that was closed must not
// end the program for the sake of a message.
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

void PrintMessage(const char* title, const char* text) {
  const WithoutPipeSignal held;
  const size_t length = std::strlen(text);
  const bool isEnded = length > 0 && text[length - 1] == '\n';
  std::fprintf(stderr, "%s: %s%s", title, text, isEnded ? "" : "\n");
  std::fflush(stderr);
}

constexpr MessageBox PRINTING{&PrintMessage};
const MessageBox* inUse = &PRINTING;

}  // namespace

const MessageBox& MessageBoxInUse() {
  return *inUse;
}

void MessageBoxUse(const MessageBox* messageBox) {
  inUse = messageBox ? messageBox : &PRINTING;
}

}  // namespace zel
