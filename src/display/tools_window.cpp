// The layout of the tools window, its selection, and the box of coordinates.
#include "display/tools_window.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "core/images.h"
#include "core/numbers.h"
#include "display/measures.h"
#include "display/panels.h"
#include "display/tool_icons.h"

namespace zel {
namespace {

constexpr int32_t CELL = 24;
constexpr int32_t MARGIN = 3;           // before the first cell
constexpr int32_t FRAME = 5;            // what the cells leave of the window, both sides together
constexpr int32_t ICON = 23;            // inside a cell's lines
constexpr int32_t MOST_PER_ROW = 1365;  // cells that a width of 15 bits has room for
constexpr int32_t BOX_WIDTH = 48;
constexpr int32_t BOX_HEIGHT = 137;
constexpr int32_t FIELD = 12;
constexpr int32_t LABEL_WIDTH = 12;
constexpr int32_t TYPE_CELL = 0;  // in the place of a tool: the icon of the image type
constexpr uint32_t BLACK = 0;
constexpr uint32_t WHITE = 0xFFFFFF;

struct ToolCell {
  int32_t tool;  // internal number, or TYPE_CELL
  int32_t column, row;
};

struct Cells {
  const ToolCell* cells;
  int64_t count;
};
Cells CellsNow() {
  uint32_t count = 0;
  if (display.tools.cells == 0 || VectorCount(display.tools.cells, &count) != STATUS_OK) return {};
  return {VectorData<ToolCell>(display.tools.cells), count};
}

bool IsChoosable(int32_t publicTool) {
  return publicTool != WTOOL_NONE && ToolFromPublic(publicTool) != TOOL_UNKNOWN;
}

// Cells of a setup: of each valid tool, then of the type.
Status CellsMake(const ToolsSetup& setup, Handle cells, int32_t* perRow, int64_t* rows) {
  const int64_t valid = std::count_if(setup.tools, setup.tools + setup.toolCount, &IsChoosable);
  const int64_t count = valid + 1;
  const Status status = VectorResize(cells, sizeof(ToolCell), static_cast<uint64_t>(count));
  if (status != STATUS_OK) return status;
  const int64_t wanted = setup.toolsPerRow < 1 ? count : setup.toolsPerRow;
  *perRow = static_cast<int32_t>(std::min<int64_t>(wanted, MOST_PER_ROW));
  *rows = (count + *perRow - 1) / *perRow;
  auto* cell = VectorData<ToolCell>(cells);
  int64_t at = 0;
  const auto add = [&](int32_t tool) {
    *cell++ = {tool, static_cast<int32_t>(at % *perRow), static_cast<int32_t>(at / *perRow)};
    at++;
  };
  for (int64_t i = 0; i < setup.toolCount; i++) {
    if (IsChoosable(setup.tools[i])) add(ToolFromPublic(setup.tools[i]));
  }
  add(TYPE_CELL);
  return STATUS_OK;
}

int32_t IconOf(const ToolCell& cell) {
  if (cell.tool != TYPE_CELL) return ToolToPublic(cell.tool);
  const int32_t type = display.tools.shownType;
  return type >= IMAGE_U8 && type <= IMAGE_RGB ? TYPE_ICON + type : NO_TYPE_ICON;
}

// Draws a cell's icon into the window's image.
void IconDraw(const PixelView& pixels, const ToolCell& cell) {
  const bool isType = cell.tool == TYPE_CELL;
  const int32_t side = isType ? TYPE_ICON_ROWS : TOOL_ICON_ROWS;
  const int32_t left = cell.column * CELL + (isType ? MARGIN : MARGIN - 1);
  const int64_t top = int64_t{cell.row} * CELL + (isType ? MARGIN : MARGIN - 1);
  const uint32_t* icon = TOOL_ICONS[IconOf(cell)];
  for (int32_t y = 0; y < side && top + y < pixels.height; y++) {
    auto* row = pixels.Row<uint32_t>(top + y);
    for (int32_t x = 0; x < side && left + x < pixels.width; x++) {
      row[left + x] = (icon[y] >> (31 - x) & 1) != 0 ? BLACK : WHITE;
    }
  }
}

void IconsDraw() {
  Image* image = nullptr;
  if (ImageLookup(RecordOf(TOOLS_WINDOW).ownImage, &image) != STATUS_OK) return;
  const auto [cells, count] = CellsNow();
  for (int64_t i = 0; i < count; i++) IconDraw(ViewOf(*image), cells[i]);
}

// ---- the selection

// Turns the selected icon over, or back.
void SelectionInvert() {
  const auto [cells, count] = CellsNow();
  if (display.tools.selected < 1 || display.tools.selected > count) return;
  const ToolCell& cell = cells[display.tools.selected - 1];
  const KernelRect& canvas = RecordOf(TOOLS_WINDOW).canvasRect;
  const int32_t left = canvas.left + MARGIN + cell.column * CELL;
  const int32_t top = canvas.top + MARGIN + cell.row * CELL;
  DesktopInUse().invert(display.bindings[TOOLS_WINDOW].canvas, {top, left, ICON, ICON});
}

void SelectionMove(int64_t cell) {
  const Desktop& desktop = DesktopInUse();
  const int32_t canvas = display.bindings[TOOLS_WINDOW].canvas;
  desktop.beginBatch(canvas);
  SelectionInvert();
  display.tools.selected = static_cast<int32_t>(cell + 1);
  SelectionInvert();
  desktop.endBatch(canvas);
}

int64_t CellOf(int32_t tool) {
  const auto [cells, count] = CellsNow();
  for (int64_t i = 0; i < count; i++) {
    if (cells[i].tool == tool && tool != TYPE_CELL) return i;
  }
  return -1;
}

// ---- the box of coordinates

constexpr size_t FIELD_LETTERS = 6;  // of a value

enum BoxHeight : int32_t { BOX_OF_POINTER = 47, BOX_OF_SHAPE = 107, BOX_OF_LINE = 137 };

class BoxPainter {
 public:
  explicit BoxPainter(int32_t height)
      : left_(RecordOf(TOOLS_WINDOW).canvasRect.left),
        top_(RecordOf(TOOLS_WINDOW).canvasRect.top + display.tools.coordinatesTop),
        box_{left_, top_, left_ + BOX_WIDTH, top_ + height} {
    const KernelRect all{left_, top_, left_ + BOX_WIDTH, top_ + BOX_HEIGHT};
    CanvasPainter(TOOLS_WINDOW, PenOfColour(WHITE), all).Rect(all, ShapeFill::FILL);
    CanvasPainter(TOOLS_WINDOW, PenOfColour(BLACK), all).Rect(box_, ShapeFill::FRAME);
  }

  void Field(const char* label, double value) {
    char text[32];
    // With as many digits as there is room for.
    int32_t digits = 6;
    do {
      std::snprintf(text, sizeof(text), "%.*g", digits, value);
      digits--;
    } while (digits > 0 && std::strlen(text) > FIELD_LETTERS);
    const int32_t top = top_ + 3 + FIELD * fields_++;
    const int32_t middle = left_ + 2 + LABEL_WIDTH;
    const CanvasPainter painter(TOOLS_WINDOW, PenOfColour(BLACK), box_);
    painter.Text(label, {left_ + 2, top, middle, top + FIELD}, TextAlignment::LEFT);
    painter.Text(text, {middle, top, box_.right - 2, top + FIELD}, TextAlignment::RIGHT);
  }

 private:
  int32_t left_, top_;
  KernelRect box_;
  int32_t fields_ = 0;
};

void CoordinatesPaint() {
  const CoordinatesBox& box = display.tools.box;
  if (!display.tools.showsCoordinates) return;
  const bool isLine = box.shape == TOOL_LINE;
  const bool isShape = box.shape > TOOL_POINT;
  BoxPainter painter(isLine ? BOX_OF_LINE : isShape ? BOX_OF_SHAPE : BOX_OF_POINTER);
  painter.Field("v", box.value);
  painter.Field("x", box.at.x);
  painter.Field("y", box.at.y);
  if (!isShape) return;
  painter.Field("x0", box.start.x);
  painter.Field("y0", box.start.y);
  painter.Field("w", std::abs(double(box.at.x) - box.start.x));
  painter.Field("h", std::abs(double(box.at.y) - box.start.y));
  if (!isLine) return;
  const LineMeasures measures = MeasuresOf(box.start, box.at);
  painter.Field("l", measures.length);
  painter.Field("a", measures.angle);
}

}  // namespace

Status ToolsWindowSetup(const ToolsSetup& setup) {
  ToolsSetup asked = setup;
  if (asked.toolCount < 1) {
    asked.tools = ZEL_Get_WT_STDLIST();
    asked.toolCount = 9;
  }
  Handle cells = 0;
  Status status = VectorNew(&cells);
  if (status != STATUS_OK) return status;
  int32_t perRow = 0;
  int64_t rows = 0;
  status = CellsMake(asked, cells, &perRow, &rows);
  const int32_t boxHeight = asked.showsCoordinates ? BOX_HEIGHT : 0;
  int32_t width = perRow * CELL + FRAME;
  if (asked.showsCoordinates) width = std::max(width, BOX_WIDTH);
  const int64_t height = rows * CELL + FRAME + boxHeight;
  if (status == STATUS_OK && height > INT32_MAX) status = STATUS_MEMORY_FULL;
  if (status == STATUS_OK) {
    status = OwnImageResize(TOOLS_WINDOW, width, static_cast<int32_t>(height));
  }
  if (status != STATUS_OK) {
    VectorFree(cells);
    return status;
  }
  ToolsWindowForget();
  WindowRecord& record = RecordOf(TOOLS_WINDOW);
  record.image = record.ownImage;
  display.tools.cells = cells;
  display.tools.showsCoordinates = asked.showsCoordinates;
  display.tools.coordinatesTop = static_cast<int32_t>(height) - boxHeight;
  display.tools.shownType = NO_TYPE;
  display.tools.selected = static_cast<int32_t>(CellOf(RecordOf(0).activeTool) + 1);
  IconsDraw();
  record.imageWidth = width;
  record.imageHeight = static_cast<int32_t>(height);
  record.originX = record.originY = 0;
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  PanelResize(TOOLS_WINDOW, width + bar, SumSaturated(record.imageHeight, bar));
  return STATUS_OK;
}

void ToolsWindowSelect(int32_t tool) {
  const int64_t cell = CellOf(tool);
  if (RecordOf(TOOLS_WINDOW).isOpen && cell >= 0) SelectionMove(cell);
}

int32_t ToolsWindowSelected() {
  const auto [cells, count] = CellsNow();
  const int32_t selected = display.tools.selected;
  return selected >= 1 && selected <= count ? cells[selected - 1].tool : int32_t{TOOL_UNKNOWN};
}

void ToolsWindowForget() {
  if (display.tools.cells != 0) VectorFree(display.tools.cells);
  display.tools = {};
  display.tools.shownType = NO_TYPE;
}

void ToolsWindowPaint() {
  SelectionInvert();
  CoordinatesPaint();
}

void ToolsWindowPress(int32_t x, int32_t y) {
  const Desktop& desktop = DesktopInUse();
  const KernelRect& canvas = RecordOf(TOOLS_WINDOW).canvasRect;
  const int64_t fromLeft = int64_t{x} - canvas.left - MARGIN;
  const int64_t fromTop = int64_t{y} - canvas.top - MARGIN;
  const auto [cells, count] = CellsNow();
  const int64_t column = fromLeft / CELL;
  const int64_t row = fromTop / CELL;
  int64_t chosen = -1;
  for (int64_t i = 0; i < count && fromLeft >= 0 && fromTop >= 0; i++) {
    const bool isHere = cells[i].column == column && cells[i].row == row;
    if (isHere && cells[i].tool != TYPE_CELL) chosen = i;
  }
  if (chosen < 0) {
    desktop.beep();
    return;
  }
  const int32_t tool = cells[chosen].tool;
  for (int32_t window = 0; window < SHARED_WINDOWS; window++) RecordOf(window).activeTool = tool;
  SelectionMove(chosen);
}

void CoordinatesShow(int32_t window, PointInt at, const Shape* shape) {
  if (!RecordOf(TOOLS_WINDOW).isOpen || display.tools.cells == 0) return;
  const WindowRecord& record = RecordOf(window);
  CoordinatesBox& box = display.tools.box;
  box.at = at;
  box.shape = shape ? shape->tool : int32_t{TOOL_NONE};
  box.start = shape && shape->count > 0 ? shape->points[0] : at;
  box.value = PixelOf(record, at).values[0];
  if (display.tools.shownType != record.imageType) {
    display.tools.shownType = record.imageType;
    IconsDraw();
    WindowMarkDirty(TOOLS_WINDOW);
    return;
  }
  CoordinatesPaint();
}

}  // namespace zel
