// Loops over the rows of distance maps.
#include "morphology/distance_rows.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"

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

// The square of the distance that a pixel takes from a neighbour beside it is kept in a register
// and goes on by differences; so do the steps, whose columns don't reach the next byte but here:
// 256 of them are kept as 0.
ZEL_INLINE void ImproveAlong(uint16_t* row, int32_t start, int32_t count, int32_t step) {
  constexpr int32_t mostColumns = 255;
  uint32_t steps = row[start - step];
  int32_t growth = 2 * static_cast<int32_t>(steps & 255) + 1;
  int32_t next = SquareOf(static_cast<uint16_t>(steps)) + growth;
  for (int32_t i = 0, x = start; i < count; i++, x += step) {
    const uint32_t own = row[x];
    const int32_t ownSquare = SquareOf(static_cast<uint16_t>(own));
    const int32_t ownGrowth = 2 * static_cast<int32_t>(own & 255) + 1;
    const bool nearer = ownSquare > next;
    if (growth == 2 * mostColumns + 1 && nearer) [[unlikely]] {
      steps &= 0xFF00u;
      growth = 1;
      next = SquareOf(static_cast<uint16_t>(steps)) + growth;
    } else {
      steps = nearer ? steps + 1 : own;
      next = nearer ? next + growth + 2 : ownSquare + ownGrowth;
      growth = nearer ? growth + 2 : ownGrowth;
    }
    row[x] = static_cast<uint16_t>(steps);
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
                                          .maxima = &Maxima};

}  // namespace zel::ZEL_LEVEL
