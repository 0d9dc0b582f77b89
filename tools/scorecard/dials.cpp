// Dials and displays of the scenes, spoilt and read by the library.
#include "scorecard/dials.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <memory>
#include <string>
#include <vector>

#include "pictures/library.h"
#include "scenes/gauges.h"
#include "scenes/random.h"

namespace scorecard {
namespace {

using pictures::Block;
using pictures::Check;
using pictures::Image;

constexpr double DIAL_DEGREES = 270;

struct Spoil {
  double contrast, noise;  // a share of the picture's own; gray levels
};
constexpr Spoil SPOILS[] = {{1, 0}, {1, 10}, {1, 30}, {0.3, 2}, {0.1, 2}, {0.05, 2}};

Image ImageOf(const scenes::Picture& picture, const Spoil& spoil, uint64_t seed) {
  scenes::Random random(seed);
  Image image(IMAGE_U8, 0, picture.width, picture.height);
  const ImageInfo info = image.Info();
  auto level = picture.pixels.begin();
  for (int32_t y = 0; y < picture.height; ++y) {
    auto* row = pictures::Row<uint8_t>(info, y);
    for (int32_t x = 0; x < picture.width; ++x) {
      const double spoilt = 128 + spoil.contrast * (*level++ - 128) + spoil.noise * random.Gauss();
      row[x] = static_cast<uint8_t>(std::lround(std::clamp(spoilt, 0.0, 255.0)));
    }
  }
  return image;
}

struct Errors {
  double sum = 0, most = 0;
  int count = 0;
  void Add(double error) {
    sum += std::fabs(error);
    most = std::max(most, std::fabs(error));
    ++count;
  }
};

Errors MeterErrors(const Spoil& spoil) {
  constexpr auto BASE = static_cast<float>(scenes::DIAL_CENTRE);
  const auto side = static_cast<float>(scenes::DIAL_NEEDLE * std::sqrt(0.5));
  PointFloat* points = nullptr;
  int32_t count = 0;
  Check(ZEL_CalibrateMeter2(BASE, BASE, BASE - side, BASE + side, BASE + side, BASE + side, &points,
                            &count));
  const Block<PointFloat> arc(points);
  Errors errors;
  for (int step = 0; step <= 100; ++step) {
    const double bar = step / 10.0;
    const Image image = ImageOf(scenes::Dial("", bar).picture, spoil, static_cast<uint64_t>(step));
    float percent = 0;
    PointFloat tip{};
    Check(ZEL_ReadMeter(image, BASE, BASE, points, count, 0, &percent, &tip));
    errors.Add((static_cast<double>(percent) - 10 * bar) / 100 * DIAL_DEGREES);
  }
  return errors;
}

struct FreeRoi {
  void operator()(RoiDescriptor* roi) const { ZEL_FreeROI(roi); }
};
using Roi = std::unique_ptr<RoiDescriptor, FreeRoi>;

Roi CalibratedDigits(const Spoil& spoil, float threshold) {
  const int32_t flat[] = {0, 0, 0, 0, ROI_MARKER_EXTERNAL, ROI_RECT, 24, 20, 290, 120};
  RoiDescriptor* region = nullptr;
  Check(ZEL_ArrayToROI(flat, 10, &region));
  const Roi owner(region);
  RoiDescriptor* digits = nullptr;
  const Image eights = ImageOf(scenes::Display("", "8888").picture, {spoil.contrast, 0}, 1);
  Check(ZEL_CalibrateLCD(eights, region, 1, threshold, &digits));
  return Roi(digits);
}

struct Digits {
  int right = 0, wrong = 0, refused = 0;
};

Digits DigitsRead(const Spoil& spoil) {
  constexpr int DISPLAYS = 25;
  // Half of what a line across segments varies by.
  const auto threshold = static_cast<float>(std::max(20 * spoil.contrast, 1.0));
  const Roi roi = CalibratedDigits(spoil, threshold);
  scenes::Random random(7);
  Digits result;
  for (int i = 0; i < DISPLAYS; ++i) {
    std::string shown;
    for (int k = 0; k < 4; ++k)
      shown += static_cast<char>('0' + static_cast<int>(random.Between(0, 10)));
    const Image image =
        ImageOf(scenes::Display("", shown).picture, spoil, static_cast<uint64_t>(i));
    char* text = nullptr;
    uint8_t* segments = nullptr;
    double value = 0;
    int32_t count = 0;
    const int32_t status =
        ZEL_ReadLCDDisplay(image, roi.get(), 1, threshold, 0, 0, &text, &value, &segments, &count);
    const Block<char> textOwner(text);
    const Block<uint8_t> segmentsOwner(segments);
    if (status != 0) {
      result.refused += 4;
      continue;
    }
    for (size_t k = 0; k < 4; ++k) ++(text[k] == shown[k] ? result.right : result.wrong);
  }
  return result;
}

}  // namespace

void PutDials(std::ostream& out) {
  out << R"(## Meters and displays

A dial of 320 x 320 pixels with a scale of 270 degrees, tick marks and the needle's shadow, read at 101 values; and
25 displays of four digits of 40 x 72 pixels, lit from one side. Contrast is a share of the picture's own.

| contrast | noise | meter: mean error | largest error | digits right | wrong | refused |
|---|---|---|---|---|---|---|
)";
  for (const Spoil& spoil : SPOILS) {
    const Errors errors = MeterErrors(spoil);
    const Digits digits = DigitsRead(spoil);
    out << std::fixed << std::setprecision(2) << "| " << spoil.contrast << " | "
        << std::setprecision(0) << spoil.noise << " | " << std::setprecision(2)
        << errors.sum / errors.count << "° | " << errors.most << "° | " << digits.right << " | "
        << digits.wrong << " | " << digits.refused << " |\n";
  }
  out << R"(
A display in which one digit is refused gives none of its digits.
)";
}

}  // namespace scorecard
