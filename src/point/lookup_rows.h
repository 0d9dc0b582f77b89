// Row loops of the lookups, one table of them for each processor level.
#pragma once

#include "engine/levels.h"
#include "point/lookup.h"

namespace zel {

// Values by classes of equal width: the class of a pixel is (pixel - first) / width, cut and
// limited to the classes there are.
struct ClassCurve {
  const float* values;
  int32_t classes;
  double first;
  double width;
  float rangeMin, rangeMax;  // pixels outside become 0
};

struct LookupRows {
  void (*mapU8)(const LookupOperation& operation, const uint8_t* table);
  void (*mapI16)(const LookupOperation& operation, const uint16_t* table);
  void (*curveSgl)(const LookupOperation& operation, const ClassCurve& curve);
};

ZEL_ROW_TABLE(LookupRows, lookupRows)

}  // namespace zel
