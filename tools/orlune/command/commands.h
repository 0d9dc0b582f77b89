// The commands of the front. Each returns the program's exit status.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "orlune/command/program.h"
#include "orlune/filter/steps.h"
#include "orlune/gauge/line_gauges.h"
#include "orlune/gauge/shape_matches.h"
#include "orlune/inspect/inspection.h"
#include "orlune/read/barcode_search.h"
#include "orlune/shared/output.h"
#include "orlune/shared/works.h"
#include "orlune/view/viewer.h"

namespace front {

struct InfoCommand {
  std::vector<std::string> files;
  bool json = false;
};
int Run(const InfoCommand& command);

struct InspectCommand : InspectWork {
  std::vector<std::string> files;
  std::string csv;  // file, "-" for the standard output, empty for none
  std::string json;
  std::string annotate;  // folder, empty for none
  std::string labels;    // likewise
  size_t rows = 100;     // of a picture's table; 0 is no limit
  size_t workers = 1;
  bool quiet = false;
};
int Run(const InspectCommand& command);

// What every kind of reading takes and gives.
struct ReadFiles {
  std::vector<std::string> files;
  std::string csv, json;  // file, "-" for the standard output, empty for none
  std::string annotate;   // folder, empty for none
  bool quiet = false;
};

struct ReadBarcodesCommand : ReadFiles {
  BarcodeSettings settings;
  size_t workers = 1;
};
// Every picture with a code that was read is well; ALL_WELL means all of them.
int Run(const ReadBarcodesCommand& command);

struct ViewCommand {
  ViewSettings settings;
};
// Until the person leaves, the display goes, or the program is interrupted.
int Run(const ViewCommand& command);

struct GaugeCommand : GaugeWork {
  std::vector<std::string> files;
  std::string save;       // file for the set-up, empty for none
  std::string csv, json;  // file, "-" for the standard output, empty for none
  std::string annotate;   // folder, empty for none
  size_t workers = 1;
  bool swapBytes = false;
  bool quiet = false;
};
// ALL_WELL means that every picture passed.
int Run(const GaugeCommand& command);

struct MatchCommand : MatchWork {
  std::vector<std::string> files;
  std::string csv, json;  // file, "-" for the standard output, empty for none
  std::string annotate;   // folder, empty for none
  size_t workers = 1;
  bool quiet = false;
};
// ALL_WELL means that every picture has a match.
int Run(const MatchCommand& command);

struct ConvertCommand {
  std::string from, to;
  std::optional<PictureFormat> format;  // none: by the ending of to
  std::optional<int32_t> type;          // ImageType, or TYPE_U16; none keeps the file's
  bool stretch = false;
  bool swapBytes = false;
};
constexpr int32_t TYPE_U16 = 100;  // unsigned 16-bit pixels, which only files have
int Run(const ConvertCommand& command);

struct FilterCommand : FilterWork {
  std::vector<std::string> files;
  std::string folder;                   // for a picture of each file, or
  std::string to;                       // the picture of the only file
  std::optional<PictureFormat> format;  // none: by the endings of the names
  size_t workers = 1;
  bool swapBytes = false;
  bool quiet = false;
};
int Run(const FilterCommand& command);

// The list of measures.
int ListMeasures();

struct SelfcheckCommand {
  std::string file;   // of digests; empty for the one that came with the program
  std::string write;  // instead, a file for those of this machine
};
// ALL_WELL means that this machine computes what it should.
int Run(const SelfcheckCommand& command);

// "FILE: MESSAGE", with a hint where one helps, and without the line's end.
std::string FailureText(const std::string& file, const std::exception& failure);

// What the function gives; what it throws becomes a std::runtime_error with that text.
template <class Function>
auto Named(const std::string& file, Function function) {
  try {
    return function();
  } catch (const std::exception& failure) {
    throw std::runtime_error(FailureText(file, failure));
  }
}

// "orlune: " with that text, on standard error.
void PrintFailure(const std::string& file, const std::exception& failure);

// Every page of the files that end in #all by a name of its own. Throws BadFile for one that cannot
// be read.
std::vector<std::string> WithAllPages(const std::vector<std::string>& files);

}  // namespace front
