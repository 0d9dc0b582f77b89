// Region descriptors: records of callers to the flat form of kernels and back.
#include "regions/descriptors.h"

#include <algorithm>
#include <cstddef>

#include "core/heap.h"
#include "core/numbers.h"

namespace zel {
namespace {

constexpr int32_t MARKER_TO_KIND = 32768;

// ---- record to flat form

int64_t PointsOf(const RoiContour& contour) {
  return std::max(contour.pointCount, 0);
}

int32_t* AppendContour(const RoiContour& contour, int32_t* to) {
  *to++ = SumWrapped(contour.contourKind, -MARKER_TO_KIND);
  *to++ = contour.contourType;
  for (int64_t i = 0; i < PointsOf(contour); i++) {
    *to++ = contour.points[i].x;
    *to++ = contour.points[i].y;
  }
  return to;
}

// ---- flat form to record

struct FlatRoi {
  const int32_t* values;
  int64_t count;
  int32_t smallestX;  // a smaller one begins the next contour

  bool HasContourAt(int64_t place) const { return place + 2 <= count; }
  int64_t ContourEnd(int64_t start) const {
    int64_t end = start + 2;
    while (end + 2 <= count && values[end] >= smallestX) end += 2;
    return end;
  }
  int64_t CountContours() const {
    int64_t contours = 0;
    for (int64_t at = ROI_RECT_INTEGERS; HasContourAt(at); at = ContourEnd(at)) contours++;
    return contours;
  }
  ApiRect GlobalRect() const {
    ApiRect rect{};
    if (count < ROI_RECT_INTEGERS) return rect;
    const KernelRect corners{values[0], values[1], values[2], values[3]};
    RectToApi(&corners, &rect);
    return rect;
  }
};

// A record with a list of so many elements behind it. Null for one of too many bytes.
void* ResizedFor(void* block, size_t recordBytes, size_t elementBytes, int64_t elements) {
  const uint64_t bytes = recordBytes + static_cast<uint64_t>(elements) * elementBytes;
  return bytes > HEAP_BLOCK_LIMIT ? nullptr : HeapResize(block, static_cast<size_t>(bytes));
}

RoiContour* ContourMake(const FlatRoi& flat, int64_t start, int64_t end) {
  const int64_t points = (end - start) / 2 - 1;
  auto* contour =
      static_cast<RoiContour*>(ResizedFor(nullptr, sizeof(RoiContour), sizeof(PointInt), points));
  if (!contour) return nullptr;
  contour->contourKind = SumWrapped(flat.values[start], MARKER_TO_KIND);
  contour->contourType = flat.values[start + 1];
  contour->pointCount = static_cast<int32_t>(points);
  const int32_t* from = flat.values + start + 2;
  for (int64_t i = 0; i < points; i++) contour->points[i] = {from[2 * i], from[2 * i + 1]};
  return contour;
}

enum class Filled { YES, RECORD_STAYS, NO_MEMORY };

Filled RecordFill(const FlatRoi& flat, RoiDescriptor** roi) {
  auto* record = static_cast<RoiDescriptor*>(
      ResizedFor(*roi, sizeof(RoiDescriptor), sizeof(RoiContour*), flat.CountContours()));
  if (!record) return *roi ? Filled::RECORD_STAYS : Filled::NO_MEMORY;
  *roi = record;
  record->globalRect = flat.GlobalRect();
  record->contourCount = 0;
  for (int64_t at = ROI_RECT_INTEGERS; flat.HasContourAt(at);) {
    const int64_t end = flat.ContourEnd(at);
    RoiContour* contour = ContourMake(flat, at, end);
    if (!contour) return Filled::NO_MEMORY;
    record->contours[record->contourCount++] = contour;
    at = end;
  }
  return Filled::YES;
}

int64_t CountOf(Handle vector) {
  uint32_t count = 0;
  VectorCount(vector, &count);
  return count;
}

}  // namespace

Status RoiToVector(const RoiDescriptor* roi, Handle vector) {
  if (!roi) return VectorResize(vector, sizeof(int32_t), 0);
  uint64_t integers = ROI_RECT_INTEGERS;
  for (int32_t i = 0; i < roi->contourCount; i++) {
    if (roi->contours[i]) integers += 2 + 2 * static_cast<uint64_t>(PointsOf(*roi->contours[i]));
  }
  const Status status = VectorResize(vector, sizeof(int32_t), integers);
  if (status != STATUS_OK) return status;

  KernelRect rect{};
  RectFromApi(&roi->globalRect, &rect);
  auto* to = VectorData<int32_t>(vector);
  for (const int32_t side : {rect.left, rect.top, rect.right, rect.bottom}) *to++ = side;
  for (int32_t i = 0; i < roi->contourCount; i++) {
    if (roi->contours[i]) to = AppendContour(*roi->contours[i], to);
  }
  return STATUS_OK;
}

Status RoiFromVector(Handle vector, RoiDescriptor** roi) {
  const FlatRoi flat{VectorData<int32_t>(vector), CountOf(vector), 0};
  return RecordFill(flat, roi) == Filled::YES ? STATUS_OK : STATUS_MEMORY_FULL;
}

Status RoiReplaceFromVector(Handle vector, RoiDescriptor** roi) {
  RoiDescriptor* made = nullptr;
  const Status status = RoiFromVector(vector, &made);
  if (status != STATUS_OK) {
    ZEL_FreeROI(made);
    return status;
  }
  HeapFree(*roi);
  *roi = made;
  return STATUS_OK;
}

Status RoiBounds(Handle vector, KernelRect* bounds) {
  if (CountOf(vector) < ROI_LEAST_INTEGERS) return STATUS_BAD_ROI;
  const auto* values = VectorData<int32_t>(vector);
  const auto [left, right] = std::minmax(values[0], values[2]);
  const auto [top, bottom] = std::minmax(values[1], values[3]);
  *bounds = {left, top, right, bottom};
  return STATUS_OK;
}

FlatContours::FlatContours(Handle vector)
    : values_(VectorData<int32_t>(vector)), count_(CountOf(vector)) {}

bool FlatContours::Next(FlatContour* contour) {
  const int64_t start = next_;
  if (isBroken_ || start >= count_) return false;
  next_ = std::find_if(values_ + start + 1, values_ + count_, &IsRoiMarker) - values_;
  isBroken_ = next_ - start < 2;
  if (isBroken_) return false;
  *contour = {values_[start], values_[start + 1], values_ + start, next_ - start};
  return true;
}

}  // namespace zel

int32_t ZEL_ArrayToROI(const int32_t* values, int32_t count, RoiDescriptor** roi) {
  if (!roi) return -1;
  const zel::FlatRoi flat{values, values ? count : 0, ROI_MARKER_EXTERNAL + 1};
  switch (zel::RecordFill(flat, roi)) {
    case zel::Filled::RECORD_STAYS:
      return -1;
    case zel::Filled::NO_MEMORY:
      return ZEL_ERR_MEMORY_FULL;
    case zel::Filled::YES:
      break;
  }
  return 0;
}

void ZEL_FreeROI(RoiDescriptor* roi) {
  if (!roi) return;
  for (int32_t i = 0; i < roi->contourCount; i++) zel::HeapFree(roi->contours[i]);
  zel::HeapFree(roi);
}
