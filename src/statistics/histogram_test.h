// The histogram of a region as it is stated, for the tests of what counts or uses one.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

#include "harness/test_image.h"

namespace test {

// The selected pixels' values in raster order, from the rule of masks.
inline std::vector<double> SelectedValues(const TestImage& image, const TestImage* mask) {
  const ImageInfo info = image.Info();
  const ImageInfo placed = mask ? mask->Info() : ImageInfo{};
  std::vector<double> values;
  for (int32_t y = 0; y < info.height; y++) {
    const int64_t maskY = int64_t{y} - placed.offsetY;
    if (mask && (maskY < 0 || maskY >= placed.height)) continue;
    const void* row = image.At<uint8_t>(0, y);
    const auto* maskRow = mask ? mask->At<uint8_t>(0, static_cast<int32_t>(maskY)) : nullptr;
    for (int32_t x = 0; x < info.width; x++) {
      const int64_t maskX = int64_t{x} - placed.offsetX;
      if (mask && (maskX < 0 || maskX >= placed.width || maskRow[maskX] == 0)) continue;
      if (info.type == IMAGE_U8) values.push_back(static_cast<const uint8_t*>(row)[x]);
      if (info.type == IMAGE_I16) values.push_back(static_cast<const int16_t*>(row)[x]);
      if (info.type == IMAGE_SGL) {
        values.push_back(static_cast<double>(static_cast<const float*>(row)[x]));
      }
    }
  }
  return values;
}

struct CountedHistogram {
  std::vector<uint32_t> counters;  // of the classes
  HistogramReport report;
};

// From the stated rule, value after value.
inline CountedHistogram HistogramByRule(const TestImage& image, const TestImage* mask,
                                        int32_t nbClasses, float min, float max) {
  const std::vector<double> values = SelectedValues(image, mask);
  const int32_t type = image.Info().type;
  int64_t classes = nbClasses < 1 ? 1 : nbClasses > 4096 ? 4096 : nbClasses;
  double low = static_cast<double>(min);
  double high = static_cast<double>(max);
  if (type != IMAGE_SGL) {
    const auto whole = [](double value) {
      if (std::isnan(value)) return 0.0;
      return std::trunc(std::fmin(std::fmax(value, -2147483648.0), 2147483647.0));
    };
    low = whole(low);
    high = whole(high);
  }
  bool everyLevel = false;
  bool measured = false;
  if (type == IMAGE_U8) {
    if (low < 1) low = 0;
    if (high == 0 || high >= 256) high = 255;
    if (classes > 256) classes = 256;
    everyLevel = classes == 256 && low == 0 && high == 255;
  } else if (low == 0 && high == 0) {
    measured = true;
  } else if (type == IMAGE_I16) {
    low = std::fmax(low, -32768.0);
    high = std::fmin(high, 32767.0);
  }
  if (measured) {
    low = type == IMAGE_I16 ? 2147483647.0 : static_cast<double>(1e38f);
    high = -low;
    for (const double value : values) {
      if (value < low) low = value;
      if (value > high) high = value;
    }
  }

  CountedHistogram expected{std::vector<uint32_t>(static_cast<size_t>(classes)), {}};
  HistogramReport& report = expected.report;
  if (everyLevel) report.interval = 1.0f;
  const auto number = static_cast<double>(classes);
  const double scale =
      classes > 1 ? static_cast<double>(static_cast<float>(number / (high - low + 1.0))) : 0.0;
  const double offset = static_cast<double>(static_cast<float>((scale - 1.0) * 0.5));
  double sum = 0;
  double squares = 0;
  double smallest = static_cast<double>(1e38f);
  double largest = -smallest;
  uint32_t count = 0;
  for (const double value : values) {
    if (!(value >= low && value <= high)) continue;
    count++;
    if (value < smallest) smallest = value;
    if (value > largest) largest = value;
    sum += value;
    squares += value * value;
    double f = (value - low) * scale + offset;
    if (std::isnan(f) || f < 0) f = 0;
    if (f > number - 1) f = number - 1;
    auto index = static_cast<int64_t>(f);
    if (f - static_cast<double>(index) > 0.5) index++;
    if (index > classes - 1) index = classes - 1;
    expected.counters[static_cast<size_t>(index)]++;
  }
  if (count == 0) return expected;
  report.min = static_cast<float>(smallest);
  report.max = static_cast<float>(largest);
  report.start = static_cast<float>(low);
  report.interval = everyLevel     ? 1.0f
                    : classes == 1 ? 1e38f
                                   : static_cast<float>((high - low + 1.0) / number);
  report.mean = static_cast<float>(sum / count);
  const double mean = static_cast<double>(report.mean);
  const double variance = squares / count - mean * mean;
  report.stdDev = variance < 0 ? 0.0f : static_cast<float>(std::sqrt(variance));
  report.nbPixels = count;
  return expected;
}

}  // namespace test
