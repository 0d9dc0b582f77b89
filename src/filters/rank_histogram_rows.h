// The row routines of large windows on bytes: column histograms, whose cost does not depend on the
// window.
#pragma once

#include "engine/levels.h"

namespace zel {

// A byte has a segment, its upper four bits, and a place in it, the lower four. All counts are
// running sums over 16 segments or places, so that one comparison finds the wanted one.
constexpr int32_t RANK_SEGMENTS = 16;

struct RankHistogram {
  int32_t width, order;  // of the window
  int64_t pixels;        // of the window
  int32_t columns;       // of the output
  int32_t pitch;         // source columns between two segments of placeCounts

  // Of the window's rows in each source column.
  uint16_t* segmentCounts;  // [column][16]
  uint16_t* placeCounts;    // [segment][column][16]
  // Of whole windows: places of one segment, each at the window where it was last looked into.
  uint32_t* windowPlaces;  // [segment][16]
};

struct RankHistogramRows {
  // A source row comes into the windows; another one leaves them as one comes.
  void (*enter)(const RankHistogram& histogram, const uint8_t* row);
  void (*exchange)(const RankHistogram& histogram, const uint8_t* enters, const uint8_t* leaves);
  // The pixels of wanted rank in all windows of a row.
  void (*select)(const RankHistogram& histogram, uint8_t* to);
};
ZEL_ROW_TABLE(RankHistogramRows, rankHistogramRows)

}  // namespace zel
