// Where pictures come from: files, pages of files, the standard input.
#pragma once

#include <string>
#include <vector>

#include "pictures/raster.h"

namespace pictures {

constexpr char STANDARD_STREAM[] = "-";

// "part.tif", "scan.tif#3", "-"
struct Source {
  std::string path;
  int32_t page = 1;
  bool pageNamed = false;

  bool IsStandardInput() const { return path == STANDARD_STREAM; }
};

// A text behind the last # is a page only where it is a number, and no file has the whole name.
Source SourceOf(const std::string& name);

// The whole file. Throws BadFile with the reason.
std::vector<uint8_t> ReadBytes(const Source& source);

}  // namespace pictures
