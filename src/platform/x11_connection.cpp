// Opening and losing the server.
#include "platform/x11_connection.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <string_view>

namespace zel {
namespace {

constexpr const char* ATOM_NAMES[] = {"WM_PROTOCOLS",
                                      "WM_DELETE_WINDOW",
                                      "_NET_WM_PING",
                                      "_NET_WM_NAME",
                                      "_NET_WM_PID",
                                      "_NET_ACTIVE_WINDOW",
                                      "_NET_SUPPORTING_WM_CHECK",
                                      "UTF8_STRING",
                                      "CLIPBOARD",
                                      "CLIPBOARD_MANAGER",
                                      "SAVE_TARGETS",
                                      "TARGETS",
                                      "TIMESTAMP",
                                      "MULTIPLE",
                                      "ATOM_PAIR",
                                      "INCR",
                                      "image/bmp",
                                      "ORLUNE_TRANSFER"};
static_assert(std::size(ATOM_NAMES) == X11_ATOMS);

constexpr int32_t MOST_SCALE = 8;
constexpr double USUAL_DPI = 96;

// ---- what kind of screen it is

bool HasUsualMasks(const xcb_visualtype_t& visual) {
  return visual._class == XCB_VISUAL_CLASS_TRUE_COLOR && visual.red_mask == 0xFF0000 &&
         visual.green_mask == 0xFF00 && visual.blue_mask == 0xFF;
}

// Whether pixels of a depth go over as numbers of 32 bits in this machine's order.
bool IsPlain(const X11Connection& at, uint8_t depth) {
  const xcb_setup_t* setup = at.x->setup(at.link);
  constexpr uint32_t one = 1;
  uint8_t lowest = 0;
  std::memcpy(&lowest, &one, 1);
  if ((setup->image_byte_order == XCB_IMAGE_ORDER_LSB_FIRST) != (lowest == 1)) return false;
  const xcb_format_t* formats = at.x->pixmapFormats(setup);
  return std::any_of(formats, formats + at.x->pixmapFormatCount(setup),
                     [depth](const xcb_format_t& format) {
                       return format.depth == depth && format.bits_per_pixel == 32;
                     });
}

// The root's own kind of pixels, if that will do, else another one of 24 bits.
bool VisualChoose(X11Connection* at) {
  constexpr uint8_t wanted = 24;
  bool isFound = false;
  for (auto depth = at->x->depths(at->screen); depth.rem > 0; at->x->depthNext(&depth)) {
    for (auto visual = at->x->visuals(depth.data); visual.rem > 0; at->x->visualNext(&visual)) {
      const bool isRoot = visual.data->visual_id == at->screen->root_visual;
      if (depth.data->depth != wanted || !HasUsualMasks(*visual.data) || (isFound && !isRoot)) {
        continue;
      }
      isFound = true;
      at->depth = wanted;
      at->visual = visual.data->visual_id;
    }
  }
  return isFound && IsPlain(*at, wanted);
}

// ---- how large its pixels are

// The number behind a name in the desktop's resources, or 0.
double ResourceOf(std::string_view resources, std::string_view name) {
  for (size_t at = 0; at < resources.size();) {
    const size_t end = std::min(resources.find('\n', at), resources.size());
    const std::string_view line = resources.substr(at, end - at);
    if (line.starts_with(name) && line.size() > name.size() && line[name.size()] == ':') {
      char number[32] = {};
      line.copy(number, sizeof number - 1, name.size() + 1);
      return std::strtod(number, nullptr);
    }
    at = end + 1;
  }
  return 0;
}

// What a variable of the environment says, or 0.
double ScaleIn(const char* variable) {
  const char* wanted = std::getenv(variable);
  return wanted ? std::strtod(wanted, nullptr) : 0;
}

// The library's own variable comes before that of other toolkits, and both before what the desktop
// says of its letters.
int32_t ScaleOf(const X11Connection& at) {
  constexpr uint32_t most = 1 << 16;
  double scale = ScaleIn("ORLUNE_PTK_SCALE");
  if (!(scale >= 1)) scale = ScaleIn("GDK_SCALE");
  if (!(scale >= 1)) {
    const auto reply = at.Property(at.screen->root, XCB_ATOM_RESOURCE_MANAGER, false, most);
    if (!reply) return 1;
    const auto length = static_cast<size_t>(at.x->propertyValueLength(reply.get()));
    const auto* text = static_cast<const char*>(at.x->propertyValue(reply.get()));
    scale = ResourceOf({text, length}, "Xft.dpi") / USUAL_DPI;
  }
  return scale >= 1 ? static_cast<int32_t>(std::min<double>(scale, MOST_SCALE)) : 1;
}

// ---- opening

void AtomsTake(X11Connection* at) {
  xcb_intern_atom_cookie_t asked[X11_ATOMS];
  for (int32_t i = 0; i < X11_ATOMS; i++) {
    asked[i] = at->x->internAtom(at->link, 0, static_cast<uint16_t>(std::strlen(ATOM_NAMES[i])),
                                 ATOM_NAMES[i]);
  }
  for (int32_t i = 0; i < X11_ATOMS; i++) {
    const Reply<xcb_intern_atom_reply_t> reply(at->x->internAtomReply(at->link, asked[i], nullptr));
    at->atoms[i] = reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }
}

void ResourcesMake(X11Connection* at) {
  at->colormap = at->screen->default_colormap;
  if (at->visual != at->screen->root_visual) {
    at->colormap = at->x->generateId(at->link);
    at->x->createColormap(at->link, XCB_COLORMAP_ALLOC_NONE, at->colormap, at->screen->root,
                          at->visual);
  }
  // A context is made for a depth, and outlives the picture that stands for it.
  const xcb_pixmap_t picture = at->x->generateId(at->link);
  at->x->createPixmap(at->link, at->depth, picture, at->screen->root, 1, 1);
  at->gc = at->x->generateId(at->link);
  at->x->createGc(at->link, at->gc, picture, 0, nullptr);
  at->x->freePixmap(at->link, picture);
}

// Takes a child's copy of its parent's connection down, without a word to the server: what is sent
// or ended here would be sent or ended for the parent.
void Detach(const X11Connection& at) {
  const int nothing = open("/dev/null", O_RDWR | O_CLOEXEC);
  if (nothing < 0) return;  // the copy stays, and is not used
  const int to = at.x->fileDescriptor(at.link);
  const bool isReplaced = dup3(nothing, to, O_CLOEXEC) == to;
  close(nothing);
  if (isReplaced) at.x->disconnect(at.link);
}

}  // namespace

bool X11Connection::Open() {
  // Without the variable the client library tries servers that nobody named.
  const char* display = std::getenv("DISPLAY");
  if (!display || display[0] == '\0') return false;
  x = X11LibraryOpen();
  if (!x) return false;
  const WithoutPipeSignal held;
  int number = 0;
  link = x->connect(nullptr, &number);
  process = getpid();
  if (x->hasError(link) != 0) {
    Close();
    return false;
  }
  auto roots = x->roots(x->setup(link));
  for (; number > 0 && roots.rem > 1; number--) x->screenNext(&roots);
  if (roots.rem < 1) {
    Close();
    return false;
  }
  screen = roots.data;
  if (!VisualChoose(this)) {
    Close();
    return false;
  }
  AtomsTake(this);
  ResourcesMake(this);
  scale = ScaleOf(*this);
  KeysRead();
  return x->hasError(link) == 0;
}

void X11Connection::Close() {
  if (!link) return;
  const WithoutPipeSignal held;
  if (process == getpid()) {
    if (x->hasError(link) == 0) x->flush(link);
    x->disconnect(link);
  } else {
    Detach(*this);
  }
  link = nullptr;
  screen = nullptr;
}

void X11Connection::KeysRead() {
  const xcb_setup_t* setup = x->setup(link);
  const auto count = static_cast<uint8_t>(setup->max_keycode - setup->min_keycode + 1);
  const Reply<xcb_get_keyboard_mapping_reply_t> reply(
      x->keyboardMappingReply(link, x->keyboardMapping(link, setup->min_keycode, count), nullptr));
  if (!reply) return;
  const xcb_keysym_t* all = x->keyboardMappingKeys(reply.get());
  keys.assign(all, all + x->keyboardMappingKeyCount(reply.get()));
  keysPerCode = reply->keysyms_per_keycode;
  firstCode = setup->min_keycode;
}

uint32_t X11Connection::RequestBytes() const {
  constexpr uint32_t most = 1 << 20;
  constexpr uint32_t header = 64;
  const uint32_t all = std::min(x->requestLength(link), most / 4) * 4;
  return all > header ? all - header : 0;
}

Reply<xcb_get_property_reply_t> X11Connection::Property(xcb_window_t window, xcb_atom_t property,
                                                        bool remove, uint32_t bytes) const {
  const auto asked = x->getProperty(link, remove ? 1 : 0, window, property,
                                    XCB_GET_PROPERTY_TYPE_ANY, 0, (bytes + 3) / 4);
  return Reply<xcb_get_property_reply_t>(x->getPropertyReply(link, asked, nullptr));
}

X11Turn::X11Turn(X11Connection* connection) : connection_(connection) {
  if (!connection_->link) return;
  const bool isOwn = connection_->process == getpid();
  if (!isOwn || connection_->x->hasError(connection_->link) != 0) connection_->Close();
}

bool X11Turn::IsAlive() const {
  return connection_->link != nullptr;
}

}  // namespace zel
