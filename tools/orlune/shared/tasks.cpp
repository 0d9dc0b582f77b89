// Many tasks of one kind, one after the other or in worker processes.
#include "orlune/shared/tasks.h"

#include <malloc.h>
#include <poll.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <deque>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "orlune/shared/clock.h"
#include "orlune/shared/interrupts.h"
#include "orlune/shared/parcel.h"
#include "orlune/shared/words.h"

namespace front {
namespace {

constexpr size_t MOST_WORKERS = 256;

// Tasks that are given together. A worker that waits for each small one sleeps as long as it works;
// one that keeps many is late with what it found.
struct Batch {
  size_t first = 0, count = 0;
};
constexpr size_t LARGEST_BATCH = 64;
constexpr Seconds BATCH_TIME{0.01};

bool ReadAll(int descriptor, void* to, size_t bytes) {
  auto* at = static_cast<char*>(to);
  while (bytes > 0) {
    const ssize_t count = ::read(descriptor, at, bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    at += count;
    bytes -= static_cast<size_t>(count);
  }
  return true;
}

bool WriteAll(int descriptor, const void* from, size_t bytes) {
  const auto* at = static_cast<const char*>(from);
  while (bytes > 0) {
    const ssize_t count = ::write(descriptor, at, bytes);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    at += count;
    bytes -= static_cast<size_t>(count);
  }
  return true;
}

// What a task has given back the next one takes: it need not come from the system for each of them,
// nor are small blocks gathered whenever a picture is given back.
void KeepMemory() {
#ifdef __GLIBC__
  ::mallopt(M_MXFAST, 0);
  ::mallopt(M_MMAP_THRESHOLD, 1 << 25);
  ::mallopt(M_TRIM_THRESHOLD, 1 << 28);
#endif
}

// A process that does the tasks of the batches that it is sent, until there are no more to come.
class Worker {
 public:
  // Throws std::system_error.
  Worker(const TaskRun& run, const std::vector<Worker*>& others) {
    int batches[2], results[2];
    if (::pipe(batches) != 0) Fail("pipe");
    if (::pipe(results) != 0) Fail("pipe");
    std::cout.flush();
    const pid_t parent = ::getpid();
    process_ = ::fork();
    if (process_ < 0) Fail("fork");
    if (process_ == 0) {
      // The ends of other workers' pipes would keep them waiting.
      for (const Worker* other : others) other->CloseEnds();
      ::close(batches[1]);
      ::close(results[0]);
      Serve(run, parent, batches[0], results[1]);
    }
    ::close(batches[0]);
    ::close(results[1]);
    batches_ = batches[1];
    results_ = results[0];
  }
  ~Worker() {
    CloseEnds();
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  const Batch& batch() const { return batch_; }
  bool IsBusy() const { return batch_.count > 0; }
  int results() const { return results_; }
  // How long it may go on until it is late; without end where it does not work.
  Seconds Left(Seconds limit) const {
    return IsBusy() ? limit - clock_.Passed() : Seconds(HUGE_VAL);
  }
  void End() const { ::kill(process_, SIGKILL); }
  // How many tasks should come next, by the time that the last ones took.
  size_t NextCount() const { return nextCount_; }

  void Give(const Batch& batch) {
    batch_ = batch;
    clock_.Lap();
    WriteAll(batches_, &batch, sizeof batch);
  }
  // What the tasks of the batch gave; nothing from a worker that is no more.
  std::optional<std::string> Receive() {
    size_t size = 0;
    if (!ReadAll(results_, &size, sizeof size)) return std::nullopt;
    std::string results(size, '\0');
    if (!ReadAll(results_, results.data(), size)) return std::nullopt;
    const bool quick = clock_.Lap() < BATCH_TIME;
    nextCount_ =
        quick ? std::min(batch_.count * 2, LARGEST_BATCH) : std::max(batch_.count / 2, size_t{1});
    batch_ = {};
    return results;
  }

 private:
  [[noreturn]] static void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
  }

  [[noreturn]] static void Serve(const TaskRun& run, pid_t parent, int batches, int toParent) {
    LeaveInterruptsToParent();
    // A worker that hangs would outlive a parent that was ended.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != parent) ::_exit(EXIT_FAILURE);
    // Workers share the processors, so that each computes alone.
    ::setenv("ORLUNE_PTK_THREADS", "1", 1);
    KeepMemory();
    Batch batch;
    while (ReadAll(batches, &batch, sizeof batch)) {
      ParcelWriter parcel;
      try {
        for (size_t i = 0; i < batch.count; ++i) parcel.Put(run.work(batch.first + i));
      } catch (...) {
        ::_exit(EXIT_FAILURE);
      }
      const std::string results = ParcelWriter().Put(parcel.Take()).Take();
      if (!WriteAll(toParent, results.data(), results.size())) break;
    }
    ::_exit(EXIT_SUCCESS);
  }

  void CloseEnds() const {
    ::close(batches_);
    ::close(results_);
  }

  pid_t process_ = -1;
  int batches_ = -1, results_ = -1;
  Batch batch_;  // that it works on
  size_t nextCount_ = 1;
  Clock clock_;
};

class Pool {
 public:
  explicit Pool(const TaskRun& run) : run_(run) {
    workers_.resize(std::min(run.workers, run.tasks));
    for (size_t i = 0; i < workers_.size(); ++i) StartWorker(i);
  }

  void Run() {
    for (const auto& worker : workers_) GiveNext(worker.get());
    while (AnyBusy()) {
      WaitForOne();
      TakeInOrder();
    }
  }

 private:
  // In place: the others keep their numbers while results of them wait to be taken.
  void StartWorker(size_t index) {
    workers_[index].reset();
    std::vector<Worker*> others;
    for (const auto& worker : workers_) {
      if (worker) others.push_back(worker.get());
    }
    workers_[index] = std::make_unique<Worker>(run_, others);
  }

  bool AnyBusy() const {
    return std::any_of(workers_.begin(), workers_.end(),
                       [](const auto& worker) { return worker->IsBusy(); });
  }

  void GiveNext(Worker* worker) {
    if (!again_.empty()) {
      worker->Give({again_.front(), 1});
      again_.pop_front();
      return;
    }
    if (next_ == run_.tasks || Interrupted() != 0) return;
    // The last tasks are shared out.
    const size_t share = std::max((run_.tasks - next_) / (2 * workers_.size()), size_t{1});
    const size_t count = std::min(worker->NextCount(), share);
    worker->Give({next_, count});
    next_ += count;
  }

  void WaitForOne() {
    std::vector<pollfd> watched;
    for (const auto& worker : workers_) {
      watched.push_back(
          {.fd = worker->IsBusy() ? worker->results() : -1, .events = POLLIN, .revents = 0});
    }
    if (::poll(watched.data(), watched.size(), LongestWait()) < 0) return;  // a signal
    for (size_t i = 0; i < watched.size(); ++i) {
      if (watched[i].revents != 0) TakeFrom(i);
    }
    EndLate();
  }

  // Milliseconds until a worker is late; -1 where none can be.
  int LongestWait() const {
    if (!run_.limit) return -1;
    Seconds left = *run_.limit;
    for (const auto& worker : workers_) left = std::min(left, worker->Left(*run_.limit));
    return static_cast<int>(std::clamp(std::ceil(left.count() * 1000), 0.0, 1e6));
  }

  void EndLate() {
    if (!run_.limit) return;
    for (size_t i = 0; i < workers_.size(); ++i) {
      if (workers_[i]->Left(*run_.limit).count() > 0) continue;
      const Batch batch = workers_[i]->batch();
      workers_[i]->End();
      if (batch.count == 1) {
        done_[batch.first] = run_.late(batch.first);
      } else {
        Lose(batch);
      }
      StartWorker(i);
      GiveNext(workers_[i].get());
    }
  }

  void TakeFrom(size_t index) {
    const Batch batch = workers_[index]->batch();
    const std::optional<std::string> results = workers_[index]->Receive();
    if (!results) {
      Lose(batch);
      StartWorker(index);
    }
    // At once: it works while its results are taken.
    GiveNext(workers_[index].get());
    if (!results) return;
    ParcelReader parcel(*results);
    for (size_t i = 0; i < batch.count; ++i) done_[batch.first + i] = parcel.Text();
  }

  // Which of several tasks a worker was lost over shows when they are done one by one.
  void Lose(const Batch& batch) {
    if (batch.count == 1) {
      done_[batch.first] = std::nullopt;
      return;
    }
    for (size_t i = 0; i < batch.count; ++i) again_.push_back(batch.first + i);
  }

  void TakeInOrder() {
    for (auto first = done_.find(taken_); first != done_.end(); first = done_.find(taken_)) {
      run_.take(taken_++, std::move(first->second));
      done_.erase(first);
    }
  }

  const TaskRun& run_;
  std::vector<std::unique_ptr<Worker>> workers_;
  size_t next_ = 0, taken_ = 0;
  std::deque<size_t> again_;                           // tasks that lost workers had
  std::map<size_t, std::optional<std::string>> done_;  // and not taken yet
};

}  // namespace

void RunTasks(const TaskRun& run) {
  if (run.apart || (run.workers > 1 && run.tasks > 1)) {
    Pool(run).Run();
    return;
  }
  for (size_t task = 0; task < run.tasks && Interrupted() == 0; ++task) {
    run.take(task, run.work(task));
  }
}

size_t ParseWorkers(const std::string& text) {
  if (Lower(text) == "auto") {
    cpu_set_t allowed;
    if (::sched_getaffinity(0, sizeof allowed, &allowed) != 0) return 1;
    return static_cast<size_t>(std::max(1, CPU_COUNT(&allowed)));
  }
  const double number = ParseNumber(text);
  if (number < 1 || number > static_cast<double>(MOST_WORKERS) ||
      number != static_cast<double>(static_cast<size_t>(number))) {
    throw std::invalid_argument("the number of workers is 1 to " + std::to_string(MOST_WORKERS) +
                                ", or auto");
  }
  return static_cast<size_t>(number);
}

}  // namespace front
