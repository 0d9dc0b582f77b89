// The point walk: rows joined, parts on cache lines, and bands for the threads.
#include "engine/point.h"

#include "engine/bands.h"

namespace zel {
namespace {

constexpr int64_t CACHE_LINE = 64;

// The pixels of a long row before the first result on the boundary of a cache line: blocks come
// from the heap at the same offset to a boundary mostly, so that all operands are then on theirs.
int32_t ColumnsToCacheLine(const PixelView& result) {
  constexpr int64_t longRow = 16384;
  if (result.RowBytes() < longRow) return 0;
  const auto over = static_cast<int64_t>(reinterpret_cast<uintptr_t>(result.origin)) % CACHE_LINE;
  return over == 0 ? 0 : static_cast<int32_t>((CACHE_LINE - over) / result.pixelBytes);
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

void LongRowWalk(const PointViews& views, const PointWork& work) {
  const int32_t head = ColumnsToCacheLine(views.result);
  if (head != 0) work.run(work, PointColumns(views, 0, head));
  const PointViews rest = PointColumns(views, head, views.result.width);
  BandsRun({.units = rest.result.width, .bytes = BytesOf(rest), .alignment = CACHE_LINE},
           [&](const Band& band) {
             work.run(work, PointColumns(rest, static_cast<int32_t>(band.begin),
                                         static_cast<int32_t>(band.end)));
           });
}

}  // namespace

void PointWalk(const PointViews& views, const PointWork& work) {
  if (views.result.IsEmpty()) return;
  const PointViews joined = RowsJoin(views);
  if (joined.result.height == 1) return LongRowWalk(joined, work);
  BandsRun({.units = joined.result.height, .bytes = BytesOf(joined)}, [&](const Band& band) {
    work.run(work,
             PointRows(joined, static_cast<int32_t>(band.begin), static_cast<int32_t>(band.end)));
  });
}

}  // namespace zel
