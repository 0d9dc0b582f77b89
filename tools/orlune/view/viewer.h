// A viewer of pictures: what a person sees and chooses, over the library's windows. It knows
// nothing of time and displays: whoever has one lets it look again and again at what was done.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "orlune/view/region_report.h"

namespace front {

struct ViewSettings {
  std::vector<std::string> files;
  InspectSettings inspect;   // how objects are found in regions
  std::string folder = ".";  // where marked copies go
};

// The windows that it uses.
constexpr int32_t PICTURE_WINDOW = 0;
constexpr int32_t REPORT_WINDOW = 17;
constexpr int32_t HELP_WINDOW = 18;

class Viewer {
 public:
  // What is asked for as text goes to `out`, complaints to the other one.
  Viewer(ViewSettings settings, std::ostream& out, std::ostream& complaints)
      : settings_(std::move(settings)), out_(out), complaints_(complaints) {}
  Viewer(const Viewer&) = delete;
  Viewer& operator=(const Viewer&) = delete;
  ~Viewer();

  // Shows the first picture that can be read, and the tools. False where there is none. Throws
  // LibraryFailure where there can be no windows.
  bool Open();

  enum class Turn { IDLE, BUSY, DONE };
  // Lets the desktop's events in and does what they ask for. Throws LibraryFailure.
  Turn Look();

  // What its keys do, a line each.
  static std::vector<std::string> KeyLines();

  bool HasFailed() const { return hasFailed_; }  // a picture could not be read or written
  const std::vector<std::string>& ReportLines() const { return report_.lines; }

 private:
  struct Key;
  static const std::vector<Key>& Keys();

  bool Show(size_t first, int step);
  void LayOut();
  void ZoomTo(int32_t zoom);
  void SetTitle() const;
  void Measure();
  void MeasureAgain();
  void ShowReport();
  void ShowPixels();
  Image Marked() const;
  bool TakeKey();
  void PressKey(int32_t key);
  void Complain(const std::string& file, const std::exception& failure);

  void Next() { Show(at_ + 1, 1); }
  void Previous() { Show(at_ + settings_.files.size() - 1, -1); }
  void ZoomIn();
  void ZoomOut();
  void ZoomOne() { ZoomTo(1); }
  void ZoomFit();
  void ChangeThreshold(int steps);
  void Raise() { ChangeThreshold(1); }
  void Lower() { ChangeThreshold(-1); }
  void UseMethod();
  void NextMethod();
  void SwapSides();
  void ToggleMarks();
  void WriteReport();
  void WriteOptions();
  void Save();
  void Copy();
  void ToggleHelp();
  void Leave() { isDone_ = true; }
  template <int32_t kind>
  void UsePalette() {
    Check(ZEL_WSetPalette(PICTURE_WINDOW, kind, nullptr));
  }

  ViewSettings settings_;
  std::ostream& out_;
  std::ostream& complaints_;
  size_t at_ = 0;  // of the files
  std::optional<ViewedPicture> picture_;
  std::optional<double> threshold_;  // gray level; none: found by the method
  WindowRegion region_;              // never null while a picture is shown
  RegionReport report_;
  std::optional<Image> marked_, reportPanel_, helpPanel_;  // what windows show
  bool showsMarks_ = false, hasTold_ = false;
  bool hasFailed_ = false, isDone_ = false;
};

}  // namespace front
