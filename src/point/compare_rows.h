// The row routines of mean, minimum, maximum and compare-and-keep.
#pragma once

#include "engine/levels.h"
#include "point/operator_rules.h"

namespace zel {

// One comparison: its routines for two images, and with a constant in place of the second: value,
// or real for floats.
struct CompareRoutines {
  PairRoutines images;
  OperatorRoutine constant[INTEGER_TYPES];  // null where keepRange serves
  OperatorRoutine floatConstant;
};

struct CompareRows {
  CompareRoutines mean, minimum, maximum;
  // The first operand where the comparison with the second holds, else 0.
  CompareRoutines keepNotBelow, keepAbove, keepDifferent, keepBelow, keepNotAbove;
  // floats: the mean with a constant so small that no sum is beyond the type
  OperatorRoutine halfOfSum;
  // integers: pixels from low to high, 0 in place of others
  OperatorRoutine keepRange[INTEGER_TYPES];
  // integers: half of the sum of pixel and odd (0 or 1), limited to low..high, plus value
  OperatorRoutine meanConstant[INTEGER_TYPES];
};
ZEL_ROW_TABLE(CompareRows, compareRows)

}  // namespace zel
