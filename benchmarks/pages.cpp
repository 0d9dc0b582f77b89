// Writes the pages from a run's results and the families' own notes.
#include "benchmarks/pages.h"

#include <algorithm>
#include <cstdio>
#include <fstream>

namespace bench {
namespace {

constexpr char GENERATED[] =
    "<!-- Written by `make bench-pages`; changes made here are lost. -->\n";

std::string Number(double number, int decimals) {
  char text[64];
  std::snprintf(text, sizeof(text), "%.*f", decimals, number);
  return text;
}

// Three figures or more, of whatever size.
std::string TimeText(double nanoseconds) {
  return nanoseconds == 0 ? "" : Number(nanoseconds, nanoseconds < 10 ? 4 : 1);
}

std::string MeanText(const Mean& mean) {
  return mean.pairs == 0 ? "" : Number(mean.ratio, 2);
}

std::string RowOf(const Result& result) {
  const Times& one = result.oneThread;
  return "| " + result.operation + " | " + result.kind + " | " + result.size + " | " +
         TimeText(one.ours / result.pixels) + " | " + result.peer + " | " +
         TimeText(one.theirs / result.pixels) + " | " + RatioText(one) + " | " +
         RatioText(result.allCores) + " |\n";
}

std::string MeanCells(const std::vector<Result>& results, const std::string& size) {
  const Mean one = MeanRatio(results, Column::OneThread, size);
  const Mean all = MeanRatio(results, Column::AllCores, size);
  return std::to_string(one.pairs) + " | " + MeanText(one) + " | " + MeanText(all) + " |\n";
}

std::string MeansOf(const std::vector<Result>& results) {
  if (MeanRatio(results, Column::OneThread, "").pairs == 0) return "";
  std::string text =
      "\nGeometric means of the ratios beside libraries:\n\n"
      "| size | pairs | one thread | all cores |\n|---|---:|---:|---:|\n";
  for (const std::string& size : SizesOf(results)) {
    if (MeanRatio(results, Column::OneThread, size).pairs == 0) continue;
    text += "| " + size + " | " + MeanCells(results, size);
  }
  return text + "| all | " + MeanCells(results, "");
}

std::string Facts(const Run& run) {
  std::string text;
  for (const std::string& fact : run.facts) text += "- " + fact + "\n";
  return text;
}

std::string PageOf(const Family& family, const Run& run, const std::vector<Result>& results) {
  std::string text = GENERATED;
  text += "# " + family.title + "\n" + family.notes +
          "\nRatios are the peer's time over ours, of one run: above 1 we are faster. How it is "
          "measured: [README.md](README.md).\n\n" +
          Facts(run) +
          "\n| operation | pixels | size | ours, ns/pixel | peer | peer, ns/pixel | "
          "ratio, one thread | ratio, all cores |\n|---|---|---|---:|---|---:|---:|---:|\n";
  for (const Result& result : results) text += RowOf(result);
  return text + MeansOf(results);
}

constexpr char METHOD[] = R"(# Speed beside other libraries

Each operation is measured beside the same of a peer, on the same pixels, in one run. Our images have
a border of 8 pixels where nothing else is said; the peers' have none, as their users' have none.

- **One thread**: processor time, ours with `ORLUNE_PTK_THREADS=1`, OpenCV with `setNumThreads(1)`.
- **All cores**: wall time, each with the threads that it takes by default.
- Ours and the peer take turns of about a millisecond; the least time of each counts, over several
  processes, as where pictures lie in memory changes with the process.
- A ratio in parentheses was disturbed: other programs took the processor away in every turn of a
  side, which makes wall times too long. It is in no mean.
- Nanoseconds a pixel are those of one thread, of the pixels that a call works on: a line has those
  of the line, and a single pixel is one.
- Every call's status is looked at: one that fails ends the run.
- Means are geometric, over all pairs whose peer is a library; plain loops are left out.

`make bench` prints a table of rough figures, `make bench-pages` measures everything and writes these
pages and [run.csv](run.csv). The program itself, `build/release/benchmarks/orlune_benchmark`, takes
`--filter`, `--size`, `--level` and `--quick`; `--help` tells more.

)";

std::vector<Result> ResultsOf(const Run& run, const std::string& family) {
  std::vector<Result> results;
  std::ranges::copy_if(run.results, std::back_inserter(results),
                       [&](const Result& result) { return result.family == family; });
  return results;
}

std::string IndexOf(const Run& run) {
  std::string text = std::string(GENERATED) + METHOD + Facts(run) +
                     "\n| family | pairs beside libraries | ratio, one thread | ratio, all cores |"
                     "\n|---|---:|---:|---:|\n";
  for (const Family& family : Families()) {
    const std::vector<Result> results = ResultsOf(run, family.name);
    if (results.empty()) continue;
    text += "| [" + family.title + "](" + family.name + ".md) | " + MeanCells(results, "");
  }
  return text + MeansOf(run.results);
}

bool Write(const std::string& path, const std::string& text) {
  std::ofstream file(path);
  file << text;
  file.flush();
  if (!file.good()) std::fprintf(stderr, "benchmark: cannot write %s\n", path.c_str());
  return file.good();
}

}  // namespace

bool WritePages(const Run& run, const std::string& folder) {
  bool written = Write(folder + "/README.md", IndexOf(run));
  for (const Family& family : Families()) {
    const std::vector<Result> results = ResultsOf(run, family.name);
    if (results.empty()) continue;
    written &= Write(folder + "/" + family.name + ".md", PageOf(family, run, results));
  }
  return written;
}

}  // namespace bench
