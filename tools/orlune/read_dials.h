// orlune read meter and orlune read lcd, and the commands that write their set-up files.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/commands.h"
#include "orlune/gauge_setup.h"
#include "orlune/regions.h"

namespace front {

enum class GaugeKind { Meter, Display };

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
