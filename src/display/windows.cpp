// Windows drawn, closed and commanded.
#include <algorithm>

#include "display/commands.h"
#include "display/palettes.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

Status DisplayManager(int32_t* window, int32_t command, const int32_t* input, int32_t inputCount,
                      int32_t* output, int32_t outputCount) {
  if (!window) return STATUS_NULL_POINTER;
  DisplayRequest request;
  request.window = *window;
  request.command = command;
  request.input = input;
  request.inputCount = input ? std::max(inputCount, 0) : 0;
  const Status status = DisplayDispatch(&request, {output, std::max(outputCount, 0), 0}, nullptr);
  if (status == STATUS_OK) *window = request.window;
  return status;
}

Status WindDraw(ImageRef image, int32_t window, const char* title, int32_t resize) {
  DisplayRequest request;
  request.window = window;
  request.command = resize != 0 ? COMMAND_RESIZE_SHOW_AND_DRAW : COMMAND_SHOW_AND_DRAW;
  request.image = image;
  request.title = title;
  return DisplayDispatch(&request, {}, nullptr);
}

Status SetPalette(int32_t window, int32_t paletteKind, const RGBValue* userPalette) {
  uint32_t colours[PALETTE_ENTRIES];
  const bool isBuiltIn = paletteKind >= PALETTE_GRAY && paletteKind <= PALETTE_TEMPERATURE;
  if (isBuiltIn) {
    PaletteBuild(paletteKind, colours);
  } else {
    for (int32_t i = 0; i < PALETTE_ENTRIES; i++) colours[i] = userPalette[i] & 0xFFFFFF;
  }
  DisplayRequest request;
  request.window = window;
  request.command = COMMAND_DRAW;
  request.palette = colours;
  return DisplayDispatch(&request, {}, nullptr);
}

}  // namespace
}  // namespace zel

int32_t ZEL_DisplayManager(int32_t* window, int32_t command, const int32_t* input,
                           int32_t inputCount, int32_t* output, int32_t outputCount) {
  return ZEL_ProcessError("ZEL_WindManager", zel::DisplayManager(window, command, input, inputCount,
                                                                 output, outputCount));
}

int32_t ZEL_WindDraw(ImageRef image, int32_t window, const char* title, int32_t resize) {
  return zel::FrameEnd("ZEL_WindDraw", zel::WindDraw(image, window, title, resize));
}

int32_t ZEL_WSetPalette(int32_t window, int32_t paletteKind, const RGBValue* userPalette) {
  const char* name = "ZEL_WSetPalette";
  const bool isBuiltIn = paletteKind >= PALETTE_GRAY && paletteKind <= PALETTE_TEMPERATURE;
  if (!isBuiltIn && !userPalette) return ZEL_ProcessError(name, zel::STATUS_NULL_POINTER);
  return zel::FrameEnd(name, zel::SetPalette(window, paletteKind, userPalette));
}

int32_t ZEL_WindClose(int32_t window, int32_t allOfKind) {
  const int32_t command = allOfKind != 0 ? zel::COMMAND_CLOSE_KIND : zel::COMMAND_CLOSE;
  return ZEL_ProcessError("ZEL_WindClose", zel::DispatchSimple(window, command));
}

int32_t ZEL_GetWindowIDs(int32_t window, int32_t* panel, int32_t* canvas) {
  const bool isWindow = zel::IsWindow(window);
  if (panel) *panel = isWindow ? zel::display.bindings[window].panel : 0;
  if (canvas) *canvas = isWindow ? zel::display.bindings[window].canvas : 0;
  return 0;
}

int32_t ZEL_SetWParent(int32_t window, int32_t parentPanel) {
  if (zel::IsWindow(window)) zel::display.bindings[window].parent = parentPanel;
  return 0;
}
