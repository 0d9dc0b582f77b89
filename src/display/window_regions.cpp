// Regions of windows, to and from the flat form, and the exports that reach them.
#include "display/window_regions.h"

#include <algorithm>

#include "core/numbers.h"
#include "display/commands.h"
#include "display/measures.h"
#include "regions/descriptors.h"

namespace zel {
namespace {

constexpr int32_t NOWHERE = 32000;  // the near corner of a rectangle that holds nothing

// ---- from a window

Status FlatOfShape(const KernelRect& rect, const Shape& shape, Handle vector) {
  const auto integers = static_cast<uint64_t>(ROI_LEAST_INTEGERS + 2 * shape.count);
  const Status status = VectorResize(vector, sizeof(int32_t), integers);
  if (status != STATUS_OK) return status;
  auto* to = VectorData<int32_t>(vector);
  for (const int32_t value :
       {rect.left, rect.top, rect.right, rect.bottom, int32_t{ROI_MARKER_EXTERNAL}, shape.tool}) {
    *to++ = value;
  }
  for (int64_t i = 0; i < shape.count; i++) {
    *to++ = shape.points[i].x;
    *to++ = shape.points[i].y;
  }
  return STATUS_OK;
}

// Numbers of chains differ between the two forms.
int32_t FlatType(int32_t tool) {
  if (tool == TOOL_POLYLINE) return ROI_POLYLINE;
  return tool == TOOL_FREELINE ? int32_t{ROI_FREELINE} : tool;
}
int32_t WindowType(int32_t type) {
  if (type == ROI_POLYLINE) return TOOL_POLYLINE;
  if (type == ROI_FREELINE) return TOOL_FREELINE;
  return type >= ROI_POINT && type <= ROI_FREEHAND ? type : int32_t{TOOL_NONE};
}

Status FlatOfContour(const ContourPairs& contour, Handle vector) {
  const auto integers = static_cast<uint64_t>(ROI_RECT_INTEGERS + 2 * contour.count);
  const Status status = VectorResize(vector, sizeof(int32_t), integers);
  if (status != STATUS_OK) return status;
  const KernelRect rect = BoundsOf(contour);
  auto* to = VectorData<int32_t>(vector);
  for (const int32_t side : {rect.left, rect.top, rect.right, rect.bottom}) *to++ = side;
  for (int64_t i = 0; i < contour.count; i++) {
    const PointInt pair = contour.pairs[i];
    *to++ = pair.x;
    *to++ = IsMarkerPair(pair) ? FlatType(pair.y) : pair.y;
  }
  return STATUS_OK;
}

// ---- to a window

int64_t CountOf(Handle vector) {
  uint32_t count = 0;
  return VectorCount(vector, &count) == STATUS_OK ? int64_t{count} : 0;
}

bool HasPointsFor(int32_t tool, int64_t points) {
  if (tool == TOOL_POINT) return points == 1;
  return tool >= TOOL_LINE && tool <= TOOL_OVAL ? points == 2 : true;
}

struct Copied {
  int32_t lastTool = TOOL_NONE;
  int64_t pairs = 0;
};

// Copies the contours that a window can show; with nowhere to copy them to, counts their pairs.
Copied ContoursCopy(Handle vector, PointInt* to) {
  Copied copied;
  FlatContours contours(vector);
  for (FlatContour contour; contours.Next(&contour);) {
    if (contour.length < 4) break;
    const int32_t tool = WindowType(contour.type);
    if (tool == TOOL_NONE) continue;
    copied.lastTool = tool;
    const int64_t points = contour.PointCount();
    if (!HasPointsFor(tool, points)) continue;
    if (to) {
      const int32_t marker = IsRoiMarker(contour.marker) ? contour.marker : ROI_MARKER_EXTERNAL;
      *to++ = {marker, tool};
      for (int64_t i = 0; i < points; i++) *to++ = contour.Point(i);
    }
    copied.pairs += 1 + points;
  }
  return copied;
}

Status ContoursTake(WindowRecord* record, Handle vector, int64_t markers) {
  const Copied copied = ContoursCopy(vector, nullptr);
  if (copied.pairs == 0) return STATUS_OK;
  const int32_t kind = markers > 1 ? int32_t{TOOL_FREEHAND} : copied.lastTool;
  if (!IsMultiPoint(kind)) {
    record->roiKind = kind;
    return STATUS_OK;
  }
  Handle contour = 0;
  Status status = VectorNew(&contour);
  if (status != STATUS_OK) return status;
  status = VectorResize(contour, sizeof(PointInt), static_cast<uint64_t>(copied.pairs));
  if (status != STATUS_OK) {
    VectorFree(contour);
    return status;
  }
  ContoursCopy(vector, VectorData<PointInt>(contour));
  ContourReplace(record, contour);
  record->roiKind = kind;
  return STATUS_OK;
}

// A single point, line, rectangle or oval: its rectangle, or its points where they stand.
void SingleTake(WindowRecord* record, int32_t type, const int32_t* values, int64_t count) {
  record->roiKind = type;
  if (type == ROI_POINT && count >= 8) {
    record->toolStart = record->toolEnd = {values[6], values[7]};
  }
  if (type == ROI_LINE && count >= 10) {
    record->toolStart = {values[6], values[7]};
    record->toolEnd = {values[8], values[9]};
  }
}

}  // namespace

KernelRect BoundsOf(const ContourPairs& contour) {
  KernelRect bounds{NOWHERE, NOWHERE, -1, -1};
  if (contour.count == 0) return bounds;
  for (int64_t i = 0; i < contour.count; i++) {
    const PointInt pair = contour.pairs[i];
    if (IsMarkerPair(pair)) continue;
    bounds = {std::min(bounds.left, pair.x), std::min(bounds.top, pair.y),
              std::max(bounds.right, pair.x), std::max(bounds.bottom, pair.y)};
  }
  bounds.right = SumWrapped(bounds.right, 1);
  bounds.bottom = SumWrapped(bounds.bottom, 1);
  return bounds;
}

KernelRect RegionBounds(const WindowRecord& record) {
  if (record.roiKind == TOOL_NONE) return {0, 0, record.imageWidth, record.imageHeight};
  if (IsMultiPoint(record.roiKind)) return BoundsOf(ContourOf(record));
  const bool isPoint = record.roiKind == TOOL_POINT;
  KernelRect bounds = OrderedCorners(record.toolStart, isPoint ? record.toolStart : record.toolEnd);
  if (record.roiKind <= TOOL_LINE) {
    bounds.right = SumWrapped(bounds.right, 1);
    bounds.bottom = SumWrapped(bounds.bottom, 1);
  }
  return bounds;
}

void RegionForget(WindowRecord* record) {
  record->roiKind = TOOL_NONE;
  record->lastEvent = EVENT_NONE;
  ContourReplace(record, 0);
}

void RegionErase(int32_t window) {
  RegionForget(&RecordOf(window));
  WindowMarkDirty(window);
}

void ContourReplace(WindowRecord* record, Handle contour) {
  if (record->roiContour != 0) VectorFree(record->roiContour);
  record->roiContour = contour;
}

Status ShapeAppend(Handle contour, const Shape& shape) {
  const int64_t before = CountOf(contour);
  const Status status =
      VectorResize(contour, sizeof(PointInt), static_cast<uint64_t>(before + 1 + shape.count));
  if (status != STATUS_OK) return status;
  PointInt* to = VectorData<PointInt>(contour) + before;
  *to++ = {ROI_MARKER_EXTERNAL, shape.tool};
  std::copy_n(shape.points, shape.count, to);
  return STATUS_OK;
}

Status RegionRead(const WindowRecord& record, Handle vector) {
  const KernelRect bounds = RegionBounds(record);
  switch (record.roiKind) {
    case TOOL_NONE:
      return FlatOfShape(bounds, {ROI_WHOLE, nullptr, 0}, vector);
    case TOOL_POINT:
      return FlatOfShape(bounds, {ROI_POINT, &record.toolStart, 1}, vector);
    case TOOL_LINE: {
      const PointInt ends[] = {record.toolStart, record.toolEnd};
      return FlatOfShape(bounds, {ROI_LINE, ends, 2}, vector);
    }
    case TOOL_RECT:
    case TOOL_OVAL: {
      const PointInt corners[] = {{bounds.left, bounds.top}, {bounds.right, bounds.bottom}};
      return FlatOfShape(bounds, {record.roiKind, corners, 2}, vector);
    }
    default:
      return FlatOfContour(ContourOf(record), vector);
  }
}

Status RegionWrite(int32_t window, Handle vector) {
  WindowRecord& record = RecordOf(window);
  RegionErase(window);
  const int64_t count = CountOf(vector);
  if (count < ROI_LEAST_INTEGERS) return STATUS_OK;
  const auto* values = VectorData<int32_t>(vector);
  // Types and coordinates that are markers count as such too.
  const int64_t markers = std::count_if(values, values + count, &IsRoiMarker);
  if (markers == 0) return STATUS_OK;
  record.toolStart = {values[0], values[1]};
  record.toolEnd = {values[2], values[3]};
  const int32_t type = values[ROI_RECT_INTEGERS + 1];
  if (markers == 1 && type >= ROI_WHOLE && type <= ROI_OVAL) {
    SingleTake(&record, type, values, count);
    return STATUS_OK;
  }
  return ContoursTake(&record, vector, markers);
}

}  // namespace zel

int32_t ZEL_SetWROI(int32_t window, const RoiDescriptor* roi) {
  zel::ScopedVector flat;
  zel::Status status = flat.Create();
  if (status == zel::STATUS_OK) status = zel::RoiToVector(roi, flat.handle());
  if (status == zel::STATUS_OK) {
    status = zel::DispatchVector(window, zel::COMMAND_REGION_SET, flat.handle());
  }
  return zel::FrameEnd("ZEL_SetWROI", status);
}

int32_t ZEL_GetWROI(int32_t window, RoiDescriptor** roi) {
  const char* name = "ZEL_GetWROI";
  if (!roi) return ZEL_ProcessError(name, zel::STATUS_NULL_POINTER);
  zel::ScopedVector flat;
  zel::Status status = flat.Create();
  if (status == zel::STATUS_OK) {
    status = zel::DispatchVector(window, zel::COMMAND_REGION, flat.handle());
  }
  if (status == zel::STATUS_OK) status = zel::RoiReplaceFromVector(flat.handle(), roi);
  return ZEL_ProcessError(name, status);
}

int32_t ZEL_ClearWROI(int32_t window) {
  return zel::FrameEnd("ZEL_ClearROI", zel::DispatchSimple(window, zel::COMMAND_REGION_CLEAR));
}
