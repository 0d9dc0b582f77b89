// Words and numbers that people type.
#include "orlune/shared/words.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <limits>
#include <numeric>
#include <stdexcept>

namespace front {
namespace {

bool IsBlank(char c) {
  return std::isspace(static_cast<unsigned char>(c)) != 0;
}

// How many letters have to be changed, put in or left out to turn one word into the other.
size_t EditDistance(const std::string& from, const std::string& to) {
  std::vector<size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), size_t{0});
  for (size_t i = 0; i < from.size(); ++i) {
    size_t diagonal = row[0];
    row[0] = i + 1;
    for (size_t j = 0; j < to.size(); ++j) {
      const size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string Quoted(std::string_view text) {
  std::string quoted(1, '\'');
  return quoted.append(text).append(1, '\'');
}

std::string Lower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::vector<std::string_view> Split(std::string_view text, char separator) {
  std::vector<std::string_view> pieces;
  for (size_t start = 0; start <= text.size();) {
    const size_t end = std::min(text.find(separator, start), text.size());
    pieces.push_back(Trim(text.substr(start, end - start)));
    start = end + 1;
  }
  return pieces;
}

std::vector<std::string_view> SplitAtBlanks(std::string_view text) {
  std::vector<std::string_view> pieces;
  for (text = Trim(text); !text.empty(); text = Trim(text)) {
    const auto end = std::find_if(text.begin(), text.end(), IsBlank);
    const auto length = static_cast<size_t>(end - text.begin());
    pieces.push_back(text.substr(0, length));
    text.remove_prefix(length);
  }
  return pieces;
}

double ParseNumber(std::string_view text) {
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size() || value != value) {
    throw std::invalid_argument(Quoted(text) + " is not a number");
  }
  return value;
}

std::string_view NearestName(std::string_view word, const std::vector<std::string_view>& names) {
  const std::string wanted = Lower(word);
  std::string_view nearest = names.front();
  size_t least = std::numeric_limits<size_t>::max();
  for (const std::string_view name : names) {
    const std::string own = Lower(name);
    // A word that the name begins with or holds is nearer than a word of like letters.
    const bool part = !wanted.empty() && own.find(wanted) != std::string::npos;
    const size_t distance = part ? 1 : EditDistance(wanted, own);
    if (distance < least) {
      least = distance;
      nearest = name;
    }
  }
  return nearest;
}

std::string Suggestion(std::string_view word, const std::vector<std::string_view>& names,
                       std::string_view before) {
  if (names.empty()) return "";
  const std::string_view nearest = NearestName(word, names);
  const std::string wanted = Lower(word), own = Lower(nearest);
  const bool part = wanted.size() > 1 && own.find(wanted) != std::string::npos;
  if (!part && EditDistance(wanted, own) > std::max<size_t>(2, own.size() / 3)) return "";
  return "; did you mean " + std::string(before) + std::string(nearest) + "?";
}

std::string ListOf(const std::vector<std::string_view>& names) {
  std::string list;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list += i + 1 == names.size() ? " or " : ", ";
    list += names[i];
  }
  return list;
}

}  // namespace front
