// Pictures of bar codes of known texts, spoilt in one way at a time.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "orlune/inspect/regions.h"
#include "orlune/read/barcode_kinds.h"

namespace scorecard {

// A code as another program prints it.
struct Code {
  front::BarcodeKind kind;
  std::string text;       // as the library's readers give it
  std::string widths;     // of bars and spaces, in modules
  bool hasCheck = false;  // of the kinds that leave it open
};

// Those of a table of printed codes whose texts all readers give alike.
std::vector<Code> CodesIn(const std::string& table);

// How a code is shown.
struct Look {
  double module = 3;      // pixels
  double blur = 0.3;      // deviation, modules
  double noise = 3;       // deviation, gray levels
  double contrast = 150;  // gray levels between bars and spaces
  double tilt = 0;        // degrees
  double quiet = 10;      // modules from the bars to the picture's edge
  double bend = 0;        // degrees from the middle of a can to the end of the bars
};

struct Sight {
  int32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
  front::Region place;  // that a user would give for the code
};

Sight Show(const std::string& widths, const Look& look, uint64_t seed);

// Pictures in which there is no code: textures, stripes, lines of something like text.
Sight NoCode(uint64_t seed);

// Widths with one thing wrong: two neighbours exchanged, a module moved, or the end cut off.
std::string Mutilated(const std::string& widths, uint64_t seed);

}  // namespace scorecard
