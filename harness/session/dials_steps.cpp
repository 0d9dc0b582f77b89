// Meters and displays calibrated and read.
#include <algorithm>

#include "harness/drawn_display.h"
#include "harness/session/session.h"

namespace test {
namespace {

// A region of contours of two points each, that comes and goes with the step.
class Region {
 public:
  Region() = default;
  Region(const Region&) = delete;
  Region& operator=(const Region&) = delete;
  ~Region() { ZEL_FreeROI(roi_); }

  int32_t Make(int32_t type, const int32_t (*lines)[4], int32_t count) {
    int32_t flat[16] = {};
    for (int32_t i = 0; i < count; i++) {
      int32_t* contour = flat + 4 + 6 * i;
      contour[0] = ROI_MARKER_EXTERNAL;
      contour[1] = type;
      std::copy_n(lines[i], 4, contour + 2);
    }
    return ZEL_ArrayToROI(flat, 4 + 6 * count, &roi_);
  }
  RoiDescriptor* roi() const { return roi_; }
  RoiDescriptor** Address() { return &roi_; }

 private:
  RoiDescriptor* roi_ = nullptr;
};

int32_t CalibrateMeter(Session& s) {
  const int32_t needles[2][4] = {{4, 20, 10, 16}, {32, 20, 26, 16}};
  Region lines;
  PointFloat base{};
  PointFloat* arc = nullptr;
  int32_t count = 0;
  int32_t result = lines.Make(ROI_LINE, needles, 2);
  if (result == 0) result = ZEL_CalibrateMeter(lines.roi(), &base, &arc, &count);
  s.Out(base);
  s.Out(arc, static_cast<size_t>(count));
  ZEL_free(arc);
  return result;
}

int32_t CalibrateMeter2(Session& s) {
  PointFloat* arc = nullptr;
  int32_t count = 0;
  const int32_t result = ZEL_CalibrateMeter2(18.5f, 11, 9, 17, 28, 17, &arc, &count);
  s.Out(arc, static_cast<size_t>(count));
  ZEL_free(arc);
  return result;
}

int32_t ReadMeter(Session& s) {
  const PointFloat arc[] = {{9, 17}, {7, 11}, {12, 3}, {18, 1}, {25, 3}, {29, 11}, {28, 17}};
  for (const ImageRef image : {s.u8, s.i16, s.sgl}) {
    float percent = 0;
    PointFloat tip{};
    const int32_t result = ZEL_ReadMeter(image, 18.5f, 11, arc, 7, 0, &percent, &tip);
    if (result != 0) return result;
    s.Out(percent);
    s.Out(tip);
  }
  return 0;
}

// Calls a function with a picture of a display.
template <class Function>
int32_t WithDisplay(const Function& function) {
  ImageRef image = 0;
  int32_t result = DrawDisplay(&image);
  if (result == 0) result = function(image);
  if (image != 0) ZEL_Dispose(image);
  return result;
}

int32_t CalibrateLCD(Session& s) {
  return WithDisplay([&](ImageRef image) {
    Region all;
    Region digits;
    int32_t result = all.Make(ROI_RECT, &DRAWN_DIGITS_REGION, 1);
    if (result == 0) {
      result = ZEL_CalibrateLCD(image, all.roi(), 0, DRAWN_DIGITS_THRESHOLD, digits.Address());
    }
    if (result == 0) s.Out(digits.roi()->globalRect);
    return result;
  });
}

int32_t ReadSingleDigit(Session& s) {
  return WithDisplay([&](ImageRef image) {
    Region digit;
    char* text = nullptr;
    double value = 0;
    DigitSegments segments{};
    int32_t result = digit.Make(ROI_RECT, &DRAWN_DIGIT, 1);
    if (result == 0) {
      result = ZEL_ReadSingleDigit(image, digit.roi(), 0, DRAWN_DIGITS_THRESHOLD, 1, &text, &value,
                                   &segments);
    }
    s.Out(value);
    s.Out(segments.states);
    ZEL_free(text);
    return result;
  });
}

int32_t ReadLCDDisplay(Session& s) {
  const auto [left, top, right, bottom] = DRAWN_DIGIT;
  const int32_t both[2][4] = {{left, top, right, bottom},
                              {left + DRAWN_DIGIT_STEP, top, right + DRAWN_DIGIT_STEP, bottom}};
  return WithDisplay([&](ImageRef image) {
    Region digits;
    char* text = nullptr;
    double value = 0;
    uint8_t* segments = nullptr;
    int32_t count = 0;
    int32_t result = digits.Make(ROI_RECT, both, 2);
    if (result == 0) {
      result = ZEL_ReadLCDDisplay(image, digits.roi(), 0, DRAWN_DIGITS_THRESHOLD, 1, 1, &text,
                                  &value, &segments, &count);
    }
    s.Out(value);
    s.Out(segments, static_cast<size_t>(7 * count));
    ZEL_free(text);
    ZEL_free(segments);
    return result;
  });
}

constexpr Step ROWS[] = {
    {"ZEL_CalibrateMeter", &CalibrateMeter},
    {"ZEL_CalibrateMeter2", &CalibrateMeter2},
    {"ZEL_ReadMeter", &ReadMeter},
    {"ZEL_CalibrateLCD", &CalibrateLCD},
    {"ZEL_ReadSingleDigit", &ReadSingleDigit},
    {"ZEL_ReadLCDDisplay", &ReadLCDDisplay},
};

}  // namespace

constinit const std::span<const Step> DIALS_STEPS{ROWS};

}  // namespace test
