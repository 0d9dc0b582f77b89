// The shapes of contours, painted into a U8 image.
#pragma once

#include <cstdint>

#include "core/heap.h"
#include "core/rectangles.h"
#include "core/views.h"
#include "regions/descriptors.h"
#include "regions/polygon_fill.h"
#include "utilities/ovals.h"

namespace zel {

// Points of the polygon that has the most of them; 0 where there is none.
int64_t LargestPolygon(Handle vector);

// Shapes are clipped to a frame, whose upper left part is stored in a view: clipping a line moves
// pixels, so that a small mask shows the same as that part of a large one.
class Painter {
 public:
  struct Frame {
    int32_t width, height;
    int32_t left, top;  // the coordinates of its first pixel
  };
  // The view has pixels and lies in the frame. The fill is prepared for the largest polygon and the
  // view's rows.
  Painter(const PixelView& view, const Frame& frame, PolygonFill* fill)
      : view_(view), frame_(frame), fill_(fill) {}

  // False when nothing is painted after this contour. One with a number of integers that its type
  // does not have is passed over.
  bool Paint(const FlatContour& contour, uint8_t value);

  bool IsClipped() const { return clipped_; }

 private:
  PointInt Shifted(PointInt point) const;
  PixelBox BoxOf(const FlatContour& contour) const;
  bool Holds(PointInt point) const;   // in the frame
  bool Stores(PointInt point) const;  // in the view

  void PaintAll();
  void PaintSpan(int64_t y, int64_t first, int64_t last);
  void PaintPoint(PointInt point);
  bool PaintLine(PointInt from, PointInt to);  // whether both ends are in the frame
  void PaintStored(const KernelLine& line);
  void PaintVisible(const KernelLine& line);
  void PaintBox(const PixelBox& box);
  void PaintOval(const PixelBox& box);
  void PaintChain(const FlatContour& contour);
  void PaintPolygon(const FlatContour& contour);

  PixelView view_;
  Frame frame_;
  PolygonFill* fill_;
  uint8_t value_ = 0;
  bool clipped_ = false;
};

}  // namespace zel
