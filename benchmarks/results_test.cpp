// Ratios, means, the file of results, pages, and that turns are taken.
#include "benchmarks/results.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "benchmarks/measure.h"
#include "benchmarks/pages.h"

namespace {

using bench::Column;
using bench::Result;

const bench::Registration MADE_UP({"made_up", "Made up", "\nA note.\n", {{.operation = "add"}}});

Result MakeResult(const char* peer, const char* size, double ours, double theirs) {
  Result result;
  result.family = "made_up";
  result.operation = "add";
  result.kind = "u8";
  result.size = size;
  result.peer = peer;
  result.pixels = 100;
  result.oneThread = {ours, theirs};
  result.allCores = {ours, theirs * 2};
  return result;
}

class Folder {
 public:
  Folder() {
    path_ = std::filesystem::temp_directory_path() / "ptk_results_XXXXXX";
    if (!mkdtemp(path_.data())) std::abort();
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  std::string File(const std::string& name) const { return path_ + "/" + name; }
  const std::string& Path() const { return path_; }

 private:
  std::string path_;
};

std::string TextOf(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

TEST(Results, MeanIsGeometricAndLeavesPlainLoopsOut) {
  const std::vector<Result> results = {
      MakeResult("OpenCV", "64x64", 10, 20), MakeResult("libtiff", "64x64", 10, 80),
      MakeResult(bench::PLAIN_LOOP, "64x64", 1, 1000), MakeResult("", "64x64", 10, 0),
      MakeResult("OpenCV", "9x9", 10, 5)};
  const bench::Mean mean = bench::MeanRatio(results, Column::OneThread, "64x64");
  EXPECT_EQ(mean.pairs, 2u);
  EXPECT_NEAR(mean.ratio, 4.0, 1e-12);
  EXPECT_NEAR(bench::MeanRatio(results, Column::AllCores, "64x64").ratio, 8.0, 1e-12);
  EXPECT_NEAR(bench::MeanRatio(results, Column::OneThread, "").ratio, 2.0, 1e-12);
}

TEST(Results, MeanLeavesDisturbedTimesOut) {
  std::vector<Result> results = {MakeResult("OpenCV", "64x64", 10, 20),
                                 MakeResult("OpenCV", "64x64", 10, 80)};
  results[1].allCores.disturbed = true;
  EXPECT_EQ(bench::MeanRatio(results, Column::AllCores, "").pairs, 1u);
  EXPECT_EQ(bench::MeanRatio(results, Column::OneThread, "").pairs, 2u);
}

TEST(Results, DisturbedRatioStandsInParentheses) {
  EXPECT_EQ(bench::RatioText({10, 25, false}), "2.50");
  EXPECT_EQ(bench::RatioText({10, 25, true}), "(2.50)");
  EXPECT_EQ(bench::RatioText({10, 0, false}), "");
}

TEST(Results, MergeKeepsTheSmallerTimeOfEachSide) {
  bench::Times least;
  bench::Merge({10, 30, true}, &least);
  EXPECT_TRUE(least.disturbed);
  bench::Merge({20, 15, false}, &least);
  bench::Merge({40, 40, true}, &least);
  EXPECT_EQ(least.ours, 10);
  EXPECT_EQ(least.theirs, 15);
  EXPECT_FALSE(least.disturbed);
}

TEST(Results, SizesComeByArea) {
  const std::vector<Result> results = {
      MakeResult("", "1920x1080", 1, 0), MakeResult("", "480x360", 1, 0),
      MakeResult("", "64x64", 1, 0), MakeResult("", "480x360", 1, 0)};
  EXPECT_EQ(bench::SizesOf(results), (std::vector<std::string>{"64x64", "480x360", "1920x1080"}));
}

TEST(Results, FileGivesBackWhatWasSaved) {
  const Folder folder;
  bench::Run run = {{"processor: some", "date: today"},
                    {MakeResult("OpenCV", "64x64", 12.5, 20), MakeResult("", "64x64", 3, 0)}};
  run.results[0].allCores.disturbed = true;
  ASSERT_TRUE(bench::Save(run, folder.File("run.csv")));
  bench::Run loaded;
  ASSERT_TRUE(bench::Load(folder.File("run.csv"), &loaded));
  EXPECT_EQ(loaded.facts, run.facts);
  ASSERT_EQ(loaded.results.size(), 2u);
  EXPECT_EQ(loaded.results[0].peer, "OpenCV");
  EXPECT_EQ(loaded.results[0].oneThread.ours, 12.5);
  EXPECT_EQ(loaded.results[0].allCores.theirs, 40);
  EXPECT_TRUE(loaded.results[0].allCores.disturbed);
  EXPECT_FALSE(loaded.results[1].allCores.disturbed);
  EXPECT_EQ(loaded.results[1].peer, "");
  EXPECT_EQ(loaded.results[1].pixels, 100);
}

TEST(Results, OtherFilesAreRefused) {
  const Folder folder;
  bench::Run run;
  EXPECT_FALSE(bench::Load(folder.File("missing.csv"), &run));
  std::ofstream(folder.File("other.csv")) << "a,b,c\n1,2,3\n";
  EXPECT_FALSE(bench::Load(folder.File("other.csv"), &run));
  ASSERT_TRUE(bench::Save({{}, {MakeResult("OpenCV", "64x64", 1, 2)}}, folder.File("cut.csv")));
  std::ofstream(folder.File("cut.csv"), std::ios::app)
      << "made_up,add,u8,64x64,OpenCV,100,x,2,3,4,0\n";
  EXPECT_FALSE(bench::Load(folder.File("cut.csv"), &run));
}

TEST(Pages, PageHasNotesRowsAndMeans) {
  const Folder folder;
  const bench::Run run = {{"processor: some"}, {MakeResult("OpenCV", "64x64", 1000, 2500)}};
  ASSERT_TRUE(bench::WritePages(run, folder.Path()));
  const std::string page = TextOf(folder.File("made_up.md"));
  EXPECT_NE(page.find("# Made up\n\nA note.\n"), std::string::npos) << page;
  EXPECT_NE(page.find("- processor: some\n"), std::string::npos) << page;
  EXPECT_NE(page.find("| add | u8 | 64x64 | 10.0 | OpenCV | 25.0 | 2.50 | 5.00 |\n"),
            std::string::npos)
      << page;
  EXPECT_NE(page.find("| 64x64 | 1 | 2.50 | 5.00 |\n"), std::string::npos) << page;
  EXPECT_NE(TextOf(folder.File("README.md")).find("[Made up](made_up.md) | 1 | 2.50 | 5.00 |"),
            std::string::npos);
}

TEST(Checks, CallThatFailsEndsTheProgramAndIsNamed) {
  bench::Pair refused{.operation = "refused", .ours = [](bench::Images&) { return -101; }};
  const bench::Family family{"made_up", "Made up", "", {}};
  const bench::Case failing = {&family, &refused, {IMAGE_U8}, {64, 64}};
  EXPECT_EXIT(bench::CheckAll({failing}), testing::ExitedWithCode(1),
              "made_up/refused/u8/64x64: the call fails with -101");
}

TEST(Turns, SidesAlternateAndTheDearerOneShows) {
  std::string order;
  volatile double sum = 0;
  const auto work = [&](char side, int32_t steps) {
    if (order.empty() || order.back() != side) order += side;
    for (int32_t i = 0; i < steps; i++) sum = sum + i;
  };
  const bench::Times times = bench::ByTurns([&] { work('o', 1000); }, [&] { work('t', 100000); },
                                            CLOCK_PROCESS_CPUTIME_ID, {1e4, 1e6, 4});
  EXPECT_GT(times.ours, 0);
  EXPECT_GT(times.theirs, 10 * times.ours);
  EXPECT_TRUE(order.starts_with("otototot")) << order;
}

}  // namespace
