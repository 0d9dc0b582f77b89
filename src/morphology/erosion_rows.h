// The row routines of erosions.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// A row of bits, moved so that each column has the bit of one further right.
struct ShiftedRow {
  const uint64_t* words;  // that the first column's bit is in
  int32_t bits;           // ... at this place
};
constexpr ShiftedRow ShiftedBy(const uint64_t* row, int32_t columns) {
  const int32_t bits = columns & 63;
  return {row + (columns - bits) / 64, bits};
}

struct ErosionRows {
  // What is set in all of these rows, at least one of them. `words` is a number of whole groups;
  // one more is read of each row. The result may be a row that is not moved.
  void (*all)(uint64_t* to, const ShiftedRow* rows, int32_t count, int32_t words);
};
ZEL_ROW_TABLE(ErosionRows, erosionRows)

}  // namespace zel
