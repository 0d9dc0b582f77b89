// What the library asks of the machine's threads: a plain record of operations.
#pragma once

#include <pthread.h>

#include <atomic>
#include <cstdint>

namespace zel {

struct ThreadPlatform {
  int32_t (*processors)();  // that the calling thread may use; at least 1

  // Starts a thread that is to be joined, blocks all signals and may use the processors of the
  // calling one. False when the machine refuses it.
  bool (*start)(pthread_t* thread, void* (*run)(void*), void* argument);
  void (*join)(pthread_t thread);

  // Sleeps until it is woken at this word. Returns at once when the word is not `value` (any more),
  // and now and then without a cause: callers look again.
  void (*sleepWhile)(std::atomic<uint32_t>* word, uint32_t value);
  void (*wake)(std::atomic<uint32_t>* word, int32_t count);
};

// The ones in use: at first the machine's own.
const ThreadPlatform& ThreadsInUse();
// Null puts the machine's own back. No worker may be there (WorkersJoin).
void ThreadsUse(const ThreadPlatform* platform);

}  // namespace zel
