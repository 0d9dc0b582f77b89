// The heap behind every block, and its exports.
#include "core/heap.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "core/poison.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

HeapHooks hooks;

bool Refused(size_t size, size_t replaced) {
  hooks.requests++;
  if (size > hooks.largestRequest) hooks.largestRequest = size;
  const bool counted = hooks.failAt != 0 && (hooks.requests == hooks.failAt ||
                                             (hooks.failAllAfter && hooks.requests > hooks.failAt));
  const bool tooLarge = hooks.blockBudget != 0 && size > hooks.blockBudget;
  const bool tooMuch = hooks.liveBudget != 0 &&
                       static_cast<uint64_t>(hooks.liveBytes) + size > hooks.liveBudget + replaced;
  return counted || tooLarge || tooMuch;
}

// In front of each block lies its size, for the counters: what allocators tell of their blocks is
// not part of their interface, and a plain one in the C heap's place tells nothing. As long as the
// C heap's alignment, which blocks so keep.
constexpr size_t HEAD_BYTES = 16;
static_assert(HEAD_BYTES >= sizeof(size_t) && HEAD_BYTES >= alignof(std::max_align_t));

char* HeadOf(void* block) {
  return static_cast<char*>(block) - HEAD_BYTES;
}

// Makes a block of what the C heap gave.
void* Counted(void* head, size_t size) {
  if (!head) {
    hooks.refusals++;
    return nullptr;
  }
  std::memcpy(head, &size, sizeof size);
  MemoryForbid(head, HEAD_BYTES);
  hooks.liveBlocks++;
  hooks.liveBytes += static_cast<int64_t>(size);
  if (hooks.liveBytes > hooks.peakBytes) hooks.peakBytes = hooks.liveBytes;
  return static_cast<char*>(head) + HEAD_BYTES;
}

}  // namespace

size_t HeapSize(void* block) {
  size_t size = 0;
  if (!block) return size;
  MemoryAllow(HeadOf(block), HEAD_BYTES);
  std::memcpy(&size, HeadOf(block), sizeof size);
  MemoryForbid(HeadOf(block), HEAD_BYTES);
  return size;
}

HeapHooks* HeapHooksGet() {
  return &hooks;
}

void* HeapAllocate(size_t size) {
  return Counted(Refused(size, 0) ? nullptr : std::malloc(HEAD_BYTES + size), size);
}

void* HeapAllocateZeroed(size_t size) {
  return Counted(Refused(size, 0) ? nullptr : std::calloc(1, HEAD_BYTES + size), size);
}

void* HeapResize(void* block, size_t size) {
  if (!block) return HeapAllocate(size);
  const size_t former = HeapSize(block);
  const bool isRefused = Refused(size, former);
  if (size == 0 && !isRefused) {
    HeapFree(block);
    return nullptr;
  }
  void* moved = isRefused ? nullptr : std::realloc(HeadOf(block), HEAD_BYTES + size);
  if (!moved) {
    hooks.refusals++;
    return nullptr;
  }
  hooks.liveBlocks--;
  hooks.liveBytes -= static_cast<int64_t>(former);
  return Counted(moved, size);
}

void HeapFree(void* block) {
  if (!block) return;
  hooks.liveBlocks--;
  hooks.liveBytes -= static_cast<int64_t>(HeapSize(block));
  std::free(HeadOf(block));
}

}  // namespace zel

void* ZEL_malloc(uint32_t size) {
  return zel::HeapAllocate(size);
}

void* ZEL_calloc(uint32_t count, uint32_t size) {
  return zel::HeapAllocateZeroed(static_cast<size_t>(count) * size);
}

void* ZEL_realloc(void* block, uint32_t size) {
  return zel::HeapResize(block, size);
}

void ZEL_free(void* block) {
  zel::HeapFree(block);
}
