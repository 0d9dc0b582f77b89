// One picture inspected: thresholded, labelled, measured, selected.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/inspect/boundaries.h"
#include "orlune/inspect/particles.h"
#include "orlune/inspect/refinement.h"
#include "orlune/inspect/regions.h"
#include "orlune/inspect/selection.h"
#include "orlune/shared/clock.h"
#include "orlune/shared/colours.h"

namespace front {

struct InspectSettings {
  std::optional<Range> range;  // gray levels of objects, in the file's own values
  Method method = Method::Clustering;
  bool dark = false;     // objects are darker than their surroundings
  ColourRanges colours;  // any: of objects, instead of levels
  bool eightConnected = true;
  std::optional<Region> region;
  const Image* mask = nullptr;  // objects are only where it is not 0
  Refinement refinement;
  std::optional<Scale> scale;                // size of a pixel; without it the file's own, or 1
  std::string unit;                          // of the scale; empty for none
  std::vector<Condition> keep;               // all must hold
  MeasureSet measured = MeasureSet().set();  // beside those of the conditions
  bool swapBytes = false;
  bool labelled = true;  // else labels are left out where no measure needs them
};

struct Timing {
  Seconds reading{}, thresholding{}, labelling{}, measuring{}, writing{};

  Timing& operator+=(const Timing& other);
  Seconds Total() const;
};

struct Inspection {
  std::string path;
  Account account;
  std::optional<Range> objects;  // gray levels of objects, in the file's own values
  std::string remark;            // on these levels, or why there are none; empty for nothing
  Scale scale;
  std::string unit;  // of lengths: the caller's, or "px" without a scale
  std::vector<Particle> particles;
  Timing timing;

  Image picture;                   // in the file's own values
  std::optional<Image> stretched;  // its 8-bit form, where it has another depth
  Labels labels;                   // empty where they were left out

  const Image& Gray() const { return stretched ? *stretched : picture; }
  size_t Kept() const;
};

// Finds and labels the objects, and measures nothing. Throws BadFile, LibraryFailure, and
// std::invalid_argument for a region or mask that does not fit, and for a gray picture whose
// colours are asked for.
Inspection Locate(const std::string& path, const InspectSettings& settings);

// Measures them too. Throws as Locate.
Inspection Inspect(const std::string& path, const InspectSettings& settings);
// The same of a gray picture that was read from there, with its colours where they are asked for.
Inspection Locate(Loaded picture, const std::string& path, const InspectSettings& settings);
Inspection Inspect(Loaded picture, const std::string& path, const InspectSettings& settings);

}  // namespace front
