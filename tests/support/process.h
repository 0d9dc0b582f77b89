// What the process takes of the machine.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <fstream>

namespace test {

// Memory that is there, not merely asked for.
inline int64_t ResidentBytes() {
  int64_t total = 0;
  int64_t resident = 0;
  std::ifstream("/proc/self/statm") >> total >> resident;
  EXPECT_GT(resident, 0) << "the machine does not tell";
  return resident * sysconf(_SC_PAGESIZE);
}

}  // namespace test
