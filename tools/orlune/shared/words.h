// Words and numbers that people type.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace front {

std::string_view Trim(std::string_view text);  // without the blanks around it
std::string Quoted(std::string_view text);     // 'text'
std::string Lower(std::string_view text);

// The trimmed pieces between separators; a text without any is one piece.
std::vector<std::string_view> Split(std::string_view text, char separator);

// The pieces between blanks, none of them empty.
std::vector<std::string_view> SplitAtBlanks(std::string_view text);

// Throws std::invalid_argument for anything but a whole number or a fraction.
double ParseNumber(std::string_view text);

// The one of the names, at least one, that the word most likely was meant to be.
std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names);

// "; did you mean NAME?" where one of the names is near to the word, else "".
std::string Suggestion(std::string_view word, const std::vector<std::string_view>& names,
                       std::string_view before = "");

// "a, b or c"
std::string ListOf(const std::vector<std::string_view>& names);

}  // namespace front
