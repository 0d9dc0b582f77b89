// The results of a run: ratios, means, the table on the terminal, the file.
#include "benchmarks/results.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace bench {
namespace {

constexpr char HEADING[] =
    "family,operation,pixels,size,peer,pixels_a_call,ours_one_ns,peer_one_ns,ours_all_ns,"
    "peer_all_ns,disturbed";

std::vector<std::string> Fields(const std::string& line) {
  std::vector<std::string> fields;
  std::stringstream stream(line);
  for (std::string field; std::getline(stream, field, ',');) fields.push_back(field);
  return fields;
}

bool ToNumber(const std::string& text, double* number) {
  char* end = nullptr;
  *number = std::strtod(text.c_str(), &end);
  return !text.empty() && *end == '\0';
}

bool ResultFrom(const std::string& line, Result* result) {
  const std::vector<std::string> fields = Fields(line);
  if (fields.size() != 11) return false;
  result->family = fields[0];
  result->operation = fields[1];
  result->kind = fields[2];
  result->size = fields[3];
  result->peer = fields[4];
  result->allCores.disturbed = fields[10] != "0";
  return ToNumber(fields[5], &result->pixels) && ToNumber(fields[6], &result->oneThread.ours) &&
         ToNumber(fields[7], &result->oneThread.theirs) &&
         ToNumber(fields[8], &result->allCores.ours) &&
         ToNumber(fields[9], &result->allCores.theirs);
}

int64_t AreaOf(const std::string& size) {
  long width = 0;
  long height = 0;
  return std::sscanf(size.c_str(), "%ldx%ld", &width, &height) == 2 ? int64_t{width} * height : 0;
}

void Least(double time, double* least) {
  if (time > 0 && (*least == 0 || time < *least)) *least = time;
}

void PrintMeans(const Run& run) {
  for (const std::string& size : SizesOf(run.results)) {
    const Mean one = MeanRatio(run.results, Column::OneThread, size);
    const Mean all = MeanRatio(run.results, Column::AllCores, size);
    if (one.pairs == 0) continue;
    std::printf("geometric mean of %zu pairs at %s: %.2f on one thread", one.pairs, size.c_str(),
                one.ratio);
    if (all.pairs > 0) std::printf(", %.2f on all cores", all.ratio);
    std::printf("\n");
  }
}

}  // namespace

Result ResultOf(const Case& measured) {
  const Pair& pair = *measured.pair;
  Result result;
  result.family = measured.family->name;
  result.operation = pair.operation;
  result.kind = NameOf(measured.kind);
  result.size = NameOf(measured.size);
  if (pair.theirs) result.peer = pair.peer;
  result.pixels = pair.pixels(measured.size);
  return result;
}

void Merge(const Times& times, Times* least) {
  const bool first = least->ours == 0;
  Least(times.ours, &least->ours);
  Least(times.theirs, &least->theirs);
  least->disturbed = (first || least->disturbed) && times.disturbed;
}

double Ratio(const Times& times) {
  return times.ours > 0 ? times.theirs / times.ours : 0;
}

std::string RatioText(const Times& times) {
  const double ratio = Ratio(times);
  if (ratio == 0) return "";
  char text[32];
  std::snprintf(text, sizeof(text), times.disturbed ? "(%.2f)" : "%.2f", ratio);
  return text;
}

Mean MeanRatio(const std::vector<Result>& results, Column column, const std::string& size) {
  Mean mean;
  double logarithms = 0;
  for (const Result& result : results) {
    const Times& times = result.In(column);
    const double ratio = Ratio(times);
    if (ratio == 0 || times.disturbed || !result.HasLibrary() ||
        (!size.empty() && result.size != size))
      continue;
    logarithms += std::log(ratio);
    mean.pairs++;
  }
  if (mean.pairs > 0) mean.ratio = std::exp(logarithms / static_cast<double>(mean.pairs));
  return mean;
}

std::vector<std::string> SizesOf(const std::vector<Result>& results) {
  std::vector<std::string> sizes;
  for (const Result& result : results) {
    if (std::ranges::find(sizes, result.size) == sizes.end()) sizes.push_back(result.size);
  }
  std::ranges::sort(sizes, {}, AreaOf);
  return sizes;
}

void Print(const Run& run) {
  for (const std::string& fact : run.facts) std::printf("%s\n", fact.c_str());
  std::printf("%-52s %12s %9s  %-10s %9s %7s %9s\n", "operation", "ours ns", "ns/px", "peer",
              "ns/px", "ratio", "all cores");
  for (const Result& result : run.results) {
    const std::string name =
        result.family + "/" + result.operation + "/" + result.kind + "/" + result.size;
    const Times& times = result.oneThread;
    std::printf("%-52s %12.0f %9.4f", name.c_str(), times.ours, times.ours / result.pixels);
    if (!result.peer.empty()) {
      std::printf("  %-10s %9.4f %7.2f %9s", result.peer.c_str(), times.theirs / result.pixels,
                  Ratio(times), RatioText(result.allCores).c_str());
    }
    std::printf("\n");
  }
  PrintMeans(run);
}

bool Save(const Run& run, const std::string& path) {
  std::ofstream file(path);
  for (const std::string& fact : run.facts) file << "# " << fact << "\n";
  file << HEADING << "\n";
  for (const Result& result : run.results) {
    file << result.family << ',' << result.operation << ',' << result.kind << ',' << result.size
         << ',' << result.peer << ',' << result.pixels << ',' << result.oneThread.ours << ','
         << result.oneThread.theirs << ',' << result.allCores.ours << ',' << result.allCores.theirs
         << ',' << result.allCores.disturbed << "\n";
  }
  file.flush();
  return file.good();
}

bool Load(const std::string& path, Run* run) {
  std::ifstream file(path);
  std::string line;
  while (std::getline(file, line) && line.starts_with("# ")) run->facts.push_back(line.substr(2));
  if (line != HEADING) return false;
  while (std::getline(file, line)) {
    Result result;
    if (!ResultFrom(line, &result)) return false;
    run->results.push_back(result);
  }
  return true;
}

}  // namespace bench
