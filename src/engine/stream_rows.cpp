// Row routine of the stores that pass the caches by.
#include "engine/stream_rows.h"

#include "engine/vectors.h"

namespace zel::ZEL_LEVEL {
namespace {

#if defined(ZEL_VECTORS)
void StoreStreaming(void* to, const void* from, int64_t bytes) {
  auto* target = static_cast<uint8_t*>(to);
  const auto* source = static_cast<const uint8_t*>(from);
  const auto misaligned = static_cast<int64_t>(reinterpret_cast<uintptr_t>(target)) % VECTOR_BYTES;
  const int64_t toBoundary = misaligned == 0 ? 0 : VECTOR_BYTES - misaligned;
  int64_t at = toBoundary < bytes ? toBoundary : bytes;
  std::memcpy(target, source, static_cast<size_t>(at));
  for (; at + VECTOR_BYTES <= bytes; at += VECTOR_BYTES) {
    Stream(target + at, Load<Bytes>(source + at));
  }
  std::memcpy(target + at, source + at, static_cast<size_t>(bytes - at));
}

void EndStream() {
  StreamEnd();
}
#else
void StoreStreaming(void* to, const void* from, int64_t bytes) {
  std::memcpy(to, from, static_cast<size_t>(bytes));
}

void EndStream() {}
#endif

}  // namespace

extern const StreamRows streamRows = {.store = &StoreStreaming, .end = &EndStream};

}  // namespace zel::ZEL_LEVEL
