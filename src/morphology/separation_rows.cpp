// Pixels compared with the zones around them.
#include "morphology/separation_rows.h"

#include <algorithm>

namespace zel::ZEL_LEVEL {
namespace {

void Raise(uint8_t* highest, const uint8_t* row, int32_t members, int32_t width) {
  for (int32_t i = 0; i < members; i++) {
#pragma GCC ivdep
    for (int32_t x = 0; x < width; x++) highest[x] = std::max(highest[x], row[x + i]);
  }
}

void Cut(uint8_t* to, const uint8_t* source, const uint8_t* zones, const uint8_t* highest,
         int32_t width) {
#pragma GCC ivdep
  for (int32_t x = 0; x < width; x++) {
    to[x] = highest[x] > zones[x] ? uint8_t{0} : source[x];
  }
}

}  // namespace

extern const SeparationRows separationRows = {.raise = &Raise, .cut = &Cut};

}  // namespace zel::ZEL_LEVEL
