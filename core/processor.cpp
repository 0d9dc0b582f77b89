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

ProcessorLevel BestLevel() {
#if defined(ZEL_X86_LEVELS)
  // The names stand for everything that the compiler may use at a level, also what a virtual
  // machine may hide one by one.
  if (__builtin_cpu_supports("x86-64-v4") && __builtin_cpu_supports("avx512vbmi") &&
      __builtin_cpu_supports("avx512vbmi2")) {
    return ProcessorLevel::V4;
  }
  if (__builtin_cpu_supports("x86-64-v3")) return ProcessorLevel::V3;
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
