// Shapes of regions on a canvas.
#include <initializer_list>

#include "display/painting.h"
#include "display/shapes_held.h"

namespace zel {
namespace {

// A point is a cross that leaves its middle to be seen.
constexpr int32_t CROSS_ARM = 5;
constexpr int32_t CROSS_GAP = 2;

void CrossPaint(const CanvasPainter& painter, CanvasPoint at) {
  for (const int32_t side : {-1, 1}) {
    painter.Line({at.x + side * CROSS_GAP, at.y}, {at.x + side * CROSS_ARM, at.y});
    painter.Line({at.x, at.y + side * CROSS_GAP}, {at.x, at.y + side * CROSS_ARM});
  }
}

struct PenPair {
  const DesktopPen &point, &shape;
};

class RegionPainter {
 public:
  RegionPainter(int32_t window, const PenPair& pens, const KernelRect& clip)
      : window_(window), pens_(pens), clip_(clip) {}
  void Paint(const Shape& shape) const {
    const bool isPoint = shape.tool == TOOL_POINT;
    const CanvasPainter painter(window_, isPoint ? pens_.point : pens_.shape, clip_);
    ShapePaint(painter, RecordOf(window_), shape);
  }

 private:
  int32_t window_;
  PenPair pens_;
  KernelRect clip_;
};

}  // namespace

void ShapePaint(const CanvasPainter& painter, const WindowRecord& record, const Shape& shape) {
  const auto at = [&](int64_t index) {
    return ImageToCanvas(record, shape.points[index].x, shape.points[index].y);
  };
  if (shape.count < 1) return;
  const CanvasPoint first = at(0);
  switch (shape.tool) {
    case TOOL_NONE:
      return;
    case TOOL_POINT:
      CrossPaint(painter, first);
      return;
    case TOOL_RECT:
    case TOOL_OVAL: {
      if (shape.count < 2) return;
      const KernelRect box{first.x, first.y, at(1).x, at(1).y};
      if (shape.tool == TOOL_RECT) {
        painter.Rect(box, ShapeFill::FRAME);
      } else {
        painter.Oval(box, ShapeFill::FRAME);
      }
      return;
    }
    default:
      for (int64_t i = 1; i < shape.count; i++) painter.Line(at(i - 1), at(i));
  }
}

void RegionPaint(int32_t window) {
  WindowRecord& record = RecordOf(window);
  const View view = ViewCompute(&record);
  const RegionPainter painter(window, {display.pens.pointFinal, display.pens.shapeFinal},
                              view.clip);
  ForEachShape(record, [&painter](const Shape& shape) { painter.Paint(shape); });
}

}  // namespace zel
