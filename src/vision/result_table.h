// Tables that a call hands to its caller: made beside the caller's former one, which they replace
// when the call has succeeded.
#pragma once

#include <cstdint>

#include "core/heap.h"

namespace zel {

// A table of so many records; of none it is null. False when there is no memory.
template <class T>
[[nodiscard]] bool TableMake(WorkArray<T>* table, int64_t count) {
  return count == 0 || table->Allocate(static_cast<uint64_t>(count));
}

// Gives back the caller's block and leaves it the new one.
template <class T>
void TableHandOver(WorkArray<T>* table, T** callers) {
  HeapFree(*callers);
  *callers = table->Release();
}

inline void CountTell(int64_t count, int32_t* to) {
  if (to) *to = static_cast<int32_t>(count);
}

}  // namespace zel
