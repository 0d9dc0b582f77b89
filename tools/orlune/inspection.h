// One picture inspected: thresholded, labelled, measured, selected.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "orlune/clock.h"
#include "orlune/pictures.h"
#include "orlune/selection.h"

namespace front {

struct InspectSettings {
  std::optional<Range> range;  // grey levels of objects, in the file's own values
  AutoBMethod method = AUTOB_CLUSTERING;
  bool dark = false;  // objects are darker than their surroundings
  bool eightConnected = true;
  std::optional<Scale> scale;   // size of a pixel; without it the file's own, or 1
  std::string unit;             // of the scale; empty for none
  std::vector<Condition> keep;  // all must hold
  bool swapBytes = false;
};

struct Particle {
  int32_t number = 0;  // in the order of first pixels, from 1: its value in the label image
  bool kept = true;
  ApiRect rect{};
  std::array<float, MEASURE_COUNT> values{};  // by measure number
};

struct Timing {
  Seconds reading{}, thresholding{}, labelling{}, measuring{}, writing{};

  Timing& operator+=(const Timing& other);
  Seconds Total() const;
};

struct Inspection {
  std::string path;
  FileInfo file{};
  std::optional<Range> objects;  // grey levels of objects; none in a picture without contrast
  Scale scale;
  std::string unit;  // of lengths: the caller's, or "px" without a scale
  std::vector<Particle> particles;
  Timing timing;

  Image picture;                   // in the file's own values
  std::optional<Image> stretched;  // its 8-bit form, where it has another depth
  Image labels;                    // particle numbers, 16-bit, to be read as unsigned

  const Image& Gray() const { return stretched ? *stretched : picture; }
  size_t Kept() const;
};

// Throws LibraryFailure.
Inspection Inspect(const std::string& path, const InspectSettings& settings);

std::string_view MethodName(AutoBMethod method);

}  // namespace front
