// orlune view: pictures in windows.
#include <iostream>

#include "orlune/command/commands.h"
#include "orlune/shared/interrupts.h"
#include "orlune/view/display_watch.h"
#include "orlune/view/viewer.h"

namespace front {
namespace {

// A window manager's answers may be believed only after some time, in milliseconds, without others:
// so often the windows are looked at though nothing happens, before the program sleeps.
constexpr int SHORT_SLEEP = 100;
constexpr int SHORT_SLEEPS = 10;
constexpr int UNTIL_SOMETHING_HAPPENS = -1;

constexpr char DISPLAY_GONE[] = "the display is gone";

int TellGone() {
  std::cerr << "orlune: " << DISPLAY_GONE << '\n';
  return SOME_FAILED;
}

int View(const ViewSettings& settings, DisplayWatch* display) {
  Viewer viewer(settings, std::cout, std::cerr);
  if (!viewer.Open()) return SOME_FAILED;
  int sleeps = 0;
  while (Interrupted() == 0) {
    const Viewer::Turn turn = viewer.Look();
    if (turn == Viewer::Turn::DONE) {
      // The windows also end with the display, and the viewer may be the first to see it.
      if (!display->Answers()) return TellGone();
      break;
    }
    const bool isBusy = turn == Viewer::Turn::BUSY;
    const int sleep = isBusy ? 0 : sleeps < SHORT_SLEEPS ? SHORT_SLEEP : UNTIL_SOMETHING_HAPPENS;
    sleeps = isBusy ? 0 : sleeps + 1;
    if (!display->Wait(sleep)) return TellGone();
  }
  return viewer.HasFailed() ? SOME_FAILED : ALL_WELL;
}

}  // namespace

int Run(const ViewCommand& command) {
  DisplayWatch display;
  if (!display.IsThere()) {
    std::cerr
        << "orlune: there is no display to show pictures on; 'orlune inspect' and 'orlune info' "
           "need none\n";
    return SOME_FAILED;
  }
  ViewSettings settings = command.settings;
  try {
    settings.files = WithAllPages(command.settings.files);
    return View(settings, &display);
  } catch (const std::exception& failure) {
    std::cerr << "orlune: " << (display.Wait(0) ? failure.what() : DISPLAY_GONE) << '\n';
    return SOME_FAILED;
  }
}

}  // namespace front
