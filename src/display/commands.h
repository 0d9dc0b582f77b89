// The one place that all commands to windows pass.
#pragma once

#include <cstdint>

#include "display/window_events.h"
#include "display/window_records.h"

namespace zel {

// Commands above zero are decimal: each digit is an action, the largest place first.
enum DisplayCommand : int32_t {
  COMMAND_DRAW = 2,
  COMMAND_REGION_CLEAR = 3,
  COMMAND_ZOOM = 5,
  COMMAND_CLOSE = 9,
  COMMAND_SHOW = 10,
  COMMAND_SHOW_AND_DRAW = 12,
  COMMAND_HIDE = 20,
  COMMAND_RESIZE = 100,
  COMMAND_RESIZE_SHOW_AND_DRAW = 112,
  COMMAND_MOVE = 200,
  COMMAND_EVENT = 0,
  COMMAND_SHAPE = -1,
  COMMAND_POSITION = -2,
  COMMAND_SIZE = -3,
  COMMAND_VISIBILITY = -4,
  COMMAND_GRID = -5,
  COMMAND_GRID_SET = -6,
  COMMAND_SCROLL_BARS_SET = -9,
  COMMAND_RESTYLE = -10,
  COMMAND_ZOOMS = -11,
  COMMAND_CENTRE = -12,
  COMMAND_CLOSE_KIND = -19,
  COMMAND_TOOLS_SETUP = -20,
  COMMAND_TOOL_SET = -21,
  COMMAND_TOOL = -22,
  COMMAND_REGION = -30,
  COMMAND_REGION_SET = -31,
  COMMAND_COLOUR_SET = -33,
  COMMAND_PEN = -34,
  COMMAND_PEN_SET = -35,
  COMMAND_KEY = -36,
  COMMAND_BRUSH_SET = -37,
  COMMAND_BRUSH = -38,
  COMMAND_SCREEN = -39,
  COMMAND_VIEW = -40,
  COMMAND_SHADOW = -41,
  COMMAND_RECORD = -42,
  COMMAND_REGION_FORGET = -43,
  COMMAND_POINTER = -98,
  COMMAND_NEWEST_EVENT = -99,
  COMMAND_BACKGROUND = -100,
  COMMAND_BUTTONS = -101,
  COMMAND_STATES = -102,
  COMMAND_STATES_SET = -103,
};

struct DisplayRequest {
  int32_t window = 0;  // COMMAND_NEWEST_EVENT writes that of the event
  int32_t command = 0;
  ImageRef image = 0;
  const char* title = nullptr;  // null: kept
  const int32_t* input = nullptr;
  int64_t inputCount = 0;
  const uint32_t* palette = nullptr;  // 256 colours; null: kept
};

// Where an answer goes: nowhere, into a caller's array, or into a vector that takes its size.
struct DisplayOutput {
  int32_t* array = nullptr;
  int64_t room = 0;
  Handle vector = 0;

  // STATUS_MEMORY_ERROR for an array that is too small: nothing is written.
  Status Put(const int32_t* values, int64_t count) const;
};

// `event`: what a command for events answers besides its integers; null where nobody asks.
Status DisplayDispatch(DisplayRequest* request, const DisplayOutput& output, EventRead* event);

// Commands of the library's own exports: without arguments, with an array of integers that the
// command reads, with one that it fills, and with a vector that it reads or fills.
Status DispatchSimple(int32_t window, int32_t command);
Status DispatchInput(int32_t window, int32_t command, const int32_t* input, int64_t count);
Status DispatchQuery(int32_t window, int32_t command, int32_t* output, int64_t room);
Status DispatchVector(int32_t window, int32_t command, Handle vector);

// The end of an export that lets the desktop's events in: reports its status.
int32_t FrameEnd(const char* procedure, Status status);

}  // namespace zel
