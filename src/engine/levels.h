// Processor levels: the row routines are compiled once for each, and one set of them is chosen at
// first use. Results are the same at all levels.
#pragma once

#include <cstdint>

#include "engine/level_list.h"  // made by the build from its one list of levels

namespace zel {

// In rising order. The first one, `plain`, has no instructions beyond the compiler's default.
#define ZEL_LEVEL_ENUMERATOR(level, prefix) prefix##level,
enum Level : int32_t { ZEL_FOR_EACH_LEVEL(ZEL_LEVEL_ENUMERATOR, LEVEL_) LEVEL_COUNT };
#undef ZEL_LEVEL_ENUMERATOR

constexpr int32_t LEVEL_UNKNOWN = -1;
extern int32_t levelInUse;  // a Level, or LEVEL_UNKNOWN until it is first asked for

// Chooses the best level that the processor has, or the lower one that the environment variable
// ORLUNE_PTK_LEVEL names.
Level LevelChoose();

inline Level LevelInUse() {
  if (levelInUse == LEVEL_UNKNOWN) levelInUse = LevelChoose();
  return static_cast<Level>(levelInUse);
}

const char* LevelName(Level level);

// For tests and benchmarks: forces a level. False when the processor does not have it;
// LEVEL_UNKNOWN chooses again at the next use.
bool LevelForce(int32_t level);

}  // namespace zel

#define ZEL_TABLE_OF_LEVEL(level, Type, name) \
  namespace level {                           \
  extern const Type name;                     \
  }
#define ZEL_ADDRESS_OF_TABLE(level, Type, name) &level::name,

// Declares a table of row routines that a *_rows.cpp defines once for each level, in the namespace
// zel::ZEL_LEVEL, and the function of the same name that answers the one in use.
#define ZEL_ROW_TABLE(Type, name)                              \
  ZEL_FOR_EACH_LEVEL(ZEL_TABLE_OF_LEVEL, Type, name)           \
  [[maybe_unused]] static inline const Type& name() {          \
    static constexpr const Type* tables[] = {                  \
        ZEL_FOR_EACH_LEVEL(ZEL_ADDRESS_OF_TABLE, Type, name)}; \
    return *tables[LevelInUse()];                              \
  }
