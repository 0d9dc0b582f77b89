// The library's workers. All they share is static and has no locks, so that neither fork nor exit
// can find it in a state that blocks.
#include "platform/workers.h"

#include <atomic>
#include <cfenv>

#include "platform/threads.h"

namespace zel {
namespace {

constexpr int32_t HELPERS_AT_MOST = WORKERS_AT_MOST - 1;
constexpr uint32_t OPEN = 1u << 31;

// After a refusal the workers that are there must do for so many calls: a refused thread costs some
// 20 us, and the machine may have recovered when the library has worked for a while.
constexpr int32_t CALLS_WITHOUT_START = 1000;

// The last worker is normally a part of a band behind the caller: to look some 5 us long whether it
// has ended costs less than to sleep and be woken.
constexpr int32_t LOOKS_BEFORE_SLEEP = 100;

struct Pool {
  std::atomic<bool> taken;  // by the one caller that may touch what follows

  // A pass: written while it is closed and nobody is inside.
  WorkerPass pass;
  void* context;
  std::fenv_t environment;

  std::atomic<uint32_t> inside;  // OPEN, and the number of workers in the pass
  std::atomic<int32_t> places;   // in the pass that no worker has taken
  std::atomic<uint32_t> calls;   // counts on with each call; workers sleep at it
  std::atomic<bool> ending;

  pthread_t threads[HELPERS_AT_MOST];
  int32_t started;
  int32_t callsWithoutStart;
  bool forkWatched;
};
constinit Pool pool{};

// A worker enters only an open pass, so that the caller need not wait for those who are late.
bool PassEnter() {
  uint32_t inside = pool.inside.load();
  while ((inside & OPEN) != 0) {
    if (pool.inside.compare_exchange_weak(inside, inside + 1)) return true;
  }
  return false;
}

void PassLeave() {
  if (pool.inside.fetch_sub(1) == 1) ThreadsInUse().wake(&pool.inside, 1);
}

void PassClose() {
  pool.inside.fetch_and(~OPEN);
  for (int32_t look = 0; look < LOOKS_BEFORE_SLEEP && pool.inside.load() != 0; look++) {
#if defined(__x86_64__) || defined(__i386__)
    __builtin_ia32_pause();
#endif
  }
  while (const uint32_t inside = pool.inside.load()) {
    ThreadsInUse().sleepWhile(&pool.inside, inside);
  }
}

void CallWorkers(int32_t count) {
  pool.calls.fetch_add(1);
  ThreadsInUse().wake(&pool.calls, count);
}

// Signals of traps are for the caller's thread alone, and fatal where they are blocked.
void ComputeAsCaller() {
  std::fenv_t withTraps;
  std::fesetenv(&pool.environment);
  std::feholdexcept(&withTraps);
}

// The number of calls is read before the pass is looked at: a call that comes in between ends the
// sleep at once.
//
// A pass may want fewer workers than there are, and has memory for these alone. Which of them come
// first is the machine's choice: each takes one of the places, and who finds none goes.
void* WorkerLive(void*) {
  for (;;) {
    const uint32_t calls = pool.calls.load();
    if (pool.ending.load()) return nullptr;
    if (PassEnter()) {
      const int32_t place = pool.places.fetch_sub(1);
      if (place > 0) {
        ComputeAsCaller();
        pool.pass(pool.context, place);
      }
      PassLeave();
    }
    ThreadsInUse().sleepWhile(&pool.calls, calls);
  }
}

// In a forked child the threads are gone, whatever they and the other threads were doing.
void ForgetWorkers() {
  pool.taken.store(false);
  pool.inside.store(0);
  pool.ending.store(false);
  pool.started = 0;
  pool.callsWithoutStart = 0;
}

bool ForkWatch() {
  if (!pool.forkWatched) pool.forkWatched = pthread_atfork(nullptr, nullptr, &ForgetWorkers) == 0;
  return pool.forkWatched;
}

bool WorkerStart() {
  if (!ForkWatch() || !ThreadsInUse().start(&pool.threads[pool.started], &WorkerLive, nullptr)) {
    return false;
  }
  pool.started++;
  return true;
}

// Starts what is missing. Returns how many workers there are for the call.
int32_t WorkersEnsure(int32_t helpers) {
  if (helpers > HELPERS_AT_MOST) helpers = HELPERS_AT_MOST;
  if (pool.callsWithoutStart > 0) pool.callsWithoutStart--;
  while (pool.started < helpers && pool.callsWithoutStart == 0) {
    if (!WorkerStart()) pool.callsWithoutStart = CALLS_WITHOUT_START;
  }
  return pool.started < helpers ? pool.started : helpers;
}

void RunTogether(int32_t helpers, WorkerPass pass, void* context) {
  pool.pass = pass;
  pool.context = context;
  std::fegetenv(&pool.environment);
  pool.places.store(helpers);
  pool.inside.store(OPEN);
  CallWorkers(helpers);
  pass(context, 0);
  PassClose();
}

}  // namespace

void WorkersRun(int32_t helpers, WorkerPass pass, void* context) {
  if (helpers <= 0 || fegetexcept() != 0 || pool.taken.exchange(true)) {
    pass(context, 0);
    return;
  }
  const int32_t there = WorkersEnsure(helpers);
  if (there > 0) {
    RunTogether(there, pass, context);
  } else {
    pass(context, 0);
  }
  pool.taken.store(false);
}

// At unloading too. A thread that computes at the end of the process keeps its workers.
__attribute__((destructor)) void WorkersJoin() {
  if (pool.taken.exchange(true)) return;
  pool.callsWithoutStart = 0;
  pool.ending.store(true);
  CallWorkers(pool.started);
  while (pool.started > 0) ThreadsInUse().join(pool.threads[--pool.started]);
  pool.ending.store(false);
  pool.taken.store(false);
}

}  // namespace zel
