#include "regions/descriptors.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "core/heap.h"
#include "regions/regions_test.h"

namespace {

static_assert(offsetof(RoiContour, points) == 12);
static_assert(offsetof(RoiDescriptor, contours) == 24);

using test::Flat;
using test::FromArray;
using test::Region;
using test::RegionOf;
using test::RegionRecord;

// Refuses one allocation, counted from now.
class Refusal {
 public:
  explicit Refusal(uint64_t which) {
    zel::HeapHooksGet()->requests = 0;
    zel::HeapHooksGet()->failAt = which;
  }
  Refusal(const Refusal&) = delete;
  Refusal& operator=(const Refusal&) = delete;
  ~Refusal() { zel::HeapHooksGet()->failAt = 0; }
};

TEST(ArrayToRoi, ReadsContoursOfEveryKind) {
  RegionRecord roi;
  ASSERT_EQ(
      FromArray({1, 2, 30, 42, -32767, 5, 1, 2, 29, 2, 7, 41, -32768, 1, 9, 9, -32767, 0}, &roi),
      0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{2,
                                         1,
                                         40,
                                         29,
                                         {{ROI_EXTERNAL, ROI_POLYGON, {1, 2, 29, 2, 7, 41}},
                                          {ROI_INTERNAL, ROI_POINT, {9, 9}},
                                          {ROI_EXTERNAL, ROI_WHOLE, {}}}}));
}

TEST(ArrayToRoi, TakesNegativeCoordinatesDownTo32766) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9, -32767, 2, -32766, -40000, -5, 6}, &roi), 0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{0, 0, 9, 9, {{1, ROI_LINE, {-32766, -40000, -5, 6}}}}));
}

TEST(ArrayToRoi, BeginsAContourAtAnyXBelow) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9, 77, 2, 3, 4, -40000, 6, 7, 8, 9}, &roi), 0);
  EXPECT_EQ(RegionOf(roi.Get()),
            (Region{0, 0, 9, 9, {{77 + 32768, 2, {3, 4}}, {-40000 + 32768, 6, {7, 8}}}}));
}

TEST(ArrayToRoi, OrdersTheRectangleAndLimitsItsSides) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({INT32_MAX, 7, INT32_MIN, 3}, &roi), 0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{3, INT32_MIN, 4, INT32_MAX, {}}));
}

TEST(ArrayToRoi, ShortArraysHaveNoContour) {
  const std::vector<int32_t> values{1, 2, 3, 5, -32767, 0};
  for (const int32_t count : {INT32_MIN, -1, 0, 1, 3}) {
    RegionRecord roi;
    ASSERT_EQ(ZEL_ArrayToROI(values.data(), count, roi.Address()), 0);
    EXPECT_EQ(RegionOf(roi.Get()), Region{});
  }
  for (const int32_t count : {4, 5}) {
    RegionRecord roi;
    ASSERT_EQ(ZEL_ArrayToROI(values.data(), count, roi.Address()), 0);
    EXPECT_EQ(RegionOf(roi.Get()), (Region{2, 1, 3, 2, {}}));
  }
  RegionRecord roi;
  ASSERT_EQ(ZEL_ArrayToROI(nullptr, 6, roi.Address()), 0);
  EXPECT_EQ(RegionOf(roi.Get()), Region{});
}

TEST(ArrayToRoi, UsesTheRecordThatIsThere) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9}, &roi), 0);
  ASSERT_EQ(FromArray({0, 0, 8, 7, -32767, 1, 2, 3, -32767, 1, 4, 5}, &roi), 0);
  ASSERT_EQ(RegionOf(roi.Get()), (Region{0, 0, 7, 8, {{1, 1, {2, 3}}, {1, 1, {4, 5}}}}));
  for (int32_t i = 0; i < roi->contourCount; i++) ZEL_free(roi->contours[i]);
  ASSERT_EQ(FromArray({0, 0, 1, 1}, &roi), 0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{0, 0, 1, 1, {}}));
}

TEST(ArrayToRoi, TellsWhichMemoryWasMissing) {
  const std::vector<int32_t> values{0, 0, 9, 9, -32767, 1, 2, 3, -32767, 1, 4, 5};
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  EXPECT_EQ(ZEL_ArrayToROI(values.data(), 12, nullptr), -1);
  for (const int refused : {1, 2, 3}) {
    RegionRecord roi;
    const Refusal refusal(static_cast<uint64_t>(refused));
    EXPECT_EQ(FromArray(values, &roi), -101);
    EXPECT_EQ(roi.Get() ? roi->contourCount : -1, refused - 2);
  }
  RegionRecord roi;
  ASSERT_EQ(FromArray({1, 2, 3, 4, -32767, 1, 2, 3}, &roi), 0);
  const Refusal refusal(1);
  EXPECT_EQ(FromArray(values, &roi), -1);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{2, 1, 2, 2, {{1, 1, {2, 3}}}}));
  EXPECT_EQ(ZEL_GetLastError(nullptr), 0);
}

TEST(FreeRoi, TakesNullAndLeavesNothingBehind) {
  ZEL_FreeROI(nullptr);
  const int64_t before = zel::HeapHooksGet()->liveBlocks;
  {
    RegionRecord roi;
    ASSERT_EQ(FromArray({0, 0, 9, 9, -32767, 1, 2, 3, -32767, 1, 4, 5}, &roi), 0);
    EXPECT_EQ(zel::HeapHooksGet()->liveBlocks, before + 3);
    ZEL_free(roi->contours[0]);
    roi->contours[0] = nullptr;
  }
  EXPECT_EQ(zel::HeapHooksGet()->liveBlocks, before);
}

TEST(RoiToVector, IsTheFlatFormOfARecord) {
  const std::vector<int32_t> values{1, 2, 30, 42, -32767, 4, 1, 2, 30, 42, -32768, 1, 9, 9};
  RegionRecord roi;
  ASSERT_EQ(FromArray(values, &roi), 0);
  const Flat flat({7, 7});
  ASSERT_EQ(zel::RoiToVector(roi.Get(), flat.handle()), 0);
  EXPECT_EQ(flat.Values(), values);
}

TEST(RoiToVector, LeavesOutWhatIsNotThere) {
  const Flat flat({7, 7});
  ASSERT_EQ(zel::RoiToVector(nullptr, flat.handle()), 0);
  EXPECT_EQ(flat.Values(), std::vector<int32_t>{});

  RegionRecord roi;
  ASSERT_EQ(FromArray({1, 2, 3, 4, -32767, 1, 2, 3, -32768, 1, 4, 5}, &roi), 0);
  ZEL_free(roi->contours[0]);
  roi->contours[0] = nullptr;
  roi->contours[1]->pointCount = -3;
  roi->contours[1]->contourKind = INT32_MIN;
  ASSERT_EQ(zel::RoiToVector(roi.Get(), flat.handle()), 0);
  EXPECT_EQ(flat.Values(), (std::vector<int32_t>{1, 2, 3, 4, INT32_MAX - 32767, 1}));

  const int32_t count = roi->contourCount;
  roi->contourCount = -1;
  ASSERT_EQ(zel::RoiToVector(roi.Get(), flat.handle()), 0);
  EXPECT_EQ(flat.Values(), (std::vector<int32_t>{1, 2, 3, 4}));
  roi->contourCount = count;
}

TEST(RoiToVector, LimitsTheSidesOfTheRectangle) {
  RoiDescriptor record{{INT32_MAX - 1, INT32_MIN, 5, -5}, 0};
  const Flat flat;
  ASSERT_EQ(zel::RoiToVector(&record, flat.handle()), 0);
  EXPECT_EQ(flat.Values(), (std::vector<int32_t>{INT32_MIN, INT32_MAX - 1, INT32_MIN, INT32_MAX}));
}

TEST(RoiFromVector, EndsContoursAtAnyNegativeX) {
  RegionRecord roi;
  const Flat flat({0, 0, 9, 9, -32767, 5, 1, 2, -3, 4, 5, 6, 7, -8});
  ASSERT_EQ(zel::RoiFromVector(flat.handle(), roi.Address()), 0);
  EXPECT_EQ(RegionOf(roi.Get()),
            (Region{0, 0, 9, 9, {{1, 5, {1, 2}}, {-3 + 32768, 4, {5, 6, 7, -8}}}}));
}

TEST(RoiFromVector, ShortVectorsHaveNoContour) {
  for (size_t count = 0; count < 4; count++) {
    RegionRecord roi;
    const Flat flat(std::vector<int32_t>(count, 9));
    ASSERT_EQ(zel::RoiFromVector(flat.handle(), roi.Address()), 0);
    EXPECT_EQ(RegionOf(roi.Get()), Region{});
  }
  RegionRecord roi;
  const Flat flat({9, 9, 1, 1, -32767});
  ASSERT_EQ(zel::RoiFromVector(flat.handle(), roi.Address()), 0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{1, 1, 8, 8, {}}));
}

TEST(RoiFromVector, ComesBackAsItWent) {
  const std::vector<int32_t> values{0, 0, 99, 99, -32767, 11, 5, 6, 7, 8, -32768, 3, 1, 1, 2, 2};
  const Flat flat(values);
  RegionRecord roi;
  ASSERT_EQ(zel::RoiFromVector(flat.handle(), roi.Address()), 0);
  const Flat back;
  ASSERT_EQ(zel::RoiToVector(roi.Get(), back.handle()), 0);
  EXPECT_EQ(back.Values(), values);
}

TEST(RoiFromVector, KeepsWhatItMadeWithoutMemory) {
  const Flat flat({0, 0, 9, 9, -32767, 1, 2, 3, -32767, 1, 4, 5});
  for (const int refused : {1, 2, 3}) {
    RegionRecord roi;
    const Refusal refusal(static_cast<uint64_t>(refused));
    EXPECT_EQ(zel::RoiFromVector(flat.handle(), roi.Address()), 101);
    EXPECT_EQ(roi.Get() ? roi->contourCount : -1, refused - 2);
  }
}

TEST(RoiReplaceFromVector, ChangesNothingWithoutMemory) {
  const Flat flat({0, 0, 9, 9, -32767, 1, 2, 3, -32767, 1, 4, 5});
  RegionRecord roi;
  ASSERT_EQ(FromArray({1, 2, 3, 4}, &roi), 0);
  RoiDescriptor* const before = roi.Get();
  for (const int refused : {1, 2, 3}) {
    const Refusal refusal(static_cast<uint64_t>(refused));
    EXPECT_EQ(zel::RoiReplaceFromVector(flat.handle(), roi.Address()), 101);
    EXPECT_EQ(roi.Get(), before);
  }
  ASSERT_EQ(zel::RoiReplaceFromVector(flat.handle(), roi.Address()), 0);
  EXPECT_EQ(RegionOf(roi.Get()), (Region{0, 0, 9, 9, {{1, 1, {2, 3}}, {1, 1, {4, 5}}}}));
}

TEST(RoiBounds, OrdersCornersAndRefusesARegionWithoutContour) {
  zel::KernelRect bounds{7, 7, 7, 7};
  for (size_t count = 0; count < 6; count++) {
    EXPECT_EQ(zel::RoiBounds(Flat(std::vector<int32_t>(count, 1)).handle(), &bounds), 1200);
    EXPECT_EQ(bounds.left, 7);
  }
  ASSERT_EQ(zel::RoiBounds(Flat({9, -1, 3, -5, 0, 0}).handle(), &bounds), 0);
  EXPECT_EQ(bounds.left, 3);
  EXPECT_EQ(bounds.top, -5);
  EXPECT_EQ(bounds.right, 9);
  EXPECT_EQ(bounds.bottom, -1);
}

TEST(FlatContours, EndAtMarkersWhereverTheyStand) {
  const Flat flat({0, 0, 9, 9, 5, 4, 3, -32768, 3, 1, 2, -9, -32767, 2, 7});
  zel::FlatContours contours(flat.handle());
  zel::FlatContour contour{};
  ASSERT_TRUE(contours.Next(&contour));
  EXPECT_EQ(contour.marker, 5);
  EXPECT_EQ(contour.type, 4);
  EXPECT_EQ(contour.length, 3);
  EXPECT_EQ(contour.PointCount(), 0);
  ASSERT_TRUE(contours.Next(&contour));
  EXPECT_EQ(contour.marker, -32768);
  EXPECT_EQ(contour.length, 5);
  ASSERT_EQ(contour.PointCount(), 1);
  EXPECT_EQ(contour.Point(0).x, 1);
  EXPECT_EQ(contour.Point(0).y, 2);
  ASSERT_TRUE(contours.Next(&contour));
  EXPECT_EQ(contour.marker, -32767);
  EXPECT_EQ(contour.PointCount(), 0);
  EXPECT_FALSE(contours.Next(&contour));
  EXPECT_FALSE(contours.Next(&contour));
  EXPECT_FALSE(contours.IsBroken());
}

TEST(FlatContours, EndAtAContourWithoutType) {
  const Flat flat({0, 0, 9, 9, -32767, -32767, 1, 4, 5});
  zel::FlatContours contours(flat.handle());
  zel::FlatContour contour{};
  EXPECT_FALSE(contours.Next(&contour));
  EXPECT_FALSE(contours.Next(&contour));
  EXPECT_TRUE(contours.IsBroken());
}

}  // namespace
