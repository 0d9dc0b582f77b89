// What tests of regions share: records and flat forms that are easy to compare.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "core/handles.h"
#include "harness/region_record.h"
#include "orlune_ptk.h"

namespace test {

struct Contour {
  int32_t kind, type;
  std::vector<int32_t> coordinates;

  bool operator==(const Contour&) const = default;
};

struct Region {
  int32_t top = 0, left = 0, height = 0, width = 0;
  std::vector<Contour> contours;

  bool operator==(const Region&) const = default;
};

inline void PrintTo(const Region& region, std::ostream* out) {
  *out << region.top << ' ' << region.left << ' ' << region.height << ' ' << region.width;
  for (const Contour& contour : region.contours) {
    *out << " | " << contour.kind << ' ' << contour.type << ':';
    for (const int32_t value : contour.coordinates) *out << ' ' << value;
  }
}

inline Region RegionOf(const RoiDescriptor* roi) {
  const ApiRect& rect = roi->globalRect;
  Region region{rect.top, rect.left, rect.height, rect.width, {}};
  for (int32_t i = 0; i < roi->contourCount; i++) {
    const RoiContour* contour = roi->contours[i];
    Contour copy{contour->contourKind, contour->contourType, {}};
    for (int32_t p = 0; p < contour->pointCount; p++) {
      copy.coordinates.push_back(contour->points[p].x);
      copy.coordinates.push_back(contour->points[p].y);
    }
    region.contours.push_back(copy);
  }
  return region;
}

inline int32_t FromArray(const std::vector<int32_t>& values, RegionRecord* roi) {
  return ZEL_ArrayToROI(values.data(), static_cast<int32_t>(values.size()), roi->Address());
}

// A flat form behind a handle.
class Flat {
 public:
  explicit Flat(const std::vector<int32_t>& values = {}) {
    EXPECT_EQ(vector_.Create(), 0);
    EXPECT_EQ(zel::VectorResize(handle(), sizeof(int32_t), values.size()), 0);
    std::copy(values.begin(), values.end(), zel::VectorData<int32_t>(handle()));
  }
  zel::Handle handle() const { return vector_.handle(); }
  std::vector<int32_t> Values() const {
    uint32_t count = 0;
    zel::VectorCount(handle(), &count);
    const auto* values = zel::VectorData<int32_t>(handle());
    return {values, values + count};
  }

 private:
  zel::ScopedVector vector_;
};

}  // namespace test
