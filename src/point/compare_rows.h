// The row routines of mean, minimum, maximum and compare-and-keep.
#pragma once

#include "engine/levels.h"
#include "point/plane.h"

namespace zel {

enum CompareOperation : int32_t {
  COMPARE_MEAN = 0,
  COMPARE_MINIMUM = 1,
  COMPARE_MAXIMUM = 2,
  COMPARE_KEEP_NOT_BELOW = 3,
  COMPARE_KEEP_ABOVE = 4,
  COMPARE_KEEP_DIFFERENT = 5,
  COMPARE_KEEP_BELOW = 6,
  COMPARE_KEEP_NOT_ABOVE = 7,
  COMPARE_COUNT = 8,
};

struct CompareRows {
  PairRoutines images[COMPARE_COUNT];
  // With PlaneConstant::value, or real for floats, in place of the second image; by scalar type.
  // Of integers only mean, minimum, maximum and keep-different are here.
  PlaneRoutine constant[COMPARE_COUNT][SCALAR_TYPES];
  // floats: the mean with a constant so small that no sum is beyond the type
  PlaneRoutine halfOfSum;
  // integers: pixels from low to high, 0 in place of others
  PlaneRoutine keepRange[2];
  // integers: half of the sum of pixel and odd (0 or 1), limited to low..high, plus value
  PlaneRoutine meanConstant[2];
};
ZEL_ROW_TABLE(CompareRows, compareRows)

}  // namespace zel
