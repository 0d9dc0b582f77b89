// Scroll bars of image windows.
#include "display/scroll_bars.h"

#include <algorithm>
#include <cstdio>

#include "core/numbers.h"
#include "display/painting.h"
#include "display/pointer_loop.h"
#include "display/view.h"

namespace zel {
namespace {

constexpr int32_t SIZE = SCROLL_BAR_SIZE;
constexpr int32_t STEP = 8;  // canvas pixels that an arrow scrolls
constexpr int32_t NARROW_BAND = 32;
constexpr int32_t WIDE_BAND = 96;
constexpr int32_t WIDE_FROM = 160;  // a bar of so many pixels has room for the wide band
constexpr int32_t ZOOM_TEXT = 32;
constexpr uint32_t BLACK = 0;
constexpr uint32_t WHITE = 0xFFFFFF;
constexpr uint32_t GRAY = 0xB3B3B3;

// One bar along its own axis: two arrows, and a thumb on the track between them.
struct Bar {
  int64_t first, end;       // canvas pixels along the axis
  int64_t total, page;      // zoomed extent of the image and of the view
  int64_t position, limit;  // zoomed origin, from 0 to the limit
  int64_t trough;           // what a press beside the thumb scrolls

  int64_t TrackFirst() const { return first + SIZE; }
  int64_t Track() const { return end - first - 2 * SIZE; }
  int64_t Thumb() const {
    const double ratio =
        static_cast<double>(total) / static_cast<double>(std::max<int64_t>(page, 1));
    return std::max<int64_t>(CutLow<int64_t>(static_cast<double>(Track()) / ratio), SIZE);
  }
  bool HasThumb() const { return total > page && Track() >= SIZE; }
  // Scroll positions that one pixel of the track stands for.
  double Scale() const {
    const int64_t room = Track() - Thumb();
    return room == 0 ? 1.0 : static_cast<double>(total - page) / static_cast<double>(room);
  }
  int64_t ThumbFirst() const {
    return TrackFirst() + CutLow<int64_t>(static_cast<double>(position) / Scale());
  }
};

struct Bars {
  Bar horizontal, vertical;
  int32_t band;           // width of the band to the left of the horizontal bar
  int32_t right, bottom;  // where the bars begin
};

int64_t ZoomedExtent(int32_t pixels, float factor) {
  return CutLow<int32_t>(static_cast<float>(pixels) * factor);
}

Bars BarsOf(int32_t window) {
  WindowRecord& record = RecordOf(window);
  const View view = ViewCompute(&record);
  const int32_t right = record.panelWidth - SIZE;
  const int32_t bottom = record.panelHeight - SIZE;
  const int32_t band = right < WIDE_FROM ? NARROW_BAND : WIDE_BAND;
  const int64_t width = ZoomedExtent(record.imageWidth, record.zoomFactorX);
  const int64_t height = ZoomedExtent(record.imageHeight, record.zoomFactorY);
  const auto limit = [](int64_t total, int32_t canvas) {
    return std::max<int64_t>(total - canvas, 0);
  };
  return {
      {band, right, width, view.canvas.right - view.canvas.left,
       ZoomedExtent(record.originX, record.zoomFactorX), limit(width, right), record.panelWidth},
      {0, bottom, height, view.canvas.bottom - view.canvas.top,
       ZoomedExtent(record.originY, record.zoomFactorY), limit(height, bottom), record.panelHeight},
      band,
      right,
      bottom};
}

// ---- drawing

// Draws a bar's parts by what lies along and across its axis.
class BarPainter {
 public:
  BarPainter(int32_t window, int32_t across, bool isVertical)
      : window_(window), across_(across), isVertical_(isVertical) {
    const WindowRecord& record = RecordOf(window);
    all_ = {0, 0, record.panelWidth, record.panelHeight};
  }

  void Box(int64_t first, int64_t end, uint32_t colour) const {
    const KernelRect box = BoxOf(first, end);
    CanvasPainter(window_, PenOfColour(colour), all_).Rect(box, ShapeFill::FILL);
    CanvasPainter(window_, PenOfColour(BLACK), all_).Rect(box, ShapeFill::FRAME);
  }
  // A triangle of lines that grow by two pixels each.
  void Arrow(int64_t first, bool pointsBack) const {
    Box(first, first + SIZE, GRAY);
    const CanvasPainter painter(window_, PenOfColour(BLACK), all_);
    for (int32_t i = 0; i < 4; i++) {
      const auto along = static_cast<int32_t>(first) + (pointsBack ? 6 + i : 9 - i);
      const int32_t from = across_ + 7 - i;
      const int32_t to = across_ + 8 + i;
      if (isVertical_) {
        painter.Line({from, along}, {to, along});
      } else {
        painter.Line({along, from}, {along, to});
      }
    }
  }

 private:
  KernelRect BoxOf(int64_t first, int64_t end) const {
    const auto from = static_cast<int32_t>(first);
    const auto to = static_cast<int32_t>(end);
    if (isVertical_) return {across_, from, across_ + SIZE, to};
    return {from, across_, to, across_ + SIZE};
  }

  int32_t window_;
  int32_t across_;
  bool isVertical_;
  KernelRect all_;
};

void BarPaint(const BarPainter& painter, const Bar& bar, bool isActive) {
  if (!isActive) {
    painter.Box(bar.first, bar.end + 1, GRAY);
    return;
  }
  painter.Box(bar.first, bar.end + 1, WHITE);
  painter.Arrow(bar.first, true);
  painter.Arrow(bar.end - SIZE, false);
  if (bar.HasThumb()) painter.Box(bar.ThumbFirst(), bar.ThumbFirst() + bar.Thumb(), GRAY);
}

// Three slanting lines in the corner by which a panel is sized.
void GripPaint(int32_t window, const Bars& bars, bool isActive) {
  const WindowRecord& record = RecordOf(window);
  const KernelRect all{0, 0, record.panelWidth, record.panelHeight};
  const KernelRect box{bars.right, bars.bottom, record.panelWidth, record.panelHeight};
  CanvasPainter(window, PenOfColour(GRAY), all).Rect(box, ShapeFill::FILL);
  const CanvasPainter painter(window, PenOfColour(BLACK), all);
  if (!isActive) {
    painter.Rect(box, ShapeFill::FRAME);
    return;
  }
  for (const int32_t length : {3, 7, 11}) {
    painter.Line({box.right - 2, box.bottom - 2 - length},
                 {box.right - 2 - length, box.bottom - 2});
  }
}

void ZoomText(int32_t zoom, char (&text)[16]) {
  if (zoom < 1) {
    std::snprintf(text, sizeof(text), "1/%d", -zoom);
  } else {
    std::snprintf(text, sizeof(text), "%d/1", zoom);
  }
}

// The image's size and the zoom, to the left of the horizontal bar.
void BandPaint(int32_t window, const Bars& bars) {
  const WindowRecord& record = RecordOf(window);
  const KernelRect band{0, bars.bottom, bars.band, record.panelHeight};
  CanvasPainter(window, PenOfColour(WHITE), band).Rect(band, ShapeFill::FILL);
  const CanvasPainter painter(window, PenOfColour(BLACK), band);
  painter.Line({0, band.top}, {band.right - 1, band.top});
  painter.Line({0, band.bottom - 1}, {band.right - 1, band.bottom - 1});
  const int32_t zoomLeft = bars.band - ZOOM_TEXT;
  if (zoomLeft > 0) {
    char size[32];
    std::snprintf(size, sizeof(size), "%dx%d", record.imageWidth, record.imageHeight);
    painter.Text(size, {0, band.top + 1, zoomLeft - 1, band.bottom - 1}, TextAlignment::CENTRE);
    painter.Line({zoomLeft, band.top}, {zoomLeft, band.bottom - 1});
  }
  if (record.zoomX != record.zoomY) return;
  char zoom[16];
  ZoomText(record.zoomX, zoom);
  painter.Text(zoom, {zoomLeft + 1, band.top + 1, bars.band, band.bottom - 1},
               TextAlignment::CENTRE);
}

// ---- following the pointer

enum class Part { NONE, BACK, FORTH, TROUGH_BACK, TROUGH_FORTH, THUMB };

Part PartAt(const Bar& bar, int64_t along) {
  if (along < bar.first || along >= bar.end) return Part::NONE;
  if (along < bar.TrackFirst()) return Part::BACK;
  if (along >= bar.end - SIZE) return Part::FORTH;
  if (!bar.HasThumb()) return Part::NONE;
  if (along < bar.ThumbFirst()) return Part::TROUGH_BACK;
  return along < bar.ThumbFirst() + bar.Thumb() ? Part::THUMB : Part::TROUGH_FORTH;
}

int64_t StepOf(const Bar& bar, Part part) {
  switch (part) {
    case Part::BACK:
      return -STEP;
    case Part::FORTH:
      return STEP;
    case Part::TROUGH_BACK:
      return -bar.trough;
    case Part::TROUGH_FORTH:
      return bar.trough;
    default:
      return 0;
  }
}

void OriginSet(int32_t window, bool isVertical, int64_t position) {
  WindowRecord& record = RecordOf(window);
  int32_t* origin = isVertical ? &record.originY : &record.originX;
  const float factor = isVertical ? record.zoomFactorY : record.zoomFactorX;
  const auto wanted = CutLow<int32_t>(static_cast<float>(position) / factor);
  if (wanted == *origin) return;
  *origin = wanted;
  WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = false});
}

bool IsOnVertical(const Bars& bars, int32_t x, int32_t y) {
  return x >= bars.right && y < bars.bottom;
}
bool IsOnHorizontal(const Bars& bars, int32_t x, int32_t y) {
  return y >= bars.bottom && x < bars.right;
}

// A bar in the loop.
class Scroller {
 public:
  Scroller(int32_t window, bool isVertical, int32_t x, int32_t y)
      : window_(window), isVertical_(isVertical) {
    const Bar bar = BarNow();
    start_ = isVertical ? y : x;
    part_ = PartAt(bar, start_);
    startPosition_ = bar.position;
  }
  bool HasPart() const { return part_ != Part::NONE; }

  void Round(const PointerState& pointer) const {
    const Bar bar = BarNow();
    const int64_t along = isVertical_ ? pointer.y : pointer.x;
    int64_t position = bar.position;
    if (part_ == Part::THUMB) {
      const double moved = static_cast<double>(along - start_) * bar.Scale();
      position = startPosition_ + CutLow<int64_t>(moved);
    } else if (IsOn(pointer) && PartAt(bar, along) == part_) {
      position += StepOf(bar, part_);
    }
    OriginSet(window_, isVertical_, std::clamp<int64_t>(position, 0, bar.limit));
  }

 private:
  Bar BarNow() const {
    const Bars bars = BarsOf(window_);
    return isVertical_ ? bars.vertical : bars.horizontal;
  }
  bool IsOn(const PointerState& pointer) const {
    const Bars bars = BarsOf(window_);
    return isVertical_ ? IsOnVertical(bars, pointer.x, pointer.y)
                       : IsOnHorizontal(bars, pointer.x, pointer.y);
  }

  int32_t window_;
  bool isVertical_;
  Part part_;
  int64_t start_, startPosition_;
};

}  // namespace

void ScrollBarsPaint(int32_t window) {
  const int32_t panel = display.bindings[window].panel;
  const bool isActive = panel != 0 && DesktopInUse().active() == panel;
  const Bars bars = BarsOf(window);
  BarPaint(BarPainter(window, bars.right, true), bars.vertical, isActive);
  BarPaint(BarPainter(window, bars.bottom, false), bars.horizontal, isActive);
  GripPaint(window, bars, isActive);
  BandPaint(window, bars);
}

bool ScrollTrack(int32_t window, int32_t x, int32_t y) {
  if (!RecordOf(window).hasScrollBars) return false;
  const Bars bars = BarsOf(window);
  if (x < bars.right && y < bars.bottom) return false;
  const bool isVertical = IsOnVertical(bars, x, y);
  if (!isVertical && !IsOnHorizontal(bars, x, y)) return true;
  const Scroller scroller(window, isVertical, x, y);
  if (!scroller.HasPart()) return true;

  PointerLoop loop(window);
  bool wasHeld = false;
  for (; loop.Next() && loop.pointer().leftDown; wasHeld = true) scroller.Round(loop.pointer());
  if (loop.WasCut()) return true;
  // A click that was over before the first look is worth one step.
  if (!wasHeld) scroller.Round({x, y, true});
  RegionPaint(window);
  const PointInt centre = CentreOf(&RecordOf(window));
  EventRecord(window, EVENT_SCROLLED, centre.x, centre.y);
  return true;
}

}  // namespace zel
