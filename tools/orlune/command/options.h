// What the steps of commands and recipes take: each option once, for the command line and for
// recipes alike.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orlune/shared/works.h"

namespace front {

struct Option {
  std::string name;   // "edge-width": --edge-width on a command line, a key in a recipe
  std::string type;   // what it takes, for the help: "PIXELS"; empty for a switch
  std::string group;  // heading in the help; empty for none
  std::string help;
  // Takes what was given, and for a switch that it is on. Throws std::invalid_argument.
  std::function<void(const std::string& text)> take;
  bool many = false;                      // may be given again
  std::vector<std::string> choices = {};  // the words that it takes; empty where it takes others
  std::vector<std::string> excludes = {};

  bool IsSwitch() const { return type.empty(); }
};
using Options = std::vector<Option>;

// Headings that the commands ask for.
constexpr char LINES_GROUP[] = "Lines";
constexpr char BARCODES_GROUP[] = "Bar codes";

// Each leads into the record, which has to live as long as they do.
Options InspectOptions(InspectWork* work);
// How objects are found at first where a person looks on.
Options ViewOptions(InspectSettings* settings);
Options FilterOptions(FilterWork* work);
Options GaugeOptions(GaugeWork* work);
// Of one line, without its place.
Options LineOptions(LineGauge* line);
Options MatchOptions(MatchWork* work);
Options BarcodeOptions(BarcodeSettings* settings);

}  // namespace front
