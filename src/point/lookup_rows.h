// The row routines of the lookups. All of them heed the mask: pixels with a mask byte of 0 are
// copied.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

struct ByteTable {
  const uint8_t* entries;  // LEVELS_U8
};
struct WordTable {
  const uint16_t* entries;  // LEVELS_I16, indexed by the pixel read as unsigned
};

// Values by classes of equal width: the class of a pixel is (pixel - first) / width, truncated and
// limited to the classes there are.
struct ClassCurve {
  const float* values;
  int32_t classes;
  double first;
  double width;
  float rangeMin, rangeMax;  // pixels outside become 0
};

struct LookupRows {
  PointRoutine<ByteTable> mapU8;
  PointRoutine<WordTable> mapI16;
  PointRoutine<ClassCurve> curveSgl;
};
ZEL_ROW_TABLE(LookupRows, lookupRows)

}  // namespace zel
