// What tells the levels' tables apart: which level a table was compiled as.
#pragma once

#include "engine/levels.h"

namespace zel {

struct LevelProbe {
  const char* name;     // of the level
  int32_t vectorBytes;  // of the widest vectors that the compiler may use
};
ZEL_ROW_TABLE(LevelProbe, levelProbe)

}  // namespace zel
