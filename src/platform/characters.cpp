// Reading UTF-8.
#include "platform/characters.h"

namespace zel {
namespace {

// How a character begins: the values of the first byte, how many follow, and the least number that
// so many bytes are needed for.
struct Lead {
  uint8_t first, last;
  uint32_t following;
  char32_t least;
};
constexpr Lead LEADS[] = {
    {0xC2, 0xDF, 1, 0x80},
    {0xE0, 0xEF, 2, 0x800},
    {0xF0, 0xF4, 3, 0x10000},
};

bool IsCharacter(char32_t number) {
  return number <= 0x10FFFF && (number < 0xD800 || number > 0xDFFF);
}

}  // namespace

char32_t CharacterNext(std::string_view* text) {
  const auto byteAt = [text](size_t place) { return static_cast<uint8_t>((*text)[place]); };
  const uint8_t first = byteAt(0);
  for (const Lead& lead : LEADS) {
    if (first < lead.first || first > lead.last || text->size() <= lead.following) continue;
    char32_t number = first & (0x3Fu >> lead.following);
    bool isWhole = true;
    for (uint32_t i = 1; i <= lead.following; i++) {
      isWhole = isWhole && (byteAt(i) & 0xC0) == 0x80;
      number = number << 6 | (byteAt(i) & 0x3F);
    }
    if (!isWhole || number < lead.least || !IsCharacter(number)) continue;
    text->remove_prefix(1 + lead.following);
    return number;
  }
  text->remove_prefix(1);
  return first;
}

}  // namespace zel
