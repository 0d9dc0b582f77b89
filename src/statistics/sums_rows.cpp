// Sums, squares, extremes and moments of rows of pixels.
#include "statistics/sums_rows.h"

#include "core/pixel_types.h"
#include "statistics/float_sums.h"

namespace zel::ZEL_LEVEL {
namespace {

// Integer pixels go in parts whose sums fit narrow integers.
constexpr int32_t SUM_PART = 32768;
constexpr int32_t MOMENT_PART = 128;

ZEL_INLINE int32_t Smaller(int32_t a, int32_t b) {
  return a < b ? a : b;
}

template <class T>
void ExtremesOfIntegers(const void* row, const uint8_t* mask, int32_t width, float* min,
                        float* max) {
  const auto* pixels = static_cast<const T*>(row);
  constexpr T least = static_cast<T>(LIMITS_OF<T>.low);
  constexpr T most = static_cast<T>(LIMITS_OF<T>.high);
  T low = most;
  T high = least;
  if (!mask) {
    for (int32_t x = 0; x < width; x++) {
      low = pixels[x] < low ? pixels[x] : low;
      high = pixels[x] > high ? pixels[x] : high;
    }
  } else {
    for (int32_t x = 0; x < width; x++) {
      const auto selected = static_cast<T>(-static_cast<int32_t>(mask[x] != 0));
      const auto forLow = static_cast<T>((pixels[x] & selected) | (most & ~selected));
      const auto forHigh = static_cast<T>((pixels[x] & selected) | (least & ~selected));
      low = forLow < low ? forLow : low;
      high = forHigh > high ? forHigh : high;
    }
  }
  if (low > high) return;  // none was selected
  if (static_cast<float>(low) < *min) *min = static_cast<float>(low);
  if (static_cast<float>(high) > *max) *max = static_cast<float>(high);
}

// Of several zeros the first one is the extreme, sign and all.
float FirstLike(float extreme, const float* pixels, const uint8_t* mask) {
  if (extreme != 0.0f) return extreme;
  int32_t x = 0;
  while (pixels[x] != 0.0f || (mask && mask[x] == 0)) x++;
  return pixels[x];
}

void ExtremesOfFloats(const void* row, const uint8_t* mask, int32_t width, float* min, float* max) {
  const auto* pixels = static_cast<const float*>(row);
  float low = EXTREME_NONE;
  float high = -EXTREME_NONE;
  int32_t x = 0;
  if (!mask && width >= 2 * FLOAT_LANES) {
    Floats lows = Floats{} + EXTREME_NONE;
    Floats highs = Floats{} - EXTREME_NONE;
    Floats moreLows = lows;
    Floats moreHighs = highs;
    for (; x + 2 * FLOAT_LANES <= width; x += 2 * FLOAT_LANES) {
      const auto first = Load<Floats>(pixels + x);
      const auto second = Load<Floats>(pixels + x + FLOAT_LANES);
      lows = first < lows ? first : lows;  // NaN is passed over
      highs = first > highs ? first : highs;
      moreLows = second < moreLows ? second : moreLows;
      moreHighs = second > moreHighs ? second : moreHighs;
    }
    lows = moreLows < lows ? moreLows : lows;
    highs = moreHighs > highs ? moreHighs : highs;
    for (int32_t lane = 0; lane < FLOAT_LANES; lane++) {
      low = lows[lane] < low ? lows[lane] : low;
      high = highs[lane] > high ? highs[lane] : high;
    }
  }
  for (; x < width; x++) {
    if (mask && mask[x] == 0) continue;
    low = pixels[x] < low ? pixels[x] : low;
    high = pixels[x] > high ? pixels[x] : high;
  }
  if (low < *min) *min = FirstLike(low, pixels, mask);
  if (high > *max) *max = FirstLike(high, pixels, mask);
}

template <class T, class Square>
void AddIntegers(const void* row, int32_t count, PixelSums* sums) {
  const auto* pixels = static_cast<const T*>(row);
  T min = pixels[0];
  T max = pixels[0];
  for (int32_t first = 0; first < count; first += SUM_PART) {
    const int32_t part = Smaller(SUM_PART, count - first);
    const T* values = pixels + first;
    int32_t sum = 0;
    Square squares = 0;
    for (int32_t i = 0; i < part; i++) {
      const T value = values[i];
      sum += value;
      squares += static_cast<uint32_t>(value * value);
      min = value < min ? value : min;
      max = value > max ? value : max;
    }
    sums->sum += sum;
    sums->squares += static_cast<double>(squares);
  }
  sums->count += count;
  const auto low = static_cast<float>(min);
  const auto high = static_cast<float>(max);
  if (low < sums->min) sums->min = low;
  if (high > sums->max) sums->max = high;
}

void AddFloats(const void* row, int32_t count, PixelSums* sums) {
  const auto* pixels = static_cast<const float*>(row);
  if (count < LONG_RUN) {
    PixelSums few = *sums;
    for (int32_t i = 0; i < count; i++) PixelSumsAdd(&few, pixels[i]);
    *sums = few;
    return;
  }
  FloatSums result(sums);
  const int32_t blocks = count / SUM_BLOCK * SUM_BLOCK;
  for (int32_t i = 0; i < blocks; i += SUM_BLOCK) result.AddBlock<false>(pixels + i, nullptr);
  result.AddFew<false>(pixels + blocks, nullptr, count - blocks);
  result.Finish(pixels, [](int32_t) { return true; });
  sums->count += count;
}

template <class T, bool MASKED>
void AddMoments(const T* row, const uint8_t* mask, int32_t width, int32_t y, MomentSums* sums) {
  int64_t sum = 0;
  int64_t sumX = 0;
  for (int32_t first = 0; first < width; first += MOMENT_PART) {
    const int32_t part = Smaller(MOMENT_PART, width - first);
    const T* values = row + first;
    int32_t partSum = 0;
    int32_t partX = 0;  // from the first column of the part
    for (int32_t i = 0; i < part; i++) {
      const int16_t value = !MASKED || mask[first + i] != 0 ? values[i] : T{0};
      partSum += value;
      partX += static_cast<int16_t>(i) * value;
    }
    sum += partSum;
    sumX += partX + int64_t{first} * partSum;
  }
  sums->sum += static_cast<double>(sum);
  sums->x += static_cast<double>(sumX);
  sums->y += static_cast<double>(sum) * y;
}

template <class T>
void Moments(const void* row, const uint8_t* mask, int32_t width, int32_t y, MomentSums* sums) {
  const auto* pixels = static_cast<const T*>(row);
  if (mask) {
    AddMoments<T, true>(pixels, mask, width, y, sums);
  } else {
    AddMoments<T, false>(pixels, mask, width, y, sums);
  }
}

}  // namespace

extern const SumsRows sumsRows = {
    .extremes = {&ExtremesOfIntegers<uint8_t>, &ExtremesOfIntegers<int16_t>, &ExtremesOfFloats},
    .add = {&AddIntegers<uint8_t, uint32_t>, &AddIntegers<int16_t, uint64_t>, &AddFloats},
    .moments = {&Moments<uint8_t>, &Moments<int16_t>}};

}  // namespace zel::ZEL_LEVEL
