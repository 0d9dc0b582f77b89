// Attributes: which command reads one and at which place, and which one sets it.
#include "display/window_attributes.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "display/commands.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr int32_t NO_MEMBER = -1;  // of a pair, and of what no command reads

struct AttributeRow {
  int32_t attribute;
  int32_t query;   // COMMAND_EVENT: read from the panel
  int32_t member;  // of the answer
};

// Pairs and single values have the horizontal value first in what commands answer and take.
constexpr AttributeRow ROWS[] = {
    {WATTR_VISIBLE, COMMAND_VISIBILITY, 0},
    {WATTR_LEFT, COMMAND_POSITION, 0},
    {WATTR_TOP, COMMAND_POSITION, 1},
    {WATTR_WIDTH, COMMAND_SIZE, 0},
    {WATTR_HEIGHT, COMMAND_SIZE, 1},
    {WATTR_SCROLLBARS, COMMAND_SIZE, 2},
    {WATTR_CENTRE_X, COMMAND_CENTRE, 0},
    {WATTR_CENTRE_Y, COMMAND_CENTRE, 1},
    {WATTR_ZOOM_X, COMMAND_ZOOMS, 0},
    {WATTR_ZOOM_Y, COMMAND_ZOOMS, 1},
    {WATTR_GRID_X, COMMAND_GRID, 0},
    {WATTR_GRID_Y, COMMAND_GRID, 1},
    {WATTR_TITLE, COMMAND_EVENT, NO_MEMBER},
    {WATTR_FLAG_571, COMMAND_EVENT, 0},
    {WATTR_FLAG_580, COMMAND_EVENT, 0},
    {WATTR_FLAG_581, COMMAND_EVENT, 0},
    {WATTR_FLAG_599, COMMAND_EVENT, 0},
    {WATTR_FLAG_600, COMMAND_EVENT, 0},
    {WATTR_FLAG_601, COMMAND_EVENT, 0},
    {WATTR_FLAG_615, COMMAND_EVENT, 0},
    {WATTR2_POSITION, COMMAND_POSITION, NO_MEMBER},
    {WATTR2_SIZE, COMMAND_SIZE, NO_MEMBER},
    {WATTR2_CENTRE, COMMAND_CENTRE, NO_MEMBER},
    {WATTR2_ZOOM, COMMAND_ZOOMS, NO_MEMBER},
    {WATTR2_GRID, COMMAND_GRID, NO_MEMBER},
};

const AttributeRow* RowOf(int32_t attribute) {
  const auto* end = std::end(ROWS);
  const auto* row = std::find_if(std::begin(ROWS), end, [attribute](const AttributeRow& one) {
    return one.attribute == attribute;
  });
  return row == end ? nullptr : row;
}

bool IsPair(int32_t attribute) {
  return attribute >= WATTR2_POSITION && attribute <= WATTR2_GRID;
}
bool IsOfPanel(const AttributeRow& row) {
  return row.query == COMMAND_EVENT;
}

constexpr int32_t ANSWER_ROOM = 3;

// A closed window has no panel, and stays closed.
Status PanelFind(int32_t window, int32_t* panel) {
  const Status status = DisplayEnsure();
  if (status != STATUS_OK) return status;
  if (!IsWindow(window)) return STATUS_BAD_WINDOW;
  *panel = display.bindings[window].panel;
  return STATUS_OK;
}

Status FlagSet(int32_t window, int32_t attribute, int32_t value) {
  int32_t panel = 0;
  const Status status = PanelFind(window, &panel);
  if (status == STATUS_OK && panel != 0) DesktopInUse().panelSet(panel, attribute, value);
  return status;
}

Status FlagGet(int32_t window, int32_t attribute, int32_t* value) {
  int32_t panel = 0;
  const Status status = PanelFind(window, &panel);
  if (status == STATUS_OK) *value = panel != 0 ? DesktopInUse().panelGet(panel, attribute) : 1;
  return status;
}

Status TitleSet(int32_t window, const char* title) {
  if (!title) return STATUS_NULL_POINTER;
  DisplayRequest request;
  request.window = window;
  request.command = COMMAND_DRAW;
  request.title = title;
  return DisplayDispatch(&request, {}, nullptr);
}

Status TitleGet(int32_t window, char* title) {
  int32_t panel = 0;
  const Status status = PanelFind(window, &panel);
  if (status != STATUS_OK) return status;
  const char* shown = panel != 0 ? DesktopInUse().panelTitle(panel) : "";
  std::memcpy(title, shown, std::strlen(shown) + 1);
  return STATUS_OK;
}

template <class... Values>
Status Command(int32_t window, int32_t command, Values... values) {
  const int32_t input[] = {values...};
  return DispatchInput(window, command, input, sizeof...(values));
}

// `present`: what the attribute's query answered before.
Status MemberSet(int32_t window, int32_t attribute, int32_t value,
                 const int32_t (&present)[ANSWER_ROOM]) {
  const auto [x, y, bars] = present;
  switch (attribute) {
    case WATTR_VISIBLE:
      return DispatchSimple(window, value != 0 ? COMMAND_SHOW : COMMAND_HIDE);
    case WATTR_LEFT:
      return Command(window, COMMAND_MOVE, value, y);
    case WATTR_TOP:
      return Command(window, COMMAND_MOVE, x, value);
    case WATTR_WIDTH:
      return Command(window, COMMAND_RESIZE, value, y);
    case WATTR_HEIGHT:
      return Command(window, COMMAND_RESIZE, x, value);
    case WATTR_SCROLLBARS:
      return Command(window, COMMAND_SCROLL_BARS_SET, value);
    case WATTR_CENTRE_X:  // kept: the window is centred on what it was centred on
      return Command(window, COMMAND_ZOOM, 0, 0, x, y);
    case WATTR_CENTRE_Y:  // kept: it sets both
      return Command(window, COMMAND_ZOOM, 0, 0, value, value);
    case WATTR_GRID_X:
      return Command(window, COMMAND_GRID_SET, value, y);
    default:  // WATTR_GRID_Y
      return Command(window, COMMAND_GRID_SET, x, value);
  }
}

Status ZoomsSet(int32_t window, int32_t x, int32_t y) {
  int32_t centre[ANSWER_ROOM] = {};
  const Status status = DispatchQuery(window, COMMAND_CENTRE, centre, ANSWER_ROOM);
  return status != STATUS_OK ? status : Command(window, COMMAND_ZOOM, x, y, centre[0], centre[1]);
}

Status PairSet(int32_t window, int32_t attribute, int32_t vertical, int32_t horizontal) {
  switch (attribute) {
    case WATTR2_POSITION:
      return Command(window, COMMAND_MOVE, horizontal, vertical);
    case WATTR2_SIZE:
      return Command(window, COMMAND_RESIZE, horizontal, vertical);
    case WATTR2_CENTRE:
      return Command(window, COMMAND_ZOOM, 0, 0, horizontal, vertical);
    case WATTR2_ZOOM:
      return ZoomsSet(window, horizontal, vertical);
    default:
      return Command(window, COMMAND_GRID_SET, horizontal, vertical);
  }
}

Status PairGet(int32_t window, int32_t attribute, int32_t* vertical, int32_t* horizontal) {
  if (!vertical || !horizontal) return STATUS_NULL_POINTER;
  if (!IsPair(attribute)) return STATUS_BAD_ATTRIBUTE;
  int32_t answer[ANSWER_ROOM] = {};
  const Status status = DispatchQuery(window, RowOf(attribute)->query, answer, ANSWER_ROOM);
  if (status != STATUS_OK) return status;
  *vertical = answer[1];
  *horizontal = answer[0];
  return STATUS_OK;
}

}  // namespace

Status AttributeSet(int32_t window, int32_t attribute, intptr_t value) {
  const AttributeRow* row = RowOf(attribute);
  if (!row) return STATUS_BAD_ATTRIBUTE;
  if (attribute == WATTR_TITLE) return TitleSet(window, reinterpret_cast<const char*>(value));
  const auto number = static_cast<int32_t>(value);
  if (IsOfPanel(*row)) return FlagSet(window, attribute, number);
  int32_t present[ANSWER_ROOM] = {};
  const Status status = DispatchQuery(window, row->query, present, ANSWER_ROOM);
  if (status != STATUS_OK) return status;
  if (IsPair(attribute)) return STATUS_BAD_ATTRIBUTE;
  if (attribute == WATTR_ZOOM_X) return ZoomsSet(window, number, 0);
  if (attribute == WATTR_ZOOM_Y) return ZoomsSet(window, 0, number);
  return MemberSet(window, attribute, number, present);
}

Status AttributeGet(int32_t window, int32_t attribute, void* value) {
  if (!value) return STATUS_NULL_POINTER;
  const AttributeRow* row = RowOf(attribute);
  if (!row || IsPair(attribute)) return STATUS_BAD_ATTRIBUTE;
  if (attribute == WATTR_TITLE) return TitleGet(window, static_cast<char*>(value));
  auto* number = static_cast<int32_t*>(value);
  if (IsOfPanel(*row)) return FlagGet(window, attribute, number);
  int32_t answer[ANSWER_ROOM] = {};
  const Status status = DispatchQuery(window, row->query, answer, ANSWER_ROOM);
  if (status != STATUS_OK) return status;
  const int32_t member = answer[row->member];
  *number = attribute == WATTR_VISIBLE ? (member != 0 ? 1 : 0) : member;
  return STATUS_OK;
}

}  // namespace zel

int32_t ZEL_SetWindowAttribute(int32_t window, int32_t attribute, intptr_t value) {
  return zel::FrameEnd("ZEL_SetWindowAttribute", zel::AttributeSet(window, attribute, value));
}

int32_t ZEL_GetWindowAttribute(int32_t window, int32_t attribute, void* value) {
  return ZEL_ProcessError("ZEL_GetWindowAttribute", zel::AttributeGet(window, attribute, value));
}

int32_t ZEL_SetWindow2DAttributes(int32_t window, int32_t attribute, int32_t vertical,
                                  int32_t horizontal) {
  const zel::Status status = zel::IsPair(attribute)
                                 ? zel::PairSet(window, attribute, vertical, horizontal)
                                 : zel::STATUS_BAD_ATTRIBUTE;
  return zel::FrameEnd("ZEL_SetWindow2DAttributes", status);
}

int32_t ZEL_GetWindow2DAttributes(int32_t window, int32_t attribute, int32_t* vertical,
                                  int32_t* horizontal) {
  return ZEL_ProcessError("ZEL_GetWindow2DAttributes",
                          zel::PairGet(window, attribute, vertical, horizontal));
}
