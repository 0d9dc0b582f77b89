// What inspections found, as a table for people, as CSV and as JSON. A number that is infinite or
// undefined is none in all of them: a dash in the table, an empty field, null.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "orlune/inspect/inspection.h"

namespace front {

using MeasureList = std::vector<const Measure*>;

// Files and particles of a whole run.
struct Summary {
  size_t inspected = 0, failed = 0;
  size_t found = 0, kept = 0;
  double pixels = 0;
  Timing timing;

  Summary& operator+=(const Summary& other);
};
Summary SummaryOf(const Inspection& inspection);

// The head line of a picture and, for each kept particle, a row with a column for each measure.
// Of more than maxRows particles the rest are only counted; 0 is no limit.
void PrintTable(std::ostream& out, const Inspection& inspection, const InspectSettings& settings,
                const MeasureList& measures, size_t maxRows);

void PrintSummary(std::ostream& out, const Summary& summary);

// A measure with all its figures; empty for a number that is infinite or undefined.
std::string ExactValue(const Measure& measure, double value);

// One line for each kept particle: file, number, measures. Texts are quoted where they need it, and
// numbers read back exactly.
std::string CsvHead(const MeasureList& measures);
std::string CsvRows(const Inspection& inspection, const MeasureList& measures);
std::string CsvText(const std::string& text);

// A record for each file, failed ones included. Numbers read back exactly.
std::string JsonRecord(const Inspection& inspection, const InspectSettings& settings,
                       const MeasureList& measures);
std::string JsonFailure(const std::string& path, const std::string& message);
std::string JsonText(const std::string& text);  // with its quotes; invalid UTF-8 is replaced
std::string JsonTexts(const std::vector<std::string>& texts);
std::string JsonNumber(double value);

// One object with the records and the summary.
class JsonReport {
 public:
  explicit JsonReport(std::ostream& out);
  void Add(const std::string& record);
  void Finish(const Summary& summary, bool whole);  // whole: no file was left out

 private:
  std::ostream& out_;
  bool first_ = true;
};

}  // namespace front
