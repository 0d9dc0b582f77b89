// Regions for tests.
#include "harness/region_record.h"

#include "harness/checks.h"

namespace test {

RegionRecord::RegionRecord(const std::vector<Contour>& contours) {
  constexpr int32_t MARKER_TO_KIND = 32768;
  std::vector<int32_t> flat = {0, 0, 0, 0};
  for (const Contour& contour : contours) {
    flat.push_back(contour.kind - MARKER_TO_KIND);
    flat.push_back(contour.type);
    flat.insert(flat.end(), contour.coordinates.begin(), contour.coordinates.end());
  }
  RegionRecord region = OfFlat(flat);
  std::swap(record_, region.record_);
}

RegionRecord RegionRecord::OfFlat(const std::vector<int32_t>& flat) {
  RegionRecord region;
  const int32_t status =
      ZEL_ArrayToROI(flat.data(), static_cast<int32_t>(flat.size()), &region.record_);
  Require(status == 0, "there is memory for a region");
  return region;
}

std::vector<std::vector<int32_t>> RegionRecord::Coordinates() const {
  std::vector<std::vector<int32_t>> all;
  for (int32_t i = 0; i < record_->contourCount; i++) {
    const RoiContour* contour = record_->contours[i];
    all.emplace_back();
    for (int32_t p = 0; p < contour->pointCount; p++) {
      all.back().insert(all.back().end(), {contour->points[p].x, contour->points[p].y});
    }
  }
  return all;
}

}  // namespace test
