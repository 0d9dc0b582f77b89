// Runs the scripted session once and holds every step to succeeding, in surroundings that a program
// may give the library.
// usage: session_run [stack bytes of the thread that runs it]
#include <pthread.h>

#include <charconv>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "harness/memory_files.h"
#include "harness/session/whole_session.h"

namespace {

constexpr int FAILED = 1;

// Nothing is printed on a small stack.
const char* failedStep = nullptr;

void* RunSession(void*) {
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  const test::MemoryFiles files;
  test::WholeSession session;
  for (const test::Step& step : test::Steps()) {
    if (step.run(session) != 0 && !failedStep) failedStep = step.name;
  }
  ZEL_CloseSys();
  return nullptr;
}

bool RunOnStackOf(size_t bytes) {
  pthread_attr_t attributes;
  pthread_t thread{};
  if (pthread_attr_init(&attributes) != 0 || pthread_attr_setstacksize(&attributes, bytes) != 0 ||
      pthread_create(&thread, &attributes, &RunSession, nullptr) != 0) {
    return false;
  }
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  size_t stackBytes = 0;
  if (argc > 1) {
    const std::string_view wanted = argv[1];
    std::from_chars(wanted.data(), wanted.data() + wanted.size(), stackBytes);
  }
  if (stackBytes == 0) {
    RunSession(nullptr);
  } else if (!RunOnStackOf(stackBytes)) {
    std::fprintf(stderr, "no thread with a stack of %s bytes\n", argv[1]);
    return FAILED;
  }
  if (!failedStep) return 0;
  std::fprintf(stderr, "%s failed\n", failedStep);
  return FAILED;
}
