// The level's own mark, defined as every table of row routines is.
#include "engine/level_probe_rows.h"

#define ZEL_TEXT_OF(word) #word
#define ZEL_TEXT(macro) ZEL_TEXT_OF(macro)

namespace zel::ZEL_LEVEL {

#if defined(__AVX512VBMI2__)
constexpr int32_t VECTOR_BYTES = 64;
#elif defined(__AVX2__)
constexpr int32_t VECTOR_BYTES = 32;
#elif defined(__SSE2__) || defined(__ARM_NEON)
constexpr int32_t VECTOR_BYTES = 16;
#else
constexpr int32_t VECTOR_BYTES = 8;
#endif

extern const LevelProbe levelProbe = {.name = ZEL_TEXT(ZEL_LEVEL), .vectorBytes = VECTOR_BYTES};

}  // namespace zel::ZEL_LEVEL
