// In the place of the machine's fonts, where the library was built without what they need.
#include "platform/machine_fonts.h"

namespace zel {
namespace {

int32_t Measure(const FontRequest&, std::string_view, int32_t*) {
  return FONT_LIBRARIES_MISSING;
}

int32_t Draw(const FontRequest&, std::string_view, const TextPixels&) {
  return FONT_LIBRARIES_MISSING;
}

void Release() {}

}  // namespace

constinit const TextRasteriser MACHINE_FONTS{
    .measure = &Measure, .draw = &Draw, .release = &Release};

}  // namespace zel
