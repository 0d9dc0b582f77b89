// Which fonts are in use.
#include "platform/fonts.h"

#include "platform/machine_fonts.h"

namespace zel {
namespace {

const TextRasteriser* inUse = &MACHINE_FONTS;

}  // namespace

const TextRasteriser& FontsInUse() {
  return *inUse;
}

void FontsUse(const TextRasteriser* rasteriser) {
  inUse = rasteriser ? rasteriser : &MACHINE_FONTS;
}

}  // namespace zel
