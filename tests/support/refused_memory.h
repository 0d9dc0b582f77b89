// A call tried again and again with another allocation refused each time.
#pragma once

#include <gtest/gtest.h>

#include "core/heap.h"
#include "core/world.h"

namespace test {

// Refuses the first allocation, then the second and so on, once alone and once with all that
// follow, until the call asks for no more. It must answer -101, or -102 where an image could not be
// had, or 0 where it could do without, and leave a consistent world; it succeeds when nothing is
// refused. `prepare` runs before each call.
template <class Prepare, class Call>
void RefuseEachAllocation(const Prepare& prepare, const Call& call) {
  constexpr uint64_t most = 500;
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  for (const bool allAfter : {false, true}) {
    uint64_t n = 1;
    for (bool refused = true; refused && n < most; n++) {
      prepare();
      hooks->requests = 0;
      hooks->failAt = n;
      hooks->failAllAfter = allAfter;
      const int32_t result = call();
      refused = hooks->requests >= n;
      hooks->failAt = 0;
      EXPECT_EQ(zel::WorldFault(), nullptr);
      if (refused) {
        EXPECT_TRUE(result == -101 || result == -102 || result == 0) << result;
      } else {
        EXPECT_EQ(result, 0);
      }
    }
    EXPECT_LT(n, most);
    EXPECT_GT(n, 2u);
  }
}

}  // namespace test
