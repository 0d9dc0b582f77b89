// Holes of particles, found while the rows of an image are swept.
#pragma once

#include <cstdint>

#include "particles/runs.h"

namespace zel {

struct HoleShape {
  int32_t area;  // pixels, particles inside the hole included
  int32_t x, y;  // its first pixel in raster order
  bool isGap;    // it is in one row
};

// A run of the sweep, by its place in the table of runs. What a search for a hole asks of a run
// lies in one cache line: the walls of a large hole are rows of memory apart.
struct SweptRun {
  Run run;
  uint32_t label;  // the run's set when it was added
  // Where to look from, on the row above and on the row below, for runs that end beyond the run's
  // last pixel: none before those do. A firstBelow of 0 stands for the row's end.
  uint32_t firstAbove;
  uint32_t firstBelow;
  // Kept from hole to hole: the last hole that the gap behind the run was seen for, and how many
  // runs of complete particles follow on either side.
  uint32_t seenFor;
  uint32_t skipBefore;
  uint32_t skipBehind;
};

// Finds out the extent of a hole at the moment when a run closes it from below. Particles without
// a run on the row above that one are complete; they no longer count as walls.
class HoleFinder {
 public:
  // What belongs to the sweep and grows with it: its runs, and by set the last row with a run of
  // it.
  HoleFinder(const RunTable& table, WorkArray<SweptRun>* runs, DisjointSets* sets,
             const WorkArray<int32_t>* lastRows, bool connectivity8)
      : table_(table),
        runs_(runs),
        sets_(sets),
        lastRows_(lastRows),
        reach_(connectivity8 ? 0 : 1) {}

  // The hole that touches the gap behind the run at `place`, on row y. Of that row only the gaps
  // up to there belong to it. No run lies in the gap. False when there is no memory.
  [[nodiscard]] bool Find(int32_t y, uint32_t place, HoleShape* hole);

 private:
  // A stretch of background between two runs of incomplete particles.
  struct Gap {
    uint32_t left, right;  // the places of these runs
    int32_t y;
  };

  SweptRun& At(uint32_t place) const { return (*runs_)[place]; }
  bool IsCoveredFromAbove(int32_t start, int32_t end, uint32_t from) const;
  bool Push(Gap gap);
  bool PushNeighbours(int32_t y, uint32_t from, int32_t start, int32_t end, uint32_t lastPlace);
  bool IsWall(const SweptRun& swept);
  uint32_t WallAtOrBefore(uint32_t place);
  uint32_t WallAtOrBehind(uint32_t place);

  const RunTable& table_;
  WorkArray<SweptRun>* runs_;
  DisjointSets* sets_;
  const WorkArray<int32_t>* lastRows_;
  int32_t reach_;        // columns that gaps of neighbouring rows may lie apart and still touch
  int32_t wallRow_ = 0;  // particles with a run on this row or below are walls
  uint32_t holes_ = 0;
  WorkArray<Gap> stack_;
  uint64_t stackCapacity_ = 0;
  uint64_t stackSize_ = 0;
};

}  // namespace zel
