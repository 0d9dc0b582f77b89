// Code 93, with the full ASCII that its shift characters give.
#include "barcode/control_names.h"
#include "barcode/reader.h"

namespace zel {
namespace {

// In the order of the values; the last four are the shifts.
constexpr Elements CODE93[] = {0x131112, 0x111213, 0x111312, 0x111411, 0x121113, 0x121212, 0x121311,
                               0x111114, 0x131211, 0x141111, 0x211113, 0x211212, 0x211311, 0x221112,
                               0x221211, 0x231111, 0x112113, 0x112212, 0x112311, 0x122112, 0x132111,
                               0x111123, 0x111222, 0x111321, 0x121122, 0x131121, 0x212112, 0x212211,
                               0x211122, 0x211221, 0x221121, 0x222111, 0x112122, 0x112221, 0x122121,
                               0x123111, 0x121131, 0x311112, 0x311211, 0x321111, 0x112131, 0x113121,
                               0x211131, 0x121221, 0x312111, 0x311121, 0x122211};
constexpr char CHARACTERS[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. $/+%";
constexpr char SHIFTS[] = "$%/+";
constexpr int32_t FIRST_SHIFT = 43;
constexpr int32_t SYMBOL_SIZE = 6;
constexpr double SYMBOL_MODULES = 9.0;
constexpr int64_t FRAME = 13;  // elements of the start, the stop and the last bar
constexpr int64_t START = 6;   // elements of the start
constexpr int64_t STOP_BARS = 7;
constexpr int64_t CHECKS = 2;
constexpr int64_t CHECK_BASE = 47;
constexpr int32_t LONGEST_ENTRY = 3;

// Characters behind a shift that give consecutive ASCII characters.
struct ShiftedRange {
  char shift, first, last;
  int32_t ascii;
};
constexpr ShiftedRange SHIFTED[] = {{'%', 'U', 'U', 0},  {'$', 'A', 'Z', 1},  {'%', 'A', 'E', 27},
                                    {'/', 'A', 'L', 33}, {'/', 'O', 'O', 47}, {'/', 'Z', 'Z', 58},
                                    {'%', 'F', 'J', 59}, {'%', 'V', 'V', 64}, {'%', 'K', 'O', 91},
                                    {'%', 'W', 'W', 96}, {'+', 'A', 'Z', 97}, {'%', 'P', 'S', 123},
                                    {'%', 'T', 'T', 127}};
constexpr int32_t ASCII_DELETE = 127;
constexpr int32_t ASCII_NONE = -1;

int32_t ShiftedAscii(char shift, char character) {
  for (const ShiftedRange& range : SHIFTED) {
    if (range.shift == shift && character >= range.first && character <= range.last) {
      return range.ascii + (character - range.first);
    }
  }
  return ASCII_NONE;
}

// The data characters as text. A control character stands there with the first letter of its name
// and counts as the whole name, so that the text ends in zero bytes: kept.
class AsciiText {
 public:
  explicit AsciiText(BarcodeText* text) : text_(text) {}

  Status Add(int32_t value) {
    const int32_t shift = shift_;
    shift_ = value >= FIRST_SHIFT ? value : 0;
    if (shift_ != 0) return STATUS_OK;
    const char character = CHARACTERS[value];
    if (shift == 0) {
      Append(character, 1);
      return STATUS_OK;
    }
    const int32_t ascii = ShiftedAscii(SHIFTS[shift - FIRST_SHIFT], character);
    if (ascii == ASCII_NONE) return STATUS_NO_ASCII;
    if (ascii < CONTROL_NAMES_END) {
      Append(CONTROL_NAMES[ascii][0], CONTROL_NAME_SIZE);
    } else if (ascii == ASCII_DELETE) {
      Append(DELETE_NAME[0], sizeof(DELETE_NAME) - 1);
    } else {
      Append(static_cast<char>(ascii), 1);
    }
    return STATUS_OK;
  }
  void End() { text_->length = length_; }

 private:
  void Append(char byte, int64_t counted) {
    text_->Append(byte);
    length_ += counted;
  }

  BarcodeText* text_;
  int64_t length_ = 0;
  int32_t shift_ = 0;  // the value before, if it is a shift
};

// The weights of the checks are plain positions, which the published ones are only in short codes:
// kept.
Status DecodeCode93(const BarWidths& widths, const BarcodeOptions&, BarcodeText* text) {
  // A symbol that is begun counts.
  const int64_t count = SymbolsIn(widths.Elements() - FRAME + (SYMBOL_SIZE - 1), SYMBOL_SIZE);
  if (count < CHECKS) return STATUS_BAD_CHECK;
  Status status = text->Reserve(LONGEST_ENTRY * count);
  if (status != STATUS_OK) return status;
  const ModuleWidths modules(widths, MeanModule(widths, SYMBOL_MODULES),
                             START + 2 * (widths.Bars() - STOP_BARS));
  const auto value = [&](int64_t index) {
    return Match(modules.Take(START + SYMBOL_SIZE * index, SYMBOL_SIZE), CODE93);
  };
  AsciiText ascii(text);
  int64_t sumC = 0;
  int64_t sumK = 0;
  for (int64_t i = 0; i < count - CHECKS; i++) {
    const int32_t data = value(i);
    status = ascii.Add(data);
    if (status != STATUS_OK) return status;
    sumC += (count - i - 2) * data;
    sumK += (count - i - 1) * data;
  }
  ascii.End();
  const int64_t c = sumC % CHECK_BASE;
  const int64_t k = (sumK + c) % CHECK_BASE;
  return value(count - 2) == c && value(count - 1) == k ? STATUS_OK : STATUS_BAD_CHECK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadCod93(ImageRef image, const RoiDescriptor* roi, int32_t, char** text,
                      int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCod93",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeCode93, {}));
}
