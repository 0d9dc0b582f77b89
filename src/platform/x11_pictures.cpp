// Pictures of canvases sent to the server. It keeps them as the backgrounds of the windows, so that
// what is covered and uncovered is painted without this program, whatever it is busy with.
#include "platform/x11_pictures.h"

#include <algorithm>
#include <new>

#include "platform/canvases.h"

namespace zel {
namespace {

constexpr int64_t PIXEL_BYTES = 4;

// Rows of one request, enlarged by the scale, without gaps.
void Enlarge(const MemoryPicture& picture, const DesktopRect& part, int32_t scale, uint32_t* to) {
  const int64_t width = int64_t{part.width} * scale;
  for (int32_t y = part.top; y < part.top + part.height; y++) {
    const uint32_t* from = picture.Row(y) + part.left;
    uint32_t* first = to;
    for (int32_t x = 0; x < part.width; x++, to += scale) std::fill_n(to, scale, from[x]);
    for (int32_t copy = 1; copy < scale; copy++) to = std::copy_n(first, width, to);
  }
}

void Put(const X11Panel& panel, const DesktopRect& part, const uint32_t* pixels) {
  const X11Connection& at = x11->connection;
  const int32_t scale = at.scale;
  const int64_t width = int64_t{part.width} * scale;
  const int64_t height = int64_t{part.height} * scale;
  at.x->putImage(at.link, XCB_IMAGE_FORMAT_Z_PIXMAP, panel.picture, at.gc,
                 static_cast<uint16_t>(width), static_cast<uint16_t>(height),
                 static_cast<int16_t>(part.left * scale), static_cast<int16_t>(part.top * scale), 0,
                 at.depth, static_cast<uint32_t>(width * height * PIXEL_BYTES),
                 reinterpret_cast<const uint8_t*>(pixels));
}

// Sends a part in as many requests as it takes. Whole rows lie together already.
void PartSend(const X11Panel& panel, const MemoryPicture& picture, const DesktopRect& part) {
  const int32_t scale = x11->connection.scale;
  const int64_t rowPixels = int64_t{part.width} * scale * scale;
  const int64_t rows = int64_t{x11->connection.RequestBytes()} / (rowPixels * PIXEL_BYTES);
  if (rows < 1) return;  // no request holds one
  const auto most = static_cast<int32_t>(std::min<int64_t>(rows, part.height));
  const bool isWhole = scale == 1 && part.width == picture.Width();
  std::unique_ptr<uint32_t[]> enlarged;
  if (!isWhole) enlarged.reset(new (std::nothrow) uint32_t[static_cast<size_t>(rowPixels * most)]);
  if (!isWhole && !enlarged) return;
  for (int32_t done = 0; done < part.height; done += most) {
    const DesktopRect strip{part.top + done, part.left, std::min(most, part.height - done),
                            part.width};
    if (!isWhole) Enlarge(picture, strip, scale, enlarged.get());
    Put(panel, strip, isWhole ? picture.Row(strip.top) : enlarged.get());
  }
}

// Makes a picture of the canvas' size in the server, unless it is there. A new one is empty.
bool PictureEnsure(X11Panel* panel, const MemoryPicture& picture, bool* isNew) {
  const X11Connection& at = x11->connection;
  const int64_t width = int64_t{picture.Width()} * at.scale;
  const int64_t height = int64_t{picture.Height()} * at.scale;
  if (width > X11_MOST_SIDE || height > X11_MOST_SIDE) return false;
  *isNew = panel->picture == 0 || width != panel->pictureWidth || height != panel->pictureHeight;
  if (!*isNew) return true;
  if (panel->picture != 0) at.x->freePixmap(at.link, panel->picture);
  panel->picture = at.x->generateId(at.link);
  panel->pictureWidth = static_cast<int32_t>(width);
  panel->pictureHeight = static_cast<int32_t>(height);
  at.x->createPixmap(at.link, at.depth, panel->picture, panel->window, static_cast<uint16_t>(width),
                     static_cast<uint16_t>(height));
  return true;
}

}  // namespace

void X11PanelPresent(const X11Session& session, int32_t number) {
  X11Panel* panel = X11PanelOf(number);
  Canvas* canvas = CanvasOnPanel(number);
  if (!session || !panel || panel->window == 0 || !canvas) return;
  const bool isShown = panel->attributes[PANEL_VISIBLE] != 0;
  if (!isShown || !canvas->picture.IsDrawn()) return;
  MemoryPicture& picture = canvas->picture;
  bool isNew = false;
  if (!PictureEnsure(panel, picture, &isNew)) return;
  DesktopRect part = picture.TakeChanged();
  if (isNew) part = {0, 0, picture.Height(), picture.Width()};
  if (part.width == 0) return;
  PartSend(*panel, picture, part);
  const X11Connection& at = x11->connection;
  const int32_t scale = at.scale;
  at.x->changeWindowAttributes(at.link, panel->window, XCB_CW_BACK_PIXMAP, &panel->picture);
  at.x->clearArea(at.link, 0, panel->window, static_cast<int16_t>(part.left * scale),
                  static_cast<int16_t>(part.top * scale), static_cast<uint16_t>(part.width * scale),
                  static_cast<uint16_t>(part.height * scale));
}

void X11Present(const X11Session& session) {
  if (!session) return;
  for (const auto& [number, panel] : x11->panels) X11PanelPresent(session, number);
  x11->connection.x->flush(x11->connection.link);
}

}  // namespace zel
