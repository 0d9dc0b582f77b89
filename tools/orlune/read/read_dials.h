// Meters and displays: orlune read meter and orlune read lcd, and the commands that write their
// set-up files.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "orlune/command/commands.h"
#include "orlune/gauge/gauge_setup.h"
#include "orlune/inspect/regions.h"
#include "orlune/read/reading.h"

namespace front {

enum class GaugeKind { Meter, Display };

// What a picture says.
struct DialReading {
  std::string text;                // as people read it
  double value = 0;                // that it stands for
  std::string unit;                // empty for none
  std::vector<std::string> cells;  // of the CSV report, behind the file's name
  std::string members;             // of the JSON record
  std::vector<Stroke> strokes;     // that show it in the picture
};

// A meter or display, ready to be read.
struct Dial {
  std::string csvHead;
  std::function<DialReading(const Image& gray)> read;
};
// By a set-up file. Throws std::invalid_argument.
Dial DialOf(GaugeKind kind, const std::string& setupFile);

struct ReadDialsCommand : ReadFiles {
  GaugeKind kind = GaugeKind::Meter;
  std::string setup;  // file
};
int Run(const ReadDialsCommand& command);

struct CalibrateDialsCommand {
  GaugeKind kind = GaugeKind::Meter;
  std::string setup;               // file to write
  std::vector<std::string> files;  // meter: none, or the needle at both ends; display: one
  MeterSetup meter;
  std::optional<double> radius;  // of the arc, where pictures show the ends
  std::optional<Region> region;  // that holds the digits
  DisplaySetup display;
};
int Run(const CalibrateDialsCommand& command);

// "X,Y". Throws std::invalid_argument.
PointFloat ParsePlace(std::string_view text);

}  // namespace front
