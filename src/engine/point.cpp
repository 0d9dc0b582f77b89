// The point walk: rows joined, parts on cache lines, and bands for the threads.
#include "engine/point.h"

#include <algorithm>
#include <utility>

#include "core/cache_lines.h"
#include "engine/bands.h"
#include "engine/stream_rows.h"
#include "platform/processor.h"

namespace zel {

int64_t pointStreamBytes = POINT_STREAM_UNKNOWN;

namespace {

// The pixels of a long row before the first result on the boundary of a cache line: blocks come
// from the heap at the same offset to a boundary mostly, so that all operands are then on theirs.
int32_t ColumnsToCacheLine(const PixelView& result) {
  constexpr int64_t longRow = 16384;
  if (result.RowBytes() < longRow) return 0;
  return static_cast<int32_t>(BytesToCacheLine(result.origin) / result.pixelBytes);
}

bool HasNoGaps(const PixelView& view) {
  return view.pitch == view.RowBytes();
}

}  // namespace

PointViews PointColumns(const PointViews& views, int32_t first, int32_t end) {
  return {.first = views.first.Columns(first, end),
          .second = views.second.Columns(first, end),
          .result = views.result.Columns(first, end),
          .mask = views.mask.Columns(first)};
}

PixelView RowsJoin(const PixelView& view) {
  if (!HasNoGaps(view)) return view;
  PixelView joined = view;
  joined.width *= joined.height;  // below 2^31, as the bytes of a block are
  joined.height = 1;
  return joined;
}

PointViews RowsJoin(const PointViews& views) {
  const bool isOneRow = HasNoGaps(views.result) && HasNoGaps(views.first) &&
                        (!views.second.origin || HasNoGaps(views.second)) &&
                        (views.mask.SelectsAll() || views.mask.pitch == views.result.width);
  if (!isOneRow) return views;
  return {.first = RowsJoin(views.first),
          .second = RowsJoin(views.second),
          .result = RowsJoin(views.result),
          .mask = views.mask};
}

namespace {

int64_t BytesOf(const PointViews& views) {
  const int64_t bytesAPixel =
      views.first.pixelBytes + views.second.pixelBytes + views.result.pixelBytes;
  return bytesAPixel * views.result.width * views.result.height;
}

PointViews PointRows(const PointViews& views, int32_t first, int32_t end) {
  return {.first = views.first.Rows(first, end),
          .second = views.second.Rows(first, end),
          .result = views.result.Rows(first, end),
          .mask = views.mask.Rows(first)};
}

bool ResultIsOperand(const PointViews& views) {
  return views.result.origin == views.first.origin || views.result.origin == views.second.origin;
}

// Results that will have left the caches before anyone reads them are made in a small buffer and
// stored past the caches: an ordinary store would read each line first.
void StreamRowsOf(const PointViews& views, const PointWork& work) {
  constexpr int32_t bufferBytes = 8192;
  alignas(CACHE_LINE) uint8_t buffer[bufferBytes];
  const int32_t step = bufferBytes / views.result.pixelBytes;
  const StreamRows& rows = streamRows();
  for (int32_t y = 0; y < views.result.height; y++) {
    const PointViews row = PointRows(views, y, y + 1);
    for (int32_t x = 0; x < row.result.width; x += step) {
      PointViews part = PointColumns(row, x, std::min(x + step, row.result.width));
      uint8_t* result = std::exchange(part.result.origin, buffer);
      work.run(work, part);
      rows.store(result, buffer, part.result.RowBytes());
    }
  }
  rows.end();
}

bool LeavesTheCaches(const PointViews& views) {
  if (pointStreamBytes == POINT_STREAM_UNKNOWN) pointStreamBytes = LastLevelCacheBytes();
  return BytesOf(views) >= pointStreamBytes;
}

// How a band is run.
using BandRun = void (*)(const PointViews& views, const PointWork& work);
BandRun BandRunFor(const PointViews& views) {
  if (LeavesTheCaches(views) && !ResultIsOperand(views)) return &StreamRowsOf;
  return [](const PointViews& band, const PointWork& of) { of.run(of, band); };
}

void LongRowWalk(const PointViews& views, const PointWork& work) {
  const int32_t head = ColumnsToCacheLine(views.result);
  if (head != 0) work.run(work, PointColumns(views, 0, head));
  const PointViews rest = PointColumns(views, head, views.result.width);
  const BandRun run = BandRunFor(rest);
  BandsRun(
      {.units = rest.result.width, .bytes = BytesOf(rest), .alignment = CACHE_LINE},
      [&](const Band& band) {
        run(PointColumns(rest, static_cast<int32_t>(band.begin), static_cast<int32_t>(band.end)),
            work);
      });
}

}  // namespace

void PointWalk(const PointViews& views, const PointWork& work) {
  if (views.result.IsEmpty()) return;
  const PointViews joined = RowsJoin(views);
  if (joined.result.height == 1) return LongRowWalk(joined, work);
  const BandRun run = BandRunFor(joined);
  BandsRun({.units = joined.result.height, .bytes = BytesOf(joined)}, [&](const Band& band) {
    run(PointRows(joined, static_cast<int32_t>(band.begin), static_cast<int32_t>(band.end)), work);
  });
}

}  // namespace zel
