// What the processor can do: the flag that some results depend on, and the instructions that only
// speed depends on.
#pragma once

#include <cstdint>

namespace zel {

// Whether the processor has MMX instructions. Others than x86 answer as all newer ones of these, so
// that results are the same everywhere. Where the grouped columns of an operation differ
// from the remaining ones, this flag decides whether there are grouped columns at all.
uint32_t MmxAvailable();

// For tests: 0 or 1 forces the flag, -1 asks the processor again.
void MmxForce(int32_t value);

// The size of the last cache before the memory, or a usual one where the machine doesn't tell.
int64_t LastLevelCacheBytes();

// Which of the levels that row routines may be compiled for the processor can run, by the names
// that the build gives them.
struct ProcessorFeatures {
  bool plain;     // any processor
  bool baseline;  // x86-64
  bool v3;        // x86-64-v3: 256-bit integer vectors, fused multiply-add
  bool v4;        // x86-64-v4 with byte permutes and dot products: 512-bit vectors
  bool neon;      // arm64
};
ProcessorFeatures ProcessorFeaturesAsk();

}  // namespace zel
