// Row routines of the histogram: pixels to class numbers, and class numbers counted.
#pragma once

#include "engine/levels.h"
#include "statistics/pixel_sums.h"

namespace zel {

// Both ends of the counted values and the classes between them.
struct ClassMap {
  double min, max;
  float scale, offset;
  int32_t classes;  // also the class number of pixels that are not counted
};

// Pixels on their way to the counters go through a buffer of class numbers of this size.
constexpr int32_t CLASS_RUN = 1024;

// Neighbours tend to be equal, and counting one waits for the count of the one before. So each
// column counts into the table of its own out of this many, which lie one after the other. Classes
// can be thousands, and more tables of theirs would fall out of the nearest cache.
constexpr int32_t LEVEL_TABLES = 8;
constexpr int32_t COUNT_TABLES = 4;

// Class numbers of `width` pixels, at most CLASS_RUN; a null mask selects all.
using ClassRow = void (*)(const void* row, const uint8_t* mask, int32_t width, const ClassMap& map,
                          uint16_t* classes);

// Counts class numbers in COUNT_TABLES tables of `length` counters, and sums up the pixels of
// classes below `map.classes`, but leaves their number to the counters.
using SumRow = void (*)(const void* row, const uint16_t* classes, int32_t width,
                        const ClassMap& map, uint32_t* tables, PixelSums* sums);

struct HistogramRows {
  // Counts the levels of a row in LEVEL_TABLES tables of 256 counters.
  void (*countLevels)(const uint8_t* row, int32_t width, uint32_t* tables);
  // Level numbers of a row under a mask: 256 where it is 0.
  void (*levelsUnderMask)(const uint8_t* row, const uint8_t* mask, int32_t width, uint16_t* levels);
  // Counts numbers in COUNT_TABLES tables of `length` counters.
  void (*countNumbers)(const uint16_t* numbers, int32_t width, int32_t length, uint32_t* tables);

  ClassRow classesOfWords;
  ClassRow classesOfFloats;
  SumRow sumWords;
  SumRow sumFloats;
};
ZEL_ROW_TABLE(HistogramRows, histogramRows)

}  // namespace zel
