#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "harness/test_image.h"
#include "regions/regions_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::FromArray;
using test::RegionRecord;
using test::TestImage;

using Points = std::vector<std::pair<int32_t, int32_t>>;

// What a call gives out.
struct Profile {
  float* samples = nullptr;
  PointInt* points = nullptr;
  int32_t count = -1;
  ProfileReport report{1, 2, 3, 4, 5, 6, 7, 8, 9};

  Profile() = default;
  Profile(const Profile&) = delete;
  Profile& operator=(const Profile&) = delete;
  ~Profile() {
    ZEL_free(samples);
    ZEL_free(points);
  }
  Points Places() const {
    Points places;
    for (int32_t i = 0; i < count; i++) places.emplace_back(points[i].x, points[i].y);
    return places;
  }
};

int32_t Take(ImageRef image, const std::vector<int32_t>& contour, Profile* profile) {
  std::vector<int32_t> values{0, 0, 99, 99, -32767};
  values.insert(values.end(), contour.begin(), contour.end());
  RegionRecord roi;
  EXPECT_EQ(FromArray(values, &roi), 0);
  return ZEL_ROIProfile(image, roi.Get(), &profile->samples, &profile->count, &profile->report,
                        &profile->points);
}

Points LineOf(const TestImage& image, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  // The samples of a picture in which each pixel tells its place.
  std::vector<float> numbers(1000);
  int32_t count = 0;
  EXPECT_EQ(ZEL_GetLine(image, x1, y1, x2, y2, ARRAY_SGL, numbers.data(), &count), 0);
  Points points;
  for (int32_t i = 0; i < count; i++) {
    const auto number = static_cast<int32_t>(numbers[static_cast<size_t>(i)]);
    points.emplace_back(number % 100, number / 100);
  }
  return points;
}

// Each pixel tells its place.
TestImage PlaceImage(int32_t type, int32_t width = 30, int32_t height = 20) {
  TestImage image(type, width, height, 2);
  for (int32_t y = 0; y < height; y++) {
    for (int32_t x = 0; x < width; x++) {
      const int32_t value = 100 * y + x;
      if (type == IMAGE_SGL) {
        image.Set(x, y, static_cast<float>(value));
      } else {
        image.Set(x, y, static_cast<int16_t>(value));
      }
    }
  }
  return image;
}

void ExpectPlaces(const std::vector<int32_t>& contour, const Points& expected) {
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL}) {
    const TestImage image = PlaceImage(type);
    Profile profile;
    ASSERT_EQ(Take(image, contour, &profile), 0);
    EXPECT_EQ(profile.Places(), expected) << testing::PrintToString(contour);
    for (int32_t i = 0; i < profile.count; i++) {
      EXPECT_EQ(profile.samples[i],
                static_cast<float>(100 * profile.points[i].y + profile.points[i].x));
    }
  }
}

void ExpectEmpty(ImageRef image, const std::vector<int32_t>& contour) {
  Profile profile;
  profile.samples = static_cast<float*>(ZEL_malloc(5));
  profile.points = static_cast<PointInt*>(ZEL_malloc(5));
  ASSERT_EQ(Take(image, contour, &profile), 0);
  EXPECT_EQ(profile.count, 0) << testing::PrintToString(contour);
  EXPECT_EQ(profile.samples, nullptr);
  EXPECT_EQ(profile.points, nullptr);
  EXPECT_EQ(profile.report.sampleCount, 0);
  EXPECT_EQ(profile.report.startX, 0);
  EXPECT_EQ(profile.report.endY, 0);
  EXPECT_EQ(profile.report.minimum, 0.0f);
  EXPECT_EQ(profile.report.deviation, 0.0f);
}

void ExpectEnds(const std::vector<int32_t>& contour, const std::vector<int32_t>& expected) {
  const TestImage image = PlaceImage(IMAGE_I16);
  Profile profile;
  ASSERT_EQ(Take(image, contour, &profile), 0);
  const ProfileReport& report = profile.report;
  EXPECT_EQ((std::vector<int32_t>{report.startX, report.startY, report.endX, report.endY}),
            expected);
}

TEST(RoiProfile, PointHasOneSample) {
  ExpectPlaces({ROI_POINT, 7, 8}, {{7, 8}});
  ExpectEnds({ROI_POINT, 7, 8}, {7, 8, 7, 8});
  const TestImage image = PlaceImage(IMAGE_I16);
  ExpectEmpty(image, {ROI_POINT, 30, 8});
  ExpectEmpty(image, {ROI_POINT, 7, -1});
  ExpectEmpty(image, {ROI_POINT, 7, 8, 9, 9});
}

TEST(RoiProfile, LineIsClippedAndWalked) {
  const TestImage image = PlaceImage(IMAGE_SGL);
  for (const std::vector<int32_t>& line :
       {std::vector<int32_t>{2, 3, 20, 9}, {-5, 3, 40, 30}, {25, 19, 3, -4}, {4, 4, 4, 4}}) {
    ExpectPlaces({ROI_LINE, line[0], line[1], line[2], line[3]},
                 LineOf(image, line[0], line[1], line[2], line[3]));
  }
  ExpectEnds({ROI_LINE, 10, 5, 40, 5}, {10, 5, 29, 5});
  ExpectEmpty(image, {ROI_LINE, -5, 0, -1, 9});
  ExpectEmpty(image, {ROI_LINE, 1, 1, 2, 2, 3, 3});
}

TEST(RoiProfile, RectangleIsWalkedClockwise) {
  Points expected;
  for (int32_t x = 3; x < 7; x++) expected.emplace_back(x, 4);
  for (int32_t y = 5; y < 8; y++) expected.emplace_back(6, y);
  for (int32_t x = 5; x >= 3; x--) expected.emplace_back(x, 7);
  for (int32_t y = 6; y >= 5; y--) expected.emplace_back(3, y);
  ExpectPlaces({ROI_RECT, 3, 4, 7, 8}, expected);
  ExpectPlaces({ROI_RECT, 7, 4, 3, 8}, expected);
  ExpectEnds({ROI_RECT, 3, 4, 7, 8}, {3, 4, 3, 5});

  Points inside;
  for (int32_t y = 5; y < 8; y++) inside.emplace_back(6, y);
  for (int32_t x = 5; x >= 0; x--) inside.emplace_back(x, 7);
  std::erase_if(inside, [](const auto& point) { return point.first < 0; });
  Points clipped;
  for (int32_t x = 0; x < 7; x++) clipped.emplace_back(x, 4);
  clipped.insert(clipped.end(), inside.begin(), inside.end());
  ExpectPlaces({ROI_RECT, -3, 4, 7, 8}, clipped);
}

TEST(RoiProfile, SmallRectanglesWalkBackAndForth) {
  ExpectPlaces({ROI_RECT, 5, 6, 6, 7},
               {{5, 6}, {5, 7}, {5, 6}, {4, 6}, {5, 6}, {5, 5}, {5, 6}, {5, 7}});
  const TestImage image = PlaceImage(IMAGE_I16);
  ExpectEmpty(image, {ROI_RECT, 5, 6, 5, 9});
  ExpectEmpty(image, {ROI_RECT, 5, 6, 9, 6});
  ExpectEmpty(image, {ROI_RECT, 40, 6, 50, 9});
}

TEST(RoiProfile, OvalHasThePixelsOfItsFrame) {
  const TestImage frame(IMAGE_U8, 30, 20);
  ASSERT_EQ(ZEL_DrawRect(frame, 0, 0, 0, 20, 30, DRAW_PAINT, 0), 0);
  ASSERT_EQ(ZEL_DrawOval(frame, 0, 3, 2, 16, 28, DRAW_FRAME, 1), 0);
  Points expected;
  for (int32_t y = 0; y < 20; y++) {
    for (int32_t x = 0; x < 30; x++) {
      if (frame.Get<uint8_t>(x, y) != 0) expected.emplace_back(x, y);
    }
  }
  const TestImage image = PlaceImage(IMAGE_I16);
  Profile profile;
  ASSERT_EQ(Take(image, {ROI_OVAL, 2, 3, 30, 19}, &profile), 0);
  Points places = profile.Places();
  ASSERT_FALSE(places.empty());
  EXPECT_EQ(places.front(), expected.front());
  const auto byRow = [](const auto& a, const auto& b) {
    return std::pair(a.second, a.first) < std::pair(b.second, b.first);
  };
  std::sort(places.begin(), places.end(), byRow);
  EXPECT_EQ(places, expected);
  ExpectEnds({ROI_OVAL, 2, 3, 30, 19}, {2, 3, 30, 19});
}

TEST(RoiProfile, OvalIsNotClipped) {
  const TestImage image = PlaceImage(IMAGE_I16);
  ExpectEmpty(image, {ROI_OVAL, 2, 3, 31, 19});
  ExpectEmpty(image, {ROI_OVAL, -1, 3, 20, 19});
  ExpectEmpty(image, {ROI_OVAL, 2, 3, 20, 21});
  ExpectEmpty(image, {ROI_OVAL, 40, 3, 50, 9});
}

TEST(RoiProfile, SmallOvalIsItsFirstCorner) {
  ExpectPlaces({ROI_OVAL, 5, 6, 6, 15}, {{5, 6}});
  ExpectPlaces({ROI_OVAL, 5, 6, 15, 7}, {{5, 6}});
  ExpectPlaces({ROI_OVAL, 15, 16, 5, 6}, {{15, 16}});
  ExpectEnds({ROI_OVAL, 5, 6, 6, 15}, {5, 6, 6, 15});
}

TEST(RoiProfile, ChainsLeaveOutClosingEdgeAndLastVertex) {
  Points expected;
  for (int32_t x = 2; x < 9; x++) expected.emplace_back(x, 3);
  for (int32_t y = 3; y < 11; y++) expected.emplace_back(9, y);
  for (const int32_t type : {ROI_POLYGON, ROI_FREEHAND, ROI_POLYLINE, ROI_FREELINE}) {
    ExpectPlaces({type, 2, 3, 9, 3, 9, 11}, expected);
    ExpectEnds({type, 2, 3, 9, 3, 9, 11}, {9, 3, 9, 11});
    ExpectEnds({type, 2, 3, 9, 3, 9, 30}, {9, 3, 9, 19});
    ExpectEnds({type, 2, 3, 9, 3, 40, 3, 40, 40}, {40, 3, 40, 40});
  }
  // A clipped line loses its last pixel too.
  ExpectPlaces({ROI_POLYLINE, 27, 3, 40, 3}, {{27, 3}, {28, 3}});
  const TestImage image = PlaceImage(IMAGE_I16);
  ExpectEmpty(image, {ROI_POLYLINE, 2, 3});
  ExpectEmpty(image, {ROI_POLYLINE, 2, 3, 2, 3});
  ExpectEmpty(image, {ROI_POLYGON, 40, 3, 50, 3, 60, 9});
}

TEST(RoiProfile, OtherContoursAndImagesHaveNoSamples) {
  const TestImage image = PlaceImage(IMAGE_I16);
  const TestImage colour(IMAGE_RGB, 30, 20);
  const TestImage empty(IMAGE_U8, 0, 0);
  for (const int32_t type : {0, 7, 8, 9, 12, -1}) ExpectEmpty(image, {type, 2, 3, 9, 9});
  for (const ImageRef other : {static_cast<ImageRef>(colour), static_cast<ImageRef>(empty),
                               ImageRef{12345}, ImageRef{0}}) {
    ExpectEmpty(other, {ROI_LINE, 2, 3, 9, 9});
  }
  Profile profile;
  RegionRecord hole;
  ASSERT_EQ(FromArray({0, 0, 9, 9, -32768, 1, 2, 2, -32767, 1, 3, 3}, &hole), 0);
  for (const RoiDescriptor* roi : {hole.Get(), static_cast<RoiDescriptor*>(nullptr)}) {
    ASSERT_EQ(ZEL_ROIProfile(image, roi, &profile.samples, &profile.count, &profile.report,
                             &profile.points),
              0);
    EXPECT_EQ(profile.count, 0);
    EXPECT_EQ(profile.samples, nullptr);
  }
}

TEST(RoiProfile, ReportHasTheStatistics) {
  const TestImage image(IMAGE_U8, 4, 1);
  const uint8_t pixels[] = {10, 20, 30, 60};
  for (int32_t x = 0; x < 4; x++) image.Set(x, 0, pixels[x]);
  Profile profile;
  ASSERT_EQ(Take(image, {ROI_LINE, 0, 0, 3, 0}, &profile), 0);
  EXPECT_EQ(profile.report.minimum, 10.0f);
  EXPECT_EQ(profile.report.maximum, 60.0f);
  EXPECT_EQ(profile.report.mean, 30.0f);
  EXPECT_EQ(profile.report.deviation, static_cast<float>(std::sqrt(350.0)));
  EXPECT_EQ(profile.report.sampleCount, 4);
}

TEST(RoiProfile, ReportTakesValuesThatAreNoNumbers) {
  const TestImage image(IMAGE_SGL, 2, 1);
  image.Set(0, 0, std::nanf(""));
  image.Set(1, 0, 3.0f);
  Profile profile;
  ASSERT_EQ(Take(image, {ROI_LINE, 0, 0, 1, 0}, &profile), 0);
  EXPECT_EQ(profile.report.minimum, 3.0f);
  EXPECT_EQ(profile.report.maximum, 3.0f);
  EXPECT_TRUE(std::isnan(profile.report.mean));
  ASSERT_EQ(Take(image, {ROI_POINT, 0, 0}, &profile), 0);
  EXPECT_EQ(profile.report.minimum, 1e38f);
  EXPECT_EQ(profile.report.maximum, -1e38f);
}

TEST(RoiProfile, WorksWithoutReportAndCount) {
  const TestImage image = PlaceImage(IMAGE_I16);
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9, -32767, 1, 3, 4}, &roi), 0);
  Profile profile;
  ASSERT_EQ(ZEL_ROIProfile(image, roi.Get(), &profile.samples, nullptr, nullptr, &profile.points),
            0);
  ASSERT_NE(profile.samples, nullptr);
  EXPECT_EQ(profile.samples[0], 403.0f);
  EXPECT_EQ(profile.points[0].x, 3);
  EXPECT_EQ(ZEL_ROIProfile(image, roi.Get(), nullptr, nullptr, nullptr, &profile.points), -3009);
  EXPECT_EQ(ZEL_ROIProfile(image, roi.Get(), &profile.samples, nullptr, nullptr, nullptr), -3009);
}

TEST(RoiProfile, LeavesAllAloneWithoutMemory) {
  const TestImage image = PlaceImage(IMAGE_I16);
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 9, 9, -32767, 4, 3, 4, 20, 18}, &roi), 0);
  test::RefuseEachAllocation([] {},
                             [&] {
                               Profile profile;
                               const int32_t status =
                                   ZEL_ROIProfile(image, roi.Get(), &profile.samples,
                                                  &profile.count, &profile.report, &profile.points);
                               EXPECT_EQ(profile.count == -1, status != 0);
                               EXPECT_EQ(profile.samples == nullptr, status != 0);
                               EXPECT_EQ(profile.report.sampleCount == 9, status != 0);
                               return status;
                             });
}

}  // namespace
