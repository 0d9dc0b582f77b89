// Names of files as texts that others can read: valid UTF-8.
#pragma once

#include <string>
#include <string_view>

namespace front {

// Bytes of the UTF-8 character at the start of the text, which is not empty; 0 when it is none.
size_t CharacterLength(std::string_view text);

// Bytes that are no UTF-8 become the replacement character.
std::string ReadableText(std::string_view text);

// The same in a line that others read: what would begin another one, or move a terminal, becomes ?.
std::string LineText(std::string_view text);

}  // namespace front
