// Numbers as text, whatever the locale.
#include "orlune/numbers.h"

#include <charconv>

namespace front {
namespace {

constexpr size_t LONGEST = 400;  // the largest double with decimals fits

}  // namespace

std::string Exact(float value) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value).ptr};
}

std::string Fixed(double value, int decimals) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value, std::chars_format::fixed, decimals).ptr};
}

std::string Short(double value) {
  char text[LONGEST];
  return {text, std::to_chars(text, text + LONGEST, value, std::chars_format::general, 6).ptr};
}

}  // namespace front
