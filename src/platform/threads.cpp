// The machine's threads, by POSIX threads and system calls.
#include "platform/threads.h"

#include <linux/futex.h>
#include <sched.h>
#include <signal.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace zel {
namespace {

constexpr size_t STACK_BYTES = 256 * 1024;
constexpr size_t PROCESSORS_AT_MOST = 8192;  // the largest that kernels are built for

int32_t ProcessorsAllowed() {
  cpu_set_t allowed[PROCESSORS_AT_MOST / CPU_SETSIZE];
  if (sched_getaffinity(0, sizeof allowed, allowed) != 0) return 1;
  return CPU_COUNT_S(sizeof allowed, allowed);
}

// Signals are for the threads of the program: a thread begins with the mask of its maker.
bool StartThread(pthread_t* thread, void* (*run)(void*), void* argument) {
  pthread_attr_t attributes;
  if (pthread_attr_init(&attributes) != 0) return false;
  sigset_t all;
  sigset_t former;
  sigfillset(&all);
  const bool started = pthread_attr_setstacksize(&attributes, STACK_BYTES) == 0 &&
                       pthread_sigmask(SIG_SETMASK, &all, &former) == 0;
  bool made = false;
  if (started) {
    made = pthread_create(thread, &attributes, run, argument) == 0;
    pthread_sigmask(SIG_SETMASK, &former, nullptr);
  }
  pthread_attr_destroy(&attributes);
  if (made) pthread_setname_np(*thread, "orlune");
  return made;
}

void JoinThread(pthread_t thread) {
  pthread_join(thread, nullptr);
}

long Futex(std::atomic<uint32_t>* word, int operation, uint32_t value) {
  static_assert(sizeof *word == sizeof(uint32_t) && std::atomic<uint32_t>::is_always_lock_free);
  return syscall(SYS_futex, word, operation | FUTEX_PRIVATE_FLAG, value, nullptr, nullptr, 0);
}

void SleepWhile(std::atomic<uint32_t>* word, uint32_t value) {
  Futex(word, FUTEX_WAIT, value);
}

void Wake(std::atomic<uint32_t>* word, int32_t count) {
  Futex(word, FUTEX_WAKE, static_cast<uint32_t>(count));
}

constexpr ThreadPlatform MACHINE{.processors = &ProcessorsAllowed,
                                 .start = &StartThread,
                                 .join = &JoinThread,
                                 .sleepWhile = &SleepWhile,
                                 .wake = &Wake};
const ThreadPlatform* inUse = &MACHINE;

}  // namespace

const ThreadPlatform& ThreadsInUse() {
  return *inUse;
}

void ThreadsUse(const ThreadPlatform* platform) {
  inUse = platform ? platform : &MACHINE;
}

}  // namespace zel
