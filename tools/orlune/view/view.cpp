// orlune view: pictures in windows.
#include <iostream>

#include "orlune/command/commands.h"
#include "orlune/shared/interrupts.h"
#include "orlune/view/display_watch.h"
#include "orlune/view/viewer.h"

namespace front {
namespace {

// Milliseconds between two looks: while something happens, and after nothing did for some time.
constexpr int SHORT_WAIT = 8;
constexpr int LONG_WAIT = 40;
constexpr int LOOKS_UNTIL_LONG = 50;

constexpr char DISPLAY_GONE[] = "the display is gone";

int View(const ViewSettings& settings, const DisplayWatch& display) {
  Viewer viewer(settings, std::cout, std::cerr);
  if (!viewer.Open()) return SOME_FAILED;
  int idle = 0;
  while (Interrupted() == 0) {
    const Viewer::Turn turn = viewer.Look();
    if (turn == Viewer::Turn::DONE) break;
    idle = turn == Viewer::Turn::BUSY ? 0 : idle + 1;
    if (!display.Wait(idle < LOOKS_UNTIL_LONG ? SHORT_WAIT : LONG_WAIT)) {
      std::cerr << "orlune: " << DISPLAY_GONE << '\n';
      return SOME_FAILED;
    }
  }
  return viewer.HasFailed() ? SOME_FAILED : ALL_WELL;
}

}  // namespace

int Run(const ViewCommand& command) {
  const DisplayWatch display;
  if (!display.IsThere()) {
    std::cerr
        << "orlune: there is no display to show pictures on; 'orlune inspect' and 'orlune info' "
           "need none\n";
    return SOME_FAILED;
  }
  ViewSettings settings = command.settings;
  try {
    settings.files = WithAllPages(command.settings.files);
    return View(settings, display);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << (display.Wait(0) ? failure.what() : DISPLAY_GONE) << '\n';
    return SOME_FAILED;
  }
}

}  // namespace front
