// The ways to compute a rank filter. Each works on bands of output rows, with memory that was
// allocated before, and all give the same bits.
#pragma once

#include "core/views.h"
#include "filters/rank_network.h"
#include "filters/rank_rows.h"

namespace zel {

// All of one size. The source has (width - 1) / 2 filled columns of the window on its left, width /
// 2 on its right, and rows alike. The result shares no pixel with it, and holds the source's pixels
// already where the mask selects none.
struct RankViews {
  PixelView source;
  PixelView result;
  MaskView mask;
};

// Output rows, and memory for them that begins on a boundary of RANK_VECTOR_BYTES.
struct RankBand {
  int32_t begin, end;
  uint8_t* memory;
};

// Writes pixels of one row where the mask selects them.
void RankStore(const RankViews& views, int32_t x, int32_t y, int32_t columns,
               const uint8_t* pixels);

// ---- selection networks

constexpr size_t PROGRAM_STEPS = 8192;
constexpr size_t PROGRAM_ROWS = 1024;
constexpr uint16_t NO_ROW = 0xFFFF;

// A plan whose values have become rows of scratch memory.
struct RankProgram {
  using Plan = NetworkPlan<PROGRAM_STEPS, PROGRAM_ROWS>;
  Plan plan;
  int32_t rows;

  // Work memory, by value.
  uint16_t rowOf[Plan::VALUES];
  uint16_t carryOf[Plan::VALUES];  // that hands it on
  int32_t lastUse[Plan::VALUES];
  uint16_t freeRows[Plan::VALUES];
  int32_t freeCount;
};
// False where the plan has no room, or takes more steps a row than is worth it.
bool RankProgramMake(RankWindow window, int32_t stepsAtMost, RankProgram* program);

// A routine that has its values in registers, or a program.
struct RankNetwork {
  RankWindow window;
  const RankRoutine* routine;
  const RankProgram* program;
  int32_t group, carries;
  int32_t stripBytes;  // of columns that are computed from the top to the bottom of a band
  int32_t rows;        // of scratch memory
  int64_t pitch;       // from one of them to the next
};
RankNetwork RankNetworkOf(const RankRoutine& routine, const PixelView& source);
RankNetwork RankNetworkOf(const RankProgram& program, const PixelView& source);
int64_t RankNetworkBytes(const RankNetwork& network);
void RankNetworkRun(const RankNetwork& network, const RankViews& views, const RankBand& band);

// ---- histograms of columns: bytes, windows of any size

int64_t RankHistogramBytes(const PixelView& source, RankWindow window);
void RankHistogramRun(RankWindow window, const RankViews& views, const RankBand& band);

// ---- a window that slides over sorted tiles: 16-bit and float pixels, windows of any size

int64_t RankTilesBytes(const PixelView& source, RankWindow window);
void RankTilesRun(RankWindow window, const RankViews& views, const RankBand& band);

}  // namespace zel
