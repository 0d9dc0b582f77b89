// Finding out what the processor can do.
#include "core/processor.h"

#include <cstdlib>
#include <cstring>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace zel {

ProcessorLevel processorLevel = ProcessorLevel::Unknown;

namespace {

constexpr int32_t UNKNOWN = -1;
int32_t mmxPresent = UNKNOWN;

uint32_t MmxDetect() {
#if defined(__x86_64__) || defined(__i386__)
  constexpr uint32_t mmxBit = 1u << 23;
  uint32_t a = 0;
  uint32_t b = 0;
  uint32_t c = 0;
  uint32_t d = 0;
  return __get_cpuid(1, &a, &b, &c, &d) != 0 && (d & mmxBit) != 0 ? 1 : 0;
#else
  return 0;
#endif
}

#if defined(ZEL_X86_LEVELS)
// What the compiler may use at the level v3 and has no portable name for: a virtual machine may
// hide each of these by itself.
bool HasMoveHalfFloatAndZeroCount() {
  constexpr uint32_t moveBigEndianBit = 1u << 22;
  constexpr uint32_t halfFloatBit = 1u << 29;
  constexpr uint32_t leadingZerosBit = 1u << 5;
  constexpr uint32_t extendedFeatures = 0x80000001;
  uint32_t a = 0;
  uint32_t b = 0;
  uint32_t c = 0;
  uint32_t d = 0;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0) return false;
  if ((c & moveBigEndianBit) == 0 || (c & halfFloatBit) == 0) return false;
  return __get_cpuid(extendedFeatures, &a, &b, &c, &d) != 0 && (c & leadingZerosBit) != 0;
}
#endif

ProcessorLevel BestLevel() {
#if defined(ZEL_X86_LEVELS)
  if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
      __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
      __builtin_cpu_supports("popcnt") && HasMoveHalfFloatAndZeroCount()) {
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
        __builtin_cpu_supports("avx512vbmi2")) {
      return ProcessorLevel::V4;
    }
    return ProcessorLevel::V3;
  }
#endif
  return ProcessorLevel::Baseline;
}

}  // namespace

uint32_t MmxAvailable() {
  if (mmxPresent == UNKNOWN) mmxPresent = static_cast<int32_t>(MmxDetect());
  return static_cast<uint32_t>(mmxPresent);
}

void MmxForce(int32_t value) {
  mmxPresent = value == 0 || value == 1 ? value : UNKNOWN;
}

ProcessorLevel ProcessorLevelDetect() {
  const ProcessorLevel best = BestLevel();
  const char* wanted = std::getenv("ORLUNE_PTK_LEVEL");
  if (!wanted) return best;
  if (std::strcmp(wanted, "baseline") == 0) return ProcessorLevel::Baseline;
  if (std::strcmp(wanted, "v3") == 0 && best >= ProcessorLevel::V3) return ProcessorLevel::V3;
  return best;
}

bool ProcessorLevelForce(ProcessorLevel level) {
  if (level > BestLevel()) return false;
  processorLevel = level;
  return true;
}

}  // namespace zel
