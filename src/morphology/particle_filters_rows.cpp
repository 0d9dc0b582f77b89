// Loops over pixels of particle filters.
#include "morphology/particle_filters_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

void LowBit(const PointViews& views, const NoRule&) {
  MapSamePlace<uint8_t, uint8_t>(views, [](uint8_t pixel) -> uint8_t { return pixel & 1; });
}

}  // namespace

extern const ParticleFilterRows particleFilterRows = {.lowBit = &LowBit};

}  // namespace zel::ZEL_LEVEL
