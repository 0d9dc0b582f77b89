// Rectangles and lines of callers and of kernels.
#include "core/rectangles.h"

#include <algorithm>

#include "core/numbers.h"

namespace zel {

void RectFromApi(const ApiRect* rect, KernelRect* kernelRect) {
  if (!rect) {
    *kernelRect = {0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT};
    return;
  }
  *kernelRect = {rect->left, rect->top, SumSaturated(rect->left, rect->width),
                 SumSaturated(rect->top, rect->height)};
}

void RectToApi(const KernelRect* corners, ApiRect* rect) {
  if (!corners) {
    *rect = {0, 0, WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT};
    return;
  }
  const auto [left, right] = std::minmax(corners->left, corners->right);
  const auto [top, bottom] = std::minmax(corners->top, corners->bottom);
  const auto size = [](int64_t low, int64_t high) {
    return static_cast<int32_t>(std::min(high - low, int64_t{INT32_MAX}));
  };
  *rect = {top, left, size(top, bottom), size(left, right)};
}

void LineFromPoints(const ApiPoint* start, const ApiPoint* end, KernelLine* line) {
  line->startX = start ? start->x : 0;
  line->startY = start ? start->y : 0;
  line->endX = end ? end->x : WHOLE_IMAGE_EXTENT;
  line->endY = end ? end->y : WHOLE_IMAGE_EXTENT;
}

void PointsFromLine(const KernelLine* line, ApiPoint* start, ApiPoint* end) {
  if (start) *start = line ? ApiPoint{line->startX, line->startY} : ApiPoint{0, 0};
  if (end) {
    *end =
        line ? ApiPoint{line->endX, line->endY} : ApiPoint{WHOLE_IMAGE_EXTENT, WHOLE_IMAGE_EXTENT};
  }
}

void RectClip(const PlacedRect& first, const PlacedRect& second, PlacedRect* clipped) {
  struct Span {
    int64_t low, high;
  };
  const auto clip = [](int64_t low, int64_t size, int64_t low2, int64_t size2) {
    const int64_t high = low + size;
    const int64_t high2 = low2 + size2;
    return Span{low2 >= low && low2 <= high ? low2 : low,
                high2 >= low && high2 <= high ? high2 : high};
  };
  const Span columns = clip(first.x, first.width, second.x, second.width);
  const Span rows = clip(first.y, first.height, second.y, second.height);
  *clipped = {static_cast<int32_t>(columns.low), static_cast<int32_t>(rows.low),
              Clamped(columns.high - columns.low, INT32_MIN, INT32_MAX),
              Clamped(rows.high - rows.low, INT32_MIN, INT32_MAX)};
}

}  // namespace zel
