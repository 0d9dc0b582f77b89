// Filling of the pixels that a mask selects.
#include "utilities/fill_rows.h"

#include <cstring>

namespace zel::ZEL_LEVEL {
namespace {

// Every pixel is stored, the others with what they hold, so that the loop has no branches.
template <class T>
void FillRow(void* row, const uint8_t* mask, const void* pixel, int32_t width) {
  auto* pixels = static_cast<T*>(row);
  T value;
  std::memcpy(&value, pixel, sizeof(value));
#pragma GCC ivdep
  for (int32_t x = 0; x < width; x++) pixels[x] = mask[x] != 0 ? value : pixels[x];
}

}  // namespace

extern const FillRows fillRows = {.byType = {&FillRow<uint8_t>, &FillRow<uint16_t>,
                                             &FillRow<uint32_t>, &FillRow<uint64_t>,
                                             &FillRow<uint32_t>}};

}  // namespace zel::ZEL_LEVEL
