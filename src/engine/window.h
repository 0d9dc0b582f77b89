// The window walk: a neighbourhood of each pixel gives one pixel of the result. Operations bring a
// routine for one row; it knows of no borders, masks or threads.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/views.h"
#include "engine/bands.h"
#include "engine/operands.h"

namespace zel {

// Source and result of one call, of one size. The result is no part of the source.
struct WindowViews {
  PixelView source;  // around it lies what windows read: other pixels, or the image's border
  PixelView result;
  MaskView mask;         // pixels that it does not select stay as they are
  int32_t firstRow = 0;  // of the image, that row 0 of the views is

  bool IsEmpty() const { return result.IsEmpty(); }
  WindowViews Columns(int32_t first, int32_t end) const {
    return {source.Columns(first, end), result.Columns(first, end), mask.Columns(first), firstRow};
  }
};

// The images of a call. Settling checks the source (STATUS_BAD_IMAGE, STATUS_BAD_TYPE unless it has
// numbers as pixels), fills its border, of which the windows read `border` pixels
// (STATUS_BORDER_TOO_SMALL), and settles destination and mask. The result is written beside the
// source; under a mask it is a copy of the source from the beginning.
struct WindowImages {
  ImageRef source, mask, destination;
};
void WindowOperandsSettle(const WindowImages& images, BorderFill fill, int32_t border,
                          Operands* operands);
WindowViews WindowViewsOf(const Operands& operands);

// ---- rows by the walk

// One row of results. rows[i] is column 0 of the i-th row that the window covers; columns to the
// left and right of the row may be read as far as the border that was asked for.
template <class Rule>
using WindowRow = void (*)(const void* const* rows, void* to, int32_t width, const Rule& rule);

// A routine for each type of number.
template <class Rule>
struct WindowRows {
  WindowRow<Rule> u8, i16, sgl;

  WindowRow<Rule> For(int32_t type) const {
    return type == IMAGE_U8 ? u8 : type == IMAGE_I16 ? i16 : sgl;
  }
};

// The rows that a window covers besides the pixel's own.
struct WindowReach {
  int32_t above, below;

  int32_t Rows() const { return above + 1 + below; }
};

// How long a row takes, in times of adding two rows: whether waking workers repays hangs on it.
using RowEffort = int64_t;

// Rows of frames with hexagonal neighbours lie half a pixel to the right of those above and below,
// so that odd rows of the image have another rule than even ones.
template <class Rule>
struct ParityRules {
  const Rule& even;
  const Rule& odd;
};

// STATUS_MEMORY_FULL before anything was written.
template <class Rule>
Status WindowWalk(const WindowViews& views, WindowReach reach, RowEffort effort,
                  WindowRow<Rule> row, const ParityRules<Rule>& rules);
template <class Rule>
Status WindowWalk(const WindowViews& views, WindowReach reach, RowEffort effort,
                  WindowRow<Rule> row, const Rule& rule) {
  return WindowWalk(views, reach, effort, row, ParityRules<Rule>{rule, rule});
}

// The columns in whole groups, where an operation gives other results there than in the remaining
// ones: none under a mask, nor without the processor's instructions for them.
int32_t WindowGroupedColumns(const WindowViews& views, int32_t groupColumns);

// ---- rows by the operation

// What a pass that carries something from row to row needs: bands of rows, memory of their own, and
// a place for results.
struct WindowPlan {
  int64_t memoryBytes = 0;  // for each worker
  RowEffort effort = 1;
  int32_t startRows = 0;  // a band begins with the work of so many rows
};

class WindowBand {
 public:
  const WindowViews& views;
  int32_t begin, end;  // rows
  uint8_t* memory;     // WindowPlan::memoryBytes on a cache line, undefined, for this band alone

  WindowBand(const WindowViews& of, const Band& band, uint8_t* workerMemory, uint8_t* spareRow)
      : views(of),
        begin(static_cast<int32_t>(band.begin)),
        end(static_cast<int32_t>(band.end)),
        memory(workerMemory),
        spareRow_(spareRow) {}

  // Where the results of a row are to be put, and what is called after that.
  void* RowBegin(int32_t y) const {
    return views.mask.SelectsAll() ? views.result.Row<uint8_t>(y) : spareRow_;
  }
  void RowEnd(int32_t y) const;

 private:
  uint8_t* spareRow_;  // under a mask
};

// Writes pixels of a row from column x on where the mask selects them: for passes that do not
// compute whole rows.
void WindowStore(const WindowViews& views, int32_t x, int32_t y, int32_t columns,
                 const void* pixels);

// The memory of all workers, taken before the pass begins.
class WindowMemory {
 public:
  Status Allocate(const WindowViews& views, const WindowPlan& plan, const BandPlan& bands);
  WindowBand BandOf(const WindowViews& views, const Band& band);

 private:
  WorkArray<uint8_t> block_;
  int64_t spareBytes_ = 0;
  int64_t workerBytes_ = 0;
};

BandPlan WindowBandPlan(const WindowViews& views, const WindowPlan& plan);

// Runs pass(const WindowBand&) over all rows. STATUS_MEMORY_FULL before anything was written.
template <class Pass>
Status WindowBandsRun(const WindowViews& views, const WindowPlan& plan, const Pass& pass) {
  if (views.IsEmpty()) return STATUS_OK;
  const BandPlan bands = WindowBandPlan(views, plan);
  WindowMemory memory;
  const Status status = memory.Allocate(views, plan, bands);
  if (status != STATUS_OK) return status;
  BandsRun(bands, [&](const Band& band) { pass(memory.BandOf(views, band)); });
  return STATUS_OK;
}

// ---- the walk itself, whatever the rule

// A routine and its rules without their type.
struct WindowWork {
  void (*run)(const WindowWork& work, const void* const* rows, void* to, int32_t width, bool odd);
  void (*routine)();
  const void* rules[2];  // of even and odd rows
};
Status WindowWalk(const WindowViews& views, WindowReach reach, RowEffort effort,
                  const WindowWork& work);

template <class Rule>
Status WindowWalk(const WindowViews& views, WindowReach reach, RowEffort effort,
                  WindowRow<Rule> row, const ParityRules<Rule>& rules) {
  const auto run = [](const WindowWork& work, const void* const* rows, void* to, int32_t width,
                      bool odd) {
    reinterpret_cast<WindowRow<Rule>>(work.routine)(rows, to, width,
                                                    *static_cast<const Rule*>(work.rules[odd]));
  };
  return WindowWalk(views, reach, effort,
                    WindowWork{run, reinterpret_cast<void (*)()>(row), {&rules.even, &rules.odd}});
}

}  // namespace zel
