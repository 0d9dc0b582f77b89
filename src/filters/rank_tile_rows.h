// The row routine of large windows on wide pixels: a window that slides over the ranks of a tile's
// pixels.
#pragma once

#include "engine/levels.h"

namespace zel {

// All pixels of a tile have different ranks in it, so that the pixels of a window are a set of
// bits. The window slides along the lines of `ranks`, back and forth, and moves on by one line's
// position at the end: what it costs grows with its breadth only.
struct RankTile {
  const uint32_t* ranks;  // [line][position]
  int32_t positions;      // of a line
  int32_t windowLines, breadth;
  int32_t lineSteps, positionSteps;  // where the window goes
  int32_t order;
  uint64_t* members;  // a bit for each rank, all clear
  uint32_t* found;    // the wanted ranks: [position step][line step]
};

struct RankTileRows {
  void (*slide)(const RankTile& tile);
};
ZEL_ROW_TABLE(RankTileRows, rankTileRows)

}  // namespace zel
