// Loads a library that computes in bands and unloads it, or leaves it, while its workers sleep.
// usage: unload_test MODULE unload|unload_in_child|exit, with ORLUNE_PTK_THREADS=3
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

namespace {

using namespace std::chrono_literals;

constexpr int WORKERS = 3;
constexpr int ROUNDS = 100;

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "it does not hold that %s\n", what);
  std::_Exit(1);
}

long Tasks() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return std::distance(begin(tasks), end(tasks));
}

// A joined thread may be listed a moment longer.
bool TasksBecome(long count) {
  const auto limit = std::chrono::steady_clock::now() + 10s;
  while (Tasks() != count) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::yield();
  }
  return true;
}

void* LoadAndCompute(const char* path) {
  void* module = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  Require(module, "the module loads");
  const auto compute = reinterpret_cast<int (*)()>(dlsym(module, "ComputeInBands"));
  Require(compute && compute() == WORKERS, "each worker computes");
  return module;
}

void Unload(const char* path, void* module) {
  Require(dlclose(module) == 0, "the module is closed");
  Require(!dlopen(path, RTLD_NOW | RTLD_NOLOAD), "nothing keeps the module in memory");
}

// After the library has gone nothing of it is called at a fork or at the end.
void UnloadInRounds(const char* path) {
  const long alone = Tasks();
  for (int round = 0; round < ROUNDS; round++) {
    void* module = LoadAndCompute(path);
    Require(TasksBecome(alone + WORKERS - 1), "the workers sleep");
    Unload(path, module);
    Require(TasksBecome(alone), "no worker is left");
  }
  const pid_t child = fork();
  if (child == 0) std::exit(0);
  int status = 0;
  waitpid(child, &status, 0);
  Require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a child goes on after the library");
}

// The child of a process with workers unloads the library that it never used.
void UnloadInChild(const char* path) {
  void* module = LoadAndCompute(path);
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    Unload(path, module);
    std::exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  Require(WIFEXITED(status) && WEXITSTATUS(status) == 0, "a child unloads the library");
}

}  // namespace

int main(int count, char** arguments) {
  Require(count == 3, "there are two arguments");
  const char* path = arguments[1];
  const char* way = arguments[2];
  if (std::strcmp(way, "unload") == 0) {
    UnloadInRounds(path);
  } else if (std::strcmp(way, "unload_in_child") == 0) {
    UnloadInChild(path);
  } else {
    LoadAndCompute(path);  // and ends while the workers sleep
  }
  return 0;
}
