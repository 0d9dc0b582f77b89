#include "engine/bands.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cfenv>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "core/handles.h"
#include "platform/threads.h"

namespace {

using namespace zel;
using namespace std::chrono_literals;

constexpr int64_t LARGE = 100000000;  // bytes that are worth any number of workers

int32_t Tasks() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<int32_t>(std::distance(begin(tasks), end(tasks)));
}

// The thread sanitizer has a thread of its own, from the first one of the program on, and loses
// count when a forked child starts threads. An emulator of another processor has one from the begin
// on, ends such a child, and keeps the last signal for itself.
#if defined(__SANITIZE_THREAD__)
constexpr int32_t THREADS_WITHOUT_WORKERS = 2;
constexpr bool IS_EMULATED = false;
constexpr bool CHILD_MAY_START_THREADS = false;
#else
const int32_t THREADS_WITHOUT_WORKERS = Tasks();
const bool IS_EMULATED = THREADS_WITHOUT_WORKERS > 1;
const bool CHILD_MAY_START_THREADS = !IS_EMULATED;
#endif

// A joined thread may be listed a moment longer.
bool WorkersBecome(int32_t count) {
  const auto limit = std::chrono::steady_clock::now() + 10s;
  while (Tasks() != THREADS_WITHOUT_WORKERS + count) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::yield();
  }
  return true;
}

bool CoversEachUnitOnce(const BandPlan& plan) {
  std::vector<std::atomic<int32_t>> covered(static_cast<size_t>(plan.units));
  BandsRun(plan, [&](const Band& band) {
    for (int64_t unit = band.begin; unit < band.end; unit++) covered[static_cast<size_t>(unit)]++;
  });
  for (const auto& count : covered) {
    if (count.load() != 1) return false;
  }
  return true;
}

// Runs a pass in which as many threads take part as there are workers: each keeps its first band
// until all have come. False when they don't come.
bool EachWorkerRuns(const std::function<void(int32_t worker)>& action) {
  const int32_t workers = BandWorkers();
  std::atomic<int32_t> arrived{0};
  std::vector<int32_t> seen(static_cast<size_t>(workers));  // each touched by its worker only
  BandsRun({.units = 1000, .bytes = LARGE}, [&](const Band& band) {
    int32_t& mine = seen.at(static_cast<size_t>(band.worker));
    if (mine++ != 0) return;
    action(band.worker);
    arrived++;
    const auto limit = std::chrono::steady_clock::now() + 10s;
    while (arrived < workers && std::chrono::steady_clock::now() < limit) {
      std::this_thread::yield();
    }
  });
  return arrived == workers;
}

bool EachWorkerRuns() {
  return EachWorkerRuns([](int32_t) {});
}

class Bands : public testing::Test {
 protected:
  Bands() {
    std::thread([] {}).join();
    BandsForce(3, 0);
  }
  ~Bands() override {
    BandsForce(0, 0);
    ThreadsUse(nullptr);
    EXPECT_TRUE(WorkersBecome(0));
  }
  ThreadPlatform platform_ = ThreadsInUse();
};

class BandsOfWorkers : public Bands, public testing::WithParamInterface<int32_t> {
 protected:
  BandsOfWorkers() { BandsForce(GetParam(), 0); }
};
INSTANTIATE_TEST_SUITE_P(Workers, BandsOfWorkers, testing::Values(1, 2, 3, 8, 64));

TEST_P(BandsOfWorkers, CoverEachUnitOnce) {
  for (const int64_t units : {0, 1, 2, 3, 7, 63, 64, 65, 1000, 1001, 99991}) {
    for (const int64_t alignment : {1, 64}) {
      for (const int64_t startUnits : {0, 1, 5, 900}) {
        EXPECT_TRUE(CoversEachUnitOnce({units, LARGE, alignment, startUnits}))
            << units << " units, alignment " << alignment << ", start " << startUnits;
      }
    }
  }
}

TEST_P(BandsOfWorkers, BeginAtTheAlignmentAndRepayTheirStart) {
  // Eight times the start, or as much as leaves a band for each worker, and never less than it.
  const int64_t leastUnits = std::clamp<int64_t>(10001 / GetParam(), 100, 800);
  std::atomic<int32_t> wrong{0};
  std::atomic<int32_t> bands{0};
  BandsRun({.units = 10001, .bytes = LARGE, .alignment = 64, .startUnits = 100},
           [&](const Band& band) {
             bands++;
             if (band.begin % 64 != 0) wrong++;
             if (band.end - band.begin < leastUnits && band.end != 10001) wrong++;
             if (band.worker < 0 || band.worker >= BandWorkersFor(LARGE)) wrong++;
           });
  EXPECT_EQ(wrong, 0);
  EXPECT_EQ(bands > 1, GetParam() > 1);
}

TEST_P(BandsOfWorkers, OfOneWorkerNeverRunAtOnce) {
  std::vector<std::atomic<bool>> busy(static_cast<size_t>(BandWorkers()));
  std::atomic<int32_t> clashes{0};
  for (int32_t round = 0; round < 200; round++) {
    BandsRun({.units = 500, .bytes = LARGE}, [&](const Band& band) {
      std::atomic<bool>& mine = busy[static_cast<size_t>(band.worker)];
      if (mine.exchange(true)) clashes++;
      mine = false;
    });
  }
  EXPECT_EQ(clashes, 0);
}

TEST_P(BandsOfWorkers, RunOnAsManyThreadsAsAskedFor) {
  std::vector<std::thread::id> ids(static_cast<size_t>(GetParam()));
  EXPECT_TRUE(EachWorkerRuns(
      [&](int32_t worker) { ids[static_cast<size_t>(worker)] = std::this_thread::get_id(); }));
  EXPECT_EQ(ids[0], std::this_thread::get_id());
  EXPECT_EQ(std::set(ids.begin(), ids.end()).size(), ids.size());
  EXPECT_TRUE(WorkersBecome(GetParam() - 1));
}

// What a band writes without atomics is the caller's when the call returns, call after call. (The
// thread sanitizer watches.)
TEST_P(BandsOfWorkers, HandOverWhatTheyWrite) {
  std::vector<int64_t> values(4096);
  for (int32_t round = 0; round < 500; round++) {
    BandsRun({.units = 4096, .bytes = LARGE}, [&](const Band& band) {
      for (int64_t unit = band.begin; unit < band.end; unit++) {
        values[static_cast<size_t>(unit)] += unit;
      }
    });
    values[static_cast<size_t>(round)] -= round;
  }
  for (int64_t unit = 0; unit < 4096; unit++) {
    ASSERT_EQ(values[static_cast<size_t>(unit)], (unit < 500 ? 499 : 500) * unit);
  }
}

TEST_F(Bands, ASmallPassIsOneBandWithoutWorkers) {
  int32_t bands = 0;
  BandsRun({.units = 100, .bytes = 30000}, [&](const Band& band) {
    bands++;
    EXPECT_EQ(band.begin, 0);
    EXPECT_EQ(band.end, 100);
    EXPECT_EQ(band.worker, 0);
  });
  EXPECT_EQ(bands, 1);
  EXPECT_TRUE(WorkersBecome(0));
}

TEST_F(Bands, APassGetsTheWorkersThatItsBytesRepay) {
  BandsForce(8, 1000);
  CoversEachUnitOnce({.units = 100, .bytes = 1999});
  EXPECT_TRUE(WorkersBecome(0));
  CoversEachUnitOnce({.units = 100, .bytes = 3000});
  EXPECT_TRUE(WorkersBecome(2));
  CoversEachUnitOnce({.units = 4, .bytes = LARGE});  // no more than there are bands
  EXPECT_TRUE(WorkersBecome(3));
}

// Memory is there for the wanted ones, by their numbers, whichever of the threads are the first to
// come.
TEST_F(Bands, APassNumbersItsWorkersWithinWhatItWants) {
  constexpr int64_t bytesAWorker = 1000;
  BandsForce(8, bytesAWorker);
  ASSERT_TRUE(EachWorkerRuns([](int32_t) {}));  // all threads are there
  for (int32_t pass = 0; pass < 300; pass++) {
    std::atomic<int32_t> wrong{0};
    std::atomic<int32_t> inside[2] = {};
    BandsRun({.units = 8, .bytes = 2 * bytesAWorker}, [&](const Band& band) {
      if (band.worker < 0 || band.worker > 1) {
        wrong++;
        return;
      }
      if (inside[band.worker]++ != 0) wrong++;
      std::this_thread::sleep_for(20us);
      inside[band.worker]--;
    });
    ASSERT_EQ(wrong, 0) << "in pass " << pass;
  }
}

TEST_F(Bands, TheEnvironmentSetsTheNumberOfWorkers) {
  const char* former = std::getenv("ORLUNE_PTK_THREADS");
  const std::string kept = former ? former : "";
  const auto workersFor = [](const char* text) {
    setenv("ORLUNE_PTK_THREADS", text, 1);
    BandsForce(0, 0);
    return BandWorkers();
  };
  unsetenv("ORLUNE_PTK_THREADS");
  BandsForce(0, 0);
  const int32_t all = BandWorkers();
  EXPECT_EQ(all, std::min(ThreadsInUse().processors(), 64));
  EXPECT_EQ(workersFor("1"), 1);
  EXPECT_EQ(workersFor("5"), 5);
  EXPECT_EQ(workersFor("64"), 64);
  EXPECT_EQ(workersFor("65"), 64);
  EXPECT_EQ(workersFor("99999999999999999999"), 64);
  for (const char* nonsense : {"", "0", "-1", "-99999999999999999999", "two", "2x", " 2", "1.5"}) {
    EXPECT_EQ(workersFor(nonsense), all) << nonsense;
  }
  if (former) {
    setenv("ORLUNE_PTK_THREADS", kept.c_str(), 1);
  } else {
    unsetenv("ORLUNE_PTK_THREADS");
  }
}

TEST_F(Bands, APassInsideAnotherIsOneBandOfItsThread) {
  std::atomic<int32_t> inner{0};
  std::atomic<int32_t> wrong{0};
  EXPECT_TRUE(EachWorkerRuns([&](int32_t) {
    const std::thread::id outer = std::this_thread::get_id();
    BandsRun({.units = 10, .bytes = LARGE}, [&](const Band& band) {
      inner++;
      if (std::this_thread::get_id() != outer || band.worker != 0) wrong++;
    });
  }));
  EXPECT_GE(inner, 3);
  EXPECT_EQ(wrong, 0);
  EXPECT_TRUE(EachWorkerRuns());
}

TEST_F(Bands, ASecondCallerComputesAlone) {
  bool covered = false;
  std::atomic<int32_t> strangers{0};
  EXPECT_TRUE(EachWorkerRuns([&](int32_t worker) {
    if (worker != 1) return;
    std::thread([&] {
      const std::thread::id self = std::this_thread::get_id();
      BandsRun({.units = 10, .bytes = LARGE}, [&](const Band&) {
        if (std::this_thread::get_id() != self) strangers++;
      });
      covered = CoversEachUnitOnce({.units = 1001, .bytes = LARGE});
    }).join();
  }));
  EXPECT_TRUE(covered);
  EXPECT_EQ(strangers, 0);
}

TEST_F(Bands, CallersAtOnceGetTheirOwnResults) {
  std::atomic<int32_t> wrong{0};
  std::vector<std::thread> callers;
  for (int32_t caller = 0; caller < 4; caller++) {
    callers.emplace_back([&] {
      for (int32_t round = 0; round < 100; round++) {
        if (!CoversEachUnitOnce({.units = 301, .bytes = LARGE})) wrong++;
      }
    });
  }
  for (std::thread& caller : callers) caller.join();
  EXPECT_EQ(wrong, 0);
}

TEST_F(Bands, WorkersComputeInTheCallersFloatingPointEnvironment) {
  volatile float third = 3.0f;
  volatile float tiny = 1e-38f;
  const auto quotients = [&] { return std::pair(1.0f / third, tiny / third); };
  std::vector<std::pair<float, float>> results(3);
  const auto compute = [&](int32_t worker) { results[static_cast<size_t>(worker)] = quotients(); };
  const auto usual = quotients();

  std::fesetround(FE_DOWNWARD);  // the nearest float to a third is above it
#if defined(__SSE__)
  const unsigned former = __builtin_ia32_stmxcsr();
  __builtin_ia32_ldmxcsr(former | 0x8000);  // flush to zero
#endif
  const auto unusual = quotients();
  EXPECT_TRUE(EachWorkerRuns(compute));
#if defined(__SSE__)
  __builtin_ia32_ldmxcsr(former);
  EXPECT_EQ(unusual.second, 0.0f);
#endif
  std::fesetround(FE_TONEAREST);
  EXPECT_NE(unusual, usual);
  for (const auto& result : results) EXPECT_EQ(result, unusual);

  EXPECT_TRUE(EachWorkerRuns(compute));
  for (const auto& result : results) EXPECT_EQ(result, usual);
}

TEST_F(Bands, ACallerWithTrapsComputesAlone) {
  if (feenableexcept(FE_DIVBYZERO) == -1) GTEST_SKIP() << "this processor has no traps";
  std::atomic<int32_t> strangers{0};
  BandsRun({.units = 1000, .bytes = LARGE}, [&](const Band& band) {
    if (band.worker != 0) strangers++;
  });
  fedisableexcept(FE_DIVBYZERO);
  EXPECT_EQ(strangers, 0);
  EXPECT_TRUE(WorkersBecome(0));
}

TEST_F(Bands, WorkersBlockAllSignalsAndTheCallerKeepsItsMask) {
  sigset_t before;
  pthread_sigmask(SIG_SETMASK, nullptr, &before);
  std::vector<sigset_t> masks(3);
  EXPECT_TRUE(EachWorkerRuns([&](int32_t worker) {
    pthread_sigmask(SIG_SETMASK, nullptr, &masks[static_cast<size_t>(worker)]);
  }));
  for (int32_t number : {SIGINT, SIGTERM, SIGALRM, SIGPROF, SIGUSR1, SIGCHLD, SIGRTMIN, SIGRTMAX}) {
    if (number == SIGRTMAX && IS_EMULATED) continue;
    EXPECT_EQ(sigismember(&masks[0], number), sigismember(&before, number)) << number;
    EXPECT_EQ(sigismember(&masks[1], number), 1) << number;
    EXPECT_EQ(sigismember(&masks[2], number), 1) << number;
  }
}

TEST_F(Bands, WorkersHaveAName) {
  std::vector<std::string> names(3);
  EXPECT_TRUE(EachWorkerRuns([&](int32_t worker) {
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    names[static_cast<size_t>(worker)] = name;
  }));
  EXPECT_NE(names[0], "orlune");
  EXPECT_EQ(names[1], "orlune");
  EXPECT_EQ(names[2], "orlune");
}

TEST_F(Bands, WorkersKeepToTheProcessorsThatTheCallerMayUse) {
  cpu_set_t former;
  ASSERT_EQ(sched_getaffinity(0, sizeof former, &former), 0);
  size_t last = CPU_SETSIZE - 1;
  while (!CPU_ISSET(last, &former)) last--;
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(last, &one);
  ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);

  EXPECT_EQ(ThreadsInUse().processors(), 1);
  std::vector<cpu_set_t> allowed(3);
  EXPECT_TRUE(EachWorkerRuns([&](int32_t worker) {
    sched_getaffinity(0, sizeof(cpu_set_t), &allowed[static_cast<size_t>(worker)]);
  }));
  sched_setaffinity(0, sizeof former, &former);
  EXPECT_EQ(ThreadsInUse().processors(), CPU_COUNT(&former));
  for (const cpu_set_t& set : allowed) EXPECT_TRUE(CPU_EQUAL(&set, &one));
}

TEST_F(Bands, ShutdownJoinsTheWorkersAndTheNextPassStartsOver) {
  for (int32_t round = 0; round < 20; round++) {
    EXPECT_TRUE(EachWorkerRuns());
    EXPECT_TRUE(WorkersBecome(2));
    EXPECT_EQ(CoreShutdown(), 0);
    EXPECT_TRUE(WorkersBecome(0));
  }
}

// A machine that grants so many threads.
int32_t threadsGranted = 0;
int32_t threadsAsked = 0;

class BandsOfAPoorMachine : public Bands {
 protected:
  BandsOfAPoorMachine() {
    threadsAsked = 0;
    machinesStart = platform_.start;
    platform_.start = [](pthread_t* thread, void* (*run)(void*), void* argument) {
      threadsAsked++;
      return threadsAsked <= threadsGranted && machinesStart(thread, run, argument);
    };
    ThreadsUse(&platform_);
  }
  static inline decltype(ThreadPlatform::start) machinesStart;
};

TEST_F(BandsOfAPoorMachine, ComputeAloneWithoutAskingForThreadsEachTime) {
  threadsGranted = 0;
  for (int32_t round = 0; round < 1000; round++) {
    ASSERT_TRUE(CoversEachUnitOnce({.units = 101, .bytes = LARGE}));
  }
  EXPECT_EQ(threadsAsked, 1);
  EXPECT_TRUE(WorkersBecome(0));

  threadsGranted = 1000;  // it has recovered
  EXPECT_TRUE(EachWorkerRuns());
}

TEST_F(BandsOfAPoorMachine, UseTheWorkersThatAreGranted) {
  threadsGranted = 1;
  for (int32_t round = 0; round < 100; round++) {
    ASSERT_TRUE(CoversEachUnitOnce({.units = 101, .bytes = LARGE}));
  }
  EXPECT_EQ(threadsAsked, 2);
  EXPECT_TRUE(WorkersBecome(1));

  std::atomic<bool> came{false};
  BandsRun({.units = 2, .bytes = LARGE}, [&](const Band& band) {
    if (band.worker == 1) came = true;
    const auto limit = std::chrono::steady_clock::now() + 10s;
    while (!came && std::chrono::steady_clock::now() < limit) std::this_thread::yield();
  });
  EXPECT_TRUE(came);
}

TEST_F(BandsOfAPoorMachine, AskAgainAfterAShutdown) {
  threadsGranted = 0;
  CoversEachUnitOnce({.units = 101, .bytes = LARGE});
  CoreShutdown();
  threadsGranted = 1000;
  EXPECT_TRUE(EachWorkerRuns());
}

// A machine whose new threads don't come to run.
TEST_F(Bands, TheCallerDoesNotWaitForWorkersThatHaveNotWokenUp) {
  platform_.start = [](pthread_t*, void* (*)(void*), void*) { return true; };
  platform_.join = [](pthread_t) {};
  ThreadsUse(&platform_);
  EXPECT_TRUE(CoversEachUnitOnce({.units = 1001, .bytes = LARGE}));
}

// What a child has to say is its exit status.
bool TrueInChild(const std::function<bool()>& condition) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    _exit(condition() ? 0 : 1);
  }
  int status = 0;
  return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

bool ChildStartsItsOwnWorkers() {
  return Tasks() == 1 && EachWorkerRuns() && WorkersBecome(2) && CoreShutdown() == 0 &&
         WorkersBecome(0) && EachWorkerRuns();
}

TEST_F(Bands, AForkedChildBeginsWithoutWorkersAndStartsItsOwn) {
  if (!CHILD_MAY_START_THREADS) GTEST_SKIP();
  for (int32_t round = 0; round < 10; round++) {
    EXPECT_TRUE(EachWorkerRuns());
    EXPECT_TRUE(TrueInChild(&ChildStartsItsOwnWorkers));
    EXPECT_TRUE(TrueInChild([] { return CoreShutdown() == 0; }));
    EXPECT_TRUE(TrueInChild([] { return TrueInChild(&ChildStartsItsOwnWorkers); }));
    EXPECT_TRUE(EachWorkerRuns());
    EXPECT_TRUE(WorkersBecome(2));
  }
}

TEST_F(Bands, AForkDuringAPassOfAnotherThreadLeavesTheChildFree) {
  if (!CHILD_MAY_START_THREADS) GTEST_SKIP();
  bool childComputes = false;
  EXPECT_TRUE(EachWorkerRuns([&](int32_t worker) {
    if (worker != 1) return;
    std::thread([&] { childComputes = TrueInChild(&ChildStartsItsOwnWorkers); }).join();
  }));
  EXPECT_TRUE(childComputes);
  EXPECT_TRUE(EachWorkerRuns());
}

TEST_F(Bands, AChildMayLeaveByExitWhileItsParentsWorkersSleep) {
  if (!CHILD_MAY_START_THREADS) GTEST_SKIP();
  EXPECT_TRUE(EachWorkerRuns());
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    EachWorkerRuns();
    std::exit(0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
}

}  // namespace
