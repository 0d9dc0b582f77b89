// From the numbers on the keyboard to characters.
#include "platform/x11_keys.h"

#include <algorithm>
#include <iterator>

#include "platform/desktop.h"

namespace zel {
namespace {

// Numbers of the X keyboard.
constexpr xcb_keysym_t UNICODE = 0x01000000;
constexpr xcb_keysym_t UNICODE_END = 0x01110000;
constexpr xcb_keysym_t PAD = 0xFF80;
constexpr xcb_keysym_t PAD_END = 0xFFBE;
constexpr xcb_keysym_t PAD_CHARACTERS = 0xFFAA;  // less PAD, these are ASCII

constexpr uint16_t NUM_LOCK = XCB_MOD_MASK_2;
constexpr uint16_t THIRD_LEVEL = XCB_MOD_MASK_5;

struct Range {
  xcb_keysym_t first, last;
};
constexpr Range MODIFIERS[] = {{0xFE01, 0xFE13},   // levels and groups
                               {0xFF7E, 0xFF7F},   // mode switch, num lock
                               {0xFF14, 0xFF14},   // scroll lock
                               {0xFFE1, 0xFFEE}};  // shift, control, locks, meta, alt, super, hyper

struct Named {
  xcb_keysym_t key;
  int32_t number;
};
constexpr Named NAMED[] = {{0xFF08, 8},  {0xFF09, 9},   {0xFE20, 9},  {0xFF89, 9},
                           {0xFF0D, 13}, {0xFF8D, 13},  {0xFF1B, 27}, {0xFF80, 32},
                           {0xFFBD, 61}, {0xFFFF, 512}, {0xFF9F, 512}};

bool IsModifier(xcb_keysym_t key) {
  return std::any_of(std::begin(MODIFIERS), std::end(MODIFIERS),
                     [key](const Range& range) { return key >= range.first && key <= range.last; });
}

xcb_keysym_t ColumnOf(const X11Connection& at, uint8_t code, int32_t column) {
  const int32_t index = (code - at.firstCode) * at.keysPerCode + column;
  const bool isThere = code >= at.firstCode && column < at.keysPerCode &&
                       index < static_cast<int32_t>(at.keys.size());
  return isThere ? at.keys[static_cast<size_t>(index)] : xcb_keysym_t{0};
}

xcb_keysym_t Upper(xcb_keysym_t key) {
  const bool isSmall = (key >= 'a' && key <= 'z') || (key >= 0xE0 && key <= 0xFE && key != 0xF7);
  return isSmall ? key - 0x20 : key;
}

xcb_keysym_t KeyAt(const X11Connection& at, uint8_t code, uint16_t state) {
  const bool isShift = (state & XCB_MOD_MASK_SHIFT) != 0;
  const xcb_keysym_t pad = ColumnOf(at, code, 1);
  const bool isPad = pad >= PAD && pad < PAD_END;
  if (isPad) return ColumnOf(at, code, ((state & NUM_LOCK) != 0) != isShift ? 1 : 0);
  // The third level of a group stands behind both groups' first two.
  const int32_t group = (state >> 13 & 3) == 0 ? 0 : 2;
  const int32_t level = (state & THIRD_LEVEL) != 0 ? 4 : 0;
  xcb_keysym_t key = 0;
  for (const int32_t column : {level + group, level, 0}) {
    if (key == 0) key = ColumnOf(at, code, column + (isShift ? 1 : 0));
  }
  if (key == 0) key = isShift ? Upper(ColumnOf(at, code, 0)) : ColumnOf(at, code, 0);
  return (state & XCB_MOD_MASK_LOCK) != 0 ? Upper(key) : key;
}

}  // namespace

int32_t X11KeyOf(const X11Connection& connection, uint8_t code, uint16_t state) {
  const xcb_keysym_t key = KeyAt(connection, code, state);
  if (IsModifier(key)) return 0;
  const auto named = std::find_if(std::begin(NAMED), std::end(NAMED),
                                  [key](const Named& candidate) { return candidate.key == key; });
  if (named != std::end(NAMED)) return named->number;
  if (key >= PAD_CHARACTERS && key < PAD_END) return static_cast<int32_t>(key - PAD);
  if (key >= UNICODE && key < UNICODE_END) return static_cast<int32_t>(key - UNICODE);
  return static_cast<int32_t>(key);
}

int32_t X11ModifiersOf(uint16_t state) {
  return ((state & XCB_MOD_MASK_SHIFT) != 0 ? MODIFIER_SHIFT : 0) |
         ((state & XCB_MOD_MASK_CONTROL) != 0 ? MODIFIER_CONTROL : 0);
}

}  // namespace zel
