#include "harness/calls/calls.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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

// What the reporter keeps after a call that began with nothing in it.
const char* ReportFault(const ApiCall& call, int32_t result) {
  char procedure[ERROR_PROCEDURE_BYTES] = "";
  if (ZEL_GetErrorMode() != ERROR_MODE_SILENT) return "the error mode changed";
  const int32_t kept = ZEL_GetLastError(procedure);
  if (call.answer == NO_STATUS) return nullptr;
  if (result > 0) return "a positive result";
  if (kept != result) return "the reporter kept another result";
  const char* expected = call.reportedAs ? call.reportedAs : call.name;
  if (result == 0) expected = "";
  const bool isNamed = std::strcmp(procedure, expected) == 0 || call.reportedAs == ANY_NAME;
  return isNamed ? nullptr : "the reporter kept another name";
}

std::array<CallCounts, 256> countsByCode{};

void RunCall(const ApiCall& call, Playground* play) {
  ZEL_GetLastError(nullptr);
  play->model().Begin();
  const int32_t result = call.run(*play);
  const char* fault = zel::WorldFault();
  if (!fault) fault = ReportFault(call, result);
  const bool failed = call.answer == STATUS && result != 0;
  CallCounts& counts = countsByCode[call.code];
  (failed ? counts.failed : counts.succeeded)++;
  if (!fault) fault = play->model().Fault(failed, LeftoversOf(call, result));
  play->EndCall();
  if (fault) {
    std::fprintf(stderr, "%s: %s (result %d)\n", call.name, fault, result);
    std::abort();
  }
}

}  // namespace

const std::vector<ApiCall>& ApiCalls() {
  static const auto calls = [] {
    std::vector<ApiCall> all;
    for (const auto& family :
         {CORE_CALLS, UTILITY_CALLS, POINT_CALLS, STATISTICS_CALLS, PARTICLE_CALLS, FILTER_CALLS,
          GEOMETRY_CALLS, MORPHOLOGY_CALLS, PARTICLE_FILTER_CALLS, SHAPE_CALLS, COLOUR_CALLS,
          FREQUENCY_CALLS, FILE_CALLS, REGION_CALLS, VISION_CALLS, BARCODE_CALLS, DIALS_CALLS,
          WINDOW_CALLS}) {
      all.insert(all.end(), family.begin(), family.end());
    }
    return all;
  }();
  return calls;
}

const ApiCall& CallNamed(std::string_view name) {
  for (const ApiCall& call : ApiCalls()) {
    if (name == call.name) return call;
  }
  std::fprintf(stderr, "no row of wild calls has the name asked for\n");
  std::abort();
}

CallCounts CountsOf(const ApiCall& call) {
  return countsByCode[call.code];
}

Changes LeftoversOf(const ApiCall& call, int32_t result) {
  Changes changes = 0;
  for (const Leftovers& one : call.leftovers) {
    if (one.result == ANY_FAILURE || one.result == result) changes |= one.changes;
  }
  return changes;
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
