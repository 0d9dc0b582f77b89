// Pictures as the commands need them: what is told of them, and how they are brought into 8 bits.
#pragma once

#include <string>

#include "pictures/image.h"

namespace front {

using namespace pictures;  // NOLINT: the room beneath, of which this one is the upper floor

std::string KindName(const Account& account);  // "16-bit gray"
std::string SizeName(const Account& account);  // "640 x 480"
std::string HeadLine(const Account& account);  // "TIFF page 2 of 5, 640 x 480, 16-bit gray"
std::string TypeName(int32_t imageType);       // "i16"

// Both ends included.
struct Range {
  double low = 0, high = 0;
};

// The values that samples of a file's kind can have, where they have ends.
Range LevelsOf(const Account& account, int32_t imageType);

// Of finite pixels; with 0 of them all are 0.
struct Extremes {
  double low = 0, high = 0, mean = 0;
  int64_t finite = 0, others = 0;  // pixels
};
// Of an image of type U8, I16 or SGL.
Extremes ExtremesOf(const Image& image);
// The darkest and the brightest pixel of an image of type U8, for less than the mean takes; 0 and 0
// where there is none.
Range ByteRange(const Image& image);
// Whether some of its pixels are darker than the low end of a range, and some brighter than the
// high one: most often a few rows tell.
bool HasLevelsBeyond(const Image& image, const Range& range);

// An 8-bit copy of a gray image: its darkest finite pixel becomes 0, its brightest 255.
Image Stretch(const Image& gray, const Extremes& extremes);

}  // namespace front
