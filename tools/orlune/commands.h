// The commands of the front. Each returns the program's exit status.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/inspection.h"
#include "orlune/steps.h"

namespace front {

// Exit statuses.
constexpr int ALL_WELL = 0;
constexpr int SOME_FAILED = 1;  // a file could not be read or written; the others were done
constexpr int BAD_USE = 2;      // the command line makes no sense; nothing was done

struct InfoCommand {
  std::vector<std::string> files;
};
int Run(const InfoCommand& command);

struct InspectCommand {
  std::vector<std::string> files;
  InspectSettings settings;
  std::vector<const Measure*> measures;  // empty: a choice that suits the table
  std::string csv;                       // file, "-" for the standard output, empty for none
  std::string json;
  std::string annotate;  // folder, empty for none
  size_t rows = 100;     // of a picture's table; 0 is no limit
  bool quiet = false;
};
int Run(const InspectCommand& command);

struct ConvertCommand {
  std::string from, to;
  std::optional<PictureFormat> format;  // none: by the ending of to
  std::optional<int32_t> type;          // ImageType; none keeps the file's
  bool stretch = false;
  bool swapBytes = false;
};
int Run(const ConvertCommand& command);

struct FilterCommand {
  std::vector<std::string> files;
  Chain steps;
  std::string folder;                   // for a picture of each file, or
  std::string to;                       // the picture of the only file
  std::string mask;                     // file, empty for none
  std::optional<PictureFormat> format;  // none: by the endings of the names
  bool swapBytes = false;
  bool quiet = false;
};
int Run(const FilterCommand& command);

// The list of the 50 measures.
int ListMeasures();

// "orlune: FILE: MESSAGE" on standard error, with a hint where one helps.
void PrintFailure(const std::string& file, const std::exception& failure);

}  // namespace front
