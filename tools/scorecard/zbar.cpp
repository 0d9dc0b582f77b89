// ZBar, where it is installed.
#if defined(PTK_HAVE_ZBAR)
#include <zbar.h>

#include <memory>

#include "scorecard/readers.h"

namespace scorecard {

std::optional<std::string> ReadByZbar(const Sight& sight, const Code& code, bool validate) {
  static const zbar::zbar_symbol_type_t TYPES[] = {
      zbar::ZBAR_CODABAR, zbar::ZBAR_I25,  zbar::ZBAR_NONE,  zbar::ZBAR_CODE39, zbar::ZBAR_CODE93,
      zbar::ZBAR_CODE128, zbar::ZBAR_EAN8, zbar::ZBAR_EAN13, zbar::ZBAR_UPCA};
  using namespace zbar;  // NOLINT: a C header in a namespace
  const zbar_symbol_type_t type = TYPES[static_cast<size_t>(code.kind)];
  const std::unique_ptr<zbar_image_scanner_t, void (*)(zbar_image_scanner_t*)> scanner(
      zbar_image_scanner_create(), zbar_image_scanner_destroy);
  zbar_image_scanner_set_config(scanner.get(), ZBAR_NONE, ZBAR_CFG_ENABLE, 0);
  zbar_image_scanner_set_config(scanner.get(), type, ZBAR_CFG_ENABLE, 1);
  // Its UPC-A are EAN-13 first.
  if (type == ZBAR_UPCA)
    zbar_image_scanner_set_config(scanner.get(), ZBAR_EAN13, ZBAR_CFG_ENABLE, 1);
  if (validate) zbar_image_scanner_set_config(scanner.get(), type, ZBAR_CFG_ADD_CHECK, 1);
  const std::unique_ptr<zbar_image_t, void (*)(zbar_image_t*)> image(zbar_image_create(),
                                                                     zbar_image_destroy);
  zbar_image_set_format(image.get(), zbar_fourcc('Y', '8', '0', '0'));
  zbar_image_set_size(image.get(), static_cast<unsigned>(sight.width),
                      static_cast<unsigned>(sight.height));
  zbar_image_set_data(image.get(), sight.pixels.data(), sight.pixels.size(), nullptr);
  if (zbar_scan_image(scanner.get(), image.get()) <= 0) return std::nullopt;
  const zbar_symbol_t* symbol = zbar_image_first_symbol(image.get());
  return symbol ? std::optional<std::string>(zbar_symbol_get_data(symbol)) : std::nullopt;
}

}  // namespace scorecard
#endif
