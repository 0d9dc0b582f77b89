// A sound bar code as a picture, for calls and steps that need one to succeed. Their
// checks pass.
#pragma once

#include <cstdint>

#include "orlune_ptk.h"

namespace test {

// Widths of bars and spaces in modules, from the first bar to the last one.
using PrintedCode = char[80];
inline constexpr PrintedCode PRINTED_CODE128 = "2112141113231311232331112";
inline constexpr PrintedCode PRINTED_INTERLEAVED =
    "11113113111133313113111331133311111111133331311";
inline constexpr PrintedCode PRINTED_CODE39 = "121121211121121111212112111121121121211";
inline constexpr PrintedCode PRINTED_CODE93 = "1111412111132111132211211111411";
inline constexpr PrintedCode PRINTED_EAN8 = "1113112111414111213111111231321113121132111";
inline constexpr PrintedCode PRINTED_CODABAR = "1122121121121111121111211212112";
inline constexpr PrintedCode PRINTED_EAN13 =
    "11122212122141111321231111411111131212133112321122212122111";
inline constexpr PrintedCode PRINTED_MSI = "211212121212121212121";
inline constexpr PrintedCode PRINTED_UPCA =
    "11132112221212214111132123111111111413121213311232111231111";
constexpr uint8_t PRINTED_EAN13_FIRST_DIGIT = 0;

// A new U8 image of a code, two pixels a module, with light around it. Returns the failure of the
// call that failed, and then there is no image.
int32_t PrintCode(const PrintedCode& code, ImageRef* image);

}  // namespace test
