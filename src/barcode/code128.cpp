// Code 128: three sets of characters, and values that change from one to another.
#include "barcode/control_names.h"
#include "barcode/reader.h"

namespace zel {
namespace {

// In the order of the values, and then the starts in the sets A, B and C.
constexpr Elements CODE128[] = {
    0x212222, 0x222122, 0x222221, 0x121223, 0x121322, 0x131222, 0x122213, 0x122312, 0x132212,
    0x221213, 0x221312, 0x231212, 0x112232, 0x122132, 0x122231, 0x113222, 0x123122, 0x123221,
    0x223211, 0x221132, 0x221231, 0x213212, 0x223112, 0x312131, 0x311222, 0x321122, 0x321221,
    0x312212, 0x322112, 0x322211, 0x212123, 0x212321, 0x232121, 0x111323, 0x131123, 0x131321,
    0x112313, 0x132113, 0x132311, 0x211313, 0x231113, 0x231311, 0x112133, 0x112331, 0x132131,
    0x113123, 0x113321, 0x133121, 0x313121, 0x211331, 0x231131, 0x213113, 0x213311, 0x213131,
    0x311123, 0x311321, 0x331121, 0x312113, 0x312311, 0x332111, 0x314111, 0x221411, 0x431111,
    0x111224, 0x111422, 0x121124, 0x121421, 0x141122, 0x141221, 0x112214, 0x112412, 0x122114,
    0x122411, 0x142112, 0x142211, 0x241211, 0x221114, 0x413111, 0x241112, 0x134111, 0x111242,
    0x121142, 0x121241, 0x114212, 0x124112, 0x124211, 0x411212, 0x421112, 0x421211, 0x212141,
    0x214121, 0x412121, 0x111143, 0x111341, 0x131141, 0x114113, 0x114311, 0x411113, 0x411311,
    0x113141, 0x114131, 0x311141, 0x411131};
constexpr Elements STARTS[] = {0x211412, 0x211214, 0x211232};
constexpr int32_t FIRST_START = 103;

constexpr int32_t SYMBOL_SIZE = 6;
constexpr double SYMBOL_MODULES = 11.0;
constexpr int64_t STOP_SIZE = 7;
constexpr int64_t STOP_BARS = 4;
constexpr int64_t CHECK_BASE = 103;

enum CharacterSet : int32_t { SET_A, SET_B, SET_C };

// From value 99 on stand the changes to C, B and A; in the set that is in use, something else.
constexpr int32_t CHANGE_TO_C = 99;
constexpr int32_t CHANGE_TO_A = 101;

bool IsChange(int32_t value, int32_t set) {
  return value >= CHANGE_TO_C && value <= CHANGE_TO_A && CHANGE_TO_A - value != set;
}

// What stands behind the characters, in sets A and B from here on, in C the last one only.
constexpr int32_t FIRST_FUNCTION = 96;
constexpr int32_t FUNCTION_SIZE = 5;
constexpr char FUNCTIONS[][FUNCTION_SIZE + 1] = {"FNC 3", "FNC 2", "SHIFT", "",
                                                 "FNC 4", "FNC 4", "FNC 1"};
constexpr int32_t PAIRS_END = 100;
constexpr int32_t FIRST_CONTROL = 64;  // in set A
constexpr int32_t DELETE = 95;         // in set B

// The text of a value that changes no set. Control and function characters give their names.
void AppendValue(int32_t value, int32_t set, BarcodeText* text) {
  if (set == SET_C && value < PAIRS_END) {
    text->Append(static_cast<char>('0' + value / 10));
    text->Append(static_cast<char>('0' + value % 10));
  } else if (value >= FIRST_FUNCTION) {
    text->Append(FUNCTIONS[value - FIRST_FUNCTION], FUNCTION_SIZE);
  } else if (set == SET_A && value >= FIRST_CONTROL) {
    text->Append(CONTROL_NAMES[value - FIRST_CONTROL], CONTROL_NAME_SIZE);
  } else if (set == SET_B && value == DELETE) {
    text->Append(DELETE_NAME, sizeof(DELETE_NAME) - 1);
  } else {
    text->Append(static_cast<char>(' ' + value));
  }
}

Status DecodeCode128(const BarWidths& widths, const BarcodeOptions&, BarcodeText* text) {
  const int64_t count = SymbolsIn(widths.Elements() - STOP_SIZE, SYMBOL_SIZE);
  if (count < 2) return STATUS_BAD_CHECK;
  const Status status = text->Reserve(FUNCTION_SIZE * count);
  if (status != STATUS_OK) return status;
  const ModuleWidths modules(widths, MeanModule(widths, SYMBOL_MODULES),
                             2 * (widths.Bars() - STOP_BARS));
  int32_t set = Match(modules.Take(0, SYMBOL_SIZE), STARTS);
  int64_t sum = FIRST_START + set;
  for (int64_t i = 1; i < count - 1; i++) {
    const int32_t value = Match(modules.Take(SYMBOL_SIZE * i, SYMBOL_SIZE), CODE128);
    sum += i * value;
    if (IsChange(value, set)) {
      set = CHANGE_TO_A - value;
    } else {
      AppendValue(value, set, text);
    }
  }
  const int32_t check = Match(modules.Take(SYMBOL_SIZE * (count - 1), SYMBOL_SIZE), CODE128);
  return check == sum % CHECK_BASE ? STATUS_OK : STATUS_BAD_CHECK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadCod128(ImageRef image, const RoiDescriptor* roi, int32_t, char** text,
                       int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCod128",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeCode128, {}));
}
