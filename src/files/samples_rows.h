// Row routines that turn the samples of a file into pixels, and pixels into samples.
#pragma once

#include <cstdint>

#include "engine/levels.h"
#include "files/context.h"

namespace zel {

// Converts `count` samples, from number `first` on, to the pixels of one run of an image row.
using SampleConvert = void (*)(const uint8_t* samples, int64_t first, int64_t count, void* pixels);

// Moves `count` elements to another place, or to the same, and changes the order of their bytes.
using ElementMove = void (*)(const void* from, int64_t count, void* to);

constexpr int32_t FILE_IMAGE_TYPES = 5;

struct SampleRows {
  // By class and image type. Null where samples and pixels are the same bytes and none has to be
  // moved, and for planes, which have tables of their own.
  SampleConvert convert[PIXEL_CLASSES][FILE_IMAGE_TYPES];
  // CLASS_RGB24 of files that have blue first.
  SampleConvert convertBlueFirst[FILE_IMAGE_TYPES];
  // By plane and image type: later planes join what the earlier ones left. Null has no effect.
  SampleConvert convertPlane[3][FILE_IMAGE_TYPES];

  ElementMove reverse16;
  ElementMove reverse32;
  ElementMove packRedFirst;   // 4-byte pixels to red, green, blue
  ElementMove packBlueFirst;  // 4-byte pixels to blue, green, red
  void (*invertBytes)(void* bytes, int64_t count);
};
ZEL_ROW_TABLE(SampleRows, sampleRows)

}  // namespace zel
