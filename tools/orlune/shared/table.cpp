// The table and the summary that people read.
#include <algorithm>
#include <cctype>
#include <cmath>
#include <iomanip>

#include "orlune/shared/numbers.h"
#include "orlune/shared/readable.h"
#include "orlune/shared/reports.h"

namespace front {
namespace {

constexpr size_t HEAD_WIDTH = 11;  // longer names are broken into lines between their words

struct Column {
  std::vector<std::string> head;  // lines from the top; the unit comes last
  std::vector<std::string> cells;
  size_t width = 0;
};

// "CentreOfMassX" as "CentreOf", "MassX".
std::vector<std::string> BreakName(std::string_view name) {
  std::vector<std::string> lines;
  for (size_t start = 0; start < name.size();) {
    size_t end = start + 1;
    const auto isUpper = [&](size_t i) {
      return std::isupper(static_cast<unsigned char>(name[i]));
    };
    while (end < name.size() && !(isUpper(end) && !isUpper(end - 1))) ++end;
    const std::string_view word = name.substr(start, end - start);
    if (!lines.empty() && lines.back().size() + word.size() <= HEAD_WIDTH) {
      lines.back() += word;
    } else {
      lines.emplace_back(word);
    }
    start = end;
  }
  return lines;
}

// As many decimals as four to five figures of the largest value need; none for whole numbers.
int DecimalsFor(const std::vector<double>& values, Unit unit) {
  const auto whole = [](double v) { return !std::isfinite(v) || v == std::floor(v); };
  if (unit == Unit::Count || std::all_of(values.begin(), values.end(), whole)) return 0;
  if (unit == Unit::Degrees) return 1;
  double largest = 0;
  for (const double value : values) {
    if (std::isfinite(value)) largest = std::max(largest, std::abs(value));
  }
  return largest >= 1000 ? 1 : largest >= 10 ? 2 : 3;
}

std::string Cell(double value, int decimals) {
  constexpr double LARGE = 1e7;
  if (!std::isfinite(value)) return "-";
  return std::abs(value) < LARGE ? Fixed(value, decimals) : Short(value);
}

Column MakeColumn(const Measure& measure, const Inspection& inspection, size_t rows) {
  Column column;
  column.head = BreakName(measure.name);
  const std::string unit = UnitText(measure.unit, inspection.unit);
  column.head.push_back(unit.empty() ? "" : "[" + unit + "]");

  std::vector<double> values;
  for (const Particle& particle : inspection.particles) {
    if (particle.kept && values.size() < rows) values.push_back(particle.values[measure.number]);
  }
  const int decimals = DecimalsFor(values, measure.unit);
  for (const double value : values) column.cells.push_back(Cell(value, decimals));
  return column;
}

void PrintColumns(std::ostream& out, std::vector<Column> columns) {
  size_t headLines = 0;
  for (Column& column : columns) {
    headLines = std::max(headLines, column.head.size());
    for (const std::string& text : column.head) column.width = std::max(column.width, text.size());
    for (const std::string& text : column.cells) column.width = std::max(column.width, text.size());
  }
  const auto print = [&](auto cellOf) {
    for (const Column& column : columns) {
      out << "  " << std::setw(static_cast<int>(column.width)) << cellOf(column);
    }
    out << '\n';
  };
  for (size_t line = 0; line < headLines; ++line) {
    print([&](const Column& column) {
      const size_t missing = headLines - column.head.size();
      return line < missing ? std::string() : column.head[line - missing];
    });
  }
  for (size_t row = 0; row < columns.front().cells.size(); ++row) {
    print([&](const Column& column) { return column.cells[row]; });
  }
}

std::string Level(double value) {
  return std::isinf(value) ? (value < 0 ? "lowest" : "highest") : Short(value);
}

// Which levels are objects and why, or why none are.
std::string LevelsText(const Inspection& inspection, const InspectSettings& settings) {
  if (settings.colours.Any()) {
    std::string text;
    for (const std::string& part : TextsOf(settings.colours)) text += part + ", ";
    return text + "as given";
  }
  const std::string remark = inspection.remark.empty() ? "" : " (" + inspection.remark + ")";
  const std::string method = settings.range
                                 ? "as given"
                                 : "by the " + std::string(MethodName(settings.method)) + " method";
  if (inspection.objects) {
    return "levels " + Level(inspection.objects->low) + " to " + Level(inspection.objects->high) +
           ", " + method + remark;
  }
  if (!inspection.remark.empty()) return "none, " + inspection.remark;
  return "none, nothing is darker than the darkest level, " + method;
}

}  // namespace

std::string ExactValue(const Measure& measure, double value) {
  if (!std::isfinite(value)) return "";
  return measure.IsFloat() ? Exact(static_cast<float>(value)) : Exact(value);
}

void PrintTable(std::ostream& out, const Inspection& inspection, const InspectSettings& settings,
                const MeasureList& measures, size_t maxRows) {
  out << LineText(inspection.path) << ": " << HeadLine(inspection.account) << '\n';
  for (const std::string& loss : inspection.account.losses) out << "  note: " << loss << '\n';
  out << "  objects: " << LevelsText(inspection, settings) << "; ";
  for (const std::string& name : NamesOf(settings.refinement)) out << name << "; ";
  const size_t found = inspection.particles.size(), kept = inspection.Kept();
  out << Plural(found, "particle");
  if (!settings.keep.empty()) out << ", " << kept << " kept";
  out << '\n';
  if (kept == 0) return;

  const size_t rows = maxRows == 0 ? kept : std::min(kept, maxRows);
  std::vector<Column> columns(1);
  columns[0].head = {"No", ""};
  for (const Particle& particle : inspection.particles) {
    if (particle.kept && columns[0].cells.size() < rows) {
      columns[0].cells.push_back(std::to_string(particle.number));
    }
  }
  for (const Measure* measure : measures) columns.push_back(MakeColumn(*measure, inspection, rows));
  PrintColumns(out, std::move(columns));
  if (rows < kept) out << "  ... and " << kept - rows << " more; --rows 0 lists them all\n";
}

Summary& Summary::operator+=(const Summary& other) {
  inspected += other.inspected;
  failed += other.failed;
  found += other.found;
  kept += other.kept;
  pixels += other.pixels;
  timing += other.timing;
  return *this;
}

Summary SummaryOf(const Inspection& inspection) {
  return {.inspected = 1,
          .found = inspection.particles.size(),
          .kept = inspection.Kept(),
          .pixels = 1.0 * inspection.labels.width * inspection.labels.height,
          .timing = inspection.timing};
}

void PrintSummary(std::ostream& out, const Summary& summary) {
  out << Plural(summary.inspected, "picture") << " inspected";
  if (summary.failed > 0) out << ", " << summary.failed << " could not be";
  out << "; " << Plural(summary.found, "particle") << " found";
  if (summary.kept != summary.found) out << ", " << summary.kept << " kept";
  out << '\n';
  if (summary.inspected == 0) return;
  const Timing& timing = summary.timing;
  out << Fixed(summary.pixels / 1e6, 2) << " megapixels in " << Milliseconds(timing.Total())
      << ": reading " << Milliseconds(timing.reading) << ", thresholding "
      << Milliseconds(timing.thresholding) << ", labelling " << Milliseconds(timing.labelling)
      << ", measuring " << Milliseconds(timing.measuring);
  if (timing.writing.count() > 0) out << ", annotating " << Milliseconds(timing.writing);
  out << '\n';
}

}  // namespace front
