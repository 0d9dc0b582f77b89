// Ctrl-C and closed pipes.
#include "orlune/shared/interrupts.h"

#include <csignal>
#include <initializer_list>

#include "pictures/whole_file.h"

namespace front {
namespace {

volatile std::sig_atomic_t noted = 0;

constexpr std::initializer_list<int> SIGNALS = {SIGINT, SIGTERM, SIGHUP};

void Note(int signal) {
  if (noted != 0) {
    pictures::RemoveHalfWritten();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
    return;
  }
  noted = signal;
}

void Handle(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  action.sa_flags = SA_RESTART;
  sigemptyset(&action.sa_mask);
  sigaction(signal, &action, nullptr);
}

}  // namespace

void WatchInterrupts() {
  for (const int signal : SIGNALS) {
    // What a shell started in the background with signals ignored stays so.
    struct sigaction former {};
    sigaction(signal, nullptr, &former);
    if (former.sa_handler != SIG_IGN) Handle(signal, Note);
  }
  Handle(SIGPIPE, SIG_IGN);
  // A file that may not grow any more fails to be written, as on a full disk.
  Handle(SIGXFSZ, SIG_IGN);
}

int Interrupted() {
  return noted;
}

void PollUntilInterrupted(std::vector<pollfd>* files, int milliseconds) {
  sigset_t held;
  sigset_t former;
  sigemptyset(&held);
  for (const int signal : SIGNALS) sigaddset(&held, signal);
  pthread_sigmask(SIG_BLOCK, &held, &former);
  const timespec most{milliseconds / 1000, milliseconds % 1000 * 1'000'000};
  if (noted == 0) {
    ppoll(files->data(), files->size(), milliseconds < 0 ? nullptr : &most, &former);
  }
  pthread_sigmask(SIG_SETMASK, &former, nullptr);
}

void NoteClosedPipe() {
  if (noted == 0) noted = SIGPIPE;
}

void LeaveInterruptsToParent() {
  for (const int signal : SIGNALS) Handle(signal, SIG_IGN);
}

int InterruptStatus() {
  constexpr int SHELL_BASE = 128;
  return SHELL_BASE + noted;
}

}  // namespace front
