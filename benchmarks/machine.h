// What results are worth nothing without: the machine, the compiler, the peers.
#pragma once

#include <string>
#include <vector>

namespace bench {

// "what: which", one a line. level: the one that was asked for; empty: none.
std::vector<std::string> FactsOfMachine(const std::string& level);

// Whether the processor has this level of the library.
bool HasLevel(const std::string& level);

}  // namespace bench
