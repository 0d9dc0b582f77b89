// The connection to the X server, and what there is one of for each connection.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <vector>

#include "platform/pipe_signal.h"
#include "platform/x11_library.h"

namespace zel {

enum X11Atom : int32_t {
  ATOM_WM_PROTOCOLS,
  ATOM_WM_DELETE_WINDOW,
  ATOM_NET_WM_PING,
  ATOM_NET_WM_NAME,
  ATOM_NET_WM_PID,
  ATOM_NET_ACTIVE_WINDOW,
  ATOM_NET_SUPPORTING_WM_CHECK,
  ATOM_UTF8_STRING,
  ATOM_CLIPBOARD,
  ATOM_CLIPBOARD_MANAGER,
  ATOM_SAVE_TARGETS,
  ATOM_TARGETS,
  ATOM_TIMESTAMP,
  ATOM_MULTIPLE,
  ATOM_PAIR,
  ATOM_INCR,
  ATOM_IMAGE_BMP,
  ATOM_TRANSFER,
  X11_ATOMS,
};

// What the server answers, which the C library's heap gave.
struct ReplyFree {
  void operator()(void* reply) const { std::free(reply); }
};
template <class T>
using Reply = std::unique_ptr<T, ReplyFree>;

struct X11Connection {
  const X11Library* x = nullptr;
  xcb_connection_t* link = nullptr;      // null before it is opened and after it is lost
  int32_t process = 0;                   // whose connection it is
  const xcb_screen_t* screen = nullptr;  // while there is a link
  uint8_t depth = 0;
  xcb_visualid_t visual = 0;
  xcb_colormap_t colormap = 0;
  xcb_gcontext_t gc = 0;
  xcb_atom_t atoms[X11_ATOMS]{};
  int32_t scale = 1;  // pixels of the server, along an edge, for one of a canvas
  std::vector<xcb_keysym_t> keys;
  int32_t keysPerCode = 0;
  uint8_t firstCode = 0;

  // False where there is no server, or none that can show 24 bits.
  bool Open();
  // Ends it. What the server kept for it goes.
  void Close();
  void KeysRead();

  // The canvas' pixel that one of the server's belongs to.
  int32_t ToCanvas(int32_t position) const {
    return position >= 0 ? position / scale : -((scale - 1 - position) / scale);
  }
  uint32_t RequestBytes() const;  // that one request can carry: none once the server is lost
  Reply<xcb_get_property_reply_t> Property(xcb_window_t window, xcb_atom_t property, bool remove,
                                           uint32_t bytes) const;
};

// For as long as it lives the server may be spoken to. A server that has gone is found out here,
// and a forked child's lack of one.
class X11Turn {
 public:
  explicit X11Turn(X11Connection* connection);
  bool IsAlive() const;

 private:
  WithoutPipeSignal held_;
  X11Connection* connection_;
};

}  // namespace zel
