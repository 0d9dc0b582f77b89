// What the codes that have control characters call them.
#pragma once

#include <cstdint>

namespace zel {

constexpr int32_t CONTROL_NAME_SIZE = 2;
constexpr int32_t CONTROL_NAMES_END = 32;
constexpr char CONTROL_NAMES[CONTROL_NAMES_END][CONTROL_NAME_SIZE + 1] = {
    "NU", "SH", "SX", "EX", "ET", "EQ", "AK", "BL", "BS", "HT", "LF", "VT", "FF", "CR", "SO", "SI",
    "DL", "D1", "D2", "D3", "D4", "NK", "SY", "EB", "CN", "EM", "SB", "EC", "FS", "GS", "RS", "US"};
constexpr char DELETE_NAME[] = "DEL";

}  // namespace zel
