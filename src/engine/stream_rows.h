// Stores that pass the caches by.
#pragma once

#include "engine/levels.h"

namespace zel {

struct StreamRows {
  // Copies bytes to where nobody will read them soon: their lines are not read first, and displace
  // nothing. `from` is on a cache line.
  void (*store)(void* to, const void* from, int64_t bytes);
  // To be called once after the last of them, before another thread reads.
  void (*end)();
};
ZEL_ROW_TABLE(StreamRows, streamRows)

}  // namespace zel
