// The inside of a polygon, row by row, from where its edges cross the rows.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/status.h"
#include "core/views.h"
#include "orlune_ptk.h"

namespace zel {

// Crossings of a polygon's edges with the rows of an image, taken two by two from left to right. An
// edge is walked as a line is drawn, from its first point to its second; it crosses a row at the
// first pixel that it has there, but for the row where it begins. A vertex at which the outline
// goes on in the same vertical direction is one crossing so, and one at which it turns is two.
class PolygonFill {
 public:
  // For polygons of at most so many points, in views of at most so many rows and columns.
  // STATUS_MEMORY_FULL.
  Status Prepare(int64_t points, int32_t rows, int32_t columns);

  // A polygon that is not seen beyond `frameHeight` rows, of which the view has the first ones.
  // Begin, then all edges in their order, the one back to the first point last, then Paint.
  // direction: the sign of the last step in y before the first edge, not 0.
  void Begin(const PixelView& view, int64_t frameHeight, int32_t direction);
  void AddEdge(PointInt from, PointInt to);
  void Paint(uint8_t value);

 private:
  // Where an edge crosses a row, and how it goes on from row to row: x grows by step, and by carry
  // each time that the remainder reaches the divisor. Steps of edges that are wider than 32 bits
  // wrap, and so does x on its way; in each row of the edge it lies between the edge's ends.
  struct Crossing {
    int32_t x;
    int32_t remainder;
    int32_t stepRemainder, divisor;
    int32_t step, carry;
    int32_t last;  // row
    int32_t next;  // that begins in the same row, or NONE

    void GoOn();  // to the next row
  };
  static constexpr int32_t NONE = -1;

  void Add(int64_t first, const Crossing& crossing);
  void AddPoint(PointInt point);
  void AddSlope(PointInt from, PointInt to);
  void Advance(int32_t y);
  void SortActive();
  void PaintSorted(int32_t y, uint8_t value) const;
  void PaintByColumns(int32_t y, uint8_t value);

  PixelView view_;
  int64_t frameHeight_ = 0;
  int32_t direction_ = 0;
  int32_t firstRow_ = 0, endRow_ = 0;  // with crossings
  int32_t crossingCount_ = 0;
  int32_t activeCount_ = 0;
  WorkArray<Crossing> crossings_;
  WorkArray<Crossing> active_;    // those of the row at hand
  WorkArray<int32_t> beginning_;  // in a row: the first crossing of a list
  WorkArray<uint64_t> columns_;   // of a row: two bits for each
};

}  // namespace zel
