// Rows of bits combined, a group of words at a time that stays in registers.
#include "morphology/erosion_rows.h"

#include <cstring>

#include "core/numbers.h"
#include "morphology/bit_plane.h"

namespace zel::ZEL_LEVEL {
namespace {

using Group [[gnu::vector_size(8 * BIT_GROUP_WORDS)]] = uint64_t;

void All(uint64_t* to, const ShiftedRow* rows, int32_t count, int32_t words) {
  for (int32_t i = 0; i < words; i += BIT_GROUP_WORDS) {
    Group all = ~Group{};
    for (int32_t r = 0; r < count; r++) {
      Group low;
      Group high;
      std::memcpy(&low, rows[r].words + i, sizeof low);
      std::memcpy(&high, rows[r].words + i + 1, sizeof high);
      const auto down = static_cast<uint64_t>(rows[r].bits);
      all &= low >> down | high << (63 - down) << 1;  // in two steps: one of 64 has no result
    }
    std::memcpy(to + i, &all, sizeof all);
  }
}

}  // namespace

extern const ErosionRows erosionRows = {.all = &All};

}  // namespace zel::ZEL_LEVEL
