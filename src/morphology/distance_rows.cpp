// Loops over the rows of distance maps.
#include "morphology/distance_rows.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"

#if defined(ZEL_LEVEL_v4)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

ZEL_INLINE int32_t SquareOf(uint16_t steps) {
  const int32_t columns = steps & 255;
  const int32_t rows = steps >> 8;
  return columns * columns + rows * rows;
}

void ImproveFromRow(uint16_t* row, const uint16_t* from, int32_t start, int32_t end) {
#pragma GCC ivdep
  for (int32_t x = start; x < end; x++) {
    const int32_t columns = from[x] & 255;
    const int32_t rows = (from[x] >> 8) + 1;
    const bool nearer = SquareOf(row[x]) > columns * columns + rows * rows;
    // The high byte of 256 rows is 0.
    row[x] = nearer ? static_cast<uint16_t>(from[x] + 256) : row[x];
  }
}

// What is known of the neighbour is kept in registers: its steps and their square.
ZEL_INLINE void ImproveAlong(uint16_t* row, int32_t start, int32_t count, int32_t step) {
  uint32_t columns = row[start - step] & 255u;
  uint32_t rows = row[start - step] & 0xFF00u;
  int32_t square = SquareOf(row[start - step]);
  for (int32_t i = 0, x = start; i < count; i++, x += step) {
    const uint16_t own = row[x];
    const int32_t ownSquare = SquareOf(own);
    const int32_t next = square + 2 * static_cast<int32_t>(columns) + 1;
    const bool nearer = ownSquare > next;
    const uint32_t more = (columns + 1) & 255;
    // 256 columns are kept as 0.
    const int32_t kept = more == 0 ? next - 65536 : next;
    columns = nearer ? more : own & 255u;
    rows = nearer ? rows : own & 0xFF00u;
    square = nearer ? kept : ownSquare;
    row[x] = static_cast<uint16_t>(rows | columns);
  }
}

void ImproveFromLeft(uint16_t* row, int32_t start, int32_t end) {
  if (start < end) ImproveAlong(row, start, end - start, 1);
}

void ImproveFromRight(uint16_t* row, int32_t start, int32_t end) {
  if (start < end) ImproveAlong(row, end - 1, end - start, -1);
}

// The roots of numbers below 2^18 lie too far from the next whole number for a float to reach it.
void Lengths(uint8_t* to, const uint16_t* steps, int32_t start, int32_t end) {
  for (int32_t x = start; x < end; x++) {
    const float length = std::sqrt(static_cast<float>(SquareOf(steps[x])));
    to[x] = static_cast<uint8_t>(static_cast<int32_t>(length));
  }
}

// rule(the first pixel, the set bits) for each word with set bits; those beyond the row don't
// count.
template <class Rule>
ZEL_INLINE void ForWords(uint8_t* to, const uint64_t* bits, int32_t width, Rule rule) {
  for (int32_t first = 0; first < width; first += 64) {
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

void Maxima(const uint8_t* const* rows, uint8_t* to, int32_t width, uint8_t* memory) {
  const uint8_t* const above2 = rows[0];
  const uint8_t* const above = rows[1];
  const uint8_t* const middle = rows[2];
  const uint8_t* const below = rows[3];
  const uint8_t* const below2 = rows[4];
  for (int32_t x = 0; x < width; x++) {
    memory[x] =
        std::max(std::max(std::max(above2[x], above[x]), std::max(below[x], below2[x])), middle[x]);
  }
  for (int32_t x = 2; x < width - 2; x++) {
    const uint8_t most = std::max(
        std::max(std::max(memory[x - 2], memory[x - 1]), std::max(memory[x + 1], memory[x + 2])),
        memory[x]);
    to[x] = middle[x] >= most ? 255 : 0;
  }
}

}  // namespace

extern const DistanceRows distanceRows = {.improveFromRow = &ImproveFromRow,
                                          .improveFromLeft = &ImproveFromLeft,
                                          .improveFromRight = &ImproveFromRight,
                                          .lengths = &Lengths,
                                          .store = &Store,
                                          .count = &Count,
                                          .maxima = &Maxima};

}  // namespace zel::ZEL_LEVEL
