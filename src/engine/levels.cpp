// Choosing the processor level.
#include "engine/levels.h"

#include <cstdlib>
#include <cstring>

#include "platform/processor.h"

namespace zel {

int32_t levelInUse = LEVEL_UNKNOWN;

namespace {

struct LevelEntry {
  const char* name;
  bool ProcessorFeatures::*isThere;
};

#define ZEL_LEVEL_ENTRY(level, Features) {#level, &Features::level},
constexpr LevelEntry ENTRIES[] = {ZEL_FOR_EACH_LEVEL(ZEL_LEVEL_ENTRY, ProcessorFeatures)};
#undef ZEL_LEVEL_ENTRY

Level LevelBest() {
  const ProcessorFeatures features = ProcessorFeaturesAsk();
  int32_t best = 0;
  for (int32_t level = 0; level < LEVEL_COUNT; level++) {
    if (features.*ENTRIES[level].isThere) best = level;
  }
  return static_cast<Level>(best);
}

}  // namespace

Level LevelChoose() {
  const Level best = LevelBest();
  const char* wanted = std::getenv("ORLUNE_PTK_LEVEL");
  for (int32_t level = 0; wanted && level < best; level++) {
    if (std::strcmp(wanted, ENTRIES[level].name) == 0) return static_cast<Level>(level);
  }
  return best;
}

const char* LevelName(Level level) {
  return ENTRIES[level].name;
}

bool LevelForce(int32_t level) {
  if (level > LevelBest()) return false;
  levelInUse = level;
  return true;
}

}  // namespace zel
