// Levels and classes of rows of pixels, counted.
#include "analysis/histogram_rows.h"

#include <cstring>

namespace zel::ZEL_LEVEL {
namespace {

void CountLevels(const uint8_t* row, int32_t width, uint32_t* tables) {
  uint32_t* first = tables;
  uint32_t* second = tables + 256;
  uint32_t* third = tables + 512;
  uint32_t* fourth = tables + 768;
  int32_t x = 0;
  for (; x + 8 <= width; x += 8) {
    uint64_t levels;
    std::memcpy(&levels, row + x, 8);
    first[levels & 255]++;
    second[levels >> 8 & 255]++;
    third[levels >> 16 & 255]++;
    fourth[levels >> 24 & 255]++;
    first[levels >> 32 & 255]++;
    second[levels >> 40 & 255]++;
    third[levels >> 48 & 255]++;
    fourth[levels >> 56]++;
  }
  for (; x < width; x++) first[row[x]]++;
}

void LevelsUnderMask(const uint8_t* row, const uint8_t* mask, int32_t width, uint16_t* levels) {
  for (int32_t x = 0; x < width; x++) levels[x] = mask[x] != 0 ? row[x] : uint16_t{256};
}

void CountNumbers(const uint16_t* numbers, int32_t width, int32_t length, uint32_t* tables) {
  uint32_t* first = tables;
  uint32_t* second = first + length;
  uint32_t* third = second + length;
  uint32_t* fourth = third + length;
  int32_t x = 0;
  for (; x + 4 <= width; x += 4) {
    uint64_t four;
    std::memcpy(&four, numbers + x, 8);
    first[four & 0xFFFF]++;
    second[four >> 16 & 0xFFFF]++;
    third[four >> 32 & 0xFFFF]++;
    fourth[four >> 48]++;
  }
  for (; x < width; x++) first[numbers[x]]++;
}

// Rounded to the nearest class, an exact half down.
template <class T>
void Classes(const void* row, const uint8_t* mask, int32_t width, const ClassMap& map,
             uint16_t* classes) {
  const auto* pixels = static_cast<const T*>(row);
  const double min = map.min;
  const double max = map.max;
  const double scale = map.scale;
  const double offset = map.offset;
  const double last = map.classes - 1;
  const int32_t none = map.classes;
  for (int32_t x = 0; x < width; x++) {
    const auto value = static_cast<double>(pixels[x]);
    double position = (value - min) * scale + offset;
    position = position > 0.0 ? position : 0.0;
    position = position < last ? position : last;
    const auto below = static_cast<int32_t>(position);
    const int32_t nearest = below + (position - below > 0.5 ? 1 : 0);
    classes[x] = static_cast<uint16_t>((value >= min) & (value <= max) ? nearest : none);
  }
  if (!mask) return;
  for (int32_t x = 0; x < width; x++) {
    classes[x] = mask[x] != 0 ? classes[x] : static_cast<uint16_t>(none);
  }
}

void SumWords(const void* row, const uint16_t* classes, int32_t width, const ClassMap& map,
              uint32_t* tables, PixelSums* sums) {
  CountNumbers(classes, width, map.classes + 1, tables);
  const auto* pixels = static_cast<const int16_t*>(row);
  const auto none = static_cast<uint16_t>(map.classes);
  int32_t sum = 0;
  uint64_t squares = 0;
  int32_t count = 0;
  int16_t min = INT16_MAX;
  int16_t max = INT16_MIN;
  for (int32_t x = 0; x < width; x++) {
    const bool counted = classes[x] != none;
    const int16_t value = counted ? pixels[x] : int16_t{0};
    sum += value;
    squares += static_cast<uint32_t>(value * value);
    count += counted;
    const int16_t low = counted ? pixels[x] : int16_t{INT16_MAX};
    const int16_t high = counted ? pixels[x] : int16_t{INT16_MIN};
    min = low < min ? low : min;
    max = high > max ? high : max;
  }
  if (count == 0) return;
  sums->sum += sum;
  sums->squares += static_cast<double>(squares);
  sums->count += count;
  if (min < sums->min) sums->min = min;
  if (max > sums->max) sums->max = max;
}

// Each sum waits for the one before, so that the counting costs nothing beside them.
void SumFloats(const void* row, const uint16_t* classes, int32_t width, const ClassMap& map,
               uint32_t* tables, PixelSums* sums) {
  const auto* pixels = static_cast<const float*>(row);
  const int32_t length = map.classes + 1;
  PixelSums result = *sums;
  for (int32_t x = 0; x < width; x++) {
    const int32_t number = classes[x];
    tables[(x & (COUNT_TABLES - 1)) * length + number]++;
    if (number != map.classes) PixelSumsAdd(&result, pixels[x]);
  }
  *sums = result;
}

}  // namespace

extern const HistogramRows histogramRows = {&CountLevels,      &LevelsUnderMask, &CountNumbers,
                                            &Classes<int16_t>, &Classes<float>,  &SumWords,
                                            &SumFloats};

}  // namespace zel::ZEL_LEVEL
