// orlune run: recipes carried out on picture files.
#pragma once

#include <string>
#include <vector>

namespace front {

struct RunCommand {
  std::string recipe;  // file
  std::vector<std::string> files;
  bool check = false;           // only tell what the recipe says
  std::string explainOn;        // picture; empty for none
  std::string out;              // folder for its steps
  std::string csv, json, html;  // files, "-" for the standard output, empty for none
  std::string annotate;         // folder, empty for none
  std::string database;         // file, empty for none
  bool resume = false;
  bool onlyList = false;  // put the pictures into the records, for others to work on
  std::string watch;      // folder whose pictures are taken as they come; empty for none
  std::string verdicts;   // pipe that each verdict goes to; empty for none
  std::string call;       // program that is called with each verdict; empty for none
  double callLimit = 10;  // seconds for it; 0 is none
  size_t workers = 1;
  double limit = 60;  // seconds for a picture; 0 is none
  bool quiet = false;
};
// ALL_WELL means that all pictures passed, SOME_FAILED that some did not, and NO_VERDICT that some
// have none.
int Run(const RunCommand& command);
constexpr int NO_VERDICT = 3;

}  // namespace front
