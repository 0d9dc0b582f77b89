// Sums, squares, extremes and moments of rows of pixels.
#include "analysis/sums_rows.h"

namespace zel::ZEL_LEVEL {
namespace {

// Integer pixels go in parts whose sums fit narrow integers.
constexpr int32_t SUM_PART = 32768;
constexpr int32_t MOMENT_PART = 128;

ZEL_INLINE int32_t Smaller(int32_t a, int32_t b) {
  return a < b ? a : b;
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
  PixelSums result = *sums;
  for (int32_t i = 0; i < count; i++) PixelSumsAdd(&result, pixels[i]);
  *sums = result;
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
    {&AddIntegers<uint8_t, uint32_t>, &AddIntegers<int16_t, uint64_t>, &AddFloats},
    {&Moments<uint8_t>, &Moments<int16_t>}};

}  // namespace zel::ZEL_LEVEL
