// Loads the library, lets it compute on all workers, and unloads it, or ends, while they sleep.
// usage: unload_test LIBRARY unload|unload_in_child|exit, with ORLUNE_PTK_THREADS=3
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <thread>

#include "orlune_ptk.h"

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

template <class Function>
Function* Find(void* library, const char* name) {
  void* found = dlsym(library, name);
  Require(found, "the library has its functions");
  return reinterpret_cast<Function*>(found);
}

void Compute(void* library) {
  const auto create = Find<decltype(ZEL_Create)>(library, "ZEL_Create");
  const auto setSize = Find<decltype(ZEL_SetImageSize)>(library, "ZEL_SetImageSize");
  const auto add = Find<decltype(ZEL_Add)>(library, "ZEL_Add");
  const auto dispose = Find<decltype(ZEL_Dispose)>(library, "ZEL_Dispose");
  ImageRef image = 0;
  create(&image, IMAGE_U8, 3);
  Require(setSize(image, 2000, 2000) == 0, "there is an image");
  Require(add(image, 0, image, 1.0f) == 0, "the library computes");
  dispose(image);
}

// As programs do that forget ZEL_CloseSys.
void* LoadAndCompute(const char* path) {
  const long before = Tasks();
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  Require(library, "the library loads");
  Compute(library);
  Require(TasksBecome(before + WORKERS - 1), "the workers sleep");
  return library;
}

void Unload(const char* path, void* library) {
  Require(dlclose(library) == 0, "the library is closed");
  Require(!dlopen(path, RTLD_NOW | RTLD_NOLOAD), "nothing keeps the library in memory");
}

// After the library has gone nothing of it is called at a fork or at the end.
void UnloadInRounds(const char* path) {
  const long alone = Tasks();
  for (int round = 0; round < ROUNDS; round++) {
    Unload(path, LoadAndCompute(path));
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
  void* library = LoadAndCompute(path);
  const pid_t child = fork();
  if (child == 0) {
    alarm(60);
    Unload(path, library);
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
