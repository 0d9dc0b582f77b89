// Pictures exchanged with other programs through the X server's selection. There they are bitmap
// files: a header of 14 bytes before the bitmap.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "platform/byte_block.h"
#include "platform/desktop.h"
#include "platform/x11_connection.h"

namespace zel {

class X11Session;

// A picture on its way to a program that takes it piece by piece.
struct X11Transfer {
  xcb_window_t to;
  xcb_atom_t property;
  std::shared_ptr<const ByteBlock> file;
  size_t sent;
  uint32_t ticks;  // of the last piece
};

struct X11Selection {
  xcb_window_t window = 0;                // that owns and asks
  std::shared_ptr<const ByteBlock> file;  // what is offered; null where nothing is
  xcb_timestamp_t since = XCB_CURRENT_TIME;
  bool isKept = false;  // somebody was asked to keep it beyond this program
  std::vector<X11Transfer> transfers;
  ByteBlock taken;  // from another program, last

  // What the events told that somebody waits for.
  xcb_atom_t asked = 0;      // the target of the last conversion
  bool isAnswered = false;   // that one
  bool isGranted = false;    // ... and there is a property
  bool hasNewValue = false;  // of the property
  xcb_timestamp_t stamp = XCB_CURRENT_TIME;
};

// Operations of a Desktop.
ClipboardState X11ClipboardRead(ClipboardBitmap* bitmap);
bool X11ClipboardWrite(const ClipboardBitmap& bitmap);

// Events of selections and properties.
void X11SelectionTake(const xcb_generic_event_t& event);
// A window has gone.
void X11TransfersForget(xcb_window_t window);
// Gives up those whose receiver takes nothing any more.
void X11TransfersExpire(const X11Session& session);

// Hands what is offered to the program that keeps such things, if there is one.
void X11SelectionKeep();
// What is still offered, as it was written; without bytes where nothing is.
ClipboardBitmap X11SelectionOffered();

}  // namespace zel
