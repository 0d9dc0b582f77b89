// Finding out what the processor can do.
#include "platform/processor.h"

#include <unistd.h>

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

namespace zel {
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
  return 1;
#endif
}

#if defined(__x86_64__)
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

bool HasV3() {
  return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
         __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
         __builtin_cpu_supports("popcnt") && HasMoveHalfFloatAndZeroCount();
}

bool HasV4() {
  return HasV3() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
         __builtin_cpu_supports("avx512cd") && __builtin_cpu_supports("avx512dq") &&
         __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512vbmi") &&
         __builtin_cpu_supports("avx512vbmi2") && __builtin_cpu_supports("avx512vnni");
}
#endif

}  // namespace

uint32_t MmxAvailable() {
  if (mmxPresent == UNKNOWN) mmxPresent = static_cast<int32_t>(MmxDetect());
  return static_cast<uint32_t>(mmxPresent);
}

void MmxForce(int32_t value) {
  mmxPresent = value == 0 || value == 1 ? value : UNKNOWN;
}

int64_t LastLevelCacheBytes() {
  constexpr int64_t usual = 32 << 20;
#if defined(_SC_LEVEL3_CACHE_SIZE)
  const long told = sysconf(_SC_LEVEL3_CACHE_SIZE);
  if (told > 0) return told;
#endif
  return usual;
}

ProcessorFeatures ProcessorFeaturesAsk() {
#if defined(__x86_64__)
  return {.plain = true, .baseline = true, .v3 = HasV3(), .v4 = HasV4(), .neon = false};
#elif defined(__aarch64__)
  return {.plain = true, .baseline = false, .v3 = false, .v4 = false, .neon = true};
#else
  return {.plain = true, .baseline = false, .v3 = false, .v4 = false, .neon = false};
#endif
}

}  // namespace zel
