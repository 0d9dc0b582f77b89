// The point walk: one pixel in each operand gives one pixel of the result.
#pragma once

#include "core/numbers.h"
#include "core/views.h"

namespace zel {

// The operands of one call, all of one size. The result may be the same pixels as any of them.
struct PointViews {
  PixelView first;   // of a conversion or a lookup: the source
  PixelView second;  // of operations with two operands; else it is not looked at
  PixelView result;
  MaskView mask;  // for routines that take one
};

// Works through all rows of the views. The rule says what becomes of a pixel; its fields are copied
// into locals before the loop.
template <class Rule>
using PointRoutine = void (*)(const PointViews& views, const Rule& rule);

// For routines that need no more than the views.
struct NoRule {};

// Calls the routine on parts of the views that together are the whole, on several threads where
// that repays. Where all rows of all operands follow each other without a gap, they are one long
// row, whose parts begin on the boundaries of cache lines.
template <class Rule>
void PointWalk(const PointViews& views, PointRoutine<Rule> routine, const Rule& rule);

// Results of operations that touch so many bytes, and do not run in place, are stored past the
// caches: the size of the last-level cache, below which it was measured to lose.
constexpr int64_t POINT_STREAM_UNKNOWN = -1;  // the machine is asked at the next use
extern int64_t pointStreamBytes;              // set by tests only

// The whole rows of an operation joined into one where none of its operands has a gap between them;
// unchanged otherwise. For passes that own their walk.
PointViews RowsJoin(const PointViews& views);
PixelView RowsJoin(const PixelView& view);

// The columns from `first` up to and without `end` of all operands.
PointViews PointColumns(const PointViews& views, int32_t first, int32_t end);

// ---- for row sources: loops over the views, written once and given the rule for one pixel. Each
// pixel must depend on the pixels at the same place only: the compiler is told that nothing else is
// read after it was written, so that the result may be one of the operands.

// result = rule(first, second)
template <class First, class Second, class Result, class Rule>
ZEL_INLINE void CombineSamePlace(const PointViews& views, Rule rule) {
  const int64_t width = views.result.width;
  const int64_t height = views.result.height;
  const int64_t firstPitch = views.first.pitch;
  const int64_t secondPitch = views.second.pitch;
  const int64_t resultPitch = views.result.pitch;
  const uint8_t* first = views.first.origin;
  const uint8_t* second = views.second.origin;
  uint8_t* result = views.result.origin;
  for (int64_t y = 0; y < height; y++) {
    const auto* a = reinterpret_cast<const First*>(first + y * firstPitch);
    const auto* b = reinterpret_cast<const Second*>(second + y * secondPitch);
    auto* to = reinterpret_cast<Result*>(result + y * resultPitch);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) to[x] = rule(a[x], b[x]);
  }
}

// result = rule(first)
template <class First, class Result, class Rule>
ZEL_INLINE void MapSamePlace(const PointViews& views, Rule rule) {
  const int64_t width = views.result.width;
  const int64_t height = views.result.height;
  const int64_t firstPitch = views.first.pitch;
  const int64_t resultPitch = views.result.pitch;
  const uint8_t* first = views.first.origin;
  uint8_t* result = views.result.origin;
  for (int64_t y = 0; y < height; y++) {
    const auto* a = reinterpret_cast<const First*>(first + y * firstPitch);
    auto* to = reinterpret_cast<Result*>(result + y * resultPitch);
#pragma GCC ivdep
    for (int64_t x = 0; x < width; x++) to[x] = rule(a[x]);
  }
}

// ---- the walk itself, whatever the rule

// A routine and its rule without their type.
struct PointWork {
  void (*run)(const PointWork& work, const PointViews& views);
  void (*routine)();
  const void* rule;
};
void PointWalk(const PointViews& views, const PointWork& work);

template <class Rule>
void PointWalk(const PointViews& views, PointRoutine<Rule> routine, const Rule& rule) {
  const auto run = [](const PointWork& work, const PointViews& part) {
    reinterpret_cast<PointRoutine<Rule>>(work.routine)(part, *static_cast<const Rule*>(work.rule));
  };
  PointWalk(views, PointWork{run, reinterpret_cast<void (*)()>(routine), &rule});
}

}  // namespace zel
