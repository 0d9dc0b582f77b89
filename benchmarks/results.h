// What a run found, and the file that keeps it.
#pragma once

#include <string>
#include <vector>

#include "benchmarks/pairs.h"
#include "benchmarks/turns.h"

namespace bench {

// Both sides on one thread in processor time, or on all cores, as each does it by default, in wall
// time. The library chooses its threads once a process, so each column is measured in its own.
enum class Column { OneThread, AllCores };
inline constexpr Column COLUMNS[] = {Column::OneThread, Column::AllCores};

struct Result {
  std::string family, operation, kind, size, peer;  // no peer: empty
  double pixels = 1;                                // of a call
  Times oneThread, allCores;

  const Times& In(Column column) const {
    return column == Column::OneThread ? oneThread : allCores;
  }
  // Whether it counts in the means.
  bool HasLibrary() const { return !peer.empty() && peer != PLAIN_LOOP; }
};

struct Run {
  std::vector<std::string> facts;  // of the machine and of how it was measured, "what: which"
  std::vector<Result> results;
};

Result ResultOf(const Case& measured);

// Keeps the smaller of each of two times, as far as they are measured. Disturbed is what was so in
// every process.
void Merge(const Times& times, Times* least);

// How many times as fast as the peer; 0 without one.
double Ratio(const Times& times);

// The ratio to two decimals, in parentheses if it was disturbed.
std::string RatioText(const Times& times);

// Geometric mean of the ratios beside libraries at a size (all sizes if it is empty), disturbed
// ones left out.
struct Mean {
  size_t pairs = 0;
  double ratio = 0;
};
Mean MeanRatio(const std::vector<Result>& results, Column column, const std::string& size);

// The sizes of the results, each once, the smallest first.
std::vector<std::string> SizesOf(const std::vector<Result>& results);

void Print(const Run& run);

// Comma-separated values behind the facts as comments. False where a file cannot be had or is none
// of ours.
bool Save(const Run& run, const std::string& path);
bool Load(const std::string& path, Run* run);

}  // namespace bench
