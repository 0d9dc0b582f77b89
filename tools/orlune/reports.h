// What inspections found, as a table for people, as CSV and as JSON.
#pragma once

#include <exception>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "orlune/inspection.h"

namespace front {

// Files and particles of a whole run.
struct Summary {
  size_t inspected = 0, failed = 0;
  size_t found = 0, kept = 0;
  double pixels = 0;
  Timing timing;

  void Add(const Inspection& inspection);
};

// The head line of a picture and, for each kept particle, a row with a column for each measure.
// Of more than maxRows particles the rest are only counted; 0 is no limit.
void PrintTable(std::ostream& out, const Inspection& inspection, const InspectSettings& settings,
                std::span<const Measure* const> measures, size_t maxRows);

void PrintSummary(std::ostream& out, const Summary& summary);

// One line for each kept particle: file, number, measures. Texts are quoted where they need it, and
// numbers read back exactly.
class CsvReport {
 public:
  CsvReport(std::ostream& out, std::vector<const Measure*> measures);
  void Add(const Inspection& inspection);

 private:
  std::ostream& out_;
  std::vector<const Measure*> measures_;
};

// One object with a record for each file, failed ones included, and the summary. Numbers read back
// exactly; those that JSON has no form for (infinite, undefined) are null.
class JsonReport {
 public:
  JsonReport(std::ostream& out, std::vector<const Measure*> measures);
  void Add(const Inspection& inspection, const InspectSettings& settings);
  void AddFailure(const std::string& path, int32_t number, const std::string& message);
  void Finish(const Summary& summary);

 private:
  void StartFile(const std::string& path);

  std::ostream& out_;
  std::vector<const Measure*> measures_;
  bool first_ = true;
};

std::string CsvText(const std::string& text);
std::string JsonText(const std::string& text);  // with its quotes; invalid UTF-8 is replaced

}  // namespace front
