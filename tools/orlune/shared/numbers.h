// Numbers as text, whatever the locale.
#pragma once

#include <string>

#include "orlune/shared/clock.h"

namespace front {

std::string Exact(float value);  // the shortest text that reads back the same
std::string Exact(double value);
std::string Fixed(double value, int decimals);  // 12.30, and no -0.00
std::string Short(double value);                // up to six digits, no trailing zeros
std::string Milliseconds(Seconds time);         // 1.2 ms
// "2 pictures", "1 match", "2 matches" of the ending "es"
std::string Plural(size_t count, const std::string& one, const std::string& ending = "s");

}  // namespace front
