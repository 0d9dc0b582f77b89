// Wild calls of every export, one row each: an input names a row by its code and then gives the
// arguments. Stored inputs stay good for ever, so a row keeps its code, its draws and their order.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "harness/playground.h"

namespace test {

enum CallAnswer {
  STATUS,     // 0, or a negative number that the reporter knows
  NO_STATUS,  // anything else
};

// What a failing call has changed by then of the images that it names, or of the caller's outputs,
// as its header tells. Of a framed source the border is always among it, of a framed destination it
// is not.
struct Leftovers {
  int32_t result;  // ANY_FAILURE, or the one that it holds for
  Changes changes;
};
constexpr int32_t ANY_FAILURE = 0;

inline constexpr char ANY_NAME[] = "";

struct ApiCall {
  // The row's own, whatever other rows come and go; a code that is free again stays free. A new
  // family begins at the next ten.
  uint8_t code;
  const char* name;
  int32_t (*run)(Playground& play);
  CallAnswer answer = STATUS;
  std::span<const Leftovers> leftovers = {};
  const char* reportedAs =
      nullptr;  // the name in the reports, where it is another one, or ANY_NAME
};

// The rows of each family.
extern const std::span<const ApiCall> CORE_CALLS;
extern const std::span<const ApiCall> UTILITY_CALLS;
extern const std::span<const ApiCall> POINT_CALLS;
extern const std::span<const ApiCall> STATISTICS_CALLS;
extern const std::span<const ApiCall> PARTICLE_CALLS;
extern const std::span<const ApiCall> FILTER_CALLS;
extern const std::span<const ApiCall> GEOMETRY_CALLS;
extern const std::span<const ApiCall> MORPHOLOGY_CALLS;
extern const std::span<const ApiCall> PARTICLE_FILTER_CALLS;
extern const std::span<const ApiCall> SHAPE_CALLS;
extern const std::span<const ApiCall> COLOUR_CALLS;
extern const std::span<const ApiCall> FREQUENCY_CALLS;
extern const std::span<const ApiCall> FILE_CALLS;
extern const std::span<const ApiCall> REGION_CALLS;
extern const std::span<const ApiCall> VISION_CALLS;
extern const std::span<const ApiCall> BARCODE_CALLS;
extern const std::span<const ApiCall> DIALS_CALLS;
extern const std::span<const ApiCall> WINDOW_CALLS;

// All of them.
const std::vector<ApiCall>& ApiCalls();

const ApiCall& CallNamed(std::string_view name);

// What a call may have changed by the time that it failed with this result.
Changes LeftoversOf(const ApiCall& call, int32_t result);

// How often RunCalls has made a call in this process. One without a status succeeds always.
struct CallCounts {
  uint64_t succeeded, failed;
};
CallCounts CountsOf(const ApiCall& call);

// Runs calls that the input chooses, at most `most`, and after each one checks that the world is
// whole, that the result is what the reporter kept, and that nothing changed but what the call may
// change. Stops the program where it is not so. A code that no row has is passed over.
void RunCalls(Playground* play, int most);

}  // namespace test
