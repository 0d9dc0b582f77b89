// Characters of a text.
#pragma once

#include <cstdint>
#include <string_view>

namespace zel {

// Takes the next character off a text that is not empty: one of UTF-8, or the Latin-1 character of
// a byte that begins none.
char32_t CharacterNext(std::string_view* text);

// Whether it has no look of its own: those below the space, 127, and those from 128 to 159.
constexpr bool IsControl(char32_t character) {
  return character < 32 || (character >= 127 && character < 160);
}

}  // namespace zel
