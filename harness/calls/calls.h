// Every export as a row: its name, and a call of it with arguments that the playground makes up.
#pragma once

#include <cstddef>

#include "harness/playground.h"

namespace test {

struct ApiCall {
  const char* name;
  // Whether the result is 0 or a negative status that the reporter knows.
  bool hasStatus;
  int32_t (*run)(Playground& play);
};

extern const ApiCall API_CALLS[];
extern const size_t API_CALL_COUNT;

// Runs calls that the input chooses, at most `most`, and after each one checks that the world is
// whole and that the result is what the reporter kept. Stops the program where it is not.
void RunCalls(Playground* play, int most);

}  // namespace test
