// Files that are there whole or not at all.
#pragma once

#include <filesystem>
#include <fstream>
#include <ostream>
#include <stdexcept>
#include <string>

#include "pictures/raster.h"

namespace pictures {

// A file that could not be written; the file of that name is as it was.
class WriteFailure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// A file is written beside its place and put there at the end: until then, and after a failure, the
// former file of that name stays. What is no ordinary file (a device, a pipe) is written as it is,
// and "-" is the standard output.
class WholeFile {
 public:
  // Throws WriteFailure.
  explicit WholeFile(const std::string& path);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  std::ostream& stream();
  const std::string& path() const { return path_; }

  // The file that is written at present: for what writes by name.
  const std::string& beside() const { return beside_.empty() ? path_ : beside_; }
  bool IsBeside() const { return !beside_.empty(); }

  // Puts the file into its place. Throws WriteFailure.
  void Finish();

 private:
  std::string path_;
  std::string target_;  // where a symbolic link leads
  std::string beside_;  // empty for what is written as it is
  std::ofstream file_;
  bool standardOutput_ = false;
};

// Throws WriteFailure.
void WriteWhole(const std::string& path, Bytes bytes);

// Two names of one file give the same text, also of one that is not there yet. Never that of
// another file.
std::string IdentityOf(const std::filesystem::path& path);

// Deletes what is half written. May be called in a signal handler.
void RemoveHalfWritten();

}  // namespace pictures
