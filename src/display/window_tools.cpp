// The tools window, callbacks and events, for callers.
#include <algorithm>
#include <iterator>

#include "core/heap.h"
#include "display/commands.h"
#include "display/tools.h"
#include "display/window_attributes.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr int32_t EVENT_TYPES[] = {WEVENT_CLICK,  WEVENT_DRAW,     WEVENT_MOVE,  WEVENT_SIZE,
                                   WEVENT_SCROLL, WEVENT_ACTIVATE, WEVENT_CLOSE, WEVENT_BUTTON};

Status ToolsSetupCommand(int32_t showCoordinates, const int32_t* tools, int32_t toolCount,
                         int32_t toolsPerRow) {
  const int64_t count = tools ? std::max(toolCount, 0) : 0;
  WorkArray<int32_t> input;
  if (!input.Allocate(static_cast<uint64_t>(count) + 2)) return STATUS_MEMORY_FULL;
  input[0] = showCoordinates;
  input[1] = toolsPerRow;
  std::copy_n(tools, count, input.data() + 2);
  return DispatchInput(TOOLS_WINDOW, COMMAND_TOOLS_SETUP, input.data(), count + 2);
}

Status ToolsAttributeSet(int32_t attribute, intptr_t value) {
  constexpr int32_t settable[] = {WATTR_VISIBLE,  WATTR_LEFT,     WATTR_TOP,      WATTR_TITLE,
                                  WATTR_FLAG_571, WATTR_FLAG_581, WATTR_FLAG_601, WATTR_FLAG_615};
  const bool isSettable =
      std::find(std::begin(settable), std::end(settable), attribute) != std::end(settable);
  return isSettable ? AttributeSet(TOOLS_WINDOW, attribute, value) : STATUS_BAD_ATTRIBUTE;
}

Status ActiveToolGet(int32_t* tool) {
  if (!tool) return STATUS_NULL_POINTER;
  const Status status = DispatchSimple(0, COMMAND_TOOL);
  if (status == STATUS_OK) *tool = ToolToPublic(RecordOf(0).activeTool);
  return status;
}

Status CallbackInstall(int32_t window, WindowCallback callback, uintptr_t data) {
  const Status status = DisplayEnsure();
  if (status != STATUS_OK) return status;
  const bool isAll = window < 0;
  const int32_t first = isAll ? 0 : window;
  const int32_t end = isAll ? IMAGE_WINDOWS : std::min(window, WINDOW_COUNT) + 1;
  if (first >= WINDOW_COUNT) return STATUS_WINDOW_CLOSED;
  const auto isOpen = [](const WindowRecord& record) { return record.isOpen; };
  if (std::none_of(display.windows + first, display.windows + end, isOpen)) {
    return STATUS_WINDOW_CLOSED;
  }
  for (int32_t one = first; one < end; one++) {
    display.bindings[one].callback = callback;
    display.bindings[one].callbackData = data;
  }
  return STATUS_OK;
}

// Pumps, then takes an event by a command. Returns what the exports return.
int32_t EventTake(const char* name, DisplayRequest* request, WindowEvent* event) {
  if (!event) return ZEL_ProcessError(name, STATUS_NULL_POINTER);
  Status status = DisplayEnsure();
  if (status == STATUS_OK) EventsPump();
  EventRead read{};
  if (status == STATUS_OK) status = DisplayDispatch(request, {}, &read);
  if (status != STATUS_OK) return ZEL_ProcessError(name, status);
  *event = {};
  event->window = request->window;
  event->type = read.type;
  event->tool = read.tool;
  std::copy_n(read.integers, 4, event->integers);
  std::copy_n(read.floats, 4, event->floats);
  return read.type != WEVENT_NONE ? 1 : 0;
}

}  // namespace
}  // namespace zel

int32_t ZEL_WindToolsSetup(int32_t showCoordinates, const int32_t* tools, int32_t toolCount,
                           int32_t toolsPerRow) {
  return ZEL_ProcessError("ZEL_WindToolsSetup",
                          zel::ToolsSetupCommand(showCoordinates, tools, toolCount, toolsPerRow));
}

int32_t ZEL_SetWindToolsAttribute(int32_t attribute, intptr_t value) {
  return zel::FrameEnd("ZEL_SetWindToosAttribute", zel::ToolsAttributeSet(attribute, value));
}

int32_t ZEL_GetWindToolsAttribute(int32_t attribute, void* value) {
  return ZEL_ProcessError("ZEL_GetWindToolsAttribute",
                          zel::AttributeGet(zel::TOOLS_WINDOW, attribute, value));
}

int32_t ZEL_SetActiveTool(int32_t tool) {
  const zel::Status status = zel::DispatchInput(zel::TOOLS_WINDOW, zel::COMMAND_TOOL_SET, &tool, 1);
  return ZEL_ProcessError("ZEL_SetActiveTool", status);
}

int32_t ZEL_GetActiveTool(int32_t* tool) {
  return ZEL_ProcessError("ZEL_GetActiveTool", zel::ActiveToolGet(tool));
}

int32_t ZEL_WindToolsClose(void) {
  return ZEL_ProcessError("ZEL_WindToolsClose",
                          zel::DispatchSimple(zel::TOOLS_WINDOW, zel::COMMAND_CLOSE));
}

int32_t ZEL_InstallWCallback(int32_t window, WindowCallback callback, uintptr_t data) {
  return ZEL_ProcessError("ZEL_InstallWCallback", zel::CallbackInstall(window, callback, data));
}

int32_t ZEL_RemoveWCallback(int32_t window) {
  const int32_t first = std::max(window, 0);
  const int32_t last = window < 0 ? zel::IMAGE_WINDOWS - 1 : window;
  if (last >= zel::WINDOW_COUNT) return 0;
  for (int32_t one = first; one <= last; one++) {
    zel::display.bindings[one].callback = nullptr;
    zel::display.bindings[one].callbackData = 0;
  }
  return 0;
}

int32_t ZEL_GetLastEvent(WindowEvent* event) {
  zel::DisplayRequest request;
  request.command = zel::COMMAND_NEWEST_EVENT;
  request.input = zel::EVENT_TYPES;
  request.inputCount = std::size(zel::EVENT_TYPES);
  return zel::EventTake("ZEL_GetLastEvent", &request, event);
}

int32_t ZEL_GetLastWEvent(int32_t window, WindowEvent* event) {
  zel::DisplayRequest request;
  request.window = window;
  request.command = zel::COMMAND_EVENT;
  return zel::EventTake("ZEL_GetLastWEvent", &request, event);
}
