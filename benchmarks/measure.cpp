// A child measures one column and prints its times; the parent reads them from a pipe.
#include "benchmarks/measure.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <string_view>
#include <tuple>

#include "benchmarks/turns.h"

namespace bench {
namespace {

[[noreturn]] void Fail(const Case& which, const char* what, int32_t status) {
  std::fprintf(stderr, "benchmark: %s: %s fails with %d\n", which.Name().c_str(), what, status);
  std::exit(1);
}

// The pictures of the last case serve the next one as well if it wants the same.
Pictures* PicturesFor(const Case& which, std::unique_ptr<Pictures>* kept) {
  const Pair& pair = *which.pair;
  if (!*kept || !(*kept)->Are(which.kind, which.size, pair.border)) {
    kept->reset();
    *kept = std::make_unique<Pictures>(which.kind, which.size, pair.border);
  }
  (*kept)->SetOut(pair.result == SAME_TYPE ? which.kind.type : pair.result);
  if (pair.prepare) {
    const int32_t status = pair.prepare((*kept)->images, (*kept)->mats);
    if (status != 0) Fail(which, "what is prepared", status);
  }
  return kept->get();
}

// The status of every timed call is looked at: a refusal is not speed.
void CallOurs(const Case& which, Pictures* pictures) {
  const int32_t status = which.pair->ours(pictures->images);
  if (status != 0) Fail(which, "the call", status);
}

Times Measure(const Case& which, Pictures* pictures, Column column, const Effort& effort) {
  const bool oneThread = column == Column::OneThread;
  const clockid_t clock = oneThread ? CLOCK_PROCESS_CPUTIME_ID : CLOCK_MONOTONIC;
  const auto ours = [&] { CallOurs(which, pictures); };
  const auto theirs = [&] { which.pair->theirs(pictures->mats); };
  Times times =
      which.pair->theirs ? ByTurns(ours, theirs, clock, effort) : Alone(ours, clock, effort);
  if (oneThread) times.disturbed = false;
  return times;
}

// Those that share pictures one after the other.
std::vector<size_t> OrderByPictures(const std::vector<Case>& cases) {
  const auto picture = [&](size_t i) {
    const Case& which = cases[i];
    return std::tuple(which.family, which.size.width, which.size.height, which.kind.type,
                      which.kind.scene, which.pair->border);
  };
  std::vector<size_t> order(cases.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::ranges::stable_sort(order, {}, picture);
  return order;
}

constexpr char THREADS[] = "ORLUNE_PTK_THREADS=";
constexpr char LEVEL[] = "ORLUNE_PTK_LEVEL=";

// The environment of a process that measures a column.
std::vector<std::string> EnvironmentFor(const Plan& plan, Column column) {
  std::vector<std::string> environment;
  for (char** entry = environ; *entry; entry++) {
    const std::string_view text(*entry);
    if (text.starts_with(THREADS) || text.starts_with(LEVEL)) continue;
    environment.emplace_back(text);
  }
  if (column == Column::OneThread) environment.push_back(THREADS + std::string("1"));
  if (!plan.level.empty()) environment.push_back(LEVEL + plan.level);
  return environment;
}

std::vector<char*> Pointers(std::vector<std::string>* strings) {
  std::vector<char*> pointers;
  for (std::string& string : *strings) pointers.push_back(string.data());
  pointers.push_back(nullptr);
  return pointers;
}

struct Child {
  pid_t process = -1;
  std::FILE* output = nullptr;
};

Child Start(const Plan& plan, Column column) {
  std::vector<std::string> command = plan.command;
  command.insert(command.end(), {"--column", column == Column::OneThread ? "one" : "all"});
  std::vector<std::string> environment = EnvironmentFor(plan, column);
  int ends[2];
  if (pipe2(ends, O_CLOEXEC) != 0) return {};
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
  Child child;
  const bool started = posix_spawn(&child.process, "/proc/self/exe", &actions, nullptr,
                                   Pointers(&command).data(), Pointers(&environment).data()) == 0;
  posix_spawn_file_actions_destroy(&actions);
  close(ends[1]);
  if (started) {
    child.output = fdopen(ends[0], "r");
  } else {
    close(ends[0]);
  }
  return child;
}

// Takes a child's lines into the results.
size_t Collect(std::FILE* output, Column column, std::vector<Result>* results) {
  size_t lines = 0;
  size_t which = 0;
  Times times;
  int disturbed = 0;
  while (std::fscanf(output, "%zu %lf %lf %d", &which, &times.ours, &times.theirs, &disturbed) ==
         4) {
    if (which >= results->size()) break;
    times.disturbed = disturbed != 0;
    Result& result = (*results)[which];
    Merge(times, column == Column::OneThread ? &result.oneThread : &result.allCores);
    lines++;
  }
  return lines;
}

bool MeasureInChild(const Plan& plan, Column column, std::vector<Result>* results) {
  const Child child = Start(plan, column);
  if (!child.output) return false;
  const size_t lines = Collect(child.output, column, results);
  std::fclose(child.output);
  int status = 0;
  waitpid(child.process, &status, 0);
  if (WIFSIGNALED(status)) {
    std::fprintf(stderr, "benchmark: ended by signal %d after %zu of %zu cases\n", WTERMSIG(status),
                 lines, plan.cases.size());
  }
  return status == 0 && lines == plan.cases.size();
}

void ShowProgress(size_t done, size_t total) {
  if (isatty(STDERR_FILENO) == 0) return;
  std::fprintf(stderr, "\r%zu of %zu%s", done, total, done == total ? "\r               \r" : "");
}

}  // namespace

void CheckAll(const std::vector<Case>& cases) {
  std::unique_ptr<Pictures> kept;
  for (const size_t i : OrderByPictures(cases)) {
    Pictures* pictures = PicturesFor(cases[i], &kept);
    CallOurs(cases[i], pictures);
    if (cases[i].pair->theirs) cases[i].pair->theirs(pictures->mats);
  }
}

void MeasureColumn(const Plan& plan, Column column) {
  if (column == Column::OneThread) cv::setNumThreads(1);
  const Effort& effort = plan.quick ? QUICK : THOROUGH;
  std::unique_ptr<Pictures> kept;
  size_t done = 0;
  for (const size_t i : OrderByPictures(plan.cases)) {
    const Times times = Measure(plan.cases[i], PicturesFor(plan.cases[i], &kept), column, effort);
    std::printf("%zu %.6g %.6g %d\n", i, times.ours, times.theirs, times.disturbed ? 1 : 0);
    std::fflush(stdout);
    ShowProgress(++done, plan.cases.size());
  }
}

bool MeasureAll(const Plan& plan, std::vector<Result>* results) {
  results->clear();
  for (const Case& one : plan.cases) results->push_back(ResultOf(one));
  for (int32_t round = 0; round < plan.rounds; round++) {
    for (const Column column : COLUMNS) {
      if (!MeasureInChild(plan, column, results)) return false;
    }
  }
  return true;
}

}  // namespace bench
