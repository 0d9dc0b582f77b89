// Calls of the library, the front and its peers.
#include "scorecard/readers.h"

#include <algorithm>
#include <memory>

#if defined(PTK_HAVE_ZXING)
#define ZX_USE_UTF8  // its texts are of bytes then
#include <ZXing/ReadBarcode.h>
#endif

#include "orlune/read/barcode_calls.h"
#include "orlune/read/barcode_search.h"

namespace scorecard {
namespace {

using front::BarcodeKind;
using Text = std::optional<std::string>;

front::Image ImageOf(const Sight& sight) {
  front::Image image(IMAGE_U8, 0, sight.width, sight.height);
  const ImageInfo info = image.Info();
  for (int32_t y = 0; y < sight.height; ++y) {
    std::copy_n(sight.pixels.begin() + int64_t{y} * sight.width, sight.width,
                front::Row<uint8_t>(info, y));
  }
  return image;
}

Text ReadByLibrary(const Sight& sight, const Code& code, bool validate) {
  const front::Region& place = sight.place;
  const int digit = code.kind == BarcodeKind::Ean13 ? code.text[0] - '0' : 0;
  return front::ReadBars(
      ImageOf(sight),
      {place.left, place.top, place.left + place.width - 1, place.top + place.height - 1},
      {.kind = code.kind, .validate = validate, .firstDigit = digit});
}

Text ReadByFront(const Sight& sight, const Code& code, bool validate) {
  front::BarcodeSettings settings;
  settings.kind = code.kind;
  settings.validate = validate;
  const auto reading = front::FindBarcode(ImageOf(sight), settings);
  return reading ? Text(reading->text) : std::nullopt;
}

bool IsNotMsi(BarcodeKind kind) {
  return kind != BarcodeKind::Msi;
}

#if defined(PTK_HAVE_ZXING)
Text ReadByZxing(const Sight& sight, const Code& code, bool validate) {
  using ZXing::BarcodeFormat;
  static const BarcodeFormat FORMATS[] = {
      BarcodeFormat::Codabar, BarcodeFormat::ITF,    BarcodeFormat::None,
      BarcodeFormat::Code39,  BarcodeFormat::Code93, BarcodeFormat::Code128,
      BarcodeFormat::EAN8,    BarcodeFormat::EAN13,  BarcodeFormat::UPCA};
  const auto hints = ZXing::DecodeHints()
                         .setFormats(FORMATS[static_cast<size_t>(code.kind)])
                         .setTryHarder(true)
                         .setTryRotate(true)
                         .setReturnCodabarStartEnd(true)
                         .setValidateCode39CheckSum(validate)
                         .setValidateITFCheckSum(validate);
  const ZXing::Result result = ZXing::ReadBarcode(
      {sight.pixels.data(), sight.width, sight.height, ZXing::ImageFormat::Lum}, hints);
  return result.isValid() ? Text(result.text()) : std::nullopt;
}
#endif

}  // namespace

std::vector<Reader> AllReaders() {
  const auto all = [](BarcodeKind) { return true; };
  return {
    {"library", all, ReadByLibrary}, {"orlune read", all, ReadByFront},
#if defined(PTK_HAVE_ZXING)
        {"ZXing", IsNotMsi, ReadByZxing},
#endif
#if defined(PTK_HAVE_ZBAR)
        {"ZBar", IsNotMsi, ReadByZbar},
#endif
  };
}

std::string Common(BarcodeKind kind, std::string text) {
  if (kind == BarcodeKind::Code39) std::erase(text, '*');
  return text;
}

}  // namespace scorecard
