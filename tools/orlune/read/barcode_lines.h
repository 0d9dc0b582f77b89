// One line across a bar code: where its bars begin and end, and the bars as whole modules. Each
// symbol is measured by its own width, so that bars may grow narrower along the line as they do on
// a can.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "orlune/read/barcode_kinds.h"

namespace front {

// Places of the changes between light and dark along a line of gray levels, in samples.
struct Edges {
  std::vector<double> places;
  bool beginsDark = false;  // behind the first of them it is dark
};
Edges EdgesOf(const std::vector<double>& levels);

// The same line of so many samples from its other end.
Edges Reversed(const Edges& edges, size_t samples);

// Levels with the blur taken back that a lens of this many samples gave them.
std::vector<double> Sharpened(const std::vector<double>& levels, double blur);

struct LineCode {
  std::string widths;  // in modules, from the first bar to the last one
  double left = 0, right = 0;
  double misfit = 0;  // of the bars and these widths, in modules a run
};

// Whether codes of a kind are found along lines: those with symbols of one width.
bool HasEvenSymbols(BarcodeKind kind);

// The first stretch of the edges that has the frame of a code of the kind.
std::optional<LineCode> CodeAlong(const Edges& edges, BarcodeKind kind);

}  // namespace front
