// The messages behind the failure numbers.
#pragma once

#include <cstdint>

namespace zel {

constexpr uint32_t MESSAGE_LINE_SIZE = 128;

// Writes the line "#<number> <message>\n" for a number. A number without a line of its own takes
// the first line that holds its digits after the "#": 20 takes that of 200. Others get
// "#<number> Unknown error\n".
void ErrorMessage(int64_t number, char (&line)[MESSAGE_LINE_SIZE]);

}  // namespace zel
