// Windows, tools and events.
#include <array>
#include <iterator>

#include "harness/session/whole_session.h"

namespace test {
namespace {

constexpr int32_t SHOWN = 3;
constexpr int32_t RECT[] = {4, 5, 20, 18, ROI_MARKER_EXTERNAL, ROI_RECT, 4, 5, 20, 18};
constexpr int32_t CHAIN[] = {1, 1, 9, 9, ROI_MARKER_EXTERNAL, ROI_POLYLINE, 1, 1, 8, 3, 5, 8};

int32_t SetRegion(Session&) {
  int32_t result = 0;
  for (const auto& [values, count] : {std::pair{RECT, std::size(RECT)},  //
                                      std::pair{CHAIN, std::size(CHAIN)}}) {
    RoiDescriptor* region = nullptr;
    result = ZEL_ArrayToROI(values, static_cast<int32_t>(count), &region);
    if (result == 0) result = ZEL_SetWROI(SHOWN, region);
    ZEL_FreeROI(region);
    if (result != 0) break;
  }
  return result;
}

int32_t GetRegion(Session& s) {
  RoiDescriptor* region = nullptr;
  const int32_t result = ZEL_GetWROI(SHOWN, &region);
  if (region) {
    s.Out(region->globalRect);
    s.Out(region->contourCount);
  }
  ZEL_FreeROI(region);
  return result;
}

template <class... Arguments>
int32_t Manage(Session& s, int32_t window, int32_t command, Arguments... arguments) {
  const std::array<int32_t, sizeof...(arguments)> input{arguments...};
  std::array<int32_t, 16> output{};
  const int32_t result =
      ZEL_DisplayManager(&window, command, input.data(), sizeof...(arguments), output.data(), 16);
  s.Out(output);
  return result;
}

void Forget(WindowEvent*, uintptr_t) {}

constexpr Step ROWS[] = {
    {"ZEL_WindDraw", [](Session& s) { return ZEL_WindDraw(s.i16, SHOWN, "shown", 1); }},
    {"ZEL_WindDraw", [](Session& s) { return ZEL_WindDraw(s.rgb, 4, nullptr, 0); }},
    {"ZEL_WSetPalette", [](Session&) { return ZEL_WSetPalette(SHOWN, PALETTE_RAINBOW, nullptr); }},
    {"ZEL_SetWindowAttribute",
     [](Session&) { return ZEL_SetWindowAttribute(SHOWN, WATTR_SCROLLBARS, 1); }},
    {"ZEL_SetWindow2DAttributes",
     [](Session&) { return ZEL_SetWindow2DAttributes(SHOWN, WATTR2_ZOOM, 4, 3); }},
    {"ZEL_GetWindowAttribute",
     [](Session& s) {
       int32_t width = 0;
       const int32_t result = ZEL_GetWindowAttribute(SHOWN, WATTR_WIDTH, &width);
       s.Out(width);
       return result;
     }},
    {"ZEL_GetWindow2DAttributes",
     [](Session& s) {
       int32_t vertical = 0;
       int32_t horizontal = 0;
       const int32_t result = ZEL_GetWindow2DAttributes(SHOWN, WATTR2_ZOOM, &vertical, &horizontal);
       s.Out(vertical);
       s.Out(horizontal);
       return result;
     }},
    {"ZEL_DisplayManager", [](Session& s) { return Manage(s, SHOWN, -40); }},
    {"ZEL_DisplayManager", [](Session& s) { return Manage(s, SHOWN, -9, 1); }},
    {"ZEL_SetWROI", &SetRegion},
    {"ZEL_GetWROI", &GetRegion},
    {"ZEL_DisplayManager", [](Session& s) { return Manage(s, SHOWN, -30); }},
    {"ZEL_ClearWROI", [](Session&) { return ZEL_ClearWROI(SHOWN); }},
    {"ZEL_SetWParent", [](Session&) { return ZEL_SetWParent(SHOWN, 0); }},
    {"ZEL_GetWindowIDs",
     [](Session& s) {
       int32_t panel = 0;
       int32_t canvas = 0;
       const int32_t result = ZEL_GetWindowIDs(SHOWN, &panel, &canvas);
       s.Out(panel > 0);
       s.Out(canvas > 0);
       return result;
     }},
    {"ZEL_WindToolsSetup", [](Session&) { return ZEL_WindToolsSetup(1, nullptr, 0, 3); }},
    {"ZEL_SetWindToolsAttribute",
     [](Session&) { return ZEL_SetWindToolsAttribute(WATTR_VISIBLE, 1); }},
    {"ZEL_GetWindToolsAttribute",
     [](Session& s) {
       int32_t height = 0;
       const int32_t result = ZEL_GetWindToolsAttribute(WATTR_HEIGHT, &height);
       s.Out(height);
       return result;
     }},
    {"ZEL_Get_WT_STDLIST",
     [](Session& s) {
       s.Out(ZEL_Get_WT_STDLIST(), 9);
       return 0;
     }},
    {"ZEL_SetActiveTool", [](Session&) { return ZEL_SetActiveTool(WTOOL_POLYLINE); }},
    {"ZEL_GetActiveTool",
     [](Session& s) {
       int32_t tool = 0;
       const int32_t result = ZEL_GetActiveTool(&tool);
       s.Out(tool);
       return result;
     }},
    {"ZEL_InstallWCallback", [](Session&) { return ZEL_InstallWCallback(SHOWN, &Forget, 1); }},
    {"ZEL_RemoveWCallback", [](Session&) { return ZEL_RemoveWCallback(-1); }},
    {"ZEL_WindClose", [](Session&) { return ZEL_WindClose(SHOWN, 0); }},
    {"ZEL_GetLastWEvent",
     [](Session& s) {
       WindowEvent event{};
       const int32_t result = ZEL_GetLastWEvent(SHOWN, &event);
       s.Out(event);
       return result < 0 ? result : 0;
     }},
    {"ZEL_GetLastEvent",
     [](Session& s) {
       WindowEvent event{};
       const int32_t result = ZEL_GetLastEvent(&event);
       s.Out(event);
       return result < 0 ? result : 0;
     }},
    {"ZEL_WindToolsClose", [](Session&) { return ZEL_WindToolsClose(); }},
};

}  // namespace

constinit const std::span<const Step> WINDOW_STEPS{ROWS};

}  // namespace test
