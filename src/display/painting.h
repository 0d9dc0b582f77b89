// What is seen in windows: the image, its margin, the region, the scroll bars.
#pragma once

#include <cstdint>

#include "display/view.h"
#include "display/window_records.h"

namespace zel {

// Has a window painted the next time that the queue runs: all of it.
void WindowMarkDirty(int32_t window);
// Paints the windows that are marked.
void RepaintRun();

struct RepaintParts {
  bool keepShadow;  // the image has not changed since it was last converted
  bool scrollBars;
  bool region;
};
void WindowRepaint(int32_t window, const RepaintParts& parts);

// Sets the pen of a window's canvas for the time of a scope, and keeps to the part of it that the
// image has.
class CanvasPainter {
 public:
  CanvasPainter(int32_t window, const DesktopPen& pen, const KernelRect& clip);
  CanvasPainter(const CanvasPainter&) = delete;
  CanvasPainter& operator=(const CanvasPainter&) = delete;
  ~CanvasPainter();

  void Line(CanvasPoint from, CanvasPoint to) const;
  // Corners in any order; right and bottom are one past the last pixel.
  void Rect(const KernelRect& rect, ShapeFill fill) const;
  void Oval(const KernelRect& rect, ShapeFill fill) const;
  void Text(const char* text, const KernelRect& rect, TextAlignment alignment) const;

 private:
  int32_t canvas_;
  DesktopRect formerClip_;
};

DesktopRect ToDesktop(const KernelRect& rect);
DesktopPen PenOfColour(uint32_t colour);

// A shape in coordinates of the image: an internal tool number and the points that it has.
struct Shape {
  int32_t tool;
  const PointInt* points;
  int64_t count;
};
void ShapePaint(const CanvasPainter& painter, const WindowRecord& record, const Shape& shape);
// The shapes of the window's region, in the pens of finished ones.
void RegionPaint(int32_t window);

}  // namespace zel
