// The scripted session with every export in it, also what needs a desktop and letters: those in
// memory. Fault tests run it with one allocation or file operation failing after another.
#pragma once

#include <span>
#include <vector>

#include "harness/session/session.h"

namespace test {

// Its windows are in memory, also where there is a screen.
struct WholeSession : Session {
  WholeSession();
};

extern const std::span<const Step> CLIPBOARD_STEPS;
extern const std::span<const Step> TEXT_STEPS;
extern const std::span<const Step> WINDOW_STEPS;

// The steps of all families and these.
const std::vector<Step>& Steps();

}  // namespace test
