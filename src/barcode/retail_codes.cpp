// EAN-8, EAN-13 and UPC-A: digits of two bars and two spaces between guards, in modules of which a
// whole code has a known number.
#include "barcode/reader.h"

namespace zel {
namespace {

constexpr Elements FORWARD[] = {0x3211, 0x2221, 0x2122, 0x1411, 0x1132,
                                0x1231, 0x1114, 0x1312, 0x1213, 0x3112};
constexpr Elements REVERSED[] = {0x1123, 0x1222, 0x2212, 0x1141, 0x2311,
                                 0x1321, 0x4111, 0x2131, 0x3121, 0x2113};
constexpr int32_t DIGIT_SIZE = 4;
constexpr int64_t GUARD_SIZE = 3;
constexpr int64_t CENTRE_SIZE = 5;

// For each leading digit, which of the left digits are reversed: the first one in bit 5.
constexpr uint32_t REVERSED_LEFT[] = {0b000000, 0b001011, 0b001101, 0b001110, 0b010011,
                                      0b011001, 0b011100, 0b010101, 0b010110, 0b011010};
constexpr uint32_t ALL_FORWARD = 0;

struct RetailCode {
  int64_t leastBars;
  double modules;
  int32_t half;  // digits on each side of the centre
};
constexpr RetailCode EAN8 = {22, 67.0, 4};
constexpr RetailCode EAN13 = {30, 95.0, 6};  // and UPC-A

void AppendDigits(const ModuleWidths& modules, const RetailCode& code, uint32_t reversedLeft,
                  BarcodeText* text) {
  const int64_t right = GUARD_SIZE + DIGIT_SIZE * code.half + CENTRE_SIZE;
  for (int32_t i = 0; i < code.half; i++) {
    const bool reversed = (reversedLeft >> (code.half - 1 - i) & 1) != 0;
    const Elements symbol = modules.Take(GUARD_SIZE + DIGIT_SIZE * i, DIGIT_SIZE);
    text->Append(static_cast<char>('0' + Match(symbol, reversed ? REVERSED : FORWARD)));
  }
  for (int32_t i = 0; i < code.half; i++) {
    const Elements symbol = modules.Take(right + DIGIT_SIZE * i, DIGIT_SIZE);
    text->Append(static_cast<char>('0' + Match(symbol, FORWARD)));
  }
}

// From the digit before the check on to the left, every second digit counts three times.
Status VerifyCheck(const BarcodeText& text) {
  int64_t sum = 0;
  int32_t weight = 3;
  for (int64_t i = text.length - 2; i >= 0; i--) {
    sum += weight * (text.bytes[static_cast<size_t>(i)] - '0');
    weight = 4 - weight;
  }
  const int32_t check = text.bytes[static_cast<size_t>(text.length - 1)] - '0';
  return check == CheckOf(sum, 10) ? STATUS_OK : STATUS_BAD_CHECK;
}

// `text` may have a leading digit that does not stand in the bars.
Status DecodeRetail(const BarWidths& widths, const RetailCode& code, uint32_t reversedLeft,
                    BarcodeText* text) {
  if (widths.Bars() < code.leastBars) return STATUS_TOO_FEW_BARS;
  double sum = 0.0;
  for (int64_t i = 0; i < widths.Elements(); i++) sum += widths[i];
  const ModuleWidths modules(widths, sum / code.modules, widths.Elements());
  AppendDigits(modules, code, reversedLeft, text);
  return VerifyCheck(*text);
}

Status DecodeEan8(const BarWidths& widths, const BarcodeOptions&, BarcodeText* text) {
  const Status status = text->Reserve(8);
  return status != STATUS_OK ? status : DecodeRetail(widths, EAN8, ALL_FORWARD, text);
}

Status DecodeUpcA(const BarWidths& widths, const BarcodeOptions&, BarcodeText* text) {
  const Status status = text->Reserve(12);
  return status != STATUS_OK ? status : DecodeRetail(widths, EAN13, ALL_FORWARD, text);
}

Status DecodeEan13(const BarWidths& widths, const BarcodeOptions& options, BarcodeText* text) {
  const Status status = text->Reserve(13);
  if (status != STATUS_OK) return status;
  text->Append(static_cast<char>('0' + options.firstDigit));
  return DecodeRetail(widths, EAN13, REVERSED_LEFT[options.firstDigit], text);
}

Status ReadEan13(const BarcodeRequest& request, const uint8_t* firstDigit) {
  const Status status = request.Check();
  if (status != STATUS_OK) return status;
  if (!firstDigit) return STATUS_NO_OUTPUT;
  return BarcodeRead(request, DecodeEan13, {.firstDigit = *firstDigit > 9 ? 1 : *firstDigit});
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadCodEAN8(ImageRef image, const RoiDescriptor* roi, int32_t, char** text,
                        int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadCodEAN8",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeEan8, {}));
}

int32_t ZEL_ReadEAN13(ImageRef image, const RoiDescriptor* roi, int32_t, const uint8_t* firstDigit,
                      char** text, int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadEAN13",
                          zel::ReadEan13({image, roi, text, textLength}, firstDigit));
}

int32_t ZEL_ReadUPCA(ImageRef image, const RoiDescriptor* roi, int32_t, char** text,
                     int32_t* textLength) {
  return ZEL_ProcessError("ZEL_ReadUPCA",
                          zel::BarcodeRead({image, roi, text, textLength}, zel::DecodeUpcA, {}));
}
