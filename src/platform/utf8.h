// Text of programs, which may be anything, made text that others can read.
#pragma once

#include <string>
#include <string_view>

namespace zel {

// What is no UTF-8 is taken for Latin-1, byte by byte.
std::string Utf8Of(std::string_view text);

}  // namespace zel
