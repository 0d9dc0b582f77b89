#include "harness/calls/calls.h"

#include <array>
#include <cstdio>
#include <cstdlib>

#include "core/world.h"

namespace test {
namespace {

const ApiCall* RowOf(uint8_t code) {
  static const auto rows = [] {
    std::array<const ApiCall*, 256> byCode{};
    for (const ApiCall& call : ApiCalls()) byCode[call.code] = &call;
    return byCode;
  }();
  return rows[code];
}

void RunCall(const ApiCall& call, Playground* play) {
  const bool hasStatus = call.answer == STATUS;
  if (hasStatus) ZEL_GetLastError(nullptr);
  const int32_t result = call.run(*play);
  play->EndCall();
  const char* fault = zel::WorldFault();
  if (!fault && hasStatus) {
    if (result > 0) fault = "a positive result";
    if (ZEL_GetLastError(nullptr) != result) fault = "the reporter kept another result";
  }
  if (fault) {
    std::fprintf(stderr, "%s: %s (result %d)\n", call.name, fault, result);
    std::abort();
  }
}

}  // namespace

const std::vector<ApiCall>& ApiCalls() {
  static const auto calls = [] {
    std::vector<ApiCall> all;
    for (const auto& family : {CORE_CALLS, UTILITY_CALLS, POINT_CALLS, STATISTICS_CALLS,
                               PARTICLE_CALLS, FILTER_CALLS, FILE_CALLS}) {
      all.insert(all.end(), family.begin(), family.end());
    }
    return all;
  }();
  return calls;
}

void RunCalls(Playground* play, int most) {
  for (int calls = 0; calls < most && !play->input().IsEmpty();) {
    const ApiCall* row = RowOf(play->input().Byte());
    if (!row) continue;
    RunCall(*row, play);
    calls++;
  }
}

}  // namespace test
