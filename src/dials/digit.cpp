// Digits of seven segments: three lines over the digit, a short look for a point and a sign.
#include "dials/digit.h"

#include <algorithm>
#include <cstdlib>

#include "core/images.h"
#include "core/numbers.h"

namespace zel {
namespace {

constexpr int64_t LEAST_REGION_INTEGERS = 10;
constexpr int64_t SMOOTHING_REACH = 1;

enum Segment {
  SEGMENT_TOP,
  SEGMENT_UPPER_RIGHT,
  SEGMENT_LOWER_RIGHT,
  SEGMENT_BOTTOM,
  SEGMENT_LOWER_LEFT,
  SEGMENT_UPPER_LEFT,
  SEGMENT_MIDDLE
};

// In the order of Segment. 7 has no hook; 6 and 9 have tails.
constexpr uint8_t SegmentTable[10][SEGMENTS] = {
    {1, 1, 1, 1, 1, 1, 0}, {0, 1, 1, 0, 0, 0, 0}, {1, 1, 0, 1, 1, 0, 1}, {1, 1, 1, 1, 0, 0, 1},
    {0, 1, 1, 0, 0, 1, 1}, {1, 0, 1, 1, 0, 1, 1}, {1, 0, 1, 1, 1, 1, 1}, {1, 1, 1, 0, 0, 0, 0},
    {1, 1, 1, 1, 1, 1, 1}, {1, 1, 1, 1, 0, 1, 1},
};

struct Match {
  int32_t digit;
  int32_t differing;
};

// The digit with the fewest differing segments, the lowest one of several.
Match NearestDigit(const uint8_t* segments) {
  Match nearest{0, SEGMENTS + 1};
  for (int32_t digit = 0; digit < 10; digit++) {
    int32_t differing = 0;
    for (int32_t i = 0; i < SEGMENTS; i++) differing += SegmentTable[digit][i] != segments[i];
    if (differing < nearest.differing) nearest = {digit, differing};
  }
  return nearest;
}

// ---- places

// Differences of coordinates, and sums of several.
struct Offset {
  int64_t x, y;
};

Offset Between(PointInt from, PointInt to) {
  return {int64_t{to.x} - from.x, int64_t{to.y} - from.y};
}

// n / d of an offset, truncated.
Offset Part(Offset offset, int64_t n, int64_t d) {
  return {n * offset.x / d, n * offset.y / d};
}

PointInt Moved(PointInt point, Offset a, Offset b = {}) {
  return {Clamped(point.x + a.x + b.x, INT32_MIN, INT32_MAX),
          Clamped(point.y + a.y + b.y, INT32_MIN, INT32_MAX)};
}

PointInt Along(PointInt from, PointInt to, int64_t n, int64_t d) {
  return Moved(from, Part(Between(from, to), n, d));
}

KernelLine LineFrom(PointInt start, PointInt end) {
  return {start.x, start.y, end.x, end.y};
}

// From the left edge to the right one, n thirds of the height down.
KernelLine AcrossDigit(const DigitShape& shape, int64_t n) {
  return LineFrom(Along(shape.topLeft, shape.bottomLeft, n, 3),
                  Along(shape.topRight, shape.bottomRight, n, 3));
}

KernelLine DownDigit(const DigitShape& shape) {
  if (shape.isRectangle) {
    // Truncated as a whole: left of column 0 that is not half way from the left edge.
    const auto middle = static_cast<int32_t>((int64_t{shape.topLeft.x} + shape.topRight.x) / 2);
    return {middle, shape.topLeft.y, middle, shape.bottomLeft.y};
  }
  return LineFrom(Along(shape.topLeft, shape.topRight, 1, 2),
                  Along(shape.bottomLeft, shape.bottomRight, 1, 2));
}

int64_t StepsOf(Offset edge) {
  return std::max(std::abs(edge.x), std::abs(edge.y));
}

// Two pixels in the direction of an edge.
Offset TwoPixels(Offset edge) {
  const int64_t steps = StepsOf(edge);
  return steps == 0 ? Offset{2, 0} : Part(edge, 2, steps);
}

// Short lines across the foot of the digit's right edge, `index` twentieths of the width from it.
KernelLine PointScan(const DigitShape& shape, int64_t index) {
  const Offset width = Between(shape.bottomLeft, shape.bottomRight);
  const Offset height = Between(shape.topRight, shape.bottomRight);
  const PointInt foot = Moved(shape.bottomRight, TwoPixels(width), Part(width, index, 20));
  return LineFrom(Moved(foot, Part(height, -5, 20)), Moved(foot, Part(height, 1, 20)));
}

// Lines over the middle third of the height, `index` twentieths of the width left of the digit.
KernelLine SignScan(const DigitShape& shape, int64_t index) {
  const Offset width = Between(shape.topLeft, shape.topRight);
  const Offset height = Between(shape.topLeft, shape.bottomLeft);
  const PointInt top = Moved(shape.topLeft, Part(width, -index, 20));
  return LineFrom(Moved(top, Part(height, 1, 3)), Moved(top, Part(height, 2, 3)));
}

}  // namespace

Status DisplayRegion(ImageRef image, const RoiDescriptor* roi, Handle vector) {
  Image* record = nullptr;
  Status status = ImageLookup(image, &record);
  if (status == STATUS_OK) status = RoiToVector(roi, vector);
  if (status != STATUS_OK) return status;
  uint32_t integers = 0;
  VectorCount(vector, &integers);
  return integers < LEAST_REGION_INTEGERS ? STATUS_BAD_ROI : STATUS_OK;
}

Status DigitShapeOf(const FlatContour& contour, DigitShape* shape) {
  if (contour.type == ROI_RECT && contour.PointCount() >= 2) {
    const PointInt a = contour.Point(0);
    const PointInt b = contour.Point(1);
    const auto [left, right] = std::minmax(a.x, b.x);
    const auto [top, bottom] = std::minmax(a.y, b.y);
    *shape = {{left, top}, {right, top}, {right, bottom}, {left, bottom}, true};
    return STATUS_OK;
  }
  if (contour.type == ROI_POLYGON && contour.PointCount() >= 4) {
    *shape = {contour.Point(0), contour.Point(1), contour.Point(2), contour.Point(3), false};
    return STATUS_OK;
  }
  return STATUS_BAD_ROI;
}

// Half way between the extremes of the samples, each cut to an integer; these begin at 0 and 33000.
double DigitReader::Level() const {
  int32_t largest = 0;
  int32_t smallest = 33000;
  for (int64_t i = 0; i < samples_.count(); i++) {
    const int32_t sample = CutSaturated(samples_[i]);
    largest = std::max(largest, sample);
    smallest = std::min(smallest, sample);
  }
  const int64_t middle = (int64_t{largest} + smallest) / 2;
  return static_cast<double>(middle);
}

bool DigitReader::IsOn(int64_t index, double level) const {
  return rules_.isLight ? samples_[index] > level : samples_[index] < level;
}

// A line over a digit, and the segments that its parts cross.
struct DigitReader::Scan {
  KernelLine line;
  Segment parts[3];
  int32_t partCount;
};

Status DigitReader::ReadSegments(const DigitShape& shape, uint8_t* segments) {
  const Scan scans[] = {
      {AcrossDigit(shape, 1), {SEGMENT_UPPER_LEFT, SEGMENT_UPPER_RIGHT}, 2},
      {AcrossDigit(shape, 2), {SEGMENT_LOWER_LEFT, SEGMENT_LOWER_RIGHT}, 2},
      {DownDigit(shape), {SEGMENT_TOP, SEGMENT_MIDDLE, SEGMENT_BOTTOM}, 3},
  };
  std::fill_n(segments, SEGMENTS, uint8_t{0});
  for (const auto& [line, parts, partCount] : scans) {
    bool hasContrast = false;
    const Status status = HasContrastAlong(line, &hasContrast);
    if (status != STATUS_OK) return status;
    if (!hasContrast) continue;
    const double level = Level();
    const int64_t count = samples_.count();
    for (int64_t i = 0; i < count; i++) {
      if (IsOn(i, level)) segments[parts[partCount * i / count]] = 1;
    }
  }
  return STATUS_OK;
}

Status DigitReader::HasContrastAlong(const KernelLine& line, bool* hasContrast) {
  Status status = samples_.Read(rules_.image, line);
  if (status == STATUS_OK) status = samples_.Smooth(SMOOTHING_REACH);
  if (status == STATUS_OK) *hasContrast = samples_.HasContrast(rules_.threshold);
  return status;
}

Status DigitReader::FindPoint(const DigitShape& shape, bool* isThere) {
  *isThere = false;
  Status status = STATUS_OK;
  for (int64_t i = 0; i < 5 && status == STATUS_OK && !*isThere; i++) {
    status = HasContrastAlong(PointScan(shape, i), isThere);
  }
  return status;
}

Status DigitReader::FindSign(const DigitShape& shape, bool* isThere) {
  *isThere = false;
  Status status = STATUS_OK;
  // A twentieth of a narrow digit's width is no whole pixel: its own edge is no place beside it.
  const int64_t width = StepsOf(Between(shape.topLeft, shape.topRight));
  for (int64_t i = 1; i <= 20 && status == STATUS_OK && !*isThere; i++) {
    if (i * width >= 20) status = HasContrastAlong(SignScan(shape, i), isThere);
  }
  return status;
}

Status DigitReader::Read(const DigitShape& shape, DigitReading* reading) {
  Status status = ReadSegments(shape, reading->segments);
  if (status != STATUS_OK) return status;
  const auto isOff = [](uint8_t segment) { return segment == 0; };
  if (std::all_of(reading->segments, reading->segments + SEGMENTS, isOff)) return STATUS_NO_SEGMENT;
  const Match match = NearestDigit(reading->segments);
  reading->digit = match.digit;
  reading->hasPoint = false;
  if (rules_.wantsPoint) status = FindPoint(shape, &reading->hasPoint);
  if (status != STATUS_OK) return status;
  return match.differing > 0 ? STATUS_INEXACT_DIGIT : STATUS_OK;
}

}  // namespace zel
