// Numbers as text, whatever the locale.
#include "orlune/shared/numbers.h"

#include <charconv>

namespace front {
namespace {

constexpr size_t LONGEST = 400;  // the largest double with decimals fits

}  // namespace

std::string Exact(float value) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value).ptr};
}

std::string Exact(double value) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value).ptr};
}

std::string Fixed(double value, int decimals) {
  char buffer[LONGEST];
  const std::string text(
      buffer,
      std::to_chars(buffer, buffer + LONGEST, value, std::chars_format::fixed, decimals).ptr);
  const bool isZero = text.find_first_not_of("-0.") == std::string::npos;
  return isZero && text[0] == '-' ? text.substr(1) : text;
}

std::string Short(double value) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value, std::chars_format::general, 6).ptr};
}

std::string Milliseconds(Seconds time) {
  const double value = time.count() * 1000;
  return Fixed(value, value < 10 ? 1 : 0) + " ms";
}

std::string Plural(size_t count, const std::string& one, const std::string& ending) {
  return std::to_string(count) + " " + one + (count == 1 ? "" : ending);
}

}  // namespace front
