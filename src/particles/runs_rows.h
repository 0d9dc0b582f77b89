// The row routines behind runs: pixels to bits, bits to run ends, and labels written run by run.
#pragma once

#include <cstdint>

#include "engine/levels.h"

namespace zel {

// A horizontal stretch of non-zero pixels with a zero pixel, or the image's edge, at both ends.
struct Run {
  int32_t start;
  int32_t end;  // one past the last pixel
};

// Ends each row of a table of runs: it starts beyond any column, so a walk along a row that looks
// for a column needs no other test.
constexpr Run RUN_SENTINEL = {INT32_MAX - 4, INT32_MAX - 4};

// Places that RunRows::runs may scribble on behind its last run.
constexpr uint32_t RUN_SLACK = 32;

struct RunRows {
  // One bit a pixel, set where the pixel is not 0, into WordsOfBits(width) words; bits from `width`
  // on are 0. The row is read to its 8-byte end.
  void (*bitsU8)(const void* row, int32_t width, uint64_t* words);
  void (*bitsI16)(const void* row, int32_t width, uint64_t* words);

  // The runs of set bits from left to right; answers how many.
  uint32_t (*runs)(const uint64_t* words, int32_t width, Run* runs);

  // Writes the low bits of numbers[labels[i]] that a pixel holds over run i, and 0 between the
  // runs, which end with RUN_SENTINEL. Only the row's pixels are written.
  void (*labelsU8)(void* row, int32_t width, const Run* runs, const uint32_t* labels,
                   const uint32_t* numbers);
  void (*labelsI16)(void* row, int32_t width, const Run* runs, const uint32_t* labels,
                    const uint32_t* numbers);
};

ZEL_ROW_TABLE(RunRows, runRows)

}  // namespace zel
