// The widths of bars and spaces along a region, and what all decoders make of them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "core/heap.h"
#include "core/images.h"

namespace zel {

// Widths in pixels from the first bar on: a bar, the space behind it, the next bar and so on. Light
// in front of the first bar, and a run that is still open where the profile ends, have none.
class BarWidths {
 public:
  // Measures the code that lies along the rows of a rectangle of the image; the region is in the
  // flat form, and its rectangle stands at fixed places. STATUS_BAD_IMAGE, STATUS_BAD_TYPE,
  // STATUS_BAD_ROI, STATUS_NOT_A_RECTANGLE, STATUS_MEMORY_FULL, STATUS_TOO_FEW_POINTS.
  Status Measure(ImageRef image, Handle region);

  int64_t Bars() const { return bars_; }
  int64_t Spaces() const { return elements_ - bars_; }
  int64_t Elements() const { return elements_; }
  // 0 for an element that is not there.
  double operator[](int64_t index) const {
    return index < elements_ ? runs_[static_cast<size_t>(index + 1)] : 0.0;
  }

 private:
  Status AverageProfile(const Image& image, const int32_t* corners, int64_t* samples);
  void SplitProfile(int64_t samples);

  WorkArray<double> runs_;  // the profile, in whose place the runs step, the leading light first
  int64_t bars_ = 0;
  int64_t elements_ = 0;
};

// Elements of a symbol as they stand in a code's table: a hexadecimal digit each, in the order in
// which they are read, so that 0x2331112 is a bar of two modules, a space of three and so on. In a
// code of two widths 1 is wide and 0 narrow.
using Elements = uint64_t;
constexpr int32_t ELEMENT_BITS = 4;
constexpr uint32_t ELEMENT_STRANGE = 15;  // is in no table

// Elements of two widths. Bars and spaces are told apart each by the middle of their own extremes;
// a width on the middle is narrow.
class TwoWidths {
 public:
  explicit TwoWidths(const BarWidths& widths);

  // One that is not there is narrow.
  bool IsWide(int64_t index) const {
    return index < widths_.Elements() && widths_[index] > middle_[index % 2];
  }
  // `count` elements from `first` on, each `stride` behind the one before.
  Elements Take(int64_t first, int32_t count, int64_t stride = 1) const;

 private:
  const BarWidths& widths_;
  double middle_[2];  // of bars, of spaces
};

// Elements in whole modules. A module without width makes all elements 0.
class ModuleWidths {
 public:
  // Elements from `end` on count as not there.
  ModuleWidths(const BarWidths& widths, double module, int64_t end)
      : widths_(widths), module_(module), end_(end) {}

  Elements Take(int64_t first, int32_t count) const;

 private:
  const BarWidths& widths_;
  double module_;
  int64_t end_;
};

// The width of a module from that of all elements, where each three bars with their spaces have
// this many.
double MeanModule(const BarWidths& widths, double symbolModules);

// The nearest whole number, halves to the even one; 0 for what is no number or beyond 2^30.
// Negative ones follow other rules (-0.7 gives 1): kept, no sound code has them.
int32_t ModuleRound(double width);

// The row that has most elements in common with a symbol, the first one of equals. There is no
// symbol too poor: only a code's check tells.
int32_t Match(Elements symbol, const Elements* rows, int32_t count);
template <size_t count>
int32_t Match(Elements symbol, const Elements (&rows)[count]) {
  return Match(symbol, rows, int32_t{count});
}

}  // namespace zel
