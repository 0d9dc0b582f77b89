// The row routines of particle filters.
#pragma once

#include "engine/levels.h"
#include "engine/point.h"

namespace zel {

struct ParticleFilterRows {
  PointRoutine<NoRule> lowBit;  // of a U8 pixel
};
ZEL_ROW_TABLE(ParticleFilterRows, particleFilterRows)

}  // namespace zel
