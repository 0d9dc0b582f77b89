// Tasks in worker processes: the same results in the same order, whatever happens to a worker.
#include "orlune/shared/tasks.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>

#include "orlune/shared/parcel.h"

namespace {

using namespace front;  // NOLINT: these are its tests

std::vector<std::string> ResultsOf(size_t tasks, size_t workers,
                                   const std::function<std::string(size_t)>& work) {
  std::vector<std::string> results;
  RunTasks({.tasks = tasks,
            .workers = workers,
            .work = work,
            .take = [&](size_t task, std::optional<std::string> result) {
              EXPECT_EQ(task, results.size());
              results.push_back(result.value_or("lost"));
            }});
  return results;
}

TEST(Tasks, GiveTheSameForAnyNumberOfWorkers) {
  const auto work = [](size_t task) {
    ::usleep(static_cast<useconds_t>(task % 3 * 1000));
    return std::string(task * 5000, static_cast<char>('a' + task % 26));
  };
  const std::vector<std::string> alone = ResultsOf(40, 1, work);
  ASSERT_EQ(alone.size(), 40u);
  for (const size_t workers : {2u, 5u, 100u}) EXPECT_EQ(ResultsOf(40, workers, work), alone);
  EXPECT_TRUE(ResultsOf(0, 4, work).empty());
}

TEST(Tasks, AWorkerThatDiesLosesItsTaskAlone) {
  const std::vector<std::string> results = ResultsOf(20, 3, [](size_t task) {
    if (task == 4) ::raise(SIGKILL);
    if (task == 11) throw std::runtime_error("out");
    return std::to_string(task);
  });
  ASSERT_EQ(results.size(), 20u);
  for (size_t task = 0; task < 20; ++task) {
    EXPECT_EQ(results[task], task == 4 || task == 11 ? "lost" : std::to_string(task));
  }
}

TEST(Tasks, ManySmallOnesAreGivenTogetherAndLostAlone) {
  constexpr size_t TASKS = 3000;
  const auto work = [](size_t task) {
    if (task == 1500 || task == 1501 || task == TASKS - 1) ::raise(SIGKILL);
    return std::to_string(task);
  };
  for (const size_t workers : {2u, 3u}) {
    const std::vector<std::string> results = ResultsOf(TASKS, workers, work);
    ASSERT_EQ(results.size(), TASKS);
    for (size_t task = 0; task < TASKS; ++task) {
      const bool lost = task == 1500 || task == 1501 || task == TASKS - 1;
      EXPECT_EQ(results[task], lost ? "lost" : std::to_string(task));
    }
  }
}

TEST(Tasks, AWorkerThatTakesTooLongIsEndedAndLosesItsTaskAlone) {
  for (const size_t workers : {1u, 3u}) {
    std::vector<std::string> results;
    TaskRun run;
    run.tasks = 200;
    run.workers = workers;
    run.apart = true;
    run.limit = Seconds(0.3);
    run.late = [](size_t) { return std::string("late"); };
    run.work = [](size_t task) {
      while (task == 0 || task == 150) ::usleep(1000);
      if (task == 151) ::raise(SIGKILL);
      return std::to_string(task);
    };
    run.take = [&](size_t task, std::optional<std::string> result) {
      EXPECT_EQ(task, results.size());
      results.push_back(result.value_or("lost"));
    };
    RunTasks(run);
    ASSERT_EQ(results.size(), 200u);
    for (size_t task = 0; task < 200; ++task) {
      EXPECT_EQ(results[task], task == 0 || task == 150 ? "late"
                               : task == 151            ? "lost"
                                                        : std::to_string(task));
    }
  }
}

TEST(Tasks, ApartIsAnotherProcessEvenForOneWorker) {
  std::string process;
  TaskRun run;
  run.tasks = 1;
  run.apart = true;
  run.work = [](size_t) { return std::to_string(::getpid()); };
  run.take = [&](size_t, std::optional<std::string> result) { process = result.value_or(""); };
  RunTasks(run);
  EXPECT_FALSE(process.empty());
  EXPECT_NE(process, std::to_string(::getpid()));
}

TEST(Tasks, WorkersAreNumbersOrAuto) {
  EXPECT_EQ(ParseWorkers("3"), 3u);
  EXPECT_GE(ParseWorkers("auto"), 1u);
  for (const char* bad : {"0", "-1", "1.5", "many", "1000", ""}) {
    EXPECT_THROW(ParseWorkers(bad), std::invalid_argument) << bad;
  }
}

TEST(Parcels, ComeOutAsTheyWentIn) {
  ParcelWriter writer;
  writer.Put(42).Put(std::string("a\0b", 3)).Put(2.5).Put(std::string());
  const std::string bytes = writer.Take();
  ParcelReader reader(bytes);
  EXPECT_EQ(reader.Get<int>(), 42);
  EXPECT_EQ(reader.Text(), std::string("a\0b", 3));
  EXPECT_EQ(reader.Get<double>(), 2.5);
  EXPECT_EQ(reader.Text(), "");
  EXPECT_THROW(reader.Get<char>(), std::logic_error);
}

}  // namespace
