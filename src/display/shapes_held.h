// The region that a window holds, shape by shape.
#pragma once

#include "display/painting.h"
#include "display/tools.h"

namespace zel {

struct ContourPairs {
  const PointInt* pairs;
  int64_t count;
};
inline ContourPairs ContourOf(const WindowRecord& record) {
  uint32_t count = 0;
  if (record.roiContour == 0 || VectorCount(record.roiContour, &count) != STATUS_OK) return {};
  return {VectorData<PointInt>(record.roiContour), count};
}

constexpr bool IsMarkerPair(PointInt pair) {
  return pair.x == ROI_MARKER_EXTERNAL || pair.x == ROI_MARKER_INTERNAL;
}

// Calls paint(shape) for each one.
template <class Paint>
void ForEachShape(const WindowRecord& record, const Paint& paint) {
  if (record.roiKind == TOOL_NONE) return;
  if (!IsMultiPoint(record.roiKind)) {
    const PointInt ends[] = {record.toolStart, record.toolEnd};
    paint(Shape{record.roiKind, ends, 2});
    return;
  }
  const ContourPairs contour = ContourOf(record);
  for (int64_t start = 0; start < contour.count;) {
    int64_t end = start + 1;
    while (end < contour.count && !IsMarkerPair(contour.pairs[end])) end++;
    paint(Shape{contour.pairs[start].y, contour.pairs + start + 1, end - start - 1});
    start = end;
  }
}

}  // namespace zel
