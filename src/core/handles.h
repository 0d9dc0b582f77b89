// Handles: small positive integers that name blocks of memory with their element size and counts,
// so that one integer travels through the kernels as an array parameter.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/status.h"

namespace zel {

using Handle = int32_t;  // 0 is none

enum HandleKind : int32_t {
  HANDLE_FREE = 0,          // row unused
  HANDLE_FOREIGN = 1,       // memory of the caller, never freed here
  HANDLE_OWNED = 2,         // heap block of the library
  HANDLE_IMAGE_RECORD = 3,  // the record of an image
  HANDLE_IMAGE_PIXELS = 4,  // the pixel block of an image
};

struct HandleEntry {
  void* data = nullptr;      // null for an empty handle
  int32_t kind = 0;          // HandleKind
  uint32_t elementSize = 0;  // 1 after a plain byte allocation
  uint32_t count = 0;        // elements, or rows of a two-dimensional vector
  uint32_t count2 = 0;       // 0, or columns of a two-dimensional vector
  uint32_t capacity = 0;     // HANDLE_FOREIGN: bytes of the caller's block; else 0
  uint32_t ownerImage = 0;   // the image this block was made for, or 0
  uint32_t blockBytes = 0;   // what `data` really holds, whatever the counts say
  uint32_t alignedAt = 0;    // HANDLE_IMAGE_PIXELS: the byte that a new block has on a cache line;
                             // a multiple of 8
  void* block = nullptr;     // the heap block that `data` lies in
};

// Makes room for one more image and one more handle.
// STATUS_MEMORY_FULL leaves both tables as they were.
Status TablesEnsure();

// A new owned block of `size` bytes (0: an empty handle). Returns 0 when there is no free row,
// no table yet, or no memory.
Handle HandleNew(uint32_t size);
Status HandleAlloc(Handle* handle, uint32_t size);
Status VectorNew(Handle* handle);

// Contents up to the smaller size survive; bytes beyond the old size read 0. elementSize becomes
// 1 and count the size; count2 stays. A size above HEAP_BLOCK_LIMIT is STATUS_MEMORY_FULL, one
// above a foreign block's capacity STATUS_MEMORY_ERROR; both leave the handle as it was.
Status HandleResize(Handle handle, uint64_t size);
Status VectorResize(Handle handle, uint32_t elementSize, uint64_t count);
Status VectorResize2D(Handle handle, uint32_t elementSize, uint64_t count, uint64_t count2);

Status HandleFree(Handle handle);
Status VectorFree(Handle handle);

Status HandleData(Handle handle, void** data);
Status VectorCount(Handle handle, uint32_t* count);
Status VectorDims(Handle handle, uint32_t* count, uint32_t* count2);

// The size in bytes, or 900 for a bad handle: check the handle before using it as a length.
uint32_t HandleByteSize(Handle handle);

// Puts caller memory behind a handle. With growable 0 the block stays the caller's and is never
// resized beyond its size; otherwise the handle takes it over as a heap block. Returns 0 on
// failure.
Handle HandleWrap(void* block, uint32_t elementSize, uint32_t count, uint32_t count2,
                  uint16_t growable);
// Drops the row and leaves the block alone.
Status HandleUnwrap(Handle handle);

// The row of a handle that the library itself made; valid until the next call that can allocate.
HandleEntry* HandleRow(Handle handle);

template <class T>
T* VectorData(Handle handle) {
  void* data = nullptr;
  HandleData(handle, &data);
  return static_cast<T*>(data);
}

// A vector of one call, freed at the end of the scope.
class ScopedVector {
 public:
  ScopedVector() = default;
  ScopedVector(const ScopedVector&) = delete;
  ScopedVector& operator=(const ScopedVector&) = delete;
  ~ScopedVector() {
    if (handle_ != 0) VectorFree(handle_);
  }

  // For frames that take a handle before they look an image up: the tables are made first.
  Status Create() {
    const Status status = TablesEnsure();
    return status != STATUS_OK ? status : VectorNew(&handle_);
  }
  Handle handle() const { return handle_; }

 private:
  Handle handle_ = 0;
};

// A caller's block behind a handle for the time of one call. A growable block may move: it is
// handed back by Release.
class ScopedWrap {
 public:
  ScopedWrap() = default;
  ScopedWrap(const ScopedWrap&) = delete;
  ScopedWrap& operator=(const ScopedWrap&) = delete;
  ~ScopedWrap() {
    if (handle_ != 0) HandleUnwrap(handle_);
  }

  Status Create(void* block, uint32_t elementSize, uint32_t count, uint32_t count2,
                uint16_t growable) {
    const Status status = TablesEnsure();
    if (status != STATUS_OK) return status;
    handle_ = HandleWrap(block, elementSize, count, count2, growable);
    return handle_ != 0 ? STATUS_OK : STATUS_MEMORY_FULL;
  }
  Handle handle() const { return handle_; }
  // The block as it stands now (a resize may have moved it, or freed it: null).
  void* Release() {
    void* data = VectorData<void>(handle_);
    HandleUnwrap(handle_);
    handle_ = 0;
    return data;
  }

 private:
  Handle handle_ = 0;
};

// Shutdown hooks: a function and a value, run once when the library is closed.
using CloseHook = Status (*)(int32_t value);
Status CloseHookSet(CloseHook function, int32_t value);
Status CloseHookRun(CloseHook function);

// Runs the hooks, disposes of all images, frees all handles and both tables.
Status CoreShutdown();

// Plain blocks and bytes.
Status MemAlloc(void** block, uint32_t size);
void MemFree(void* block);
void MemCopy(const void* source, void* destination, size_t size);  // overlap-safe, source first
void MemFill(void* destination, uint8_t value, size_t size);

// Text in three forms, converted among each other; returns the number of characters, without a
// terminator, or 0 for an unknown form.
enum TextForm : int32_t {
  TEXT_TERMINATED = 0,  // pointer to zero-terminated text
  TEXT_COUNTED = 1,     // pointer to text whose first byte is its length
  TEXT_VECTOR = 2,      // Handle of a vector of bytes
};
int32_t TextConvert(int32_t fromForm, uintptr_t source, int32_t toForm, uintptr_t destination);

}  // namespace zel
