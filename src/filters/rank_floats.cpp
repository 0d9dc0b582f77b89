// Rank filters of float pixels where their order is not that of numbers: windows with NaN, and
// zeros of both signs.
#include <algorithm>

#include "filters/rank_pass.h"

namespace zel {
namespace {

bool IsNan(float value) {
  return !(value == value);
}

// The window of one output pixel. Its pixels are sorted by insertion, in the order of its rows: a
// new one moves down past all that are larger. No comparison with NaN holds, so each NaN stays
// where it is, and what comes after it is sorted apart from what came before.
struct FloatWindow {
  const WindowViews& views;
  RankWindow window;
  int32_t x, y;

  float At(int64_t index) const {
    return *WindowCorner<float>(views, window, x + index % window.width, y + index / window.width);
  }
};

// The n-th zero from `begin` on: equal pixels keep the order in which they came.
float ZeroAt(const FloatWindow& window, int64_t begin, int64_t n) {
  for (int64_t i = begin;; i++) {
    const float pixel = window.At(i);
    if (pixel == 0.0f && n-- == 0) return pixel;
  }
}

float WantedRank(const FloatWindow& window, float* pixels) {
  const int64_t order = window.window.order;
  const int64_t size = int64_t{window.window.width} * window.window.height;
  if (IsNan(window.At(order))) return window.At(order);

  // The part between two NaN that sorts itself.
  int64_t begin = order;
  while (begin > 0 && !IsNan(window.At(begin - 1))) begin--;
  int64_t count = 0;
  int64_t negative = 0;
  for (int64_t i = begin; i < size; i++) {
    const float pixel = window.At(i);
    if (IsNan(pixel)) break;
    pixels[count++] = pixel;
    negative += pixel < 0.0f ? 1 : 0;
  }
  std::nth_element(pixels, pixels + (order - begin), pixels + count);
  const float wanted = pixels[order - begin];
  return wanted == 0.0f ? ZeroAt(window, begin, order - begin - negative) : wanted;
}

// Adds to, or takes from, the number of NaN in each source column that windows have in common.
void CountNan(const float* row, int32_t columns, int32_t sign, int32_t* counts) {
  for (int32_t i = 0; i < columns; i++) counts[i] += IsNan(row[i]) ? sign : 0;
}

}  // namespace

int64_t RankFloatsBytes(RankWindow window, int32_t columns) {
  return (int64_t{columns} + window.width - 1) * static_cast<int64_t>(sizeof(int32_t)) +
         int64_t{window.width} * window.height * static_cast<int64_t>(sizeof(float));
}

void RankFloatsMend(RankWindow window, const WindowViews& views, const FloatPart& part,
                    uint8_t* memory) {
  const bool zeros = (part.marks & FLOAT_HAS_NEGATIVE_ZERO) != 0;
  if ((part.marks & FLOAT_HAS_NAN) == 0 && !zeros) return;

  const int32_t sourceColumns = part.columns + window.width - 1;
  auto* counts = reinterpret_cast<int32_t*>(memory);
  void* behind = counts + sourceColumns;
  auto* pixels = static_cast<float*>(behind);
  const auto windowRow = [&](int64_t y) { return WindowCorner<float>(views, window, part.x, y); };
  std::fill_n(counts, sourceColumns, 0);
  for (int32_t row = 0; row < window.height - 1; row++) {
    CountNan(windowRow(int64_t{part.y} + row), sourceColumns, 1, counts);
  }
  for (int32_t y = part.y; y < part.y + part.rows; y++) {
    CountNan(windowRow(int64_t{y} + window.height - 1), sourceColumns, 1, counts);
    int64_t nan = 0;
    for (int32_t i = 0; i < window.width - 1; i++) nan += counts[i];
    for (int32_t i = 0; i < part.columns; i++) {
      nan += counts[i + window.width - 1];
      if (nan > 0 || (zeros && *views.result.At<float>(part.x + i, y) == 0.0f)) {
        const float pixel = WantedRank({views, window, part.x + i, y}, pixels);
        WindowStore(views, part.x + i, y, 1, &pixel);
      }
      nan -= counts[i];
    }
    CountNan(windowRow(y), sourceColumns, -1, counts);
  }
}

}  // namespace zel
