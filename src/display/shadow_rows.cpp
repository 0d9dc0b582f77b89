// Levels of rows of pixels.
#include "display/shadow_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

// Truncated to 32 bits and then to 8 this is one instruction for several pixels; the least integer,
// which NaN becomes, ends in 0.
template <class T>
void Levels(const void* pixels, const LevelLine& line, int32_t width, uint8_t* to) {
  constexpr double least = INT32_MIN;
  const auto* from = static_cast<const T*>(pixels);
  const auto slope = static_cast<double>(line.slope);
  const auto offset = static_cast<double>(line.offset);
  for (int32_t x = 0; x < width; x++) {
    const double level = static_cast<double>(from[x]) * slope + offset;
    to[x] = static_cast<uint8_t>(static_cast<int32_t>(level > least ? level : least));
  }
}

}  // namespace

extern const ShadowRows shadowRows = {.ofWords = &Levels<int16_t>, .ofFloats = &Levels<float>};

}  // namespace zel::ZEL_LEVEL
