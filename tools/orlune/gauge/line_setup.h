// Set-ups of line gauges: as files, and as words of the command line.
#pragma once

#include <string>

#include "orlune/gauge/line_gauges.h"

namespace front {

// As the text of a file; and back, which throws std::invalid_argument for a text that is no such
// set-up.
std::string SetupText(const GaugeSetup& setup);
struct ParsedGaugeSetup {
  GaugeSetup setup;
  std::string master;  // file of the picture that the lines are drawn for, as the text names it
};
ParsedGaugeSetup ParseGaugeSetup(const std::string& text);

// "X1,Y1,X2,Y2", with "NAME=" before it or not. All throw std::invalid_argument.
LineGauge ParseLineGauge(const std::string& text);
Line ParseLine(std::string_view text);
// "LEVELS" or "PERCENT%".
void ParseEdgeThreshold(std::string_view text, EdgeSearch* search);
int32_t ParseEdgeWidth(double pixels);
int32_t ParseBand(double pixels);

// Gives the lines without a name one of their own: "1", "2". Throws for a name that stands there
// twice, and for limits that exclude each other.
void NameLines(GaugeSetup* setup);

}  // namespace front
