// Elementary passes of morphology: each pixel becomes what the pixels around it, at the places of a
// structuring element, make of it. Beyond the image lie copies of its outermost pixels.
//
// Passes that follow each other go through the image together: each keeps only the rows that the
// next one still looks at.
#pragma once

#include <cstdint>

#include "engine/window.h"
#include "morphology/element_shape.h"
#include "morphology/extremes_rows.h"

namespace zel {

// The furthest rows and columns from the pixel, both ends included.
struct PassReach {
  int32_t top, bottom, left, right;

  int32_t Rows() const { return bottom - top + 1; }
  int32_t Columns() const { return right - left + 1; }
};

// A list of runs, and how a row is looked through for them: by single pixels, or, for long runs, by
// spans of 2, 4, 8... pixels, made once for each row.
struct RunPlan {
  RunList list{};
  int32_t doublings = 0;  // the longest spans have 2^doublings pixels
  int64_t places = 0;     // looked at for each pixel then
};

// A pass, planned once a call. The shape outlives it.
struct MorphologyPass {
  int32_t type = 0;
  int32_t pixelBytes = 0;
  bool hexagonal = false;
  bool isRectangle = false;  // all members and nothing else between the ends of the reach
  PassReach reach{};
  RunPlan members, others;                         // rectangles need none
  const ExtremeRoutines* extremes = nullptr;       // of the members
  const ExtremeRoutines* otherExtremes = nullptr;  // of the other positions, where they count
  Finish finish = FINISH_VALUE;
  RowEffort effort = 1;
};

// The largest or smallest of the members.
MorphologyPass ExtremePass(const ElementShape& shape, int32_t type, Extreme extreme, Finish finish);
// Whether all members are set and all other positions clear: U8.
MorphologyPass MatchPass(const ElementShape& shape, Finish finish);

constexpr int32_t CHAIN_LIMIT = 6;

// Passes that follow each other.
struct PassChain {
  const MorphologyPass* passes[CHAIN_LIMIT];
  int32_t count;
};

// A row of the source and what two chains make of it, into a row of the result. The chains' rows
// may be overwritten.
struct CombinedRows {
  PixelView source, first, second, result;
};

// What becomes of the source: a chain, or one or two combined with each other or with the source.
struct PassPlan {
  PassChain first{}, second{};
  void (*combine)(const CombinedRows& rows) = nullptr;  // none: the first chain is the result
};

// `border`: of the source, filled with copies of its outermost pixels. STATUS_MEMORY_FULL before
// anything was written.
Status PassesRun(const WindowViews& views, int32_t border, const PassPlan& plan);

}  // namespace zel
