// Pixels compared with a range.
#include "morphology/magic_wand_rows.h"

#include "core/numbers.h"

namespace zel::ZEL_LEVEL {
namespace {

template <class T, class Limit>
ZEL_INLINE void InRange(const void* row, int32_t width, Limit low, Limit high, uint8_t* flags) {
  const auto* pixels = static_cast<const T*>(row);
  const auto least = static_cast<T>(low);
  const auto most = static_cast<T>(high);
  for (int32_t x = 0; x < width; x++) {
    flags[x] = static_cast<uint8_t>((pixels[x] >= least) & (pixels[x] <= most));
  }
}

void InRangeU8(const void* row, int32_t width, const ValueRange& range, uint8_t* flags) {
  InRange<uint8_t>(row, width, range.lowest, range.highest, flags);
}

void InRangeI16(const void* row, int32_t width, const ValueRange& range, uint8_t* flags) {
  InRange<int16_t>(row, width, range.lowest, range.highest, flags);
}

void InRangeSgl(const void* row, int32_t width, const ValueRange& range, uint8_t* flags) {
  InRange<float>(row, width, range.low, range.high, flags);
}

}  // namespace

extern const MagicWandRows magicWandRows = {
    .inRangeU8 = &InRangeU8, .inRangeI16 = &InRangeI16, .inRangeSgl = &InRangeSgl};

}  // namespace zel::ZEL_LEVEL
