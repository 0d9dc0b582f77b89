// Particles as comma-separated values.
#include <algorithm>

#include "orlune/shared/numbers.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

// A spreadsheet would take the text for a formula.
constexpr std::string_view BEGIN_FORMULAS = "=+-@\t\r";

// Whether a text is a field as it stands, as most are.
bool IsPlainField(std::string_view text) {
  const auto isPlain = [](char c) { return c >= ' ' && c < 0x7F && c != ',' && c != '"'; };
  return std::all_of(text.begin(), text.end(), isPlain) &&
         (text.empty() || BEGIN_FORMULAS.find(text[0]) == std::string_view::npos);
}

}  // namespace

std::string CsvText(const std::string& text) {
  if (IsPlainField(text)) return text;
  std::string safe = ReadableText(text);
  // Names of files are the same with this before them.
  if (!safe.empty() && BEGIN_FORMULAS.find(safe[0]) != std::string_view::npos) {
    safe = std::string("./").append(safe);
  }
  if (safe.find_first_of(",\"\r\n") == std::string::npos) return safe;
  std::string quoted = "\"";
  for (const char c : safe) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

std::string CsvHead(const MeasureList& measures) {
  std::string head = "File,Number";
  for (const Measure* measure : measures) head += "," + std::string(measure->name);
  return head + '\n';
}

std::string CsvRows(const Inspection& inspection, const MeasureList& measures) {
  const std::string path = CsvText(inspection.path);
  std::string rows;
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    rows += path + ',' + std::to_string(particle.number);
    for (const Measure* measure : measures) {
      rows += ',' + ExactValue(*measure, particle.values[measure->number]);
    }
    rows += '\n';
  }
  return rows;
}

}  // namespace front
