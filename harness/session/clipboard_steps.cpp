// Images go to the clipboard and come back.
#include <vector>

#include "harness/session/whole_session.h"

namespace test {
namespace {

int32_t FromClipboard(Session& s) {
  int32_t available = 0;
  std::vector<RGBValue> palette(256);
  const int32_t result = ZEL_ClipboardToImage(s.target, palette.data(), &available);
  s.Out(palette.data(), palette.size());
  s.Out(available);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_ImageToClipboard", [](Session& s) { return ZEL_ImageToClipboard(s.rgb, nullptr); }},
    {"ZEL_ImageToClipboard",
     [](Session& s) {
       const std::vector<RGBValue> palette(256, 0x112233);
       return ZEL_ImageToClipboard(s.u8, palette.data());
     }},
    {"ZEL_ClipboardToImage", &FromClipboard},
};

}  // namespace

constinit const std::span<const Step> CLIPBOARD_STEPS{ROWS};

}  // namespace test
