// Tools and their numbers.
#include "display/tools.h"

#include "display/tools_window.h"

namespace zel {
namespace {

constexpr int32_t PUBLIC_TOOLS[] = {0,
                                    WTOOL_POINT,
                                    WTOOL_LINE,
                                    WTOOL_RECT,
                                    WTOOL_OVAL,
                                    WTOOL_POLYGON,
                                    WTOOL_FREEHAND,
                                    WTOOL_POLYLINE,
                                    WTOOL_FREELINE,
                                    WTOOL_ZOOM};
constexpr int32_t NO_PUBLIC_TOOL = 7;
constexpr int32_t STANDARD_TOOLS[] = {WTOOL_POINT,    WTOOL_LINE,     WTOOL_RECT,
                                      WTOOL_OVAL,     WTOOL_POLYGON,  WTOOL_FREEHAND,
                                      WTOOL_POLYLINE, WTOOL_FREELINE, WTOOL_ZOOM};

}  // namespace

int32_t ToolFromPublic(int32_t tool) {
  for (int32_t internal = TOOL_NONE; internal <= TOOL_ZOOM; internal++) {
    if (PUBLIC_TOOLS[internal] == tool) return internal;
  }
  return TOOL_UNKNOWN;
}

int32_t ToolToPublic(int32_t tool) {
  return tool >= TOOL_NONE && tool <= TOOL_ZOOM ? PUBLIC_TOOLS[tool] : NO_PUBLIC_TOOL;
}

void ToolSelect(int32_t tool) {
  for (int32_t window = 0; window < SHARED_WINDOWS; window++) RecordOf(window).activeTool = tool;
  ToolsWindowSelect(tool);
}

int32_t ToolAtReset() {
  const int32_t selected = ToolsWindowSelected();
  return selected != TOOL_UNKNOWN ? selected : TOOL_POINT;
}

}  // namespace zel

const int32_t* ZEL_Get_WT_STDLIST(void) {
  return zel::STANDARD_TOOLS;
}
