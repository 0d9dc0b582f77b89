// The pages of docs/benchmarks/: one a family, and one with the means of all.
#pragma once

#include <string>

#include "benchmarks/results.h"

namespace bench {

// False, with a message, where one cannot be written.
bool WritePages(const Run& run, const std::string& folder);

}  // namespace bench
