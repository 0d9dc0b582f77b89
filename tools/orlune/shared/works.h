// What a command does to each picture, and a step of a recipe alike.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "orlune/filter/steps.h"
#include "orlune/gauge/line_gauges.h"
#include "orlune/gauge/shape_matches.h"
#include "orlune/inspect/inspection.h"
#include "orlune/read/barcode_search.h"

namespace front {

struct InspectWork {
  InspectSettings settings;
  std::string mask;                      // file, empty for none
  std::vector<const Measure*> measures;  // empty: a choice that suits the table
};
std::vector<const Measure*> MeasuresOf(const InspectWork& work);

struct FilterWork {
  Chain steps;
  std::string mask;  // file, empty for none
};
// Throws std::invalid_argument where steps can't be held to some of the pixels.
void RefuseMask(const FilterWork& work);
// Throws std::invalid_argument for a picture that is too small for the steps, or that the mask,
// which may be null, does not fit on.
void CheckSize(const Image& image, const FilterWork& work, const Image* mask);
// Puts an image through the steps, in place; done, if there is such a function, is called after
// each. The image has the border that the steps need. Throws as CheckSize and Apply.
void ApplyChain(const FilterWork& work, const Image* mask, const Image& image,
                const std::function<void()>& done = {});

struct GaugeWork {
  std::string setupFile;              // empty: the set-up is what follows
  GaugeSetup setup;                   // with a file, only its scale and unit count
  LineGauge line;                     // what is said of all lines of it
  std::vector<LineGauge> lines = {};  // more of them, with settings of their own
  std::string master;                 // picture that the lines are drawn for; empty for none
};
// The set-up whole, and the master that counts. Throws std::invalid_argument.
struct PreparedGauging {
  GaugeSetup setup;
  std::string master;
};
PreparedGauging PrepareGauging(const GaugeWork& work);

struct MatchWork {
  std::string shape;  // file of the template
  MatchSettings settings;
};

}  // namespace front
