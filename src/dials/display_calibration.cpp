// Displays calibrated: where the digits of a region lie.
//
// Two lines over the region, at a third and two thirds of its height, cross the upright segments.
// Each is fitted by a straight line, which follows a slope of the light; where the smoothed profile
// lies on the segments' side of it there is a stroke. Strokes that a horizontal segment joins are
// one digit.
#include <algorithm>
#include <cmath>

#include "core/heap.h"
#include "core/images.h"
#include "core/views.h"
#include "dials/digit.h"
#include "platform/message_box.h"

namespace zel {
namespace {

constexpr int64_t SMOOTHING_REACH = 2;
constexpr double FULL_WIDTH = 0.6;  // a digit has at least this much of the widest one's

// Columns of an upright segment, or of a digit, both ends included.
struct Columns {
  int32_t first, last;
  bool onLine[2];  // which of the outer lines cross it

  int32_t Width() const { return last - first + 1; }
};

// A line that crosses the upright segments.
struct OuterLine {
  int32_t y;
  bool hasStrokes;
  double slope, intercept;  // of the fitted line, over columns of the region
  double shift;             // from the fitted line to half way between ground and segments

  double LevelAt(int32_t column) const { return slope * column + intercept + shift; }
};

// The region within the image, and what is known of it so far.
struct Display {
  PixelView view;
  DisplayRules rules;
  int32_t left, top, right, bottom;  // last column and row included
  int32_t bridgedGap;                // pixels that a segment may be away from the next
  OuterLine lines[2];

  bool IsEmpty() const { return left > right || top > bottom; }
  bool IsBeyond(double sample, double level) const {
    return rules.isLight ? sample > level : sample < level;
  }
  bool IsSegment(int32_t x, int32_t y) const { return IsBeyond(Pixel(x, y), LevelAt(x, y)); }

 private:
  double Pixel(int32_t x, int32_t y) const {
    switch (view.type) {
      case IMAGE_U8:
        return *view.At<uint8_t>(x, y);
      case IMAGE_I16:
        return *view.At<int16_t>(x, y);
      default:
        return static_cast<double>(*view.At<float>(x, y));
    }
  }
  // Between the levels of the two lines, and beyond them as on the nearer one.
  double LevelAt(int32_t x, int32_t y) const {
    const auto& [upper, lower] = lines;
    const int32_t column = x - left;
    if (!lower.hasStrokes) return upper.LevelAt(column);
    if (!upper.hasStrokes || upper.y == lower.y) return lower.LevelAt(column);
    const double part = static_cast<double>(y - upper.y) / (lower.y - upper.y);
    const double down = std::clamp(part, 0.0, 1.0);
    return upper.LevelAt(column) * (1.0 - down) + lower.LevelAt(column) * down;
  }
};

// ---- strokes

// Least squares over the columns 0, 1, .. STATUS_DIVIDED_BY_ZERO for fewer than two of them.
Status FitLine(const LineSamples& samples, OuterLine* line) {
  const auto n = static_cast<double>(samples.count());
  double sumX = 0.0;
  double sumXX = 0.0;
  double sumY = 0.0;
  double sumXY = 0.0;
  for (int64_t i = 0; i < samples.count(); i++) {
    const auto x = static_cast<double>(i);
    sumX += x;
    sumXX += x * x;
    sumY += samples[i];
    sumXY += x * samples[i];
  }
  const double determinant = sumX * sumX - n * sumXX;
  if (std::fabs(determinant) < 1e-30) return STATUS_DIVIDED_BY_ZERO;
  line->slope = (sumX * sumY - sumXY * n) / determinant;
  line->intercept = (sumX * sumXY - sumY * sumXX) / determinant;
  line->shift = 0.0;
  return STATUS_OK;
}

// A run of samples on the segments' side of the fitted line, and how far they go from it at most.
struct Run {
  int32_t first, last;
  double extreme;
};

// Runs of one line, in a work array with room for all of them. Returns their number. `ground`
// receives the mean distance of all other samples from the fitted line.
int32_t FindRuns(const LineSamples& smoothed, const Display& display, const OuterLine& line,
                 Run* runs, double* ground) {
  int32_t count = 0;
  int32_t groundCount = 0;
  bool isOpen = false;
  *ground = 0.0;
  for (int32_t i = 0; i < smoothed.count(); i++) {
    const double level = line.LevelAt(i);
    const double distance = smoothed[i] - level;
    const bool isBeyond = display.IsBeyond(smoothed[i], level);
    if (isBeyond) {
      if (!isOpen) runs[count++] = {i, i, distance};
      Run& run = runs[count - 1];
      run.last = i;
      if (std::fabs(distance) > std::fabs(run.extreme)) run.extreme = distance;
    } else {
      *ground += distance;
      groundCount++;
    }
    isOpen = isBeyond;
  }
  if (groundCount > 0) *ground /= groundCount;
  return count;
}

// Takes out the runs that don't reach half way from the ground to the mean of all runs, which noise
// makes, and sets the line's shift to that. Returns how many are left.
int32_t KeepStrongRuns(double ground, const Display& display, Run* runs, int32_t count,
                       OuterLine* line) {
  for (int32_t round = 0; round < 3 && count > 0; round++) {
    double sum = 0.0;
    for (int32_t i = 0; i < count; i++) sum += runs[i].extreme;
    line->shift = (sum / count + ground) / 2.0;
    const auto isWeak = [&](const Run& run) { return !display.IsBeyond(run.extreme, line->shift); };
    count = static_cast<int32_t>(std::remove_if(runs, runs + count, isWeak) - runs);
  }
  return count;
}

// Appends the strokes of one line: what of each run lies beyond the level half way up, unsmoothed.
Status FindStrokes(Display* display, int32_t index, Columns* strokes, int32_t* count) {
  OuterLine& line = display->lines[index];
  LineSamples raw;
  LineSamples smoothed;
  WorkArray<Run> runs;
  const KernelLine pixels{display->left, line.y, display->right, line.y};
  Status status = raw.Create();
  if (status == STATUS_OK) status = smoothed.Create();
  if (status == STATUS_OK) status = raw.Read(display->rules.image, pixels);
  if (status == STATUS_OK) status = smoothed.Read(display->rules.image, pixels);
  if (status == STATUS_OK) status = smoothed.Smooth(SMOOTHING_REACH);
  if (status != STATUS_OK) return status;
  if (!smoothed.HasContrast(display->rules.threshold)) return STATUS_OK;
  if (FitLine(smoothed, &line) != STATUS_OK) return STATUS_OK;
  if (!runs.Allocate(static_cast<uint64_t>(smoothed.count() / 2 + 1))) return STATUS_MEMORY_FULL;

  double ground = 0.0;
  int32_t runCount = FindRuns(smoothed, *display, line, runs.data(), &ground);
  runCount = KeepStrongRuns(ground, *display, runs.data(), runCount, &line);
  for (int32_t i = 0; i < runCount; i++) {
    Run run = runs[static_cast<size_t>(i)];
    const auto isGround = [&](int32_t column) {
      return !display->IsBeyond(raw[column], line.LevelAt(column));
    };
    while (run.first <= run.last && isGround(run.first)) run.first++;
    while (run.first <= run.last && isGround(run.last)) run.last--;
    if (run.first > run.last) continue;
    Columns& stroke = strokes[(*count)++];
    stroke = {display->left + run.first, display->left + run.last, {}};
    stroke.onLine[index] = true;
    line.hasStrokes = true;
  }
  return STATUS_OK;
}

// ---- digits

// Whether segments cover the columns from one to another in a row, but for small gaps.
bool RowIsBridged(const Display& display, int32_t y, int32_t first, int32_t end) {
  int32_t gap = 0;
  for (int32_t x = first; x < end; x++) {
    gap = display.IsSegment(x, y) ? 0 : gap + 1;
    if (gap > display.bridgedGap) return false;
  }
  return true;
}

bool IsBridged(const Display& display, int32_t first, int32_t end) {
  for (int32_t y = display.top; y <= display.bottom; y++) {
    if (RowIsBridged(display, y, first, end)) return true;
  }
  return false;
}

// Joins strokes that are of one digit, from left to right, in place. Returns how many are left.
int32_t JoinStrokes(const Display& display, Columns* strokes, int32_t count) {
  std::sort(strokes, strokes + count, [](const Columns& a, const Columns& b) {
    return a.first != b.first ? a.first < b.first : a.last < b.last;
  });
  int32_t digits = 0;
  for (int32_t i = 0; i < count; i++) {
    const Columns& stroke = strokes[i];
    Columns* digit = digits > 0 ? &strokes[digits - 1] : nullptr;
    if (digit && IsBridged(display, digit->last + 1, stroke.first)) {
      digit->last = std::max(digit->last, stroke.last);
      for (int32_t line = 0; line < 2; line++) digit->onLine[line] |= stroke.onLine[line];
    } else {
      strokes[digits++] = stroke;
    }
  }
  return digits;
}

// Rows, both ends included.
struct Rows {
  int32_t first, last;

  int64_t Height() const { return int64_t{last} - first + 1; }
};

bool RowHasSegment(const Display& display, const Columns& digit, int32_t y) {
  for (int32_t x = digit.first; x <= digit.last; x++) {
    if (display.IsSegment(x, y)) return true;
  }
  return false;
}

// The last row with a segment from `y` on upwards or downwards, before a gap.
int32_t EndOfRows(const Display& display, const Columns& digit, int32_t y, int32_t step) {
  int32_t end = y;
  for (int32_t gap = 0; gap <= display.bridgedGap; y += step) {
    if (y < display.top || y > display.bottom) break;
    gap = RowHasSegment(display, digit, y) ? 0 : gap + 1;
    if (gap == 0) end = y;
  }
  return end;
}

Rows RowsOf(const Display& display, const Columns& digit) {
  const int32_t upper = display.lines[digit.onLine[0] ? 0 : 1].y;
  const int32_t lower = display.lines[digit.onLine[1] ? 1 : 0].y;
  return {EndOfRows(display, digit, upper, -1), EndOfRows(display, digit, lower, 1)};
}

// Takes out what is lower than half the tallest digit: points and signs. `rows` receives the rows
// of those that are left, whose number it returns.
Status DropLowOnes(const Display& display, Columns* digits, int32_t* count, Rows* rows) {
  WorkArray<Rows> each;
  if (!each.Allocate(static_cast<uint64_t>(*count))) return STATUS_MEMORY_FULL;
  int64_t tallest = 0;
  for (int32_t i = 0; i < *count; i++) {
    each[static_cast<size_t>(i)] = RowsOf(display, digits[i]);
    tallest = std::max(tallest, each[static_cast<size_t>(i)].Height());
  }
  int32_t kept = 0;
  *rows = {INT32_MAX, INT32_MIN};
  for (int32_t i = 0; i < *count; i++) {
    const Rows& own = each[static_cast<size_t>(i)];
    if (2 * own.Height() < tallest) continue;
    digits[kept++] = digits[i];
    *rows = {std::min(rows->first, own.first), std::max(rows->last, own.last)};
  }
  *count = kept;
  return STATUS_OK;
}

// A digit without left segments, such as 1, gets the room for them.
void WidenNarrowOnes(const Display& display, Columns* digits, int32_t count) {
  int32_t widest = 0;
  for (int32_t i = 0; i < count; i++) widest = std::max(widest, digits[i].Width());
  for (int32_t i = 0; i < count; i++) {
    if (digits[i].Width() >= FULL_WIDTH * widest) continue;
    const int32_t leftmost = i == 0 ? display.left : digits[i - 1].last + 1;
    digits[i].first = std::max(leftmost, digits[i].last - widest + 1);
  }
}

// ---- frame

// The flat form: a rectangle a digit, and the one around all.
Status WriteRectangles(const Columns* digits, int32_t count, const Rows& rows, Handle vector) {
  constexpr uint64_t contourIntegers = 6;
  const uint64_t integers = ROI_RECT_INTEGERS + contourIntegers * static_cast<uint64_t>(count);
  const Status status = VectorResize(vector, sizeof(int32_t), integers);
  if (status != STATUS_OK) return status;
  auto* to = VectorData<int32_t>(vector);
  const auto append = [&to](std::initializer_list<int32_t> values) {
    to = std::copy(values.begin(), values.end(), to);
  };
  append({digits[0].first, rows.first, digits[count - 1].last + 1, rows.last + 1});
  for (int32_t i = 0; i < count; i++) {
    append({ROI_MARKER_EXTERNAL, ROI_RECT, digits[i].first, rows.first, digits[i].last + 1,
            rows.last + 1});
  }
  return STATUS_OK;
}

// The part of the image that the region's first contour bounds, and its outer lines.
void Place(const DigitShape& shape, Display* display) {
  const auto [left, right] =
      std::minmax({shape.topLeft.x, shape.topRight.x, shape.bottomRight.x, shape.bottomLeft.x});
  const auto [top, bottom] =
      std::minmax({shape.topLeft.y, shape.topRight.y, shape.bottomRight.y, shape.bottomLeft.y});
  const int64_t height = int64_t{bottom} - top;
  display->left = std::max(left, 0);
  display->right = std::min(right, display->view.width - 1);
  display->top = std::max(top, 0);
  display->bottom = std::min(bottom, display->view.height - 1);
  display->lines[0].y = static_cast<int32_t>(top + height / 3);
  display->lines[1].y = static_cast<int32_t>(top + 2 * height / 3);
  display->bridgedGap = static_cast<int32_t>(std::max<int64_t>(2, height / 20));
}

Status FindDigits(Display* display, Handle vector) {
  if (display->IsEmpty()) return STATUS_NO_SEGMENT;
  WorkArray<Columns> digits;
  const int64_t width = int64_t{display->right} - display->left + 1;
  if (!digits.Allocate(static_cast<uint64_t>(width + 2))) return STATUS_MEMORY_FULL;
  int32_t count = 0;
  for (int32_t line = 0; line < 2; line++) {
    const Status status = FindStrokes(display, line, digits.data(), &count);
    if (status != STATUS_OK) return status;
  }
  if (count == 0) return STATUS_NO_SEGMENT;
  count = JoinStrokes(*display, digits.data(), count);
  Rows rows{};
  const Status status = DropLowOnes(*display, digits.data(), &count, &rows);
  if (status != STATUS_OK) return status;
  WidenNarrowOnes(*display, digits.data(), count);
  return WriteRectangles(digits.data(), count, rows, vector);
}

Status CalibrateDisplay(const DisplayRules& rules, const RoiDescriptor* roi,
                        RoiDescriptor** outputRoi) {
  ScopedVector region;
  Status status = region.Create();
  if (status == STATUS_OK) status = DisplayRegion(rules.image, roi, region.handle());
  if (status != STATUS_OK) return status;
  FlatContour contour{};
  DigitShape shape{};
  FlatContours(region.handle()).Next(&contour);
  status = DigitShapeOf(contour, &shape);
  if (status != STATUS_OK) return status;

  Image* image = nullptr;
  status = ImageLookup(rules.image, &image);
  if (status != STATUS_OK) return status;
  Display display{};
  display.view = ViewOf(*image);
  display.rules = rules;
  Place(shape, &display);
  // The region is of no more use: its vector takes the result.
  status = FindDigits(&display, region.handle());
  if (status != STATUS_OK) return status;
  return RoiReplaceFromVector(region.handle(), outputRoi);
}

}  // namespace
}  // namespace zel

int32_t ZEL_CalibrateLCD(ImageRef image, const RoiDescriptor* roi, int32_t lightSegments,
                         float threshold, RoiDescriptor** outputRoi) {
  zel::Status status = zel::STATUS_OK;
  if (image == 0) {
    status = zel::STATUS_IMAGE_MISSING;
  } else if (!roi || !outputRoi) {
    zel::MessageBoxInUse().show("ZEL_CalibrateLCD",
                                roi ? "output_ROI not provided" : "ROI not provided");
    status = zel::STATUS_BAD_ROI;
  } else {
    const zel::DisplayRules rules{image, lightSegments != 0, static_cast<double>(threshold), false};
    status = zel::CalibrateDisplay(rules, roi, outputRoi);
  }
  return ZEL_ProcessError("ZEL_CalibrateLCD", status);
}
