// Particles as comma-separated values.
#include "orlune/numbers.h"
#include "orlune/reports.h"

namespace front {

std::string CsvText(const std::string& text) {
  if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) {
    if (c == '"') quoted += '"';
    quoted += c;
  }
  return quoted + '"';
}

CsvReport::CsvReport(std::ostream& out, std::vector<const Measure*> measures)
    : out_(out), measures_(std::move(measures)) {
  out_ << "File,Number";
  for (const Measure* measure : measures_) out_ << ',' << measure->name;
  out_ << '\n';
}

void CsvReport::Add(const Inspection& inspection) {
  const std::string path = CsvText(inspection.path);
  for (const Particle& particle : inspection.particles) {
    if (!particle.kept) continue;
    out_ << path << ',' << particle.number;
    for (const Measure* measure : measures_) {
      out_ << ',' << Exact(particle.values[measure->number]);
    }
    out_ << '\n';
  }
}

}  // namespace front
