// Measuring cases: a process for each column, as the library chooses its threads once a process.
#pragma once

#include <string>
#include <vector>

#include "benchmarks/results.h"

namespace bench {

struct Plan {
  std::vector<Case> cases;
  std::vector<std::string> command;  // that started the program
  std::string level;                 // processor level of ours; empty: the processor's best
  int32_t rounds;  // processes for each column: where pictures lie in memory changes with them
  bool quick;
};

// Calls every case once, untimed. A call that fails ends the program with a message that names it.
void CheckAll(const std::vector<Case>& cases);

// Measures all cases in this process, and prints a line for each: its number, both times, and 1 if
// they were disturbed.
void MeasureColumn(const Plan& plan, Column column);

// Starts the program again for each column and round, which then measures that column alone, and
// merges what it prints. False when one of them fails.
bool MeasureAll(const Plan& plan, std::vector<Result>* results);

}  // namespace bench
