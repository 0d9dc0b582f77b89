// The process-wide tables behind handles and image references. Only core reads them.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "orlune_ptk.h"

namespace zel {

struct ImageEntry {
  ImageRef reference;   // 0: row unused
  Handle recordHandle;  // of kind HANDLE_IMAGE_RECORD
  uint32_t flags;       // IMAGE_FLAG_TEMPORARY, or 0 for an image that a caller made
};

constexpr uint32_t IMAGE_FLAG_TEMPORARY = 1;

struct CoreTables {
  ImageEntry* images = nullptr;
  uint32_t imageRows = 0;  // rows in use
  uint32_t imageCapacity = 0;
  uint32_t imageFreeHint = 0;  // no row below this one is free
  uint32_t lastReference = 0;
  HandleEntry* handles = nullptr;
  uint32_t handleRows = 1;  // rows in use, the reserved row 0 among them
  uint32_t handleCapacity = 0;
  uint32_t handleFreeHint = 1;
};
extern CoreTables coreTables;

}  // namespace zel
