// Which bytes form a character.
#include "platform/utf8.h"

#include <cstdint>

namespace zel {
namespace {

// Bytes of the character that a text begins with; 0 where it begins with none.
size_t CharacterBytes(std::string_view text) {
  const auto byte = [text](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t first = byte(0);
  if (first < 0x80) return 1;
  const size_t count = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
  if (first < 0xC2 || first > 0xF4 || text.size() < count) return 0;
  uint32_t value = first & (0x7FU >> count);
  for (size_t i = 1; i < count; i++) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
    value = value << 6 | (byte(i) & 0x3FU);
  }
  constexpr uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};
  const bool isSurrogate = value >= 0xD800 && value < 0xE000;
  return value < least[count] || value > 0x10FFFF || isSurrogate ? 0 : count;
}

}  // namespace

std::string Utf8Of(std::string_view text) {
  std::string result;
  while (!text.empty()) {
    const size_t count = CharacterBytes(text);
    if (count > 0) {
      result.append(text.substr(0, count));
      text.remove_prefix(count);
    } else {
      const auto byte = static_cast<uint8_t>(text[0]);
      result.push_back(static_cast<char>(0xC0 | byte >> 6));
      result.push_back(static_cast<char>(0x80 | (byte & 0x3F)));
      text.remove_prefix(1);
    }
  }
  return result;
}

}  // namespace zel
