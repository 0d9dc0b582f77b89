// The heap behind every block, and its exports.
#include "core/heap.h"

#include <malloc.h>

#include <cstdlib>

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

size_t SizeOf(void* block) {
  return block ? malloc_usable_size(block) : 0;
}

void* Counted(void* block) {
  if (!block) {
    hooks.refusals++;
    return nullptr;
  }
  hooks.liveBlocks++;
  hooks.liveBytes += static_cast<int64_t>(SizeOf(block));
  if (hooks.liveBytes > hooks.peakBytes) hooks.peakBytes = hooks.liveBytes;
  return block;
}

}  // namespace

HeapHooks* HeapHooksGet() {
  return &hooks;
}

void* HeapAllocate(size_t size) {
  return Counted(Refused(size, 0) ? nullptr : std::malloc(size));
}

void* HeapAllocateZeroed(size_t size) {
  return Counted(Refused(size, 0) ? nullptr : std::calloc(1, size));
}

void* HeapResize(void* block, size_t size) {
  if (!block) return HeapAllocate(size);
  const size_t former = SizeOf(block);
  if (Refused(size, former)) {
    hooks.refusals++;
    return nullptr;
  }
  void* moved = std::realloc(block, size);
  const bool released = !moved && size == 0;
  if (!moved && !released) {
    hooks.refusals++;
    return nullptr;
  }
  hooks.liveBlocks--;
  hooks.liveBytes -= static_cast<int64_t>(former);
  return released ? nullptr : Counted(moved);
}

void HeapFree(void* block) {
  if (!block) return;
  hooks.liveBlocks--;
  hooks.liveBytes -= static_cast<int64_t>(SizeOf(block));
  std::free(block);
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
