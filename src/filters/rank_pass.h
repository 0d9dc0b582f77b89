// The ways to compute a rank filter. Each works on bands of output rows, and all give the same
// bits. The source has (width - 1) / 2 columns on its left and width / 2 on its right that windows
// may read, and rows alike.
#pragma once

#include "engine/window.h"
#include "filters/rank_network.h"
#include "filters/rank_rows.h"

namespace zel {

// The source's pixel that lies in the first row and column of the window of the output pixel (x,
// y).
template <class T>
const T* WindowCorner(const WindowViews& views, const RankWindow& window, int64_t x, int64_t y) {
  return views.source.At<T>(x - (window.width - 1) / 2, y - (window.height - 1) / 2);
}

// The bytes of so many, in whole vectors.
constexpr int64_t WholeVectors(int64_t bytes) {
  return (bytes + RANK_VECTOR_BYTES - 1) / RANK_VECTOR_BYTES * RANK_VECTOR_BYTES;
}

// ---- selection networks

constexpr size_t PROGRAM_STEPS = 8192;
constexpr size_t PROGRAM_ROWS = 1024;

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

  int32_t StepsOfARow() const { return plan.stepCount / plan.group; }
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
int64_t RankNetworkBytes(const RankNetwork& network, const PixelView& source);
void RankNetworkRun(const RankNetwork& network, const WindowBand& band);

// ---- histograms of columns: bytes, windows of any size

int64_t RankHistogramBytes(const PixelView& source, RankWindow window);
void RankHistogramRun(RankWindow window, const WindowBand& band);

// ---- a window that slides over sorted tiles: 16-bit and float pixels, windows of any size

int64_t RankTilesBytes(const PixelView& source, RankWindow window);
void RankTilesRun(RankWindow window, const WindowBand& band);

// ---- what is done once more with floats whose order is not that of numbers

// Output pixels, and what the floats in their windows were found to be.
struct FloatPart {
  int32_t x, y, columns, rows;
  uint32_t marks;  // FloatMark
};
int64_t RankFloatsBytes(RankWindow window, int32_t columns);
void RankFloatsMend(RankWindow window, const WindowViews& views, const FloatPart& part,
                    uint8_t* memory);

}  // namespace zel
