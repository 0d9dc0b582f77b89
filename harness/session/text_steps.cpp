// Text is drawn.
#include "harness/session/whole_session.h"
#include "platform/built_in_face.h"

namespace test {
namespace {

// In letters that are the same on every machine.
int32_t Text(Session& s) {
  zel::FontsUse(&zel::BUILT_IN_FACE);
  int32_t lines = 0;
  const int32_t result = ZEL_DrawText(s.rgb, s.rgb, 5, -3, TEXT_INVERT, "one\rtwo\rthree", 12,
                                      TEXT_BOLD | TEXT_UNDERLINE, TEXT_ALIGN_LEFT, "any", &lines);
  zel::FontsUse(nullptr);
  s.Out(lines);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_DrawText", Text},
};

}  // namespace

constinit const std::span<const Step> TEXT_STEPS{ROWS};

}  // namespace test
