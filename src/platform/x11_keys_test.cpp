// Keys by the X protocol's rules for keyboards: two groups of two columns, Shift, Lock, Num Lock.
#include "platform/x11_keys.h"

#include <gtest/gtest.h>

#include <vector>

#include "platform/desktop.h"

namespace {

constexpr int32_t COLUMNS = 7;
constexpr uint8_t FIRST_CODE = 8;
constexpr uint8_t CODE = 10;

constexpr uint16_t SHIFT = 1 << 0;
constexpr uint16_t LOCK = 1 << 1;
constexpr uint16_t NUM = 1 << 4;            // where keyboards have Num Lock
constexpr uint16_t THIRD = 1 << 7;          // where they have the shift to the third level
constexpr uint16_t SECOND_GROUP = 1 << 13;  // the keyboard extension tells groups in these two bits

// A keyboard of three keys of which the one in the middle has these meanings.
zel::X11Connection Keyboard(const std::vector<xcb_keysym_t>& columns) {
  zel::X11Connection keyboard;
  keyboard.firstCode = FIRST_CODE;
  keyboard.keysPerCode = COLUMNS;
  keyboard.keys.assign(size_t{COLUMNS} * (CODE - FIRST_CODE), 'w');
  keyboard.keys.insert(keyboard.keys.end(), columns.begin(), columns.end());
  keyboard.keys.resize(size_t{COLUMNS} * (CODE - FIRST_CODE + 1), 0);
  return keyboard;
}

struct Case {
  const char* what;
  std::vector<xcb_keysym_t> columns;
  uint16_t state;
  int32_t key;
};

void Hold(const std::vector<Case>& cases) {
  for (const Case& one : cases) {
    EXPECT_EQ(zel::X11KeyOf(Keyboard(one.columns), CODE, one.state), one.key) << one.what;
  }
}

TEST(X11Keys, AreCharactersOfTheColumnThatShiftChooses) {
  Hold({{"plain", {'a', 'A'}, 0, 'a'},
        {"Shift", {'a', 'A'}, SHIFT, 'A'},
        {"a digit", {'1', '!'}, 0, '1'},
        {"a digit with Shift", {'1', '!'}, SHIFT, '!'},
        {"a letter alone in its group has its capital beside it", {'a'}, SHIFT, 'A'},
        {"any other key alone in its group has itself", {' '}, SHIFT, ' '},
        {"Control changes no column", {'a', 'A'}, 1 << 2, 'a'}});
}

TEST(X11Keys, AreCapitalLettersUnderLock) {
  Hold({{"the first letter", {'a', 'A'}, LOCK, 'A'},
        {"the last letter", {'z', 'Z'}, LOCK, 'Z'},
        {"Shift does not take Lock back", {'a', 'A'}, SHIFT | LOCK, 'A'},
        {"a small letter behind Shift", {'A', 'a'}, SHIFT | LOCK, 'A'},
        {"a digit", {'1', '!'}, LOCK, '1'},
        {"grave, before the letters", {'`', '~'}, LOCK, '`'},
        {"braceleft, behind them", {'{', '['}, LOCK, '{'},
        {"agrave, the first beyond ASCII", {0xE0, 0xC0}, LOCK, 0xC0},
        {"thorn, the last with a capital", {0xFE, 0xDE}, LOCK, 0xDE},
        {"odiaeresis, before the sign", {0xF6, 0xD6}, LOCK, 0xD6},
        {"oslash, behind it", {0xF8, 0xD8}, LOCK, 0xD8},
        {"the division sign is no letter", {0xF7, 0xD7}, LOCK, 0xF7},
        {"nor with Shift, where it stands alone", {0xF7}, SHIFT, 0xF7},
        {"ssharp has no capital in Latin 1", {0xDF, '?'}, LOCK, 0xDF},
        {"nor has ydiaeresis", {0xFF, '?'}, LOCK, 0xFF}});
}

TEST(X11Keys, AreOfTheSecondGroupWhereThereIsOne) {
  Hold({{"the first group", {'y', 'Y', 'z', 'Z'}, 0, 'y'},
        {"the second", {'y', 'Y', 'z', 'Z'}, SECOND_GROUP, 'z'},
        {"the second with Shift", {'y', 'Y', 'q', 'Z'}, SECOND_GROUP | SHIFT, 'Z'},
        {"the second under Lock", {'y', 'Y', 'z', 'x'}, SECOND_GROUP | LOCK, 'Z'},
        {"no second group", {'y', 'Y'}, SECOND_GROUP, 'y'},
        {"no second group, with Shift", {'y', 'Y'}, SECOND_GROUP | SHIFT, 'Y'}});
}

TEST(X11Keys, AreOfTheThirdLevelWhereThereIsOne) {
  const std::vector<xcb_keysym_t> columns = {'q', 'Q', 'q', 'Q', '@', 'x'};
  const std::vector<xcb_keysym_t> twoGroups = {'q', 'Q', 'z', 'Z', '@', 'x', '}'};
  Hold({{"the third level", columns, THIRD, '@'},
        {"the fourth", columns, THIRD | SHIFT, 'x'},
        {"the third of the second group", twoGroups, THIRD | SECOND_GROUP, '}'},
        {"that of the first group, where the second has none", columns, THIRD | SECOND_GROUP, '@'},
        {"no third level", {'q', 'Q'}, THIRD, 'q'},
        {"no third level, with Shift", {'q', 'Q'}, THIRD | SHIFT, 'Q'}});
}

// Num Lock and Shift each turn a key of the pad to its second column, both together turn it back.
TEST(X11Keys, OfThePadAreDigitsUnderNumLock) {
  const std::vector<xcb_keysym_t> deletes = {0xFF9F, 0xFFAE};  // KP_Delete, KP_Decimal
  const std::vector<xcb_keysym_t> inserts = {0xFF9E, 0xFFB0};  // KP_Insert, KP_0
  Hold({{"KP_Delete", deletes, 0, 512},
        {"KP_Delete under Num Lock", deletes, NUM, '.'},
        {"KP_Delete with Shift", deletes, SHIFT, '.'},
        {"KP_Delete with both", deletes, NUM | SHIFT, 512},
        {"KP_Insert", inserts, 0, 0xFF9E},
        {"KP_Insert under Num Lock", inserts, NUM, '0'},
        {"KP_Insert with both", inserts, NUM | SHIFT, 0xFF9E},
        {"Num Lock is for the pad alone", {'1', '!'}, NUM, '1'}});
}

TEST(X11Keys, OfThePadAreTheCharactersOnThem) {
  Hold({{"KP_Space", {0xFF80, 0xFF80}, 0, ' '},
        {"KP_Tab", {0xFF89, 0xFF89}, 0, 9},
        {"KP_Enter", {0xFF8D, 0xFF8D}, 0, 13},
        {"KP_Enter alone", {0xFF8D}, 0, 13},
        {"KP_Multiply", {0xFFAA, 0xFFAA}, 0, '*'},
        {"KP_Add", {0xFFAB, 0xFFAB}, 0, '+'},
        {"KP_Separator", {0xFFAC, 0xFFAC}, 0, ','},
        {"KP_Subtract", {0xFFAD, 0xFFAD}, 0, '-'},
        {"KP_Divide", {0xFFAF, 0xFFAF}, 0, '/'},
        {"KP_9", {0xFF9A, 0xFFB9}, NUM, '9'},
        {"KP_Equal", {0xFFBD, 0xFFBD}, 0, '='}});
}

TEST(X11Keys, HaveNumbersOfTheirOwnOrTheServers) {
  Hold({{"BackSpace", {0xFF08}, 0, 8},
        {"Tab", {0xFF09, 0xFE20}, 0, 9},
        {"ISO_Left_Tab", {0xFF09, 0xFE20}, SHIFT, 9},
        {"Return", {0xFF0D}, 0, 13},
        {"Escape", {0xFF1B}, 0, 27},
        {"Delete", {0xFFFF}, 0, 512},
        {"Left", {0xFF51}, 0, 0xFF51},
        {"F1", {0xFFBE}, 0, 0xFFBE},
        {"Pause, before Scroll_Lock", {0xFF13}, 0, 0xFF13},
        {"Sys_Req, behind it", {0xFF15}, 0, 0xFF15},
        {"EuroSign of Unicode", {0x010020AC}, 0, 0x20AC},
        {"the last of Unicode", {0x0110FFFF}, 0, 0x10FFFF}});
}

TEST(X11Keys, AreNoneForModifiersAndWhereNothingIsMeant) {
  for (const xcb_keysym_t modifier : {0xFFE1u, 0xFFE4u, 0xFFE5u, 0xFFE9u, 0xFFEEu, 0xFF7Eu, 0xFF7Fu,
                                      0xFF14u, 0xFE01u, 0xFE03u, 0xFE13u}) {
    EXPECT_EQ(zel::X11KeyOf(Keyboard({modifier}), CODE, 0), 0) << std::hex << modifier;
  }
  EXPECT_EQ(zel::X11KeyOf(Keyboard({}), CODE, SHIFT | LOCK), 0);
  const zel::X11Connection keyboard = Keyboard({'a'});
  EXPECT_EQ(zel::X11KeyOf(keyboard, FIRST_CODE - 1, 0), 0);
  EXPECT_EQ(zel::X11KeyOf(keyboard, FIRST_CODE, 0), 'w');
  EXPECT_EQ(zel::X11KeyOf(keyboard, CODE + 1, 0), 0);
  EXPECT_EQ(zel::X11KeyOf({}, CODE, 0), 0) << "a server that told of no keys";
}

TEST(X11Keys, TellShiftAndControlOfTheModifiers) {
  EXPECT_EQ(zel::X11ModifiersOf(0), 0);
  EXPECT_EQ(zel::X11ModifiersOf(SHIFT), zel::MODIFIER_SHIFT);
  EXPECT_EQ(zel::X11ModifiersOf(1 << 2), zel::MODIFIER_CONTROL);
  EXPECT_EQ(zel::X11ModifiersOf(0xFFFF), zel::MODIFIER_SHIFT | zel::MODIFIER_CONTROL);
}

}  // namespace
