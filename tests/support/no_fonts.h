// A machine without fonts.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/fonts.h"

namespace test {

inline constexpr zel::TextRasteriser NO_FONTS{
    .measure = [](const zel::FontRequest&, std::string_view, int32_t*) -> int32_t {
      return zel::FONT_MISSING;
    },
    .draw = [](const zel::FontRequest&, std::string_view, const zel::TextPixels&) -> int32_t {
      return zel::FONT_MISSING;
    },
    .release = [] {}};

}  // namespace test
