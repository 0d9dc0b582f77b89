// The benchmark program: measures pairs, prints their table, keeps it in a file, writes the pages.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <regex>

#include "benchmarks/machine.h"
#include "benchmarks/measure.h"
#include "benchmarks/pages.h"

namespace {

struct Options {
  std::string filter;
  std::vector<std::string> sizes;
  std::string level;
  int32_t rounds = 0;
  bool quick = false;
  bool list = false;
  bool check = false;
  std::string out;
  std::string from;
  std::string pages;
  std::string column;
};

void Declare(CLI::App* app, Options* options) {
  app->add_option(
         "--filter", options->filter,
         "Only cases whose name (family/operation/pixels/size) has this regular expression")
      ->check(CLI::Validator(
          [](const std::string& text) {
            try {
              const std::regex expression(text);
            } catch (const std::regex_error& error) {
              return std::string(error.what());
            }
            return std::string();
          },
          "REGEX"));
  app->add_option("--size", options->sizes, "Only these sizes, such as 64x64 or 1920x1080");
  app->add_option("--level", options->level, "Processor level of our side")
      ->envname("ORLUNE_PTK_LEVEL")
      ->check(CLI::Validator(
          [](const std::string& text) {
            return bench::HasLevel(text) ? std::string() : "this machine has no level " + text;
          },
          "LEVEL"));
  app->add_flag(
      "--quick", options->quick,
      "Rough figures soon: one round of short turns, nothing above full HD without --size");
  app->add_option("--rounds", options->rounds, "Processes for each column (3; quick: 1)")
      ->check(CLI::Range(1, 100));
  app->add_option("--out", options->out, "Keep the results in this file, as CSV");
  app->add_option("--pages", options->pages, "Write the pages into this folder")
      ->check(CLI::ExistingDirectory);
  app->add_option("--from", options->from, "Measure nothing: take the results of this file")
      ->check(CLI::ExistingFile);
  app->add_flag("--list", options->list, "Name the cases");
  app->add_flag("--check", options->check, "Call every case once, untimed: does each succeed?");
  app->add_option("--column", options->column)->group("");  // for the program itself
}

std::string Effort(const bench::Plan& plan) {
  return std::string("measured: ") + (plan.quick ? "a quick trial" : "in full") +
         ", processes for each column: " + std::to_string(plan.rounds);
}

// Wall times of such cases are too long, and those of the slower side most.
std::string Disturbances(const std::vector<bench::Result>& results) {
  const auto disturbed = std::ranges::count_if(
      results, [](const bench::Result& result) { return result.allCores.disturbed; });
  return "cases in which other programs disturbed every wall time: " + std::to_string(disturbed) +
         " of " + std::to_string(results.size());
}

bool MeasureRun(const bench::Plan& plan, bench::Run* run) {
  run->facts = bench::FactsOfMachine(plan.level);
  run->facts.push_back(Effort(plan));
  if (!bench::MeasureAll(plan, &run->results)) return false;
  run->facts.push_back(Disturbances(run->results));
  return true;
}

int Fail(const std::string& message) {
  std::fprintf(stderr, "benchmark: %s\n", message.c_str());
  return 1;
}

int Report(const bench::Run& run, const Options& options) {
  bench::Print(run);
  if (!options.out.empty() && !bench::Save(run, options.out)) {
    return Fail("cannot write " + options.out);
  }
  return options.pages.empty() || bench::WritePages(run, options.pages) ? 0 : 1;
}

int Measure(const bench::Plan& plan, const Options& options) {
  if (plan.cases.empty()) return Fail("no case is called so");
  if (options.list) {
    for (const bench::Case& one : plan.cases) std::printf("%s\n", one.Name().c_str());
    return 0;
  }
  if (options.check) {
    bench::CheckAll(plan.cases);
    std::printf("%zu calls succeed\n", plan.cases.size());
    return 0;
  }
  if (!options.column.empty()) {
    bench::MeasureColumn(
        plan, options.column == "one" ? bench::Column::OneThread : bench::Column::AllCores);
    return 0;
  }
  bench::Run run;
  return MeasureRun(plan, &run) ? Report(run, options) : Fail("the run is not complete");
}

}  // namespace

int main(int argc, char** argv) {
  Options options;
  CLI::App app("Measures the library beside its peers: ratios are the peer's time over ours.");
  Declare(&app, &options);
  CLI11_PARSE(app, argc, argv);

  if (!options.from.empty()) {
    bench::Run run;
    if (!bench::Load(options.from, &run)) return Fail(options.from + " holds no results");
    return Report(run, options);
  }
  ZEL_SetErrorMode(1);
  bench::Plan plan;
  if (options.quick && options.sizes.empty()) options.sizes = {"64x64", "480x360", "1920x1080"};
  plan.cases = bench::CasesFor(options.filter, options.sizes);
  plan.command.assign(argv, argv + argc);
  plan.level = options.level;
  plan.rounds = options.rounds > 0 ? options.rounds : options.quick ? 1 : 3;
  plan.quick = options.quick;
  return Measure(plan, options);
}
