// The handle table, plain blocks, text conversion and the shutdown hooks.
#include "core/handles.h"

#include <cstring>

#include "core/cache_lines.h"
#include "core/heap.h"
#include "core/images.h"
#include "core/poison.h"
#include "core/tables.h"
#include "platform/desktop.h"
#include "platform/fonts.h"
#include "platform/workers.h"

namespace zel {

CoreTables coreTables;

namespace {

struct HookRow {
  CloseHook function;
  int32_t value;
};

constexpr uint32_t TABLE_GROWTH = 2;

HookRow* hookTable = nullptr;
int32_t hookRows = 0;

bool InTable(Handle handle) {
  return handle > 0 && static_cast<uint32_t>(handle) < coreTables.handleCapacity;
}

HandleEntry* UsedRow(Handle handle) {
  if (!InTable(handle)) return nullptr;
  HandleEntry* row = &coreTables.handles[handle];
  return row->kind == HANDLE_FREE ? nullptr : row;
}

// The first free row from index 1, or 0. Rows below the hint are all in use.
Handle FreeRow() {
  if (coreTables.handleCapacity < 2) return 0;
  for (uint32_t row = coreTables.handleFreeHint; row < coreTables.handleCapacity; row++) {
    if (coreTables.handles[row].kind == HANDLE_FREE) {
      coreTables.handleFreeHint = row;
      return static_cast<Handle>(row);
    }
  }
  coreTables.handleFreeHint = coreTables.handleCapacity;
  return 0;
}

void RowRelease(Handle handle) {
  coreTables.handles[handle] = {};
  coreTables.handleRows--;
  const auto row = static_cast<uint32_t>(handle);
  if (row < coreTables.handleFreeHint) coreTables.handleFreeHint = row;
}

// elementSize x count x count2, or beyond HEAP_BLOCK_LIMIT when it is too large for a block.
uint64_t VectorBytes(uint32_t elementSize, uint64_t count, uint64_t count2) {
  if (elementSize == 0 || count == 0 || count2 == 0) return 0;
  uint64_t bytes = 0;
  const bool wraps = __builtin_mul_overflow(count, count2, &bytes) ||
                     __builtin_mul_overflow(bytes, elementSize, &bytes);
  return wraps || bytes > HEAP_BLOCK_LIMIT ? HEAP_BLOCK_LIMIT + 1 : bytes;
}

// Two more rows at the end of a table. On failure the table and its capacity stay, so that no
// search runs past the rows there are.
template <class Row>
Status TableGrow(Row** table, uint32_t* capacity) {
  const size_t former = *capacity * sizeof(Row);
  void* grown = HeapResize(*table, former + TABLE_GROWTH * sizeof(Row));
  if (!grown) return STATUS_MEMORY_FULL;
  *table = static_cast<Row*>(grown);
  std::memset(static_cast<char*>(grown) + former, 0, TABLE_GROWTH * sizeof(Row));
  *capacity += TABLE_GROWTH;
  return STATUS_OK;
}

// Of the heap's blocks, and of pixels, so that the vectors of row routines don't straddle two cache
// lines where the rows are whole lines.
constexpr uintptr_t HEAP_ALIGNMENT = 16;
constexpr uintptr_t PIXEL_ALIGNMENT = CACHE_LINE;
constexpr size_t PIXEL_SPARE = PIXEL_ALIGNMENT - 8;  // bytes, as pixels lie on 8 anyway

// Gives a row a new block of `size` bytes, with what fits of the old contents and zeros behind
// them. Large zero blocks come from the system ready-made, and untouched they cost nothing.
bool BlockReplace(HandleEntry* row, size_t size) {
  const bool isPixels = row->kind == HANDLE_IMAGE_PIXELS;
  const size_t allocated = isPixels ? size + PIXEL_SPARE : size;
  const bool grows = size > row->blockBytes;
  void* block = grows ? HeapAllocateZeroed(allocated) : HeapAllocate(allocated);
  if (!block) return false;
  auto* data = static_cast<char*>(block);
  const uintptr_t alignment = isPixels ? PIXEL_ALIGNMENT : HEAP_ALIGNMENT;
  data += -(reinterpret_cast<uintptr_t>(data) + row->alignedAt) & (alignment - 1);
  if (row->data) std::memcpy(data, row->data, grows ? row->blockBytes : size);
  HeapFree(row->block);
  row->block = block;
  row->data = data;
  const auto before = static_cast<size_t>(data - static_cast<char*>(block));
  MemoryForbid(block, before);
  MemoryForbid(data + size, allocated - before - size);
  return true;
}

// Resizes the block of a row. One that shrinks is kept where there is no memory for another.
bool BlockResize(HandleEntry* row, size_t size) {
  const size_t former = row->blockBytes;
  bool resized = false;
  if (row->kind == HANDLE_IMAGE_PIXELS || size / 4 >= former) {
    resized = BlockReplace(row, size);
  } else if (void* block = HeapResize(row->block, size)) {
    row->block = block;
    row->data = block;
    if (size > former) std::memset(static_cast<char*>(block) + former, 0, size - former);
    resized = true;
  }
  if (!resized && size > former) return false;
  row->blockBytes = static_cast<uint32_t>(size);
  return true;
}

}  // namespace

Status TablesEnsure() {
  if (coreTables.imageRows == coreTables.imageCapacity) {
    const Status status = TableGrow(&coreTables.images, &coreTables.imageCapacity);
    if (status != STATUS_OK) return status;
  }
  if (coreTables.handleRows >= coreTables.handleCapacity) {
    return TableGrow(&coreTables.handles, &coreTables.handleCapacity);
  }
  return STATUS_OK;
}

Handle HandleNew(uint32_t size) {
  const Handle handle = FreeRow();
  if (handle == 0) return 0;
  void* data = nullptr;
  if (size > HEAP_BLOCK_LIMIT) return 0;
  if (size != 0) {
    data = HeapAllocateZeroed(size);
    if (!data) return 0;
  }
  coreTables.handles[handle] = {.data = data,
                                .kind = HANDLE_OWNED,
                                .elementSize = 1,
                                .count = size,
                                .blockBytes = size,
                                .block = data};
  coreTables.handleRows++;
  TablesEnsure();  // one free row is normally on hand for the next call
  return handle;
}

Status HandleAlloc(Handle* handle, uint32_t size) {
  *handle = HandleNew(size);
  return *handle != 0 ? STATUS_OK : STATUS_MEMORY_FULL;
}

Status VectorNew(Handle* handle) {
  return HandleAlloc(handle, 0);
}

Status HandleResize(Handle handle, uint64_t size) {
  HandleEntry* row = UsedRow(handle);
  if (!row) return STATUS_BAD_HANDLE;
  if (row->kind == HANDLE_FOREIGN) {
    if (size > row->capacity) return STATUS_MEMORY_ERROR;
  } else if (size > HEAP_BLOCK_LIMIT) {
    return STATUS_MEMORY_FULL;
  } else if (size == 0) {
    HeapFree(row->block);
    row->block = nullptr;
    row->data = nullptr;
    row->blockBytes = 0;
  } else if (size != row->blockBytes && !BlockResize(row, static_cast<size_t>(size))) {
    return STATUS_MEMORY_FULL;
  }
  row->elementSize = 1;
  row->count = static_cast<uint32_t>(size);
  return STATUS_OK;
}

Status VectorResize(Handle handle, uint32_t elementSize, uint64_t count) {
  const Status status = VectorResize2D(handle, elementSize, count, 1);
  if (status == STATUS_OK) coreTables.handles[handle].count2 = 0;
  return status;
}

Status VectorResize2D(Handle handle, uint32_t elementSize, uint64_t count, uint64_t count2) {
  const Status status = HandleResize(handle, VectorBytes(elementSize, count, count2));
  if (status != STATUS_OK) return status;
  HandleEntry* row = &coreTables.handles[handle];
  row->elementSize = elementSize;
  row->count = static_cast<uint32_t>(count);
  row->count2 = static_cast<uint32_t>(count2);
  return STATUS_OK;
}

Status HandleFree(Handle handle) {
  if (!InTable(handle)) return STATUS_BAD_HANDLE;
  HandleEntry* row = &coreTables.handles[handle];
  if (row->kind < HANDLE_OWNED) return STATUS_NOT_OWNED;
  HeapFree(row->block);
  RowRelease(handle);
  return STATUS_OK;
}

Status VectorFree(Handle handle) {
  return HandleFree(handle);
}

Status HandleData(Handle handle, void** data) {
  const HandleEntry* row = UsedRow(handle);
  if (!row) return STATUS_INTERNAL;
  *data = row->data;
  return STATUS_OK;
}

Status VectorCount(Handle handle, uint32_t* count) {
  uint32_t count2 = 0;
  return VectorDims(handle, count, &count2);
}

Status VectorDims(Handle handle, uint32_t* count, uint32_t* count2) {
  const HandleEntry* row = UsedRow(handle);
  if (!row) return STATUS_INTERNAL;
  *count = row->count;
  *count2 = row->count2;
  return STATUS_OK;
}

uint32_t HandleByteSize(Handle handle) {
  const HandleEntry* row = UsedRow(handle);
  if (!row) return STATUS_BAD_HANDLE;
  return static_cast<uint32_t>(
      VectorBytes(row->elementSize, row->count, row->count2 != 0 ? row->count2 : 1));
}

Handle HandleWrap(void* block, uint32_t elementSize, uint32_t count, uint32_t count2,
                  uint16_t growable) {
  const uint64_t bytes = VectorBytes(elementSize, count, count2 != 0 ? count2 : 1);
  const Handle handle = bytes > HEAP_BLOCK_LIMIT ? 0 : FreeRow();
  if (handle == 0) return 0;
  const bool foreign = growable == 0;
  HandleEntry& row = coreTables.handles[handle];
  row = {};
  row.data = block;
  row.block = block;
  row.kind = foreign ? HANDLE_FOREIGN : HANDLE_OWNED;
  row.elementSize = elementSize;
  row.count = count;
  row.count2 = count2;
  row.capacity = foreign ? static_cast<uint32_t>(bytes) : 0;
  row.blockBytes = block ? static_cast<uint32_t>(bytes) : 0;
  coreTables.handleRows++;
  TablesEnsure();
  return handle;
}

Status HandleUnwrap(Handle handle) {
  const HandleEntry* row = UsedRow(handle);
  if (!row || row->kind > HANDLE_OWNED) return STATUS_MEMORY_ERROR;
  RowRelease(handle);
  return STATUS_OK;
}

HandleEntry* HandleRow(Handle handle) {
  return &coreTables.handles[handle];
}

Status CloseHookSet(CloseHook function, int32_t value) {
  HookRow* unused = nullptr;
  for (int32_t i = 0; i < hookRows; i++) {
    if (hookTable[i].function == function) {
      hookTable[i].value = value;
      return STATUS_OK;
    }
    if (!hookTable[i].function && !unused) unused = &hookTable[i];
  }
  if (!unused) {
    void* grown = HeapResize(hookTable, static_cast<size_t>(hookRows + 1) * sizeof(HookRow));
    if (!grown) return STATUS_MEMORY_FULL;
    hookTable = static_cast<HookRow*>(grown);
    unused = &hookTable[hookRows++];
  }
  *unused = {function, value};
  return STATUS_OK;
}

Status CloseHookRun(CloseHook function) {
  for (int32_t i = 0; function && i < hookRows; i++) {
    if (hookTable[i].function != function) continue;
    const int32_t value = hookTable[i].value;
    hookTable[i] = {};  // first, since a hook may register itself anew
    return function(value);
  }
  return STATUS_HOOK_UNKNOWN;
}

Status CoreShutdown() {
  for (int32_t i = 0, rows = hookRows; i < rows; i++) CloseHookRun(hookTable[i].function);
  HeapFree(hookTable);
  hookTable = nullptr;
  hookRows = 0;
  WorkersJoin();
  DesktopLeave();
  FontsInUse().release();

  for (uint32_t row = 0; row < coreTables.imageCapacity; row++) {
    if (coreTables.images[row].reference != 0) ImageDestroy(coreTables.images[row].reference);
  }
  HeapFree(coreTables.images);
  for (uint32_t row = 1; row < coreTables.handleCapacity; row++) {
    if (coreTables.handles[row].kind > HANDLE_FOREIGN) HandleFree(static_cast<Handle>(row));
  }
  HeapFree(coreTables.handles);

  // References go on counting, so that none from before names an image made later.
  const uint32_t lastReference = coreTables.lastReference;
  coreTables = {};
  coreTables.lastReference = lastReference;
  return STATUS_OK;
}

Status MemAlloc(void** block, uint32_t size) {
  *block = size != 0 ? HeapAllocate(size) : nullptr;
  return *block || size == 0 ? STATUS_OK : STATUS_MEMORY_FULL;
}

void MemFree(void* block) {
  HeapFree(block);
}

void MemCopy(const void* source, void* destination, size_t size) {
  if (size != 0) std::memmove(destination, source, size);
}

void MemFill(void* destination, uint8_t value, size_t size) {
  if (size != 0) std::memset(destination, value, size);
}

int32_t TextConvert(int32_t fromForm, uintptr_t source, int32_t toForm, uintptr_t destination) {
  constexpr size_t countedLimit = 255;
  const void* text = nullptr;
  size_t length = 0;
  switch (fromForm) {
    case TEXT_TERMINATED:
      text = reinterpret_cast<const char*>(source);
      length = std::strlen(static_cast<const char*>(text));
      break;
    case TEXT_COUNTED:
      text = reinterpret_cast<const uint8_t*>(source) + 1;
      length = *reinterpret_cast<const uint8_t*>(source);
      break;
    case TEXT_VECTOR: {
      uint32_t count = 0;
      VectorCount(static_cast<Handle>(source), &count);
      text = VectorData<char>(static_cast<Handle>(source));
      length = count;
      break;
    }
    default:
      return 0;
  }
  switch (toForm) {
    case TEXT_TERMINATED: {
      char* target = reinterpret_cast<char*>(destination);
      MemCopy(text, target, length);
      target[length] = '\0';
      break;
    }
    case TEXT_COUNTED: {
      uint8_t* target = reinterpret_cast<uint8_t*>(destination);
      if (length > countedLimit) length = countedLimit;
      target[0] = static_cast<uint8_t>(length);
      MemCopy(text, target + 1, length);
      break;
    }
    case TEXT_VECTOR:
      if (VectorResize(static_cast<Handle>(destination), 1, length) != STATUS_OK) return 0;
      MemCopy(text, VectorData<char>(static_cast<Handle>(destination)), length);
      break;
    default:
      return 0;
  }
  return static_cast<int32_t>(length);
}

}  // namespace zel
