// Levels and classes of rows of pixels, counted.
#include "statistics/histogram_rows.h"

#include <bit>
#include <cstring>

#include "core/pixel_types.h"
#include "statistics/float_sums.h"

#if defined(ZEL_LEVEL_v3) || defined(ZEL_LEVEL_v4)
#include <immintrin.h>
#endif

namespace zel::ZEL_LEVEL {
namespace {

uint64_t EightPixels(const uint8_t* pixels) {
  uint64_t eight;
  std::memcpy(&eight, pixels, sizeof(eight));
  return eight;
}

ZEL_INLINE void CountEight(uint64_t pixels, uint32_t* tables) {
  static_assert(LEVEL_TABLES == sizeof(pixels));
  for (int32_t i = 0; i < LEVEL_TABLES; i++) {
    tables[pixels & 255]++;
    pixels >>= 8;
    tables += LEVELS_U8;
  }
}

// Flat parts of an image take one addition for 16 pixels, and the next 16 another table. The test
// is for many pixels, as the processor guesses its outcome: in noise or blurred pictures a few
// neighbours are the same now and then, and a wrong guess costs more than counting them.
void CountLevels(const uint8_t* row, int32_t width, uint32_t* tables) {
  int32_t x = 0;
  for (; x + 16 <= width; x += 16) {
    const uint64_t left = EightPixels(row + x);
    const uint64_t right = EightPixels(row + x + 8);
    if (left == right && left == std::rotl(left, 8)) {
      uint32_t* table = tables + x / 16 % LEVEL_TABLES * LEVELS_U8;
      table[row[x]] += 16;
    } else {
      CountEight(left, tables);
      CountEight(right, tables);
    }
  }
  for (; x < width; x++) tables[x % LEVEL_TABLES * LEVELS_U8 + row[x]]++;
}

void LevelsUnderMask(const uint8_t* row, const uint8_t* mask, int32_t width, uint16_t* levels) {
  for (int32_t x = 0; x < width; x++) {
    const int32_t selected = mask[x] != 0 ? 0xFFFF : 0;
    levels[x] = static_cast<uint16_t>((row[x] & selected) | (256 & ~selected));
  }
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

constexpr int32_t CLASS_BLOCK = 64;  // pixels whose classes are found together

// The nearest whole numbers, from an exact half the lower ones, of positions from 0 on, whatever
// way the caller's floats are rounded.
ZEL_INLINE void RoundPositions(const double* positions, int32_t* numbers) {
#if defined(ZEL_LEVEL_v4) || defined(ZEL_LEVEL_v3)
  alignas(VECTOR_BYTES) double whole[CLASS_BLOCK];
  for (int32_t x = 0; x < CLASS_BLOCK; x += DOUBLE_LANES) {
    // From 0.5 on the difference is exact, and below it the result is 0 in any case.
    const Doubles below = Load<Doubles>(positions + x) - 0.5;
#if defined(ZEL_LEVEL_v4)
    constexpr int up = _MM_FROUND_TO_POS_INF | _MM_FROUND_NO_EXC;
    Store(whole + x, Doubles(_mm512_maskz_roundscale_pd(0xFF, below, up)));
#else
    Store(whole + x, Doubles(_mm256_ceil_pd(below)));
#endif
  }
  for (int32_t x = 0; x < CLASS_BLOCK; x++) numbers[x] = static_cast<int32_t>(whole[x]);
#else
  for (int32_t x = 0; x < CLASS_BLOCK; x++) {
    const auto cut = static_cast<int32_t>(positions[x]);
    numbers[x] = cut + static_cast<int32_t>(positions[x] - cut > 0.5);
  }
#endif
}

ZEL_INLINE void NumbersOfBlock(const float* pixels, const ClassMap& map, int32_t* numbers) {
  alignas(VECTOR_BYTES) double positions[CLASS_BLOCK];
  for (int32_t x = 0; x < CLASS_BLOCK; x++) positions[x] = static_cast<double>(pixels[x]);
  const Doubles last = Doubles{} + (map.classes - 1);
  const auto scale = static_cast<double>(map.scale);
  const auto offset = static_cast<double>(map.offset);
  for (int32_t x = 0; x < CLASS_BLOCK; x += DOUBLE_LANES) {
    const auto value = Load<Doubles>(positions + x);
    Doubles position = (value - map.min) * scale + offset;
    position = position > 0.0 ? position : Doubles{};  // NaN too
    position = position < last ? position : last;
    Store(positions + x, position);
  }
  RoundPositions(positions, numbers);
}

// The scale of words is 0, or 24 bits from 2^-15 (two classes of 65536 words) on. So positions and
// the offset, which is half of it less 0.5, are multiples of 2^-39, and doubles hold them exactly,
// with a bit more that takes an exact half to the lower class. The positions of counted words lie
// between -0.5 and half a class above the last, so that nothing needs to be limited.
constexpr double BELOW_HALF = 0.5 - 0x1p-40;

ZEL_INLINE void NumbersOfBlock(const int16_t* pixels, const ClassMap& map, int32_t* numbers) {
  const auto min = static_cast<int32_t>(map.min);
  const auto scale = static_cast<double>(map.scale);
  const double start = static_cast<double>(map.offset) + BELOW_HALF;
  for (int32_t x = 0; x < CLASS_BLOCK; x++) {
    numbers[x] = static_cast<int32_t>((pixels[x] - min) * scale + start);
  }
}

template <class T>
ZEL_INLINE void ClassesOfBlock(const T* pixels, const ClassMap& map, uint16_t* classes) {
  alignas(VECTOR_BYTES) int32_t numbers[CLASS_BLOCK];
  NumbersOfBlock(pixels, map, numbers);
  // The ends of the range are values of the pixels' type.
  const T min = static_cast<T>(map.min);
  const T max = static_cast<T>(map.max);
  const int32_t none = map.classes;
  for (int32_t x = 0; x < CLASS_BLOCK; x++) {
    const int32_t counted = -static_cast<int32_t>((pixels[x] >= min) & (pixels[x] <= max));
    classes[x] = static_cast<uint16_t>((numbers[x] & counted) | (none & ~counted));
  }
}

template <class T>
void Classes(const void* row, const uint8_t* mask, int32_t width, const ClassMap& map,
             uint16_t* classes) {
  const auto* pixels = static_cast<const T*>(row);
  int32_t x = 0;
  for (; x + CLASS_BLOCK <= width; x += CLASS_BLOCK) {
    ClassesOfBlock(pixels + x, map, classes + x);
  }
  if (x < width) {
    const auto rest = static_cast<size_t>(width - x);
    T few[CLASS_BLOCK] = {};
    uint16_t fewClasses[CLASS_BLOCK];
    std::memcpy(few, pixels + x, rest * sizeof(T));
    ClassesOfBlock(few, map, fewClasses);
    std::memcpy(classes + x, fewClasses, rest * sizeof(uint16_t));
  }
  if (!mask) return;
  for (int32_t i = 0; i < width; i++) {
    const int32_t selected = mask[i] != 0 ? 0xFFFF : 0;
    classes[i] = static_cast<uint16_t>((classes[i] & selected) | (map.classes & ~selected));
  }
}

void SumWords(const void* row, const uint16_t* classes, int32_t width, const ClassMap& map,
              uint32_t* tables, PixelSums* sums) {
  CountNumbers(classes, width, map.classes + 1, tables);
  const auto* pixels = static_cast<const int16_t*>(row);
  const auto none = static_cast<uint16_t>(map.classes);
  // Of the pixels that are left out: 0 for the sums, the far end for the extremes.
  constexpr auto least = static_cast<int16_t>(LIMITS_OF<int16_t>.low);
  constexpr auto most = static_cast<int16_t>(LIMITS_OF<int16_t>.high);
  int16_t values[CLASS_RUN];
  int16_t lows[CLASS_RUN];
  int16_t highs[CLASS_RUN];
  for (int32_t x = 0; x < width; x++) {
    const int32_t keep = classes[x] != none ? 0xFFFF : 0;
    values[x] = static_cast<int16_t>(pixels[x] & keep);
    lows[x] = static_cast<int16_t>((pixels[x] & keep) | (most & ~keep));
    highs[x] = static_cast<int16_t>((pixels[x] & keep) | (least & ~keep));
  }
  int32_t sum = 0;
  uint64_t squares = 0;
  int16_t min = most;
  int16_t max = least;
  for (int32_t x = 0; x < width; x++) {
    sum += values[x];
    squares += static_cast<uint32_t>(values[x] * values[x]);
    min = lows[x] < min ? lows[x] : min;
    max = highs[x] > max ? highs[x] : max;
  }
  sums->sum += sum;
  sums->squares += static_cast<double>(squares);
  if (min > max) return;  // none was counted
  if (min < sums->min) sums->min = min;
  if (max > sums->max) sums->max = max;
}

void SumFloats(const void* row, const uint16_t* classes, int32_t width, const ClassMap& map,
               uint32_t* tables, PixelSums* sums) {
  const auto* pixels = static_cast<const float*>(row);
  const auto none = static_cast<uint16_t>(map.classes);
  if (width < LONG_RUN) {
    CountNumbers(classes, width, map.classes + 1, tables);
    PixelSums few = *sums;
    for (int32_t x = 0; x < width; x++) {
      if (classes[x] != none) PixelSumsAdd(&few, pixels[x]);
    }
    few.count = sums->count;
    *sums = few;
    return;
  }
  FloatSums result(sums);
  alignas(VECTOR_BYTES) int32_t keep[SUM_BLOCK];
  for (int32_t first = 0; first < width; first += SUM_BLOCK) {
    const int32_t count = width - first < SUM_BLOCK ? width - first : SUM_BLOCK;
    const uint16_t* numbers = classes + first;
    CountNumbers(numbers, count, map.classes + 1, tables);
    for (int32_t x = 0; x < count; x++) keep[x] = -static_cast<int32_t>(numbers[x] != none);
    if (count == SUM_BLOCK) {
      result.AddBlock<true>(pixels + first, keep);
    } else {
      result.AddFew<true>(pixels + first, keep, count);
    }
  }
  result.Finish(pixels, [=](int32_t x) { return classes[x] != none; });
}

}  // namespace

extern const HistogramRows histogramRows = {.countLevels = &CountLevels,
                                            .levelsUnderMask = &LevelsUnderMask,
                                            .countNumbers = &CountNumbers,
                                            .classesOfWords = &Classes<int16_t>,
                                            .classesOfFloats = &Classes<float>,
                                            .sumWords = &SumWords,
                                            .sumFloats = &SumFloats};

}  // namespace zel::ZEL_LEVEL
