// Regions for tests: records of the library, released at the end.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "orlune_ptk.h"

namespace test {

class RegionRecord {
 public:
  struct Contour {
    int32_t type;
    std::vector<int32_t> coordinates;
    int32_t kind = ROI_EXTERNAL;
  };

  RegionRecord() = default;
  explicit RegionRecord(const std::vector<Contour>& contours);
  // Of a flat form.
  static RegionRecord OfFlat(const std::vector<int32_t>& flat);
  RegionRecord(RegionRecord&& other) noexcept : record_(std::exchange(other.record_, nullptr)) {}
  RegionRecord(const RegionRecord&) = delete;
  RegionRecord& operator=(const RegionRecord&) = delete;
  ~RegionRecord() { ZEL_FreeROI(record_); }

  operator const RoiDescriptor*() const { return record_; }  // NOLINT: passed where a caller's is
  RoiDescriptor* operator->() const { return record_; }
  RoiDescriptor* Get() const { return record_; }
  RoiDescriptor** Address() { return &record_; }

  // The coordinates of each contour.
  std::vector<std::vector<int32_t>> Coordinates() const;

 private:
  RoiDescriptor* record_ = nullptr;
};

}  // namespace test
