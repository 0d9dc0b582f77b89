// Particles with all their measures.
#pragma once

#include <optional>
#include <vector>

#include "orlune/inspect/labels.h"
#include "orlune/inspect/measures.h"
#include "orlune/inspect/shapes.h"
#include "orlune/shared/pictures.h"

namespace front {

struct Particle {
  uint32_t number = 0;  // in the order of first pixels, from 1
  bool kept = true;
  ApiRect rect{};
  std::vector<double> values;  // by measure number; 0 where none was wanted
};

// Of pixels that are set while their neighbours before them are not: more the library does not
// number in one picture.
constexpr int64_t MOST_STARTS = 65535;

// Of the pixels of a mask that are not 0, whose numbers are the labels'. The mask is an IMAGE_U8
// with the picture's calibration; gray values come from the picture. Measures that are not wanted
// may be 0. A picture of more than mostStarts is measured in parts. Throws LibraryFailure, and
// std::runtime_error for a particle of more.
std::vector<Particle> MeasureParticles(const Image& mask, const Image& picture,
                                       const Labels& labels, bool eightConnected,
                                       const MeasureSet& wanted = MeasureSet().set(),
                                       int64_t mostStarts = MOST_STARTS);

// Whether the front makes one of the measures itself, of the particles' runs.
bool NeedLabels(const MeasureSet& wanted);

// The same in less time, of measures that need no labels. Nothing for a mask of so many runs that
// it may have to be taken in parts.
std::optional<std::vector<Particle>> MeasureUnlabelled(const Image& mask, bool eightConnected,
                                                       const MeasureSet& wanted);

}  // namespace front
