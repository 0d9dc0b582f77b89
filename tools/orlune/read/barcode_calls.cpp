// Calls of the library's readers, on pictures and on bars drawn for them.
#include "orlune/read/barcode_calls.h"

#include <algorithm>

namespace front {
namespace {

int32_t CallReader(ImageRef image, const RoiDescriptor* region, const BarcodeCall& call,
                   char** text, int32_t* length) {
  const int32_t validate = call.validate ? 1 : 0;
  const auto digit = static_cast<uint8_t>(call.firstDigit);
  switch (call.kind) {
    case BarcodeKind::Codabar:
      return ZEL_ReadCodabar(image, region, validate, text, length);
    case BarcodeKind::Interleaved:
      return ZEL_ReadCod25(image, region, validate, text, length);
    case BarcodeKind::Msi:
      return ZEL_ReadMSI(image, region, validate, text, length);
    case BarcodeKind::Code39:
      return ZEL_ReadCod39(image, region, validate, text, length);
    case BarcodeKind::Code93:
      return ZEL_ReadCod93(image, region, validate, text, length);
    case BarcodeKind::Code128:
      return ZEL_ReadCod128(image, region, validate, text, length);
    case BarcodeKind::Ean8:
      return ZEL_ReadCodEAN8(image, region, validate, text, length);
    case BarcodeKind::Ean13:
      return ZEL_ReadEAN13(image, region, validate, &digit, text, length);
    case BarcodeKind::UpcA:
      return ZEL_ReadUPCA(image, region, validate, text, length);
  }
  return 0;
}

}  // namespace

std::optional<std::string> ReadBars(const Image& gray, const Bars& area, const BarcodeCall& call) {
  const int32_t from = call.backward ? area.right : area.left;
  const int32_t to = call.backward ? area.left : area.right;
  const int32_t flat[] = {
      area.left, area.top, area.right + 1, area.bottom + 1, ROI_MARKER_EXTERNAL, ROI_RECT, from,
      area.top,  to,       area.bottom};
  RoiDescriptor* region = nullptr;
  Check(ZEL_ArrayToROI(flat, 10, &region));
  char* text = nullptr;
  int32_t length = 0;
  const int32_t status = CallReader(gray, region, call, &text, &length);
  ZEL_FreeROI(region);
  const Block<char> block(text);
  if (status == ZEL_ERR_MEMORY_FULL) Check(status);
  if (status != 0) return std::nullopt;
  return std::string(text, text + length);
}

std::optional<std::string> ReadWidths(const std::string& widths, const BarcodeCall& call) {
  constexpr int32_t MODULE = 6;  // pixels
  constexpr int32_t MARGIN = 2;  // modules of light at either end
  constexpr uint8_t DARK = 0, LIGHT = 255;
  int32_t modules = 2 * MARGIN;
  for (const char width : widths) modules += width - '0';
  const Image drawn(IMAGE_U8, 0, modules * MODULE, 1);
  auto* row = Row<uint8_t>(drawn.Info(), 0);
  std::fill(row, row + modules * MODULE, LIGHT);
  uint8_t* pixel = row + MARGIN * MODULE;
  for (size_t i = 0; i < widths.size(); ++i) {
    const int32_t pixels = (widths[i] - '0') * MODULE;
    if (i % 2 == 0) std::fill(pixel, pixel + pixels, DARK);
    pixel += pixels;
  }
  return ReadBars(drawn, {0, 0, modules * MODULE - 1, 0}, call);
}

}  // namespace front
