// What the processor can do: the flag that some results depend on, and the level that only speed
// depends on.
#pragma once

#include <cstdint>

namespace zel {

// Whether the processor has MMX instructions. Where the grouped columns of an operation differ
// from the remaining ones, this flag decides whether there are grouped columns at all.
uint32_t MmxAvailable();

// For tests: 0 or 1 forces the flag, -1 asks the processor again.
void MmxForce(int32_t value);

// Levels that the row routines are compiled for. Results are the same on all of them.
enum class ProcessorLevel : int32_t { Unknown = -1, Baseline = 0, V3 = 1, V4 = 2 };

extern ProcessorLevel processorLevel;  // Unknown until it is first asked for

// Picks the best level that the processor has, or the lower one that the environment variable
// ORLUNE_PTK_LEVEL names: baseline, v3 or v4.
ProcessorLevel ProcessorLevelDetect();

inline ProcessorLevel ProcessorLevelInUse() {
  if (processorLevel == ProcessorLevel::Unknown) processorLevel = ProcessorLevelDetect();
  return processorLevel;
}

// For tests and benchmarks: forces a level. False when the processor does not have it; Unknown
// asks again at the next use.
bool ProcessorLevelForce(ProcessorLevel level);

}  // namespace zel

// Declares a table of row routines that a *_rows.cpp defines once for each processor level, in the
// namespace zel::ZEL_LEVEL, and the function of the same name that answers the one in use.
#if defined(ZEL_X86_LEVELS)
#define ZEL_ROW_TABLE(Type, name)                     \
  namespace baseline {                                \
  extern const Type name;                             \
  }                                                   \
  namespace v3 {                                      \
  extern const Type name;                             \
  }                                                   \
  namespace v4 {                                      \
  extern const Type name;                             \
  }                                                   \
  [[maybe_unused]] static inline const Type& name() { \
    switch (ProcessorLevelInUse()) {                  \
      case ProcessorLevel::V4:                        \
        return v4::name;                              \
      case ProcessorLevel::V3:                        \
        return v3::name;                              \
      default:                                        \
        return baseline::name;                        \
    }                                                 \
  }
#else
#define ZEL_ROW_TABLE(Type, name)                     \
  namespace baseline {                                \
  extern const Type name;                             \
  }                                                   \
  [[maybe_unused]] static inline const Type& name() { \
    return baseline::name;                            \
  }
#endif
