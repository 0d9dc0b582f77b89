// Regions in the two forms that pass through the library: the record that callers hold, and the
// flat form, a vector of int32_t, that kernels take.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "core/rectangles.h"

namespace zel {

constexpr int64_t ROI_RECT_INTEGERS = 4;  // left, top, right, bottom, before the first contour
// A vector of fewer integers is a region without a contour.
constexpr int64_t ROI_LEAST_INTEGERS = 6;

constexpr bool IsRoiMarker(int32_t value) {
  return value == ROI_MARKER_EXTERNAL || value == ROI_MARKER_INTERNAL;
}

// The flat form of a record. A null record has no integers; contours that are null are left out.
// STATUS_MEMORY_FULL.
Status RoiToVector(const RoiDescriptor* roi, Handle vector);

// The record of a flat form: the one that is there, resized, or a new one where it is null.
// Contours that the record had are overwritten, not released. A contour ends at any negative x, so
// that this is for coordinates from 0 on. STATUS_MEMORY_FULL, with the contours made by then in the
// record.
Status RoiFromVector(Handle vector, RoiDescriptor** roi);

// The same for a record that is a function's result. On failure the caller's stays as it was.
Status RoiReplaceFromVector(Handle vector, RoiDescriptor** roi);

// The rectangle of a flat form, its corners put in order. STATUS_BAD_ROI where there is no contour.
Status RoiBounds(Handle vector, KernelRect* bounds);

// A contour in the flat form.
struct FlatContour {
  int32_t marker;           // whatever stands where the contour begins
  int32_t type;             // RoiContourType
  const int32_t* integers;  // from the marker on
  int64_t length;           // in integers, marker and type included

  int64_t PointCount() const { return (length - 2) / 2; }
  PointInt Point(int64_t index) const { return {integers[2 + 2 * index], integers[3 + 2 * index]}; }
};

// The contours of a flat form. One ends at the next integer that is a marker, be it meant as such
// or not; one without a type ends the walk.
class FlatContours {
 public:
  // A vector that stays as it is for the time of the walk.
  explicit FlatContours(Handle vector);

  bool Next(FlatContour* contour);
  // Whether the walk ended at a contour without type.
  bool IsBroken() const { return isBroken_; }

 private:
  const int32_t* values_ = nullptr;
  int64_t count_ = 0;
  int64_t next_ = ROI_RECT_INTEGERS;
  bool isBroken_ = false;
};

}  // namespace zel
