// One digit of a display: where it lies, which of its segments are on, and which digit they form.
#pragma once

#include "dials/line_samples.h"
#include "regions/descriptors.h"

namespace zel {

// The region that a reader takes, in its flat form. STATUS_BAD_IMAGE, STATUS_MEMORY_FULL,
// STATUS_BAD_ROI for one of fewer integers than two corners take.
Status DisplayRegion(ImageRef image, const RoiDescriptor* roi, Handle vector);

// The corners of a digit. A rectangle's are in order.
struct DigitShape {
  PointInt topLeft, topRight, bottomRight, bottomLeft;
  bool isRectangle;
};
// STATUS_BAD_ROI for a contour that is no rectangle or polygon, or has too few points.
Status DigitShapeOf(const FlatContour& contour, DigitShape* shape);

constexpr int32_t SEGMENTS = 7;  // top, right ones, bottom, left ones from below, middle

struct DigitReading {
  uint8_t segments[SEGMENTS];
  int32_t digit;
  bool hasPoint;  // looked for only where the reader wants it
};

// How all digits of a display are read.
struct DisplayRules {
  ImageRef image;
  bool isLight;      // light segments on a dark ground
  double threshold;  // a line has contrast where its standard deviation is above
  bool wantsPoint;
};

class DigitReader {
 public:
  explicit DigitReader(const DisplayRules& rules) : rules_(rules) {}
  Status Create() { return samples_.Create(); }
  ImageRef image() const { return rules_.image; }

  // STATUS_NO_SEGMENT, with the segments alone in the reading; STATUS_INEXACT_DIGIT, with the
  // nearest digit; STATUS_BAD_TYPE, STATUS_MEMORY_FULL.
  Status Read(const DigitShape& shape, DigitReading* reading);
  // Whether something stands in the place left of a digit.
  Status FindSign(const DigitShape& shape, bool* isThere);

 private:
  struct Scan;
  Status ReadSegments(const DigitShape& shape, uint8_t* segments);
  Status FindPoint(const DigitShape& shape, bool* isThere);
  Status HasContrastAlong(const KernelLine& line, bool* hasContrast);
  double Level() const;
  bool IsOn(int64_t index, double level) const;

  DisplayRules rules_;
  LineSamples samples_;
};

}  // namespace zel
