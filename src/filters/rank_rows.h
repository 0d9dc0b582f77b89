// The row routines of selection networks: some windows have one of their own, others are worked
// through step by step.
#pragma once

#include "core/pixel_types.h"
#include "engine/levels.h"
#include "filters/rank_network.h"

namespace zel {

constexpr int32_t RANK_TYPES = IMAGE_SGL + 1;

// All rows of scratch memory begin on a boundary of this many bytes, and are computed up to one:
// a multiple of every level's vectors.
constexpr int32_t RANK_VECTOR_BYTES = 64;

// One group of output rows, on some columns: a multiple of RANK_VECTOR_BYTES.
struct RankGroup {
  const uint8_t* rows[NETWORK_GROUP_LIMIT];  // new source rows, from the first window's column on
  uint8_t* results[NETWORK_GROUP_LIMIT];
  uint8_t* carries;  // sorted blocks of former source rows
  int64_t pitch;     // from one carried value to the next
  int32_t columns;
};
using RankGroupRoutine = void (*)(const RankGroup& group);

struct RankRoutine {
  RankWindow window;
  int32_t group, carries;
  RankGroupRoutine byType[RANK_TYPES];
};

// Works through the steps of a plan whose values are rows of scratch memory.
struct RankScratch {
  uint8_t* rows;
  int64_t pitch;
  int32_t columns;  // as in RankGroup
};
using RankStepsRoutine = void (*)(const NetworkStep* steps, int32_t count,
                                  const RankScratch& scratch);

// What a row of floats has that networks don't put in the right order: negative zeros beside
// positive ones.
enum FloatMark : uint32_t { FLOAT_HAS_NAN = 1, FLOAT_HAS_NEGATIVE_ZERO = 2 };

constexpr int32_t RANK_ROUTINES = 11;

struct RankRows {
  RankRoutine routines[RANK_ROUTINES];
  RankStepsRoutine steps[RANK_TYPES];
  uint32_t (*floatMarks)(const float* row, int32_t columns);
};
ZEL_ROW_TABLE(RankRows, rankRows)

}  // namespace zel
