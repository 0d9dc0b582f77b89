// Where pictures come from: files, pages of files, the standard input.
#pragma once

#include <memory>
#include <new>
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

// Bytes begin as they lie in memory: no time goes into zeros that the file's bytes replace.
struct UnsetBytes : std::allocator<uint8_t> {
  template <class Other>
  struct rebind {
    using other = UnsetBytes;
  };
  void construct(uint8_t* byte) { ::new (byte) uint8_t; }
};
using FileBytes = std::vector<uint8_t, UnsetBytes>;

// The whole file. Throws BadFile with the reason.
FileBytes ReadBytes(const Source& source);

}  // namespace pictures
