// What the library asks of the machine's fonts: a plain record of operations that turn a line of
// text into pixels. No display is needed for them.
#pragma once

#include <cstdint>
#include <string_view>

namespace zel {

struct FontRequest {
  const char* family;  // the nearest one is taken; an empty name is any
  int32_t height;      // of a line in pixels, from what ascends to what descends; at least 1
  bool isBold, isItalic, isUnderlined, isStruckOut;
};

// Fonts of more pixels cannot be had.
constexpr int32_t FONT_HEIGHT_LIMIT = 8192;

enum FontFailure : int32_t {
  FONT_MISSING = -2,     // there is none at all
  FONT_UNREADABLE = -4,  // the nearest one cannot be opened
  FONT_TOO_LARGE = -6,
  FONT_LIBRARIES_MISSING = -7,
};

// The part of a line that is wanted: its pixels, how they lie, and which pixel of the line is the
// first. A line begins at column 0 and row 0.
struct TextPixels {
  uint8_t* first;
  int64_t pitch;
  int64_t left;
  int32_t top;
  int32_t width, height;
};

// Text is UTF-8, of which each byte that does not belong there stands for the Latin-1 character of
// its value. Control characters are passed over. A result is 0 or a FontFailure, and outputs are
// written with 0 only.
struct TextRasteriser {
  // How many columns the line takes.
  int32_t (*measure)(const FontRequest& font, std::string_view line, int32_t* width);
  // Sets each wanted pixel: 255 where there is a letter or a stroke, else 0.
  int32_t (*draw)(const FontRequest& font, std::string_view line, const TextPixels& pixels);
  void (*release)();  // gives back what is kept for the next line
};

// The ones in use: at first the machine's own.
const TextRasteriser& FontsInUse();
// Null puts the machine's own back.
void FontsUse(const TextRasteriser* rasteriser);

}  // namespace zel
