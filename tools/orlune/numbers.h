// Numbers as text, whatever the locale.
#pragma once

#include <string>

namespace front {

std::string Exact(float value);                 // the shortest text that reads back the same
std::string Fixed(double value, int decimals);  // 12.30
std::string Short(double value);                // up to six digits, no trailing zeros

}  // namespace front
