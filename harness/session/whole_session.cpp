#include "harness/session/whole_session.h"

#include "platform/memory_desktop.h"

namespace test {

WholeSession::WholeSession() {
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
}

const std::vector<Step>& Steps() {
  static const auto steps = [] {
    std::vector<Step> all;
    const auto add = [&](std::span<const Step> some) {
      all.insert(all.end(), some.begin(), some.end());
    };
    for (const StepFamily& family : StepFamilies()) {
      add(family.steps);
      if (family.name == "utilities") {
        add(CLIPBOARD_STEPS);
        add(TEXT_STEPS);
      }
    }
    add(WINDOW_STEPS);
    return all;
  }();
  return steps;
}

}  // namespace test
