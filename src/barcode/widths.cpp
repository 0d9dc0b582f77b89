// From the gray values of a region to the widths of bars and spaces, and to symbols.
#include "barcode/widths.h"

#include <cmath>
#include <utility>

#include "core/numbers.h"
#include "regions/descriptors.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// Places in the flat form of a region: the type of the first contour and, in a rectangle, its
// corners as x1, y1, x2, y2.
constexpr uint32_t PLACE_TYPE = 5;
constexpr uint32_t PLACE_CORNERS = 6;
constexpr uint32_t REGION_INTEGERS = 10;

constexpr int32_t PROFILE_LINES = 10;
constexpr double PROFILE_SHARE = 0.1;  // of one line

template <class T>
void AddSamples(const T* pixel, int64_t step, double* sums, int64_t count) {
  for (int64_t i = 0; i < count; i++) sums[i] += static_cast<double>(pixel[i * step]);
}

// Adds the pixels of a row from one column to another one, which may lie before it.
void AddRow(const PixelView& view, const KernelLine& line, double* sums, int64_t count) {
  const int64_t step = line.endX < line.startX ? -1 : 1;
  switch (view.type) {
    case IMAGE_U8:
      return AddSamples(view.At<uint8_t>(line.startX, line.startY), step, sums, count);
    case IMAGE_I16:
      return AddSamples(view.At<int16_t>(line.startX, line.startY), step, sums, count);
    default:
      return AddSamples(view.At<float>(line.startX, line.startY), step, sums, count);
  }
}

// The straight line through a profile by least squares: the border between dark and light, which
// follows a slope of the lighting.
struct Border {
  double slope, intercept;
  double At(int64_t sample) const { return slope * static_cast<double>(sample) + intercept; }
};

Border FitBorder(const double* profile, int64_t count) {
  double sumX = 0.0;
  double sumXX = 0.0;
  double sumY = 0.0;
  double sumXY = 0.0;
  for (int64_t i = 0; i < count; i++) {
    const auto x = static_cast<double>(i);
    sumX += x;
    sumXX += x * x;
    sumY += profile[i];
    sumXY += x * profile[i];
  }
  const auto n = static_cast<double>(count);
  // Far from 0: for two samples or more it is -n^2 (n^2 - 1) / 12.
  const double denominator = sumX * sumX - n * sumXX;
  return {(sumX * sumY - sumXY * n) / denominator, (sumX * sumXY - sumXX * sumY) / denominator};
}

double Middle(const BarWidths& widths, int64_t first) {
  double least = widths[first];
  double most = least;
  for (int64_t i = first; i < widths.Elements(); i += 2) {
    if (widths[i] < least) least = widths[i];
    if (widths[i] > most) most = widths[i];
  }
  return (least + most) / 2.0;
}

// One bit for each element in which two symbols are not the same.
Elements Differences(Elements a, Elements b) {
  Elements bits = a ^ b;
  bits |= bits >> 2;
  bits |= bits >> 1;
  return bits & 0x1111111111111111;
}

// Of up to 15 elements.
int32_t CountOf(Elements bits) {
  return static_cast<int32_t>((bits * 0x1111111111111111) >> 60);
}

}  // namespace

Status BarWidths::Measure(ImageRef reference, Handle region) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  if (image->type != IMAGE_U8 && image->type != IMAGE_I16 && image->type != IMAGE_SGL) {
    return STATUS_BAD_TYPE;
  }
  uint32_t integers = 0;
  status = VectorCount(region, &integers);
  if (status != STATUS_OK) return status;
  if (integers < REGION_INTEGERS) return STATUS_BAD_ROI;
  const auto* places = VectorData<int32_t>(region);
  if (places[PLACE_TYPE] != ROI_RECT) return STATUS_NOT_A_RECTANGLE;

  int64_t samples = 0;
  status = AverageProfile(*image, places + PLACE_CORNERS, &samples);
  if (status != STATUS_OK) return status;
  SplitProfile(samples);
  return STATUS_OK;
}

// Ten rows of the rectangle, both ends of each row included. A low rectangle gives rows several
// times; one that leaves the image gives what lies inside, still as tenths.
Status BarWidths::AverageProfile(const Image& image, const int32_t* corners, int64_t* samples) {
  const double top = corners[1];
  const double step = (static_cast<double>(corners[3]) - top) * PROFILE_SHARE;
  const PixelView view = ViewOf(image);
  int64_t count = 0;
  for (int32_t i = 0; i < PROFILE_LINES; i++) {
    const int32_t y = CutSaturated(top + i * step);
    KernelLine line{corners[0], y, corners[2], y};
    const bool visible = LineClipToSize(image.width, image.height, &line);
    if (i == 0) {
      // All lines have the same columns, so that later ones have as many samples or none.
      count = visible ? LineSteps(line).points() : 0;
      if (count < 2) return STATUS_TOO_FEW_POINTS;
      if (!runs_.AllocateZeroed(static_cast<uint64_t>(count))) return STATUS_MEMORY_FULL;
    }
    if (visible) AddRow(view, line, runs_.data(), count);
  }
  for (int64_t i = 0; i < count; i++) runs_[static_cast<size_t>(i)] *= PROFILE_SHARE;
  *samples = count;
  return STATUS_OK;
}

// A run reaches to where the border crosses the line between two samples. There are no more runs
// than samples, and each is known when its last sample has been read: they take the samples' place.
void BarWidths::SplitProfile(int64_t samples) {
  double* values = runs_.data();
  const Border border = FitBorder(values, samples);
  bool dark = false;
  int64_t runs = 0;
  double length = 0.0;    // whole samples of the run so far
  double carry = 0.0;     // what it has of the interval in front of them
  double before = 0.0;    // of the interval at a crossing, the share before it
  double behind = 0.0;    // ... and behind it
  double previous = 0.0;  // a profile that begins dark crosses from 0: kept
  for (int64_t i = 0; i < samples; i++) {
    const double sample = values[i];
    const double level = border.At(i);
    if ((sample <= level) == dark) {
      length += 1.0;
    } else {
      // Without an interval to divide, the shares stay those of the crossing before.
      if (level != sample && previous != sample) {
        before = std::fabs(previous - level) / std::fabs(previous - sample);
        behind = 1.0 - before;
      }
      values[runs++] = length + before + carry;
      carry = behind;
      length = 0.0;
      dark = !dark;
    }
    previous = sample;
  }
  bars_ = runs / 2;
  elements_ = runs > 0 ? runs - 1 : 0;
}

TwoWidths::TwoWidths(const BarWidths& widths)
    : widths_(widths), middle_{Middle(widths, 0), Middle(widths, 1)} {}

Elements TwoWidths::Take(int64_t first, int32_t count, int64_t stride) const {
  Elements elements = 0;
  for (int32_t i = 0; i < count; i++) {
    elements = elements << ELEMENT_BITS | (IsWide(first + i * stride) ? 1 : 0);
  }
  return elements;
}

Elements ModuleWidths::Take(int64_t first, int32_t count) const {
  Elements elements = 0;
  for (int32_t i = 0; i < count; i++) {
    const int64_t index = first + i;
    const int32_t modules = index < end_ ? ModuleRound(widths_[index] / module_) : 0;
    const bool known = modules >= 0 && modules < static_cast<int32_t>(ELEMENT_STRANGE);
    elements =
        elements << ELEMENT_BITS | (known ? static_cast<uint32_t>(modules) : ELEMENT_STRANGE);
  }
  return elements;
}

double MeanModule(const BarWidths& widths, double symbolModules) {
  const int64_t pairs = widths.Spaces();
  double sum = 0.0;
  for (int64_t i = 0; i < pairs; i++) sum += widths[2 * i] + widths[2 * i + 1];
  return sum / (2.0 * static_cast<double>(pairs) * symbolModules) * 6.0;
}

int32_t ModuleRound(double width) {
  if (!(std::fabs(width) < 0x1p30)) return 0;
  const auto whole = static_cast<int32_t>(width);
  if (width - whole == 0.5) return whole + (whole & 1);
  const auto twice = static_cast<int32_t>(width * 2.0);
  return twice / 2 + (twice & 1);
}

int32_t Match(Elements symbol, const Elements* rows, int32_t count) {
  // No two rows are the same, so that the one that is like the symbol is the best.
  for (int32_t i = 0; i < count; i++) {
    if (rows[i] == symbol) return i;
  }
  int32_t best = 0;
  int32_t least = CountOf(Differences(symbol, rows[0]));
  for (int32_t i = 1; i < count; i++) {
    const int32_t differences = CountOf(Differences(symbol, rows[i]));
    if (differences < least) {
      least = differences;
      best = i;
    }
  }
  return best;
}

}  // namespace zel
