// Many tasks of one kind, one after the other or in worker processes. What they give is taken in
// the order of the tasks, so that a run tells the same however many workers it has.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "orlune/shared/clock.h"

namespace front {

struct TaskRun {
  size_t tasks = 0;
  size_t workers = 1;  // 1: in this process
  // Does a task and gives what there is to say of it.
  std::function<std::string(size_t task)> work;
  // Even a single worker is a process of its own, so that none takes this one with it.
  bool apart = false;
  // What a task may take; a worker that needs longer is ended. Needs apart, or more workers.
  std::optional<Seconds> limit = {};
  // What there is to say of a task that took longer.
  std::function<std::string(size_t task)> late = {};
  // Takes that; nothing from a worker that did not live to say it.
  std::function<void(size_t task, std::optional<std::string> result)> take;
};

// Ends early after an interrupt: the tasks before a certain one are taken then, and no others.
void RunTasks(const TaskRun& run);

// "auto" or a number of workers. Throws std::invalid_argument.
size_t ParseWorkers(const std::string& text);

}  // namespace front
