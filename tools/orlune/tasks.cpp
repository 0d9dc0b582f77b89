// Many tasks of one kind, one after the other or in worker processes.
#include "orlune/tasks.h"

#include <poll.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <map>
#include <memory>
#include <stdexcept>
#include <system_error>
#include <vector>

#include "orlune/interrupts.h"
#include "orlune/words.h"

namespace front {
namespace {

constexpr size_t MOST_WORKERS = 256;
constexpr size_t NO_TASK = SIZE_MAX;

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

// A process that does the tasks whose numbers it is sent, until there are no more to come.
class Worker {
 public:
  // Throws std::system_error.
  Worker(const TaskRun& run, const std::vector<Worker*>& others) {
    int numbers[2], results[2];
    if (::pipe(numbers) != 0) Fail("pipe");
    if (::pipe(results) != 0) Fail("pipe");
    std::cout.flush();
    process_ = ::fork();
    if (process_ < 0) Fail("fork");
    if (process_ == 0) {
      // The ends of other workers' pipes would keep them waiting.
      for (const Worker* other : others) other->CloseEnds();
      ::close(numbers[1]);
      ::close(results[0]);
      Serve(run, numbers[0], results[1]);
    }
    ::close(numbers[0]);
    ::close(results[1]);
    numbers_ = numbers[1];
    results_ = results[0];
  }
  ~Worker() {
    CloseEnds();
    while (::waitpid(process_, nullptr, 0) < 0 && errno == EINTR) {
    }
  }
  Worker(const Worker&) = delete;
  Worker& operator=(const Worker&) = delete;

  size_t task() const { return task_; }
  int results() const { return results_; }

  bool Give(size_t task) {
    task_ = task;
    return WriteAll(numbers_, &task, sizeof task);
  }
  // What the task gave; nothing from a worker that is no more.
  std::optional<std::string> Receive() {
    size_t size = 0;
    if (!ReadAll(results_, &size, sizeof size)) return std::nullopt;
    std::string result(size, '\0');
    if (!ReadAll(results_, result.data(), size)) return std::nullopt;
    task_ = NO_TASK;
    return result;
  }

 private:
  [[noreturn]] static void Fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
  }

  [[noreturn]] static void Serve(const TaskRun& run, int numbers, int results) {
    LeaveInterruptsToParent();
    // Workers share the processors, so that each computes alone.
    ::setenv("ORLUNE_PTK_THREADS", "1", 1);
    size_t task = 0;
    while (ReadAll(numbers, &task, sizeof task)) {
      std::string result;
      try {
        result = run.work(task);
      } catch (...) {
        ::_exit(EXIT_FAILURE);
      }
      const size_t size = result.size();
      if (!WriteAll(results, &size, sizeof size) || !WriteAll(results, result.data(), size)) break;
    }
    ::_exit(EXIT_SUCCESS);
  }

  void CloseEnds() const {
    ::close(numbers_);
    ::close(results_);
  }

  pid_t process_ = -1;
  int numbers_ = -1, results_ = -1;
  size_t task_ = NO_TASK;
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
                       [](const auto& worker) { return worker->task() != NO_TASK; });
  }

  void GiveNext(Worker* worker) {
    if (next_ == run_.tasks || Interrupted() != 0) return;
    worker->Give(next_++);
  }

  void WaitForOne() {
    std::vector<pollfd> watched;
    for (const auto& worker : workers_) {
      const bool busy = worker->task() != NO_TASK;
      watched.push_back({.fd = busy ? worker->results() : -1, .events = POLLIN, .revents = 0});
    }
    if (::poll(watched.data(), watched.size(), -1) < 0) return;  // a signal
    for (size_t i = 0; i < watched.size(); ++i) {
      if (watched[i].revents != 0) TakeFrom(i);
    }
  }

  void TakeFrom(size_t index) {
    const size_t task = workers_[index]->task();
    std::optional<std::string> result = workers_[index]->Receive();
    const bool lost = !result;
    done_[task] = std::move(result);
    if (lost) StartWorker(index);
    GiveNext(workers_[index].get());
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
  std::map<size_t, std::optional<std::string>> done_;  // and not taken yet
};

}  // namespace

void RunTasks(const TaskRun& run) {
  if (run.workers > 1 && run.tasks > 1) {
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
