// Codes whose bars and spaces are narrow or wide: Codabar, Interleaved 2 of 5, MSI, Code 39.
#include "barcode/reader.h"

namespace zel {
namespace {

// In the order of the check values.
constexpr Elements CODABAR[] = {0x0000011, 0x0000110, 0x0001001, 0x1100000, 0x0010010,
                                0x1000010, 0x0100001, 0x0100100, 0x0110000, 0x1001000,
                                0x0001100, 0x0011000, 0x1000101, 0x1010001, 0x1010100,
                                0x0010101, 0x0011010, 0x0101001, 0x0001011, 0x0001110};
constexpr char CODABAR_CHARACTERS[] = "0123456789-$:/.+ABCD";
constexpr int32_t CODABAR_SIZE = 8;  // with the space to the next character
constexpr int64_t CODABAR_BASE = 16;

// The digits 1 to 9 and then 0: ties between rows go by this order.
constexpr Elements TWO_OF_FIVE[] = {0x10001, 0x01001, 0x11000, 0x00101, 0x10100,
                                    0x01100, 0x00011, 0x10010, 0x01010, 0x00110};
constexpr int32_t TWO_OF_FIVE_SIZE = 5;
constexpr int64_t TWO_OF_FIVE_START = 2;   // bars, and spaces, of the start
constexpr int64_t TWO_OF_FIVE_GUARDS = 4;  // bars of start and stop

constexpr int64_t MSI_START = 1;   // bars of the start
constexpr int64_t MSI_GUARDS = 3;  // bars of start and stop
constexpr int32_t MSI_SIZE = 4;    // bars of a digit

constexpr Elements CODE39[] = {
    0x000110100, 0x100100001, 0x001100001, 0x101100000, 0x000110001, 0x100110000, 0x001110000,
    0x000100101, 0x100100100, 0x001100100, 0x100001001, 0x001001001, 0x101001000, 0x000011001,
    0x100011000, 0x001011000, 0x000001101, 0x100001100, 0x001001100, 0x000011100, 0x100000011,
    0x001000011, 0x101000010, 0x000010011, 0x100010010, 0x001010010, 0x000000111, 0x100000110,
    0x001000110, 0x000010110, 0x110000001, 0x011000001, 0x111000000, 0x010010001, 0x110010000,
    0x011010000, 0x010000101, 0x110000100, 0x011000100, 0x010010100, 0x010101000, 0x010100010,
    0x010001010, 0x000101010};
constexpr char CODE39_CHARACTERS[] = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ-. *$/+%";
constexpr int32_t CODE39_ASTERISK = 39;  // start and stop
constexpr int32_t CODE39_SIZE = 9;
constexpr int64_t CODE39_BARS = 5;
constexpr int64_t CODE39_BASE = 43;

// The asterisk counts nothing, and what stands behind it one less than its row.
int64_t Code39Value(int32_t row) {
  if (row == CODE39_ASTERISK) return 0;
  return row < CODE39_ASTERISK ? row : row - 1;
}

// The sum counts all characters, start and stop among them, but the check behind which the stop
// stands.
Status DecodeCodabar(const BarWidths& widths, const BarcodeOptions& options, BarcodeText* text) {
  const TwoWidths classes(widths);
  const int64_t count = SymbolsIn(widths.Elements() + 1, CODABAR_SIZE);
  const Status status = text->Reserve(count);
  if (status != STATUS_OK) return status;
  int64_t sum = 0;
  int64_t check = -1;
  for (int64_t i = 0; i < count; i++) {
    const int32_t row = Match(classes.Take(CODABAR_SIZE * i, CODABAR_SIZE - 1), CODABAR);
    text->Append(CODABAR_CHARACTERS[row]);
    if (i == count - 2) {
      check = row;
    } else {
      sum += row;
    }
  }
  if (!options.validate) return STATUS_OK;
  if (check != CheckOf(sum, CODABAR_BASE)) return STATUS_BAD_CHECK;
  text->length--;  // the stop goes, and the check stays
  return STATUS_OK;
}

int32_t TwoOfFiveDigit(const TwoWidths& classes, int64_t first) {
  return (Match(classes.Take(first, TWO_OF_FIVE_SIZE, 2), TWO_OF_FIVE) + 1) % 10;
}

// A pair of digits lies in five bars and the spaces between them. The check is tested over all
// digits, itself included: kept, so that of usual checks only 0 and such passes.
Status DecodeInterleaved(const BarWidths& widths, const BarcodeOptions& options,
                         BarcodeText* text) {
  const TwoWidths classes(widths);
  const int64_t pairs = SymbolsIn(widths.Bars() - TWO_OF_FIVE_GUARDS, TWO_OF_FIVE_SIZE);
  const Status status = text->Reserve(2 * pairs);
  if (status != STATUS_OK) return status;
  int64_t sum = 0;
  int32_t last = -1;
  for (int64_t i = 0; i < pairs; i++) {
    const int64_t bar = 2 * (TWO_OF_FIVE_START + TWO_OF_FIVE_SIZE * i);
    const int32_t first = TwoOfFiveDigit(classes, bar);
    last = TwoOfFiveDigit(classes, bar + 1);
    text->Append(static_cast<char>('0' + first));
    text->Append(static_cast<char>('0' + last));
    sum += 3 * first + last;
  }
  if (!options.validate) return STATUS_OK;
  if (last != CheckOf(sum, 10)) return STATUS_BAD_CHECK;
  text->length--;
  return STATUS_OK;
}

// Of four bars, of which one that is not there is narrow.
int32_t MsiDigit(const TwoWidths& classes, int64_t index) {
  int32_t digit = 0;
  for (int32_t i = 0; i < MSI_SIZE; i++) {
    digit = 2 * digit + (classes.IsWide(2 * (MSI_START + MSI_SIZE * index + i)) ? 1 : 0);
  }
  return digit;
}

// The check of the digits before the last one: from the first digit on every second one is added,
// and those between them, as one number, are doubled and the digits of that added. A digit gives
// the same wherever it stands in that number: its double, the carry counted where it arises.
int64_t MsiSum(const char* text, int64_t count) {
  const int64_t pairs = (count - 1) / 2;
  int64_t sum = 0;
  for (int64_t i = 0; i < pairs; i++) {
    const int32_t doubled = 2 * (text[2 * i + 1] - '0');
    sum += (text[2 * i] - '0') + doubled % 10 + doubled / 10;
  }
  return count % 2 == 0 ? sum + (text[count - 2] - '0') : sum;
}

Status DecodeMsi(const BarWidths& widths, const BarcodeOptions& options, BarcodeText* text) {
  const TwoWidths classes(widths);
  const int64_t count = SymbolsIn(widths.Bars() - MSI_GUARDS, MSI_SIZE);
  const Status status = text->Reserve(count);
  if (status != STATUS_OK) return status;
  bool decimal = true;
  for (int64_t i = 0; i < count; i++) {
    const int32_t digit = MsiDigit(classes, i);
    text->Append(static_cast<char>('0' + digit));
    if (digit > 9) decimal = false;
  }
  if (!options.validate) return STATUS_OK;
  if (count < 1 || !decimal) return STATUS_BAD_CHECK;
  const char* digits = text->bytes.data();
  if (digits[count - 1] - '0' != CheckOf(MsiSum(digits, count), 10)) return STATUS_BAD_CHECK;
  text->length--;
  return STATUS_OK;
}

Status DecodeCode39(const BarWidths& widths, const BarcodeOptions& options, BarcodeText* text) {
  const TwoWidths classes(widths);
  const int64_t count = SymbolsIn(widths.Bars(), CODE39_BARS);
  if (options.validate && count < 3) return STATUS_BAD_CHECK;
  const Status status = text->Reserve(count);
  if (status != STATUS_OK) return status;
  // With a check only what stands between the start and the check is text.
  const int64_t begin = options.validate ? 1 : 0;
  const int64_t end = options.validate ? count - 2 : count;
  int64_t sum = 0;
  int64_t check = 0;
  for (int64_t i = 0; i < count; i++) {
    const int32_t row = Match(classes.Take(2 * CODE39_BARS * i, CODE39_SIZE), CODE39);
    if (i >= begin && i < end) text->Append(CODE39_CHARACTERS[row]);
    if (i == count - 2) {
      check = Code39Value(row);
    } else {
      sum += Code39Value(row);
    }
  }
  return options.validate && check != sum % CODE39_BASE ? STATUS_BAD_CHECK : STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadCodabar(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                        int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCodabar",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeCodabar,
                                           {.validate = validate != 0}));
}

int32_t ZEL_ReadCod25(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                      int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCod25",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeInterleaved,
                                           {.validate = validate != 0}));
}

int32_t ZEL_ReadMSI(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                    int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadMSI",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeMsi,
                                           {.validate = validate != 0}));
}

int32_t ZEL_ReadCod39(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                      int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCod39",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeCode39,
                                           {.validate = validate != 0}));
}
