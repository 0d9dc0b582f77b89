#include "harness/checks.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "core/heap.h"
#include "core/world.h"

#if defined(__has_feature)
#if __has_feature(memory_sanitizer)
#include <sanitizer/msan_interface.h>
#define HARNESS_MEMORY_SANITIZER 1
#endif
#endif

// Of the sanitizer's own library, where one is linked.
extern "C" __attribute__((weak)) void __asan_init();

namespace test {

bool MemoryIsWatched() {
  return &__asan_init != nullptr;
}

void SetBudget(bool large) {
  ZEL_SetErrorMode(1);
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  *hooks = {};
  hooks->blockBudget = large ? 8u << 20 : 64u << 10;
  hooks->liveBudget = large ? 32u << 20 : 512u << 10;
}

void Require(bool condition, const char* what) {
  if (condition) return;
  std::fprintf(stderr, "harness: %s\n", what);
  std::abort();
}

void CheckImage(ImageRef image) {
  if (const char* fault = zel::WorldFault()) Require(false, fault);
  ImageInfo info{};
  if (ZEL_GetImageInfo(image, &info) != 0) return;
  for (int32_t y = 0; y < info.height; y++) {
    const auto* row = static_cast<const uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    const auto bytes = static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes);
#if defined(HARNESS_MEMORY_SANITIZER)
    __msan_check_mem_is_initialized(row, bytes);
#endif
    // A sanitizer checks the whole range of a search at once.
    static volatile bool found = false;
    found = std::memchr(row, 0xC5, bytes) != nullptr || found;
  }
}

void CheckEnd(const MemoryFiles& files) {
  ZEL_CloseSys();
  Require(zel::HeapHooksGet()->liveBlocks == 0, "blocks are left on the heap");
  Require(files.OpenFiles() == 0, "a file is still open");
}

}  // namespace test
