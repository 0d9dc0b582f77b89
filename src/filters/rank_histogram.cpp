// Rank filters of large windows on bytes, by histograms of source columns.
#include <algorithm>
#include <cstring>

#include "filters/rank_histogram_rows.h"
#include "filters/rank_pass.h"

namespace zel {
namespace {

constexpr int32_t STRIP_COLUMNS = 256;  // with the histograms of so many in the second cache

int32_t StripColumns(const PixelView& source, RankWindow window) {
  return std::min(source.width, std::max(STRIP_COLUMNS, window.width));
}

int64_t SourceColumns(const PixelView& source, RankWindow window) {
  return int64_t{StripColumns(source, window)} + window.width - 1;
}

constexpr int64_t COUNTS_BYTES = RANK_SEGMENTS * sizeof(uint16_t);
constexpr int64_t WINDOW_BYTES = RANK_SEGMENTS * RANK_SEGMENTS * sizeof(uint32_t);

}  // namespace

int64_t RankHistogramBytes(const PixelView& source, RankWindow window) {
  const int64_t columns = SourceColumns(source, window);
  return WINDOW_BYTES + (RANK_SEGMENTS + 1) * columns * COUNTS_BYTES + StripColumns(source, window);
}

void RankHistogramRun(RankWindow window, const WindowBand& band) {
  const WindowViews& views = band.views;
  const RankHistogramRows& rows = rankHistogramRows();
  const int64_t sourceColumns = SourceColumns(views.source, window);
  RankHistogram histogram{};
  histogram.width = window.width;
  histogram.order = window.order;
  histogram.pixels = int64_t{window.width} * window.height;
  histogram.pitch = static_cast<int32_t>(sourceColumns);
  histogram.windowPlaces = reinterpret_cast<uint32_t*>(band.memory);
  histogram.segmentCounts = reinterpret_cast<uint16_t*>(band.memory + WINDOW_BYTES);
  histogram.placeCounts = histogram.segmentCounts + sourceColumns * RANK_SEGMENTS;
  uint8_t* results = reinterpret_cast<uint8_t*>(histogram.placeCounts +
                                                RANK_SEGMENTS * sourceColumns * RANK_SEGMENTS);

  const int32_t strip = StripColumns(views.source, window);
  for (int32_t x = 0; x < views.source.width; x += strip) {
    histogram.columns = std::min(strip, views.source.width - x);
    std::memset(band.memory, 0, static_cast<size_t>(RankHistogramBytes(views.source, window)));
    for (int64_t row = band.begin; row < int64_t{band.begin} + window.height; row++) {
      rows.enter(histogram, WindowCorner<uint8_t>(views, window, x, row));
    }
    for (int32_t y = band.begin; y < band.end; y++) {
      if (views.mask.SelectsAll()) {
        rows.select(histogram, views.result.At<uint8_t>(x, y));
      } else {
        rows.select(histogram, results);
        WindowStore(views, x, y, histogram.columns, results);
      }
      if (y + 1 == band.end) continue;
      rows.exchange(histogram, WindowCorner<uint8_t>(views, window, x, int64_t{y} + window.height),
                    WindowCorner<uint8_t>(views, window, x, y));
    }
  }
}

}  // namespace zel
