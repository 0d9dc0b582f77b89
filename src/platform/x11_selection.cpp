// The clipboard: asking other programs, and answering them.
#include "platform/x11_selection.h"

#include <algorithm>
#include <cstring>

#include "platform/canvases.h"
#include "platform/packed_bitmap.h"
#include "platform/x11_events.h"
#include "platform/x11_state.h"

namespace zel {
namespace {

constexpr uint32_t PATIENCE = 3000;        // milliseconds without a sign of the other program
constexpr uint32_t MOST_PATIENCE = 60000;  // ... with signs, for one picture
constexpr size_t FILE_HEADER = 14;
constexpr size_t MOST_BYTES = 0x7FFFFFFF;
constexpr size_t MOST_TRANSFERS = 64;
constexpr uint32_t PIECE = 1 << 22;

// ---- the file

// Of the pixels, in the file: behind the header and the colours that it tells of.
size_t PixelsAt(const ClipboardBitmap& bitmap) {
  const BitmapHeader header = BitmapHeaderOf(bitmap.bytes, bitmap.size);
  return FILE_HEADER + static_cast<size_t>(header.PixelsAt());
}

bool FileMake(const ClipboardBitmap& bitmap, ByteBlock* file) {
  uint8_t header[FILE_HEADER] = {'B', 'M'};
  PutLowFirst(header + 2, static_cast<uint32_t>(FILE_HEADER + bitmap.size), 4);
  PutLowFirst(header + 10, static_cast<uint32_t>(PixelsAt(bitmap)), 4);
  return file->Reserve(FILE_HEADER + bitmap.size) && file->Append(header, FILE_HEADER) &&
         file->Append(bitmap.bytes, bitmap.size);
}

ClipboardBitmap BitmapIn(const ByteBlock& file) {
  return {file.data() + FILE_HEADER, file.size() - FILE_HEADER};
}

// Some programs answer a wish for a picture with whatever they have.
bool IsBitmapFile(const ByteBlock& file) {
  return file.size() > FILE_HEADER && file.data()[0] == 'B' && file.data()[1] == 'M';
}

// ---- waiting

// Takes events until a flag is set, or too long nothing has come.
bool WaitFor(const X11Session& session, const bool* flag) {
  const uint32_t began = MachineTicks();
  for (;;) {
    X11EventsTake(session);
    if (*flag) return true;
    const uint32_t waited = MachineTicks() - began;
    if (waited >= PATIENCE || x11->connection.x->hasError(x11->connection.link) != 0) return false;
    X11Wait(session, static_cast<int32_t>(PATIENCE - waited));
  }
}

// A window that nobody sees.
void WindowEnsure() {
  X11Selection& selection = x11->selection;
  if (selection.window != 0) return;
  const X11Connection& at = x11->connection;
  selection.window = at.x->generateId(at.link);
  constexpr uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  at.x->createWindow(at.link, 0, selection.window, at.screen->root, -1, -1, 1, 1, 0,
                     XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
}

xcb_window_t OwnerOf(xcb_atom_t selection) {
  const X11Connection& at = x11->connection;
  const Reply<xcb_get_selection_owner_reply_t> reply(
      at.x->getSelectionOwnerReply(at.link, at.x->getSelectionOwner(at.link, selection), nullptr));
  return reply ? reply->owner : xcb_window_t{0};
}

// The server's time: that of a change that changes nothing. What others changed before, as by a
// late answer, comes no later than an answer of the server, and would tell an older time.
xcb_timestamp_t TimeNow(const X11Session& session) {
  const X11Connection& at = x11->connection;
  X11Selection& selection = x11->selection;
  OwnerOf(at.atoms[ATOM_CLIPBOARD]);
  X11EventsTake(session);
  selection.hasNewValue = false;
  // Of another type, as a late answer may have left it, the server would not append to it.
  at.x->deleteProperty(at.link, selection.window, at.atoms[ATOM_TRANSFER]);
  at.x->changeProperty(at.link, XCB_PROP_MODE_APPEND, selection.window, at.atoms[ATOM_TRANSFER],
                       XCB_ATOM_INTEGER, 32, 0, nullptr);
  return WaitFor(session, &selection.hasNewValue) ? selection.stamp : xcb_timestamp_t{0};
}

// ---- reading

// What became of a question to another program.
enum class Answer { NONE, REFUSED, GIVEN };

Answer Ask(const X11Session& session, xcb_atom_t from, xcb_atom_t target) {
  const X11Connection& at = x11->connection;
  X11Selection& selection = x11->selection;
  selection.asked = target;
  selection.isAnswered = false;
  selection.isGranted = false;
  at.x->deleteProperty(at.link, selection.window, at.atoms[ATOM_TRANSFER]);
  at.x->convertSelection(at.link, selection.window, from, target, at.atoms[ATOM_TRANSFER],
                         XCB_CURRENT_TIME);
  if (!WaitFor(session, &selection.isAnswered)) return Answer::NONE;
  return selection.isGranted ? Answer::GIVEN : Answer::REFUSED;
}

// Takes what stands in the property, and the property away. False where there is no memory for it,
// or no property.
bool PropertyTake(xcb_atom_t* type, ByteBlock* to) {
  const X11Connection& at = x11->connection;
  for (uint32_t offset = 0;;) {
    const auto asked = at.x->getProperty(at.link, 1, x11->selection.window, at.atoms[ATOM_TRANSFER],
                                         XCB_GET_PROPERTY_TYPE_ANY, offset, PIECE / 4);
    const Reply<xcb_get_property_reply_t> reply(at.x->getPropertyReply(at.link, asked, nullptr));
    if (!reply || reply->type == XCB_ATOM_NONE) return false;
    const auto bytes = static_cast<uint32_t>(at.x->propertyValueLength(reply.get()));
    *type = reply->type;
    if (to->size() + bytes > MOST_BYTES) return false;
    if (!to->Append(at.x->propertyValue(reply.get()), bytes)) return false;
    if (reply->bytes_after == 0) return true;
    offset += bytes / 4;
  }
}

// Piece by piece: each is there once the one before was taken away, and an empty one is the last.
bool PiecesTake(const X11Session& session, ByteBlock* to) {
  X11Selection& selection = x11->selection;
  const uint32_t began = MachineTicks();
  for (;;) {
    if (!WaitFor(session, &selection.hasNewValue)) return false;
    if (MachineTicks() - began > MOST_PATIENCE) return false;
    selection.hasNewValue = false;
    const size_t before = to->size();
    xcb_atom_t type = XCB_ATOM_NONE;
    if (!PropertyTake(&type, to)) return false;
    if (to->size() == before) return true;
  }
}

bool OffersBitmaps(const ByteBlock& targets) {
  const xcb_atom_t wanted = x11->connection.atoms[ATOM_IMAGE_BMP];
  for (size_t at = 0; at + sizeof wanted <= targets.size(); at += sizeof wanted) {
    if (std::memcmp(targets.data() + at, &wanted, sizeof wanted) == 0) return true;
  }
  return false;
}

ClipboardState FileTake(const X11Session& session, ByteBlock* file) {
  const X11Connection& at = x11->connection;
  const xcb_atom_t clipboard = at.atoms[ATOM_CLIPBOARD];
  if (OwnerOf(clipboard) == 0) return ClipboardState::EMPTY;
  xcb_atom_t type = XCB_ATOM_NONE;
  ByteBlock targets;
  Answer answer = Ask(session, clipboard, at.atoms[ATOM_TARGETS]);
  if (answer == Answer::NONE) return ClipboardState::CLOSED;
  const bool isKnown = answer == Answer::GIVEN && PropertyTake(&type, &targets);
  if (!isKnown || !OffersBitmaps(targets)) return ClipboardState::EMPTY;

  answer = Ask(session, clipboard, at.atoms[ATOM_IMAGE_BMP]);
  if (answer == Answer::NONE) return ClipboardState::CLOSED;
  if (answer == Answer::REFUSED) return ClipboardState::EMPTY;
  x11->selection.hasNewValue = false;
  if (!PropertyTake(&type, file)) return ClipboardState::CLOSED;
  if (type == at.atoms[ATOM_INCR]) {
    file->Clear();
    if (!PiecesTake(session, file)) return ClipboardState::CLOSED;
  }
  return IsBitmapFile(*file) ? ClipboardState::FILLED : ClipboardState::EMPTY;
}

// ---- answering

void AtomsPut(xcb_window_t window, xcb_atom_t property, xcb_atom_t type,
              const std::vector<xcb_atom_t>& atoms) {
  const X11Connection& at = x11->connection;
  at.x->changeProperty(at.link, XCB_PROP_MODE_REPLACE, window, property, type, 32,
                       static_cast<uint32_t>(atoms.size()), atoms.data());
}

void EventsWant(xcb_window_t window, uint32_t events) {
  const X11Connection& at = x11->connection;
  at.x->changeWindowAttributes(at.link, window, XCB_CW_EVENT_MASK, &events);
}

// A picture that one request does not hold is announced by its size, and follows in pieces, each of
// which the other program asks for by taking the one before away.
void FilePut(xcb_window_t window, xcb_atom_t property) {
  const X11Connection& at = x11->connection;
  X11Selection& selection = x11->selection;
  const std::shared_ptr<const ByteBlock>& file = selection.file;
  const auto size = static_cast<uint32_t>(file->size());
  if (size <= at.RequestBytes()) {
    at.x->changeProperty(at.link, XCB_PROP_MODE_REPLACE, window, property, at.atoms[ATOM_IMAGE_BMP],
                         8, size, file->data());
    return;
  }
  // Who asks again has given up the transfer before.
  std::erase_if(selection.transfers, [&](const X11Transfer& transfer) {
    return transfer.to == window && transfer.property == property;
  });
  if (selection.transfers.size() >= MOST_TRANSFERS) {
    selection.transfers.erase(selection.transfers.begin());
  }
  EventsWant(window, XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  AtomsPut(window, property, at.atoms[ATOM_INCR], {size});
  selection.transfers.push_back({window, property, file, 0, MachineTicks()});
}

bool TargetPut(xcb_window_t window, xcb_atom_t target, xcb_atom_t property) {
  const X11Connection& at = x11->connection;
  const auto is = [&](X11Atom atom) { return target == at.atoms[atom]; };
  if (is(ATOM_IMAGE_BMP)) {
    FilePut(window, property);
  } else if (is(ATOM_TARGETS)) {
    AtomsPut(window, property, XCB_ATOM_ATOM,
             {at.atoms[ATOM_TARGETS], at.atoms[ATOM_TIMESTAMP], at.atoms[ATOM_MULTIPLE],
              at.atoms[ATOM_SAVE_TARGETS], at.atoms[ATOM_IMAGE_BMP]});
  } else if (is(ATOM_TIMESTAMP)) {
    AtomsPut(window, property, XCB_ATOM_INTEGER, {x11->selection.since});
  } else if (is(ATOM_SAVE_TARGETS)) {
    AtomsPut(window, property, at.atoms[ATOM_SAVE_TARGETS], {});
  } else {
    return false;
  }
  return true;
}

// Pairs of a target and a property for it; of one that cannot be had the property becomes none.
bool PairsPut(xcb_window_t window, xcb_atom_t property) {
  constexpr uint32_t most = 4096;
  const X11Connection& at = x11->connection;
  const auto reply = at.Property(window, property, false, most);
  if (!reply || reply->format != 32) return false;
  const auto bytes = static_cast<size_t>(at.x->propertyValueLength(reply.get()));
  std::vector<xcb_atom_t> pairs(bytes / 8 * 2);
  if (!pairs.empty()) std::memcpy(pairs.data(), at.x->propertyValue(reply.get()), pairs.size() * 4);
  for (size_t i = 0; i < pairs.size(); i += 2) {
    const bool isPut = pairs[i + 1] != 0 && TargetPut(window, pairs[i], pairs[i + 1]);
    if (!isPut) pairs[i + 1] = XCB_ATOM_NONE;
  }
  AtomsPut(window, property, at.atoms[ATOM_PAIR], pairs);
  return true;
}

bool RequestServe(const xcb_selection_request_event_t& request, xcb_atom_t property) {
  const X11Connection& at = x11->connection;
  const X11Selection& selection = x11->selection;
  const bool isOffered = selection.file && request.owner == selection.window &&
                         request.selection == at.atoms[ATOM_CLIPBOARD];
  if (!isOffered) return false;
  if (request.target != at.atoms[ATOM_MULTIPLE]) {
    return TargetPut(request.requestor, request.target, property);
  }
  return request.property != 0 && PairsPut(request.requestor, property);
}

void RequestTake(const xcb_selection_request_event_t& request) {
  const X11Connection& at = x11->connection;
  // Programs of old name no property.
  const xcb_atom_t property = request.property != 0 ? request.property : request.target;
  xcb_selection_notify_event_t answer{};
  answer.response_type = XCB_SELECTION_NOTIFY;
  answer.time = request.time;
  answer.requestor = request.requestor;
  answer.selection = request.selection;
  answer.target = request.target;
  answer.property = RequestServe(request, property) ? property : xcb_atom_t{XCB_ATOM_NONE};
  char sent[32] = {};
  std::memcpy(sent, &answer, sizeof answer);
  at.x->sendEvent(at.link, 0, request.requestor, 0, sent);
  at.x->flush(at.link);
}

// ---- pieces that go out

// True while there are more.
bool PieceSend(X11Transfer* transfer) {
  const X11Connection& at = x11->connection;
  const size_t rest = transfer->file->size() - transfer->sent;
  const auto piece = static_cast<uint32_t>(std::min<size_t>(rest, at.RequestBytes()));
  at.x->changeProperty(at.link, XCB_PROP_MODE_REPLACE, transfer->to, transfer->property,
                       at.atoms[ATOM_IMAGE_BMP], 8, piece, transfer->file->data() + transfer->sent);
  at.x->flush(at.link);
  transfer->sent += piece;
  transfer->ticks = MachineTicks();
  return piece > 0;
}

using Transfers = std::vector<X11Transfer>;

// The one behind it. What its receiver does is of interest no longer, unless it takes another one.
Transfers::iterator TransferEnd(Transfers::iterator ended) {
  Transfers& transfers = x11->selection.transfers;
  const xcb_window_t to = ended->to;
  const auto next = transfers.erase(ended);
  const bool isLast = std::none_of(transfers.begin(), transfers.end(),
                                   [to](const X11Transfer& transfer) { return transfer.to == to; });
  if (isLast) EventsWant(to, 0);
  return next;
}

void PropertyNewsTake(const xcb_property_notify_event_t& news) {
  X11Selection& selection = x11->selection;
  if (news.window == selection.window) {
    const bool isOurs = news.atom == x11->connection.atoms[ATOM_TRANSFER];
    if (!isOurs || news.state != XCB_PROPERTY_NEW_VALUE) return;
    selection.hasNewValue = true;
    selection.stamp = news.time;
    return;
  }
  if (news.state != XCB_PROPERTY_DELETE) return;
  const auto wanted = std::find_if(
      selection.transfers.begin(), selection.transfers.end(), [&](const X11Transfer& transfer) {
        return transfer.to == news.window && transfer.property == news.atom;
      });
  if (wanted != selection.transfers.end() && !PieceSend(&*wanted)) TransferEnd(wanted);
}

void NotifyTake(const xcb_selection_notify_event_t& notify) {
  X11Selection& selection = x11->selection;
  // An answer to a question that was given up may come late.
  if (notify.requestor != selection.window || notify.target != selection.asked) return;
  selection.isAnswered = true;
  selection.isGranted = notify.property != XCB_ATOM_NONE;
}

}  // namespace

void X11SelectionTake(const xcb_generic_event_t& event) {
  switch (event.response_type & 0x7F) {
    case XCB_SELECTION_REQUEST:
      return RequestTake(reinterpret_cast<const xcb_selection_request_event_t&>(event));
    case XCB_SELECTION_NOTIFY:
      return NotifyTake(reinterpret_cast<const xcb_selection_notify_event_t&>(event));
    case XCB_SELECTION_CLEAR:
      x11->selection.file.reset();
      return;
    case XCB_PROPERTY_NOTIFY:
      return PropertyNewsTake(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    default:  // nothing that was asked for
      return;
  }
}

void X11TransfersForget(xcb_window_t window) {
  std::erase_if(x11->selection.transfers,
                [window](const X11Transfer& transfer) { return transfer.to == window; });
}

void X11TransfersExpire(const X11Session& session) {
  if (!session) return;
  const uint32_t now = MachineTicks();
  Transfers& transfers = x11->selection.transfers;
  for (auto transfer = transfers.begin(); transfer != transfers.end();) {
    const bool isGivenUp = now - transfer->ticks > PATIENCE;
    transfer = isGivenUp ? TransferEnd(transfer) : std::next(transfer);
  }
}

ClipboardState X11ClipboardRead(ClipboardBitmap* bitmap) {
  const X11Session session;
  X11EventsTake(session);  // another program may have put something there
  X11Selection& selection = x11->selection;
  if (!selection.file && session) {
    WindowEnsure();
    selection.taken.Clear();
    const ClipboardState state = FileTake(session, &selection.taken);
    if (state == ClipboardState::FILLED) *bitmap = BitmapIn(selection.taken);
    return state;
  }
  if (!selection.file) return ClipboardState::EMPTY;
  *bitmap = BitmapIn(*selection.file);
  return ClipboardState::FILLED;
}

bool X11ClipboardWrite(const ClipboardBitmap& bitmap) {
  const auto file = std::make_shared<ByteBlock>();
  if (!FileMake(bitmap, file.get())) return false;
  X11Selection& selection = x11->selection;
  const X11Session session;
  if (session) {
    const X11Connection& at = x11->connection;
    WindowEnsure();
    selection.since = TimeNow(session);
    at.x->setSelectionOwner(at.link, selection.window, at.atoms[ATOM_CLIPBOARD], selection.since);
    const bool isOurs = OwnerOf(at.atoms[ATOM_CLIPBOARD]) == selection.window;
    // Another program was quicker. With a server that has died meanwhile it stays with this one.
    if (!isOurs && at.x->hasError(at.link) == 0) return true;
  }
  selection.file = file;
  selection.isKept = false;
  return true;
}

void X11SelectionKeep() {
  const X11Session session;
  X11Selection& selection = x11->selection;
  if (!session || !selection.file || selection.isKept) return;
  const xcb_atom_t keeper = x11->connection.atoms[ATOM_CLIPBOARD_MANAGER];
  if (OwnerOf(keeper) == 0) return;
  selection.isKept = true;
  // It takes the picture before it answers.
  Ask(session, keeper, x11->connection.atoms[ATOM_SAVE_TARGETS]);
}

ClipboardBitmap X11SelectionOffered() {
  const auto& file = x11->selection.file;
  return file ? BitmapIn(*file) : ClipboardBitmap{nullptr, 0};
}

}  // namespace zel
