// A command's work on many picture files: workers, reports, what is told of each file and of all.
#pragma once

#include <functional>
#include <ostream>
#include <string>
#include <vector>

namespace front {

// What there is to say of a file, made where it was worked on and told where all come together.
struct FileOutcome {
  bool failed = false;     // it could not be read
  bool well = true;        // nothing is wrong with it
  std::string table;       // for people, with the line's end
  std::string csv, json;   // lines, and a record
  std::string complaints;  // lines for standard error
  std::string findings;    // for whoever sums up, in a parcel of his own
};

struct FileRun {
  std::vector<std::string> files;
  size_t workers = 1;
  bool quiet = false;
  std::string csv, json;              // files, "-" for the standard output, empty for none
  std::string csvHead;                // a line
  std::string annotate;               // folder, empty for none
  std::string annotateSuffix;         // of the names in it: "-gauged.bmp"
  std::vector<std::string> alsoRead;  // files that are read, but not worked on
  std::vector<std::string> alsoWritten;

  // Called once before the work, if there is such a function; what it throws ends the run.
  std::function<void()> prepare;
  // Works on a file; what it throws is told as the file's failure. marked: where the annotated
  // picture goes, empty for none.
  std::function<FileOutcome(const std::string& file, const std::string& marked)> work;
  // Takes the findings, in the order of the files.
  std::function<void(const std::string& findings)> take;
  // What is told at the end, and the members of the JSON report's summary.
  std::function<void(std::ostream& out)> tell;
  std::function<std::string()> summary;
};

// The program's exit status: ALL_WELL if all files were worked on and are well.
int RunFiles(const FileRun& run);

// Writes a file's annotated picture, if one is wanted. What it throws is added to the complaints:
// what was found stays.
void WriteMarked(const std::string& file, const std::function<void(const std::string&)>& write,
                 FileOutcome* outcome);

}  // namespace front
