// Commands to windows: first who serves them, then what each one does.
#include "display/commands.h"

#include <algorithm>
#include <iterator>

#include "core/heap.h"
#include "core/images.h"
#include "core/numbers.h"
#include "display/painting.h"
#include "display/panels.h"
#include "display/pens.h"
#include "display/tools_window.h"
#include "display/user_windows.h"
#include "display/view.h"
#include "display/window_regions.h"

namespace zel {
namespace {

bool IsOfKind(const DisplayRequest& request, int32_t kind) {
  return KindOf(request.window) == kind;
}

template <class... Values>
Status Answer(const DisplayOutput& output, Values... values) {
  const int32_t all[] = {static_cast<int32_t>(values)...};
  return output.Put(all, static_cast<int64_t>(std::size(all)));
}

// What the actions of a composite answer: the last answer stands.
struct DigitAnswer {
  int32_t values[3];
  int32_t count = -1;  // below 0: none yet
};

// ---- where windows are, and whether they are shown

DigitAnswer PositionOf(int32_t window) {
  const Desktop& desktop = DesktopInUse();
  const int32_t panel = display.bindings[window].panel;
  return {{desktop.panelGet(panel, PANEL_LEFT), desktop.panelGet(panel, PANEL_TOP)}, 2};
}

DigitAnswer VisibilityOf(int32_t window) {
  const Desktop& desktop = DesktopInUse();
  const int32_t panel = display.bindings[window].panel;
  if (desktop.panelGet(panel, PANEL_VISIBLE) == 0) return {{0}, 1};
  return {{desktop.active() == panel ? 2 : 1}, 1};
}

DigitAnswer SizeOf(int32_t window) {
  const WindowRecord& record = RecordOf(window);
  return {{record.panelWidth, record.panelHeight, record.hasScrollBars ? 1 : 0}, 3};
}

DigitAnswer Show(int32_t window, bool isShown) {
  DesktopInUse().panelSet(display.bindings[window].panel, PANEL_VISIBLE, isShown ? 1 : 0);
  return VisibilityOf(window);
}

DigitAnswer Activate(int32_t window) {
  DesktopInUse().activate(display.bindings[window].panel);
  return VisibilityOf(window);
}

DigitAnswer Move(const DisplayRequest& request) {
  const bool isGiven = request.inputCount >= 2;
  const int32_t left = isGiven ? request.input[0] : 20;
  const int32_t top = isGiven ? request.input[1] : 40;
  DesktopInUse().panelMove(display.bindings[request.window].panel, top, left);
  return PositionOf(request.window);
}

// ---- grid, scroll bars, zoom, size

void GridSet(WindowRecord* record, const DisplayRequest& request) {
  if (request.inputCount < 1) return;
  const int32_t x = request.input[0];
  const int32_t y = request.inputCount >= 2 ? request.input[1] : x;
  if (x >= 1) record->gridX = x;
  if (y >= 1) record->gridY = y;
}

Status GridSetAll(const DisplayRequest& request, const DisplayOutput& output) {
  for (int32_t window = 0; window < SHARED_WINDOWS; window++) GridSet(&RecordOf(window), request);
  return Answer(output, RecordOf(0).gridX, RecordOf(0).gridY);
}

Status ScrollBarsSet(const DisplayRequest& request, const DisplayOutput& output) {
  WindowRecord& record = RecordOf(request.window);
  const bool isWanted = request.inputCount >= 1 ? request.input[0] != 0 : record.hasScrollBars;
  if (isWanted != record.hasScrollBars) {
    record.hasScrollBars = isWanted;
    const int32_t change = isWanted ? SCROLL_BAR_SIZE : -SCROLL_BAR_SIZE;
    PanelResize(request.window, SumSaturated(record.panelWidth, change),
                SumSaturated(record.panelHeight, change));
  }
  const DigitAnswer size = SizeOf(request.window);
  return output.Put(size.values, size.count);
}

void Zoom(const DisplayRequest& request) {
  if (request.inputCount < 3) return;
  const bool isOne = request.inputCount == 3;
  const int32_t* centre = request.input + (isOne ? 1 : 2);
  WindowRecord& record = RecordOf(request.window);
  const bool changedX = ZoomSet(request.input[0], &record.zoomX, &record.zoomFactorX);
  const bool changedY = ZoomSet(request.input[isOne ? 0 : 1], &record.zoomY, &record.zoomFactorY);
  const bool moved = CentreOn(&record, centre[0], centre[1]);
  if (changedX || changedY || moved) WindowMarkDirty(request.window);
}

void ResizeToImage(const DisplayRequest& request) {
  Image* image = nullptr;
  if (ImageLookup(request.image, &image) != STATUS_OK) return;
  WindowRecord& record = RecordOf(request.window);
  const bool isZoomed = IsOfKind(request, WINDOW_IMAGE);
  const auto size = [isZoomed](int32_t pixels, float factor) -> int64_t {
    return isZoomed ? CutLow<int64_t>(static_cast<float>(pixels) * factor) : pixels;
  };
  record.originX = record.originY = 0;
  CanvasResize(request.window, size(image->width, record.zoomFactorX),
               size(image->height, record.zoomFactorY));
}

void Resize(const DisplayRequest& request) {
  if (request.inputCount == 0) {
    ResizeToImage(request);
  } else if (request.inputCount == 2 && request.input[0] != 0 && request.input[1] != 0) {
    CanvasResize(request.window, request.input[0], request.input[1]);
  }
}

// ---- drawing

// Puts a point of the image into the middle.
void PointCentre(WindowRecord* record, int32_t x, int32_t y) {
  const View view = ViewCompute(record);
  record->originX = std::max(x + (view.image.left - view.image.right) / 2, 0);
  record->originY = std::max(y + (view.image.top - view.image.bottom) / 2, 0);
}

bool IsPart(const DisplayRequest& request) {
  const int32_t* in = request.input;
  return request.inputCount == 4 && in[0] >= 0 && in[1] >= 0 && in[2] >= in[0] && in[3] >= in[1];
}

void Draw(const DisplayRequest& request) {
  WindowRecord& record = RecordOf(request.window);
  if (request.image != 0) record.image = request.image;
  const int32_t* in = request.input;
  const bool isPoint = request.inputCount == 2 && in[0] >= 0 && in[1] >= 0 &&
                       in[0] < record.imageWidth && in[1] < record.imageHeight;
  if (isPoint) PointCentre(&record, in[0], in[1]);
  WindowMarkDirty(request.window);
  // A part is painted with the window when the queue runs next.
  if (!IsPart(request)) RepaintRun();
}

void PaletteAndDraw(const DisplayRequest& request) {
  if (IsOfKind(request, WINDOW_TOOLS)) return;
  if (request.palette) {
    std::copy_n(request.palette, PALETTE_ENTRIES, RecordOf(request.window).palette);
  }
  if (!display.isTracking) Draw(request);
}

// ---- composites

void DigitRun(const DisplayRequest& request, int32_t action, DigitAnswer* answer) {
  const int32_t window = request.window;
  switch (action) {
    case 100:
      return Resize(request);
    case 200:
      *answer = Move(request);
      return;
    case 400:
      return GridSet(&RecordOf(window), request);
    case 10:
    case 20:
      *answer = Show(window, action == 10);
      return;
    case 30:
      *answer = Activate(window);
      return;
    case 1:
      *answer = {{}, 0};
      return;
    case 2:
      return PaletteAndDraw(request);
    case 3:
      return RegionErase(window);
    case 5:
      return Zoom(request);
    case 9:
      return WindowClose(window);
    default:  // without an action, and 70, whose text nothing reads
      return;
  }
}

Status CompositeRun(const DisplayRequest& request, const DisplayOutput& output) {
  const int32_t command = request.command;
  if (request.title && command != 70 && command != 72) {
    DesktopInUse().panelSetTitle(display.bindings[request.window].panel, request.title);
  }
  if (IsOfKind(request, WINDOW_IMAGE)) {
    const int32_t tool = command / 1000 % 10;
    if (command / 10000 % 10 == 1) RecordOf(request.window).activeTool = TOOL_ZOOM;
    if (tool != 0) RecordOf(request.window).activeTool = tool - 1;
  }
  DigitAnswer answer;
  for (const int32_t place : {100, 10, 1}) {
    const int32_t digit = command / place % 10;
    if (digit != 0) DigitRun(request, digit * place, &answer);
  }
  return answer.count < 0 ? STATUS_OK : output.Put(answer.values, answer.count);
}

// ---- events and shapes

Status EventAnswer(int32_t window, const DisplayOutput& output, EventRead* event) {
  const EventRead read = EventPending(RecordOf(window));
  const Status status = output.Put(read.integers, read.type == WEVENT_NONE ? 0 : 4);
  if (status == STATUS_OK && event) *event = read;
  return status;
}

Status EventTake(const DisplayRequest& request, const DisplayOutput& output, EventRead* event) {
  const Status status = EventAnswer(request.window, output, event);
  if (status == STATUS_OK) RecordOf(request.window).lastEvent = EVENT_NONE;
  return status;
}

Status NewestEventTake(DisplayRequest* request, const DisplayOutput& output, EventRead* event) {
  const int32_t window = EventNewest(request->input, request->inputCount);
  if (event) *event = {};
  if (window < 0) return output.Put(nullptr, 0);
  const Status status = EventAnswer(window, output, event);
  if (status != STATUS_OK) return status;
  EventsForget(request->input, request->inputCount);
  request->window = window;
  return STATUS_OK;
}

Status ShapeAnswer(int32_t window, const DisplayOutput& output) {
  int32_t numbers[SHAPE_NUMBERS];
  const int32_t count = ShapeNumbers(RecordOf(window), numbers);
  return output.Put(numbers, count);
}

Status RestyleRun(const DisplayRequest& request) {
  constexpr int32_t bits[] = {16, 8, 4, 2};
  int32_t style = request.inputCount < 4 ? STYLE_DEFAULT : 0;
  for (int32_t i = 0; i < 4 && style != STYLE_DEFAULT; i++) {
    if (request.input[i] != 0) style |= bits[i];
  }
  return WindowRestyle(request.window, style);
}

// ---- single actions

Status KindClose(const DisplayRequest& request) {
  for (int32_t window = 0; window < WINDOW_COUNT; window++) {
    if (KindOf(window) == KindOf(request.window)) WindowClose(window);
  }
  return STATUS_OK;
}

Status ToolsSetupRun(const DisplayRequest& request) {
  if (request.window != TOOLS_WINDOW) return STATUS_OK;
  const auto at = [&](int64_t i) { return i < request.inputCount ? request.input[i] : 0; };
  ToolsSetup setup{at(0) != 0, at(1), nullptr, 0};
  if (request.inputCount > 2) {
    setup.tools = request.input + 2;
    setup.toolCount = request.inputCount - 2;
  }
  return ToolsWindowSetup(setup);
}

Status RegionAnswer(const DisplayRequest& request, const DisplayOutput& output) {
  if (output.vector != 0) return RegionRead(RecordOf(request.window), output.vector);
  ScopedVector flat;
  Status status = flat.Create();
  if (status == STATUS_OK) status = RegionRead(RecordOf(request.window), flat.handle());
  if (status != STATUS_OK) return status;
  uint32_t count = 0;
  VectorCount(flat.handle(), &count);
  return output.Put(VectorData<int32_t>(flat.handle()), count);
}

Status RegionTake(const DisplayRequest& request) {
  if (request.inputCount < 1) return RegionWrite(request.window, 0);
  ScopedWrap flat;
  const Status status = flat.Create(const_cast<int32_t*>(request.input), sizeof(int32_t),
                                    static_cast<uint32_t>(request.inputCount), 0, 0);
  return status != STATUS_OK ? status : RegionWrite(request.window, flat.handle());
}

Status KeyAnswer(const DisplayOutput& output) {
  KeyRecord& key = display.key;
  const Status status = Answer(output, key.window, key.isNew, key.key, key.modifiers, key.tick);
  if (status == STATUS_OK) key.isNew = 0;
  return status;
}

Status ScreenAnswer(const DisplayOutput& output) {
  int32_t width = 0;
  int32_t height = 0;
  DesktopInUse().screen(&width, &height);
  return Answer(output, width, height, 1, 1);
}

Status ViewAnswer(int32_t window, const DisplayOutput& output) {
  const View view = ViewCompute(&RecordOf(window));
  int32_t values[12];
  int32_t* to = values;
  for (const KernelRect& rect : {view.image, view.canvas, view.clip}) {
    for (const int32_t side : {rect.left, rect.top, rect.right, rect.bottom}) *to++ = side;
  }
  return output.Put(values, 12);
}

// The low word, and the high one where there is room for it.
Status RecordAnswer(int32_t window, const DisplayOutput& output) {
  const auto address = reinterpret_cast<uintptr_t>(&RecordOf(window));
  const int32_t words[] = {static_cast<int32_t>(address & UINT32_MAX),
                           static_cast<int32_t>(uint64_t{address} >> 32)};
  return output.Put(words, output.array && output.room == 1 ? 1 : 2);
}

Status StatesAnswer(const DisplayRequest& request, const DisplayOutput& output) {
  const Buttons list = ButtonsOf(RecordOf(request.window));
  WorkArray<int32_t> states;
  if (!states.Allocate(static_cast<uint64_t>(list.count))) return STATUS_MEMORY_FULL;
  for (int64_t i = 0; i < list.count; i++) {
    const ImageButton& button = list.buttons[i];
    states[static_cast<size_t>(i)] = button.kind == BUTTON_TOGGLE ? button.state : 0;
  }
  return output.Put(states.data(), list.count);
}

Status StatesSet(const DisplayRequest& request, const DisplayOutput& output) {
  const int64_t count = std::min(ButtonsOf(RecordOf(request.window)).count, request.inputCount);
  for (int64_t i = 0; i < count; i++) {
    ButtonStateSet(request.window, i, request.input[i] != 0 ? 1 : 0);
  }
  return StatesAnswer(request, output);
}

Status UserWindowRun(const DisplayRequest& request, const DisplayOutput& output) {
  if (!IsOfKind(request, WINDOW_USER)) return STATUS_OK;
  switch (request.command) {
    case COMMAND_BACKGROUND:
      return BackgroundLoad(request.window, request.image);
    case COMMAND_BUTTONS:
      return ButtonsLoad(request.window, request.image, request.input, request.inputCount);
    case COMMAND_STATES:
      return StatesAnswer(request, output);
    default:
      return StatesSet(request, output);
  }
}

Status DigitQuery(const DigitAnswer& answer, const DisplayOutput& output) {
  return output.Put(answer.values, answer.count);
}

// Commands that answer, and change nothing.
Status QueryRun(const DisplayRequest& request, const DisplayOutput& output) {
  WindowRecord& record = RecordOf(request.window);
  switch (request.command) {
    case COMMAND_POSITION:
      return DigitQuery(PositionOf(request.window), output);
    case COMMAND_SIZE:
      return DigitQuery(SizeOf(request.window), output);
    case COMMAND_VISIBILITY:
      return DigitQuery(VisibilityOf(request.window), output);
    case COMMAND_GRID:
      return Answer(output, RecordOf(0).gridX, RecordOf(0).gridY);
    case COMMAND_ZOOMS:
      return Answer(output, record.zoomX, record.zoomY);
    case COMMAND_CENTRE: {
      const PointInt centre = CentreOf(&record);
      return Answer(output, centre.x, centre.y);
    }
    case COMMAND_REGION:
      return RegionAnswer(request, output);
    case COMMAND_PEN:
      return PenAnswer(output);
    case COMMAND_KEY:
      return KeyAnswer(output);
    case COMMAND_BRUSH:
      return BrushAnswer(output);
    case COMMAND_SCREEN:
      return ScreenAnswer(output);
    case COMMAND_VIEW:
      return ViewAnswer(request.window, output);
    case COMMAND_SHADOW:
      return Answer(output, record.shadow);
    case COMMAND_RECORD:
      return RecordAnswer(request.window, output);
    case COMMAND_POINTER:
      return Answer(output, display.mouseWindow, display.mouseX, display.mouseY);
    default:  // COMMAND_TOOL answers beside the output, and unknown ones do nothing
      return STATUS_OK;
  }
}

Status ActionRun(const DisplayRequest& request, const DisplayOutput& output) {
  switch (request.command) {
    case COMMAND_GRID_SET:
      return GridSetAll(request, output);
    case COMMAND_SCROLL_BARS_SET:
      return ScrollBarsSet(request, output);
    case COMMAND_CLOSE_KIND:
      return KindClose(request);
    case COMMAND_TOOLS_SETUP:
      return ToolsSetupRun(request);
    case COMMAND_TOOL_SET:
      if (request.inputCount >= 1) ToolSelect(ToolFromPublic(request.input[0]));
      return STATUS_OK;
    case COMMAND_REGION_SET:
      return RegionTake(request);
    case COMMAND_REGION_FORGET:
      RegionForget(&RecordOf(request.window));
      return STATUS_OK;
    case COMMAND_COLOUR_SET:
      ShapeColourSet(request.input, request.inputCount);
      return STATUS_OK;
    case COMMAND_PEN_SET:
      PenSet(request.input, request.inputCount);
      return STATUS_OK;
    case COMMAND_BRUSH_SET:
      return BrushSet(request.input, request.inputCount);
    case COMMAND_BACKGROUND:
    case COMMAND_BUTTONS:
    case COMMAND_STATES:
    case COMMAND_STATES_SET:
      return UserWindowRun(request, output);
    default:
      return QueryRun(request, output);
  }
}

bool IsForClosedToo(int32_t command) {
  return command == COMMAND_NEWEST_EVENT || command == COMMAND_POINTER ||
         command == COMMAND_RESTYLE || command == COMMAND_SHAPE || command == COMMAND_EVENT;
}

Status ClosedTooRun(DisplayRequest* request, const DisplayOutput& output, EventRead* event) {
  switch (request->command) {
    case COMMAND_NEWEST_EVENT:
      return NewestEventTake(request, output, event);
    case COMMAND_POINTER:
      return QueryRun(*request, output);
    case COMMAND_RESTYLE:
      return RestyleRun(*request);
    case COMMAND_SHAPE:
      return ShapeAnswer(request->window, output);
    default:
      return EventTake(*request, output, event);
  }
}

}  // namespace

Status DisplayOutput::Put(const int32_t* values, int64_t count) const {
  if (vector != 0) {
    const Status status = VectorResize(vector, sizeof(int32_t), static_cast<uint64_t>(count));
    if (status == STATUS_OK) std::copy_n(values, count, VectorData<int32_t>(vector));
    return status;
  }
  if (!array) return STATUS_OK;
  if (count > room) return STATUS_MEMORY_ERROR;
  std::copy_n(values, count, array);
  return STATUS_OK;
}

Status DisplayDispatch(DisplayRequest* request, const DisplayOutput& output, EventRead* event) {
  Status status = DisplayEnsure();
  if (status != STATUS_OK) return status;
  if (!IsWindow(request->window)) return STATUS_BAD_WINDOW;
  if (IsForClosedToo(request->command)) return ClosedTooRun(request, output, event);
  if (!RecordOf(request->window).isOpen) {
    status = WindowOpen(request->window, STYLE_DEFAULT);
    if (status != STATUS_OK) return status;
  }
  return request->command > 0 ? CompositeRun(*request, output) : ActionRun(*request, output);
}

Status DispatchSimple(int32_t window, int32_t command) {
  return DispatchInput(window, command, nullptr, 0);
}

Status DispatchInput(int32_t window, int32_t command, const int32_t* input, int64_t count) {
  DisplayRequest request;
  request.window = window;
  request.command = command;
  request.input = input;
  request.inputCount = count;
  return DisplayDispatch(&request, {}, nullptr);
}

Status DispatchQuery(int32_t window, int32_t command, int32_t* output, int64_t room) {
  DisplayRequest request;
  request.window = window;
  request.command = command;
  return DisplayDispatch(&request, {output, room, 0}, nullptr);
}

Status DispatchVector(int32_t window, int32_t command, Handle vector) {
  uint32_t count = 0;
  VectorCount(vector, &count);
  DisplayRequest request;
  request.window = window;
  request.command = command;
  request.input = VectorData<int32_t>(vector);
  request.inputCount = count;
  return DisplayDispatch(&request, {nullptr, 0, vector}, nullptr);
}

int32_t FrameEnd(const char* procedure, Status status) {
  if (display.isInitialised && display.ready == STATUS_OK) EventsPump();
  return ZEL_ProcessError(procedure, status);
}

}  // namespace zel
