#include "harness/caller_arrays.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstring>

#include "harness/checks.h"
#include "orlune_ptk.h"

namespace test {
namespace {

size_t ElementBytes(int32_t arrayType) {
  switch (arrayType) {
    case ARRAY_I8:
    case ARRAY_U8:
      return 1;
    case ARRAY_I16:
    case ARRAY_U16:
      return 2;
    case ARRAY_I32:
    case ARRAY_U32:
    case ARRAY_SGL:
      return 4;
    case ARRAY_DBL:
      return 8;
    default:
      return 0;
  }
}

}  // namespace

ArrayLayout LayoutOf(int32_t arrayType, size_t count) {
  const size_t bytes = ElementBytes(arrayType);
  return {count * bytes, bytes != 0 ? bytes : 1};
}

uint8_t* CallerArrays::Make(const ArrayLayout& layout, ArrayPlace place) {
  uint8_t* array = nullptr;
  if (place == ArrayPlace::BeforeGuardPage) {
    array = MakeBeforeGuardPage(layout.bytes);
  } else {
    const size_t shift = place == ArrayPlace::Misaligned ? layout.alignment : 0;
    blocks_.push_back(new uint8_t[layout.bytes + shift]);
    array = blocks_.back() + shift;
  }
  std::memset(array, 0xA5, layout.bytes);
  return array;
}

// Elements are as large as their alignment or a multiple of it, so that the array is aligned where
// its end is.
uint8_t* CallerArrays::MakeBeforeGuardPage(size_t bytes) {
  const auto page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
  const size_t usable = (bytes + page - 1) / page * page;
  void* start =
      mmap(nullptr, usable + page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  Require(start != MAP_FAILED, "no pages for an array");
  mappings_.push_back({start, usable + page});
  uint8_t* end = static_cast<uint8_t*>(start) + usable;
  Require(mprotect(end, page, PROT_NONE) == 0, "no guard page for an array");
  return end - bytes;
}

void CallerArrays::Clear() {
  for (const uint8_t* block : blocks_) delete[] block;
  blocks_.clear();
  for (const Mapping& mapping : mappings_) munmap(mapping.start, mapping.bytes);
  mappings_.clear();
}

}  // namespace test
