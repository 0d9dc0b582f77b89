// The command line: the one list of commands and options, from which help, manual pages and
// completions are made.
#pragma once

#include <CLI/CLI.hpp>
#include <map>
#include <string>
#include <vector>

#include "orlune/command/commands.h"
#include "orlune/command/options.h"
#include "orlune/read/read_dials.h"
#include "orlune/recipe/run.h"

namespace front {

// What orlune read reads.
enum class Readable { Barcode, Meter, Display };

class CommandLine {
 public:
  CommandLine();
  CommandLine(const CommandLine&) = delete;
  CommandLine& operator=(const CommandLine&) = delete;

  // Runs what the arguments ask for and gives the program's exit status.
  int Run(int argc, char** argv);

  const CLI::App& app() const { return app_; }
  std::vector<const CLI::App*> Commands() const;
  // Null for a name of none.
  const CLI::App* FindCommand(const std::string& name) const;
  // The words that an option takes; empty where it takes others.
  std::vector<std::string> ChoicesOf(const CLI::Option& option) const;

 private:
  void AddInfo();
  void AddInspect();
  void AddReporting(CLI::App* inspect);
  void AddGauge();
  void AddRun();
  void AddMatch();
  void AddRead();
  void AddReadingBarcodes(CLI::App* read);
  void AddReadingGauges(CLI::App* read);
  void AddCalibrate();
  void AddFilter();
  void AddConvert();
  void AddView();
  void AddSelfcheck();
  void AddOthers();
  void Add(CLI::App* command, const Options& options);
  void AddFiles(CLI::App* command, std::vector<std::string>* files);
  // --csv and --json of a command, --annotate, --quiet and --jobs.
  template <class Command>
  void AddFileReports(CLI::App* app, Command* command, const std::string& annotation,
                      const std::string& group);
  void AddWorkers(CLI::App* command, size_t* workers, const std::string& group);

  // An option that takes one of some words.
  template <class Value, class Take>
  CLI::Option* AddChoice(CLI::App* command, const std::string& name,
                         const std::map<std::string, Value>& values, Take take,
                         const std::string& help);

  int RunGauge();
  int RunRead();

  // What is wrong with the arguments that a better name would mend; empty for nothing.
  std::string WrongName(int argc, char** argv) const;

  CLI::App app_;
  std::map<const CLI::Option*, std::vector<std::string>> choices_;
  InfoCommand info_;
  InspectCommand inspect_;
  GaugeCommand gauge_;
  MatchCommand match_;
  RunCommand run_;
  Readable readable_ = Readable::Barcode;
  ReadFiles readFiles_;
  ReadBarcodesCommand readBarcodes_;
  ReadDialsCommand readDials_;
  FilterCommand filter_;
  ConvertCommand convert_;
  ViewCommand view_;
  CalibrateDialsCommand calibrateDials_;
  SelfcheckCommand selfcheck_;
  std::string helpTopic_, manualTopic_, shell_;
};

// A manual page in the language of man; of the whole program for the app itself.
std::string ManualPage(const CommandLine& line, const CLI::App& command);

// A script for bash, zsh or fish.
std::string Completions(const CommandLine& line, const std::string& shell);

}  // namespace front
