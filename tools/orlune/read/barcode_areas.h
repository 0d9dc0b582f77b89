// Bar codes of two widths, whose characters say little of how wide they should be: the library
// reads many rectangles around the bars, and the bars of each text are held to those of the
// picture.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "orlune/read/barcode_calls.h"
#include "orlune/read/barcode_search.h"

namespace front {

class AreaSearch {
 public:
  static constexpr int32_t MARGIN = 0;  // of a frame: bars are told by the rest of the picture

  explicit AreaSearch(const BarcodeSettings& settings) : settings_(settings) {}

  // Reads one rectangle of a picture that is so many times larger than the one that was given.
  void TryArea(const Image& gray, const Bars& area, int32_t scale, double angle, bool backward);

  // Looks for the bars in an upright picture and reads them larger and larger, in many rectangles.
  void TryPicture(const Image& gray, double angle);

  // Whether bars begin or end where an upright picture does, without light to measure them from.
  static bool DoBarsReachTheEnds(const Image& gray);

  // The text that fits best most often, if enough readings gave it.
  std::optional<BarcodeReading> Best() const;

  // Whether more readings would change nothing.
  static bool IsSure(const BarcodeReading& reading) {
    constexpr int PART = 4;
    return PART * reading.readings > reading.attempts;
  }

 private:
  struct Candidate {
    double weight = 0;
    BarcodeReading reading;
  };

  const BarcodeSettings& settings_;
  std::map<std::string, Candidate> candidates_;
  int attempts_ = 0;
};

}  // namespace front
