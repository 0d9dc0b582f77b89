// Names of files as texts that others can read.
#include "orlune/shared/readable.h"

#include <algorithm>

namespace front {

size_t CharacterLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const auto follows = [&](size_t i, unsigned low, unsigned high) {
    return i < text.size() && byte(i) >= low && byte(i) <= high;
  };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1, 0x80, 0xBF) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    // Neither longer forms of shorter characters, nor halves of pairs.
    const unsigned low = first == 0xE0 ? 0xA0 : 0x80, high = first == 0xED ? 0x9F : 0xBF;
    return follows(1, low, high) && follows(2, 0x80, 0xBF) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const unsigned low = first == 0xF0 ? 0x90 : 0x80, high = first == 0xF4 ? 0x8F : 0xBF;
    return follows(1, low, high) && follows(2, 0x80, 0xBF) && follows(3, 0x80, 0xBF) ? 4 : 0;
  }
  return 0;
}

std::string ReadableText(std::string_view text) {
  const auto isPlain = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(text.begin(), text.end(), isPlain)) return std::string(text);
  std::string readable;
  while (!text.empty()) {
    const size_t length = CharacterLength(text);
    readable += length == 0 ? std::string_view("\xEF\xBF\xBD") : text.substr(0, length);
    text.remove_prefix(length == 0 ? 1 : length);
  }
  return readable;
}

std::string LineText(std::string_view text) {
  std::string line = ReadableText(text);
  const auto isControl = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == 0x7F; };
  std::replace_if(line.begin(), line.end(), isControl, '?');
  return line;
}

}  // namespace front
