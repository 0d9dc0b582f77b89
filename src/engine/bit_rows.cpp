// Row routines of bits that become bytes.
#include "engine/bit_rows.h"

#include <cstring>

#include "core/numbers.h"

#if defined(ZEL_LEVEL_v4)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

// rule(the first pixel, the set bits) for each word with set bits; those beyond the row don't
// count.
template <class Rule>
ZEL_INLINE void ForWords(uint8_t* to, const uint64_t* bits, int32_t width, Rule rule) {
  for (int64_t first = 0; first < width; first += 64) {
    uint64_t word = bits[first / 64];
    if (width - first < 64) word &= (uint64_t{1} << (width - first)) - 1;
    if (word != 0) rule(to + first, word);
  }
}

void Store(uint8_t* to, const uint64_t* bits, int32_t width, uint8_t value) {
  ForWords(to, bits, width, [value](uint8_t* pixels, uint64_t word) {
#if defined(ZEL_LEVEL_v4)
    _mm512_mask_storeu_epi8(pixels, word, _mm512_set1_epi8(static_cast<char>(value)));
#else
    if (word == ~uint64_t{0}) {
      std::memset(pixels, value, 64);
      return;
    }
    for (; word != 0; word &= word - 1) pixels[__builtin_ctzll(word)] = value;
#endif
  });
}

void Count(uint8_t* to, const uint64_t* bits, int32_t width) {
  ForWords(to, bits, width, [](uint8_t* pixels, uint64_t word) {
    for (; word != 0; word &= word - 1) {
      uint8_t& pixel = pixels[__builtin_ctzll(word)];
      pixel = static_cast<uint8_t>(pixel + (pixel < 255));
    }
  });
}

}  // namespace

extern const BitRows bitRows = {.store = &Store, .count = &Count};

}  // namespace zel::ZEL_LEVEL
