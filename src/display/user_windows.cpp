// Buttons of user windows, loaded, drawn and pressed.
#include "display/user_windows.h"

#include <algorithm>

#include "display/painting.h"
#include "display/panels.h"
#include "display/pointer_loop.h"
#include "display/view.h"

namespace zel {
namespace {

constexpr int64_t VALUES_PER_BUTTON = 5;

constexpr uint32_t GrayOf(uint8_t level) {
  return level * uint32_t{0x010101};
}

// The part that both images have; gray levels become colours.
void CopyPart(const PixelView& from, const PixelView& to, const KernelRect& part) {
  const int32_t left = std::max(part.left, 0);
  const int32_t right = std::min({part.right, from.width, to.width});
  const int32_t bottom = std::min({part.bottom, from.height, to.height});
  for (int32_t y = std::max(part.top, 0); y < bottom; y++) {
    auto* row = to.Row<uint32_t>(y);
    for (int32_t x = left; x < right; x++) {
      row[x] = from.type == IMAGE_RGB ? *from.At<uint32_t>(x, y) : GrayOf(*from.At<uint8_t>(x, y));
    }
  }
}

// Copies from a sheet into the window's image; of other types there is nothing to copy.
void SheetCopy(const WindowRecord& record, ImageRef sheet, const KernelRect& part) {
  Image* from = nullptr;
  Image* to = nullptr;
  if (ImageLookup(sheet, &from) != STATUS_OK) return;
  if (ImageLookup(record.ownImage, &to) != STATUS_OK || to->type != IMAGE_RGB) return;
  if (from->type == IMAGE_U8 || from->type == IMAGE_RGB) CopyPart(ViewOf(*from), ViewOf(*to), part);
}

void ButtonDraw(const WindowRecord& record, const ImageButton& button) {
  const ImageRef sheet = button.state != 0 ? record.downImage : record.upImage;
  SheetCopy(record, sheet, {button.left, button.top, button.right, button.bottom});
}

void ButtonShow(int32_t window, const ImageButton& button) {
  ButtonDraw(RecordOf(window), button);
  WindowRepaint(window, {.keepShadow = true, .scrollBars = true, .region = false});
}

// A momentary button stays down while the mouse is. False when the window went away meanwhile.
bool ButtonHold(int32_t window, int64_t index) {
  PointerLoop loop(window);
  while (loop.Next() && loop.pointer().leftDown) continue;
  if (!RecordOf(window).isOpen) return false;
  // The list can be another one by now.
  const Buttons list = ButtonsOf(RecordOf(window));
  if (index >= list.count) return false;
  list.buttons[index].state = 0;
  ButtonShow(window, list.buttons[index]);
  return !loop.WasCut();
}

int64_t ButtonAt(const Buttons& list, PointInt at) {
  for (int64_t i = 0; i < list.count; i++) {
    const ImageButton& button = list.buttons[i];
    const bool isHere =
        at.x >= button.left && at.x < button.right && at.y >= button.top && at.y < button.bottom;
    if (isHere) return i;
  }
  return -1;
}

}  // namespace

Status BackgroundLoad(int32_t window, ImageRef image) {
  Image* background = nullptr;
  Status status = ImageLookup(image, &background);
  if (status != STATUS_OK) return status;
  const int32_t width = background->width;
  const int32_t height = background->height;
  WindowRecord& record = RecordOf(window);
  status = OwnImageResize(window, width, height);
  if (status != STATUS_OK) return status;
  record.upImage = image;
  record.image = record.ownImage;
  SheetCopy(record, image, {0, 0, width, height});
  const Buttons list = ButtonsOf(record);
  for (int64_t i = 0; i < list.count; i++) {
    if (list.buttons[i].state != 0) ButtonDraw(record, list.buttons[i]);
  }
  record.imageWidth = width;
  record.imageHeight = height;
  const int32_t bar = record.hasScrollBars ? SCROLL_BAR_SIZE : 0;
  PanelResize(window, width + bar, height + bar);
  return STATUS_OK;
}

Status ButtonsLoad(int32_t window, ImageRef image, const int32_t* values, int64_t count) {
  Image* sheet = nullptr;
  if (image != 0) {
    const Status status = ImageLookup(image, &sheet);
    if (status != STATUS_OK) return status;
  }
  const int64_t buttons = count / VALUES_PER_BUTTON;
  Handle made = 0;
  Status status = VectorNew(&made);
  if (status != STATUS_OK) return status;
  status = VectorResize(made, sizeof(ImageButton), static_cast<uint64_t>(buttons));
  if (status != STATUS_OK) {
    VectorFree(made);
    return status;
  }
  auto* to = VectorData<ImageButton>(made);
  for (int64_t i = 0; i < buttons; i++, values += VALUES_PER_BUTTON) {
    to[i] = {0, values[0], values[1], values[2], values[3], values[4]};
  }
  WindowRecord& record = RecordOf(window);
  if (image != 0) record.downImage = image;
  if (record.buttons != 0) VectorFree(record.buttons);
  record.buttons = made;
  return STATUS_OK;
}

Buttons ButtonsOf(const WindowRecord& record) {
  uint32_t count = 0;
  if (record.buttons == 0 || VectorCount(record.buttons, &count) != STATUS_OK) return {};
  return {VectorData<ImageButton>(record.buttons), count};
}

void ButtonStateSet(int32_t window, int64_t index, int32_t state) {
  const Buttons all = ButtonsOf(RecordOf(window));
  if (!all.buttons || all.buttons[index].kind != BUTTON_TOGGLE) return;
  ImageButton& button = all.buttons[index];
  button.state = state;
  ButtonDraw(RecordOf(window), button);
  WindowMarkDirty(window);
}

void ButtonPress(int32_t window, int32_t x, int32_t y) {
  WindowRecord& record = RecordOf(window);
  ViewCompute(&record);
  const Buttons list = ButtonsOf(record);
  const int64_t index = ButtonAt(list, CanvasToImage(record, x, y));
  if (index < 0) return;
  ImageButton& button = list.buttons[index];
  const bool isToggle = button.kind == BUTTON_TOGGLE;
  button.state = isToggle && button.state != 0 ? 0 : 1;
  const int32_t state = button.state;
  record.lastButton = static_cast<int32_t>(index);
  ButtonShow(window, button);
  if (!isToggle && !ButtonHold(window, index)) return;
  EventRecord(window, EVENT_BUTTON, static_cast<int32_t>(index), state);
}

}  // namespace zel
