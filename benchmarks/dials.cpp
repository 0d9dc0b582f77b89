// Meters and displays read.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "benchmarks/pairs.h"

namespace {

using bench::Images;

constexpr char NOTES[] = R"(
Times are of a whole call, not of a pixel, and no peer reads gauges. `read_meter` looks along all lines of
a scale of 270 degrees whose arc fits the picture; `read_display` reads eight digits with a sign and
points.
)";

// ---- meters

int32_t PrepareArc(Images& i) {
  const auto centreX = static_cast<float>(i.size.width) / 2;
  const auto centreY = static_cast<float>(i.size.height) / 2;
  const float reach = std::min(centreX, centreY) * 0.85f * std::sqrt(0.5f);
  PointFloat* arc = nullptr;
  int32_t count = 0;
  const int32_t result = ZEL_CalibrateMeter2(centreX, centreY, centreX - reach, centreY + reach,
                                             centreX + reach, centreY + reach, &arc, &count);
  i.array.resize(static_cast<size_t>(count) * sizeof(PointFloat));
  if (count > 0) std::memcpy(i.array.data(), arc, i.array.size());
  ZEL_free(arc);
  return result;
}

int32_t ReadMeter(Images& i) {
  float percent = 0;
  PointFloat tip{};
  return ZEL_ReadMeter(
      i.a, static_cast<float>(i.size.width) / 2, static_cast<float>(i.size.height) / 2,
      reinterpret_cast<const PointFloat*>(i.array.data()),
      static_cast<int32_t>(i.array.size() / sizeof(PointFloat)), 0, &percent, &tip);
}

// ---- displays

constexpr int32_t DIGITS = 8;

// A digit's place: as many as there are side by side, with ground between them.
struct Digit {
  int32_t left, top, right, bottom;
};

Digit DigitAt(bench::Size size, int32_t index) {
  const int32_t step = size.width / DIGITS;
  return {index * step + step / 8, size.height / 4, index * step + step * 3 / 4,
          size.height * 3 / 4};
}

int32_t FillPart(ImageRef image, const Digit& part, float level) {
  return ZEL_DrawRect(image, image, part.top, part.left, part.bottom - part.top,
                      part.right - part.left, DRAW_PAINT, level);
}

// Eight eights into the destination, and their region as flat integers.
int32_t PrepareDigits(Images& i) {
  std::vector<int32_t> flat(4);
  int32_t result = ZEL_SetImageSize(i.to, i.size.width, i.size.height);
  if (result == 0) result = ZEL_FillImage(i.to, 0, 200, 0, 0, 0);
  for (int32_t index = 0; index < DIGITS && result == 0; index++) {
    const Digit digit = DigitAt(i.size, index);
    const int32_t stroke = std::max((digit.right - digit.left) / 4, 1);
    const int32_t middle = (digit.top + digit.bottom) / 2;
    result = FillPart(i.to, digit, 40);
    const int32_t left = digit.left + stroke;
    const int32_t right = digit.right - stroke;
    const int32_t half = stroke / 2;
    if (result == 0) result = FillPart(i.to, {left, digit.top + stroke, right, middle - half}, 200);
    if (result == 0) {
      result = FillPart(i.to, {left, middle + stroke - half, right, digit.bottom - stroke}, 200);
    }
    flat.insert(flat.end(),
                {ROI_MARKER_EXTERNAL, ROI_RECT, digit.left, digit.top, digit.right, digit.bottom});
  }
  i.array.resize(flat.size() * sizeof(int32_t));
  std::memcpy(i.array.data(), flat.data(), i.array.size());
  return result;
}

int32_t ReadDisplay(Images& i) {
  RoiDescriptor* roi = nullptr;
  char* text = nullptr;
  uint8_t* segments = nullptr;
  double value = 0;
  int32_t count = 0;
  int32_t result = ZEL_ArrayToROI(reinterpret_cast<const int32_t*>(i.array.data()),
                                  static_cast<int32_t>(i.array.size() / sizeof(int32_t)), &roi);
  if (result == 0) {
    result = ZEL_ReadLCDDisplay(i.to, roi, 0, 10, 1, 1, &text, &value, &segments, &count);
  }
  ZEL_free(text);
  ZEL_free(segments);
  ZEL_FreeROI(roi);
  return result;
}

const std::vector<bench::Size> SIZES = {{64, 64}, {640, 480}};

const std::vector<bench::Pair> PAIRS = {
    {.operation = "read_meter",
     .kinds = bench::SCALARS,
     .sizes = SIZES,
     .pixels = bench::OnePixel,
     .prepare = [](Images& i, bench::Mats&) { return PrepareArc(i); },
     .ours = ReadMeter},
    {.operation = "read_display",
     .kinds = bench::SCALARS,
     .sizes = SIZES,
     .pixels = bench::OnePixel,
     .prepare = [](Images& i, bench::Mats&) { return PrepareDigits(i); },
     .ours = ReadDisplay},
};

const bench::Registration DIALS({"dials", "Meters and displays", NOTES, PAIRS});

}  // namespace
