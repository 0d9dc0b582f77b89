// What was measured along lines, as a table for people, as CSV and as JSON, and as a picture. A
// value that is not there is a dash in the table, an empty field, null.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "orlune/gauge/line_gauges.h"
#include "orlune/shared/canvas.h"

namespace front {

// "passed", "failed", or "not found": an edge that is needed is not there.
std::string_view VerdictOf(const GaugeResult& result);

// A value's unit, none for numbers of edges; the value, a dash for none; "4.98:5.02".
std::string UnitOf(const LineGauge& gauge, const std::string& unit);
std::string ValueText(const LineGauge& gauge, const std::optional<double>& value);
std::string LimitsText(const Limits& limits);

void PrintTable(std::ostream& out, const Gauging& gauging, const GaugeSetup& setup);

// One line for each gauge.
std::string GaugeCsvHead();
std::string CsvRows(const Gauging& gauging, const GaugeSetup& setup);

std::string JsonRecord(const Gauging& gauging, const GaugeSetup& setup);

// A gauge's values over many pictures.
class ValueSpread {
 public:
  void Add(double value);
  size_t count() const { return count_; }
  double low() const { return low_; }
  double high() const { return high_; }
  double mean() const { return mean_; }
  double Deviation() const;  // of single values; 0 for fewer than two

 private:
  size_t count_ = 0;
  double low_ = 0, high_ = 0, mean_ = 0, squares_ = 0;
};
void PrintSpreads(std::ostream& out, const GaugeSetup& setup,
                  const std::vector<ValueSpread>& spreads, const std::string& unit);

// Draws each line, its edges as strokes across it, the distance in green, in red where it did not
// pass, and its name and value; and the place and direction of the part.
void DrawGauged(const Gauging& gauging, const GaugeSetup& setup, const Canvas& canvas);

// Writes a 24-bit BMP file: the picture with all that drawn. Throws as WritePicture.
void WriteGauged(const Gauging& gauging, const GaugeSetup& setup, const std::string& file);

}  // namespace front
