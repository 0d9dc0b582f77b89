#include "platform/message_box.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <unistd.h>

namespace {

// Standard error on a pipe that nobody reads.
class ClosedTerminal {
 public:
  ClosedTerminal() : standardError_(dup(STDERR_FILENO)) {
    int ends[2] = {-1, -1};
    EXPECT_EQ(pipe(ends), 0);
    close(ends[0]);
    dup2(ends[1], STDERR_FILENO);
    close(ends[1]);
  }
  ClosedTerminal(const ClosedTerminal&) = delete;
  ClosedTerminal& operator=(const ClosedTerminal&) = delete;
  ~ClosedTerminal() {
    dup2(standardError_, STDERR_FILENO);
    close(standardError_);
  }

 private:
  int standardError_;
};

bool IsIn(const sigset_t& set) {
  return sigismember(&set, SIGPIPE) == 1;
}

sigset_t Blocked() {
  sigset_t set;
  pthread_sigmask(SIG_BLOCK, nullptr, &set);
  return set;
}

sigset_t Pending() {
  sigset_t set;
  sigpending(&set);
  return set;
}

// The signal's usual action, which is to end the program, for the time of a test.
class FatalPipeSignal {
 public:
  FatalPipeSignal() : former_(signal(SIGPIPE, SIG_DFL)) {}
  FatalPipeSignal(const FatalPipeSignal&) = delete;
  FatalPipeSignal& operator=(const FatalPipeSignal&) = delete;
  ~FatalPipeSignal() { signal(SIGPIPE, former_); }

 private:
  sighandler_t former_;
};

TEST(MessageBoxes, OnAClosedTerminalDoNotEndTheProgram) {
  const FatalPipeSignal fatal;
  const ClosedTerminal terminal;
  for (int i = 0; i < 3; i++) zel::MessageBoxInUse().show("a title", "a text\n");
  EXPECT_FALSE(IsIn(Blocked()));
  EXPECT_FALSE(IsIn(Pending()));
}

TEST(MessageBoxes, LeaveASignalThatTheProgramHoldsBack) {
  const FatalPipeSignal fatal;
  sigset_t pipeSignal;
  sigemptyset(&pipeSignal);
  sigaddset(&pipeSignal, SIGPIPE);
  pthread_sigmask(SIG_BLOCK, &pipeSignal, nullptr);
  raise(SIGPIPE);
  {
    const ClosedTerminal terminal;
    zel::MessageBoxInUse().show("a title", "a text\n");
  }
  EXPECT_TRUE(IsIn(Blocked()));
  EXPECT_TRUE(IsIn(Pending()));
  const timespec atOnce{};
  sigtimedwait(&pipeSignal, nullptr, &atOnce);
  pthread_sigmask(SIG_UNBLOCK, &pipeSignal, nullptr);
}

}  // namespace
