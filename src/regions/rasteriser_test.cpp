#include "regions/rasteriser.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <list>
#include <vector>

#include "harness/test_image.h"
#include "regions/regions_test.h"
#include "tests/support/refused_memory.h"

namespace {

using test::Flat;
using test::FromArray;
using test::RegionRecord;
using test::TestImage;

using Values = std::vector<int32_t>;

// ---- the stated rules on a whole image, shape by shape

struct Pixel {
  int32_t x, y;
};

// A polygon's inside, by lists of crossings that walks of its edges leave in the rows.
void ReferenceFill(const TestImage& image, std::vector<Pixel> points, uint8_t value) {
  const int32_t width = image.width();
  const int32_t height = image.height();
  for (Pixel& point : points) point.y = std::clamp(point.y, -32768, 32767);
  const size_t n = points.size();
  int32_t direction = 0;
  for (size_t back = 0; back < n && direction == 0; back++) {
    const Pixel& from = points[(2 * n - 1 - back) % n];
    const Pixel& to = points[(2 * n - back) % n];
    direction = (to.y > from.y) - (to.y < from.y);
  }
  if (direction == 0 || n < 3) return;
  std::vector<std::list<int32_t>> rows(static_cast<size_t>(height));
  const auto insert = [&](int32_t x, int32_t y) {
    if (y < 0 || y >= height) return;
    std::list<int32_t>& row = rows[static_cast<size_t>(y)];
    row.insert(std::find_if(row.begin(), row.end(), [x](int32_t other) { return other >= x; }), x);
  };
  for (size_t i = 0; i < n; i++) {
    const Pixel p = points[i];
    const Pixel q = points[(i + 1) % n];
    if ((p.y < 0 && q.y < 0) || (p.y >= height && q.y >= height)) continue;
    if (p.y == q.y) {
      insert(p.x, p.y);
      insert(q.x, q.y);
      continue;
    }
    const int32_t sign = q.y > p.y ? 1 : -1;
    if (sign != direction) {
      direction = sign;
      insert(p.x, p.y);
    }
    const int64_t dx = std::llabs(int64_t{q.x} - p.x);
    const int64_t dy = std::llabs(int64_t{q.y} - p.y);
    int64_t error = 2 * std::min(dx, dy) - std::max(dx, dy);
    Pixel at = p;
    for (int64_t step = 0; step < std::max(dx, dy); step++) {
      const bool both = error >= 0;
      if (both || dx >= dy) at.x += q.x > p.x ? 1 : -1;
      const int32_t before = at.y;
      if (both || dy > dx) at.y += sign;
      error += 2 * std::min(dx, dy) - (both ? 2 * std::max(dx, dy) : 0);
      if (at.y != before) insert(at.x, at.y);
    }
  }
  for (int32_t y = 0; y < height; y++) {
    const std::vector<int32_t> row(rows[static_cast<size_t>(y)].begin(),
                                   rows[static_cast<size_t>(y)].end());
    EXPECT_EQ(row.size() % 2, 0u);
    for (size_t i = 0; i + 1 < row.size(); i += 2) {
      for (int32_t x = std::max(row[i], 0); x <= std::min(row[i + 1], width - 1); x++) {
        image.Set<uint8_t>(x, y, value);
      }
    }
  }
}

void ReferenceLine(const TestImage& image, Pixel from, Pixel to, uint8_t value) {
  ASSERT_EQ(ZEL_DrawLine(image, 0, from.x, from.y, to.x, to.y, DRAW_FRAME, value), 0);
}

// False where nothing is painted afterwards.
bool ReferenceContour(const TestImage& image, int32_t type, const std::vector<Pixel>& points,
                      bool hasOddInteger, uint8_t value) {
  const size_t count = hasOddInteger ? 99 : points.size();
  const auto corners = [&](auto draw) {
    const int32_t left = std::min(points[0].x, points[1].x);
    const int32_t top = std::min(points[0].y, points[1].y);
    ASSERT_EQ(draw(image, 0, top, left, std::abs(points[0].y - points[1].y),
                   std::abs(points[0].x - points[1].x), DRAW_PAINT, value),
              0);
  };
  switch (type) {
    case ROI_WHOLE:
      for (int32_t y = 0; y < image.height(); y++) {
        for (int32_t x = 0; x < image.width(); x++) image.Set<uint8_t>(x, y, value);
      }
      return false;
    case ROI_POINT:
      if (count == 1 && points[0].x >= 0 && points[0].x < image.width() && points[0].y >= 0 &&
          points[0].y < image.height()) {
        image.Set<uint8_t>(points[0].x, points[0].y, value);
      }
      break;
    case ROI_LINE:
      if (count == 2) ReferenceLine(image, points[0], points[1], value);
      break;
    case ROI_RECT:
      if (count == 2) corners(&ZEL_DrawRect);
      break;
    case ROI_OVAL:
      if (count == 2) corners(&ZEL_DrawOval);
      break;
    case ROI_POLYGON:
    case ROI_FREEHAND:
    case ROI_POLYLINE:
    case ROI_FREELINE:
      if (points.size() < 2) break;
      if (type == ROI_POLYGON || type == ROI_FREEHAND) {
        ReferenceFill(image, points, value);
        ReferenceLine(image, points.front(), points.back(), value);
      }
      for (size_t i = 1; i < points.size(); i++) {
        ReferenceLine(image, points[i - 1], points[i], value);
      }
      break;
    default:
      break;
  }
  return true;
}

void ReferencePaint(const TestImage& image, const Values& values, Pixel origin, uint8_t value) {
  ASSERT_EQ(ZEL_DrawRect(image, 0, 0, 0, 32767, 32767, DRAW_PAINT, 0), 0);
  const auto isMarker = [](int32_t number) { return number == -32767 || number == -32768; };
  for (const int32_t marker : {-32767, -32768}) {
    for (size_t start = 4; start < values.size();) {
      size_t end = start + 1;
      while (end < values.size() && !isMarker(values[end])) end++;
      if (end - start < 2) return;
      std::vector<Pixel> points;
      for (size_t i = start + 2; i + 1 < end; i += 2) {
        points.push_back({values[i] - origin.x, values[i + 1] - origin.y});
      }
      if (values[start] == marker &&
          !ReferenceContour(image, values[start + 1], points, (end - start) % 2 != 0,
                            marker == -32767 ? value : uint8_t{0})) {
        return;
      }
      start = end;
    }
  }
}

// A mask as the rules want it, on images that show all of the region's rectangle.
TestImage ReferenceMask(const Values& values, const TestImage* model, uint8_t value) {
  const int32_t left = std::min(values[0], values[2]);
  const int32_t top = std::min(values[1], values[3]);
  const int32_t right = std::max(values[0], values[2]);
  const int32_t bottom = std::max(values[1], values[3]);
  const auto even = [](int32_t width) { return width % 2 != 0 ? width + 1 : width; };
  if (!model) {
    TestImage image(IMAGE_U8, even(right - left), bottom - top);
    ReferencePaint(image, values, {left, top}, value);
    return image;
  }
  if (model->width() >= right && model->height() >= bottom) {
    TestImage image(IMAGE_U8, even(model->width()), model->height());
    ReferencePaint(image, values, {0, 0}, value);
    return image;
  }
  const TestImage large(IMAGE_U8, even(right), bottom);
  ReferencePaint(large, values, {0, 0}, value);
  TestImage image(IMAGE_U8, model->width(), model->height());
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      const bool isThere = x < large.width() && y < large.height();
      image.Set<uint8_t>(x, y, isThere ? large.Get<uint8_t>(x, y) : uint8_t{0});
    }
  }
  return image;
}

int32_t ToMask(const TestImage& mask, ImageRef model, const Values& values, uint32_t value) {
  const Flat flat(values);
  bool clipped = false;
  return zel::MaskFromRoi(mask, model, flat.handle(), static_cast<uint8_t>(value), &clipped);
}

void ExpectMask(const Values& values, const TestImage* model, uint8_t value) {
  const TestImage mask(IMAGE_U8, 5, 5, 1);
  const ImageRef reference = model ? static_cast<ImageRef>(*model) : 0;
  ASSERT_EQ(ToMask(mask, reference, values, value), 0);
  EXPECT_EQ(PixelDifference(mask, ReferenceMask(values, model, value)), "")
      << testing::PrintToString(values);
  EXPECT_EQ(mask.Info().offsetX, model ? 0 : std::min(values[0], values[2]));
}

Values RandomRegion(test::Random& random, int32_t extent) {
  const auto coordinate = [&] { return random.Between(-extent / 2, extent + extent / 2); };
  Values values{random.Between(-10, 10), random.Between(-10, 10), random.Between(0, extent),
                random.Between(0, extent)};
  const int32_t contours = random.Between(1, 5);
  for (int32_t i = 0; i < contours; i++) {
    const int32_t type = random.Between(0, 24) == 0 ? 0 : random.Between(1, 12);
    const bool isLong = type == 5 || type == 6 || type > 9;
    const int32_t points = isLong ? random.Between(0, 12) : type < 2 ? 1 : random.Between(1, 2);
    values.push_back(random.Between(0, 3) == 0 ? -32768 : -32767);
    values.push_back(type);
    const int32_t row = coordinate();
    for (int32_t p = 0; p < points; p++) {
      values.push_back(coordinate());
      values.push_back(random.Between(0, 3) == 0 ? row : coordinate());  // level edges too
    }
    if (random.Between(0, 15) == 0) values.push_back(coordinate());
  }
  if (random.Between(0, 20) == 0) values.insert(values.end(), {-32767, -32768, 3, 0, 0, 9, 9});
  return values;
}

TEST(Rasteriser, PaintsRandomRegionsByTheRules) {
  test::Random random(11);
  for (int32_t i = 0; i < 3000 && !testing::Test::HasFailure(); i++) {
    const int32_t extent = random.Between(1, 70);
    const Values values = RandomRegion(random, extent);
    const TestImage model(IMAGE_I16, random.Between(1, 80), random.Between(1, 80));
    const auto value = static_cast<uint8_t>(random.Between(1, 255));
    ExpectMask(values, &model, value);
    ExpectMask(values, nullptr, value);
  }
}

TEST(Rasteriser, FillsPolygonsOfManyCrossings) {
  test::Random random(12);
  for (int32_t i = 0; i < 20 && !testing::Test::HasFailure(); i++) {
    Values values{0, 0, 150, 90, -32767, ROI_POLYGON};
    for (int32_t p = 0; p < 300; p++) {
      values.push_back(random.Between(-30, 180));
      values.push_back(i % 2 == 0 ? random.Between(-30, 120) : (p % 2) * 89);
    }
    const TestImage model(IMAGE_U8, 150, 90);
    ExpectMask(values, &model, 1);
  }
}

TEST(Rasteriser, PolygonOfAConvexShapeIsWhatLiesWithin) {
  // A pixel that is further inside than the outline is thick has to be set, one further outside
  // not.
  Values values{0, 0, 200, 200, -32767, ROI_POLYGON};
  constexpr int32_t n = 17;
  constexpr double pi = 3.14159265358979;
  for (int32_t i = 0; i < n; i++) {
    values.push_back(static_cast<int32_t>(std::lround(100 + 80 * std::cos(2 * pi * i / n))));
    values.push_back(static_cast<int32_t>(std::lround(100 + 60 * std::sin(2 * pi * i / n))));
  }
  const TestImage model(IMAGE_U8, 200, 200);
  const TestImage mask(IMAGE_U8, 1, 1);
  ASSERT_EQ(ToMask(mask, model, values, 255), 0);
  for (int32_t y = 0; y < 200; y++) {
    for (int32_t x = 0; x < 200; x++) {
      double depth = 1e9;  // distance to the nearest edge, negative outside
      for (size_t i = 0; i < n; i++) {
        const double px = values[6 + 2 * i];
        const double py = values[7 + 2 * i];
        const double qx = values[6 + 2 * ((i + 1) % n)];
        const double qy = values[7 + 2 * ((i + 1) % n)];
        depth = std::min(
            depth, ((qx - px) * (y - py) - (qy - py) * (x - px)) / std::hypot(qx - px, qy - py));
      }
      if (depth > 0) {
        ASSERT_EQ(mask.Get<uint8_t>(x, y), 255) << x << ' ' << y;
      } else if (depth < -0.5001) {
        ASSERT_EQ(mask.Get<uint8_t>(x, y), 0) << x << ' ' << y;
      }
    }
  }
}

TEST(Rasteriser, RegionFarLargerThanTheModelShowsThatPart) {
  const TestImage model(IMAGE_U8, 20, 12);
  const TestImage mask(IMAGE_U8, 1, 1);
  const auto at = [&](int32_t x, int32_t y) { return mask.Get<uint8_t>(x, y); };

  ASSERT_EQ(ToMask(mask, model,
                   {0, 0, INT32_MAX, INT32_MAX, -32767, ROI_LINE, 0, 0, INT32_MAX, INT32_MAX}, 9),
            0);
  for (int32_t i = 0; i < 12; i++) EXPECT_EQ(at(i, i), 9);
  EXPECT_EQ(at(12, 11), 0);

  ASSERT_EQ(ToMask(mask, model, {0, 0, 1000001, 1000001, -32767, ROI_LINE, 1000000, 20, 10, 5}, 9),
            0);
  for (int32_t x = 0; x < 20; x++) EXPECT_EQ(at(x, 5), x < 10 ? 0 : 9);

  ASSERT_EQ(ToMask(mask, model,
                   {0, 0, 1000001, 1000001, -32767, ROI_RECT, 4, 3, 1000000, 1000000, -32768,
                    ROI_OVAL, -100000, 6, 100000, 9},
                   9),
            0);
  EXPECT_EQ(at(3, 3), 0);
  EXPECT_EQ(at(4, 3), 9);
  EXPECT_EQ(at(19, 11), 9);
  EXPECT_EQ(at(10, 7), 0);

  ASSERT_EQ(ToMask(mask, model,
                   {0, 0, INT32_MAX, INT32_MAX, -32767, ROI_POLYGON, 2, 2, INT32_MAX, 2, INT32_MAX,
                    INT32_MAX, 2, INT32_MAX},
                   9),
            0);
  EXPECT_EQ(at(1, 5), 0);
  EXPECT_EQ(at(2, 2), 9);
  EXPECT_EQ(at(19, 11), 9);
  EXPECT_EQ(at(5, 1), 0);
}

TEST(Rasteriser, TellsWhetherTheLastShapeLayInside) {
  const TestImage model(IMAGE_U8, 20, 12);
  const TestImage mask(IMAGE_U8, 1, 1);
  struct Case {
    Values contour;
    bool isClipped;
  };
  const std::vector<Case> cases = {
      {{1, 3, 3}, false},
      {{1, 20, 3}, true},
      {{2, 0, 0, 19, 11}, false},
      {{2, 0, 0, 20, 11}, true},
      {{2, 30, 0, 40, 11}, true},
      {{3, 20, 12, 0, 0}, false},
      {{3, 0, 0, 21, 12}, true},
      {{3, 0, 0, 0, 5}, true},
      {{3, 1, 1, 1, 5}, false},
      {{3, 20, 0, 25, 5}, true},
      {{4, 0, 0, 20, 12}, false},
      {{4, -1, 0, 20, 12}, true},
      {{4, 30, 0, 40, 12}, true},
      {{5, 0, 0, 19, 0, 5, 11}, false},
      {{5, 0, 0, 20, 0, 5, 5}, true},
      {{10, 0, 0, 30, 0, 5, 5}, true},
      {{10, 0, 0, 3, 0, 5, 5}, false},
      {{8, 99, 99}, true},
  };
  for (const Case& one : cases) {
    Values values{0, 0, 20, 12, -32767, ROI_POINT, 99, 99, -32767};
    values.insert(values.end(), one.contour.begin(), one.contour.end());
    const Flat flat(values);
    bool clipped = !one.isClipped;
    ASSERT_EQ(zel::MaskFromRoi(mask, model, flat.handle(), 1, &clipped), 0);
    EXPECT_EQ(clipped, one.isClipped) << testing::PrintToString(one.contour);
  }
}

// ---- the export

TEST(RoiToMask, EmptyRegionSelectsAllOfTheModel) {
  const TestImage model(IMAGE_SGL, 7, 5);
  const TestImage mask(IMAGE_U8, 3, 3, 2);
  ZEL_SetImageOffset(mask, 4, 5);
  RegionRecord roi;
  ASSERT_EQ(FromArray({1, 2, 3, 4}, &roi), 0);
  for (const RoiDescriptor* region : {roi.Get(), static_cast<RoiDescriptor*>(nullptr)}) {
    ASSERT_EQ(ZEL_ROIToMask(mask, model, region, 0x1FE), 0);
    EXPECT_EQ(mask.width(), 8);
    EXPECT_EQ(mask.height(), 5);
    EXPECT_EQ(mask.Pixels(), std::vector<uint8_t>(40, 0xFE));
    EXPECT_EQ(mask.Info().offsetX, 4);
  }
}

TEST(RoiToMask, EmptyRegionWithoutModelKeepsTheSize) {
  for (const ImageRef model : {ImageRef{0}, ImageRef{12345}}) {
    const TestImage mask(IMAGE_U8, 3, 4);
    ASSERT_EQ(ZEL_ROIToMask(mask, model, nullptr, 7), 0);
    EXPECT_EQ(mask.Pixels(), std::vector<uint8_t>(16, 7));
  }
  const TestImage empty(IMAGE_U8, 0, 0);
  const TestImage mask(IMAGE_U8, 3, 4);
  ASSERT_EQ(ZEL_ROIToMask(mask, empty, nullptr, 7), 0);
  EXPECT_EQ(mask.width(), 4);
}

TEST(RoiToMask, RegionLargerThanTheModelIsNotOffset) {
  const TestImage model(IMAGE_U8, 7, 5);
  const TestImage mask(IMAGE_U8, 3, 3);
  RegionRecord roi;
  ASSERT_EQ(FromArray({2, 3, 20, 20, -32767, ROI_RECT, 2, 3, 20, 20}, &roi), 0);
  ASSERT_EQ(ZEL_ROIToMask(mask, model, roi.Get(), 1), 0);
  EXPECT_EQ(mask.width(), 7);
  EXPECT_EQ(mask.height(), 5);
  EXPECT_EQ(mask.Info().offsetX, 0);
  for (int32_t y = 0; y < 5; y++) {
    for (int32_t x = 0; x < 7; x++) EXPECT_EQ(mask.Get<uint8_t>(x, y), x >= 2 && y >= 3 ? 1 : 0);
  }
}

TEST(RoiToMask, WithoutModelLiesAtItsBounds) {
  const TestImage mask(IMAGE_U8, 30, 30, 1);
  RegionRecord roi;
  ASSERT_EQ(FromArray({-5, 9, 2, 6, -32767, ROI_OVAL, -5, 6, 2, 9, -32768, ROI_POINT, -2, 7}, &roi),
            0);
  ASSERT_EQ(ZEL_ROIToMask(mask, 0, roi.Get(), 255), 0);
  EXPECT_EQ(mask.width(), 8);
  EXPECT_EQ(mask.height(), 3);
  EXPECT_EQ(mask.Info().offsetX, -5);
  EXPECT_EQ(mask.Info().offsetY, 6);
  const TestImage oval(IMAGE_U8, 8, 3);
  ASSERT_EQ(ZEL_DrawRect(oval, 0, 0, 0, 32767, 32767, DRAW_PAINT, 0), 0);
  ASSERT_EQ(ZEL_DrawOval(oval, 0, 0, 0, 3, 7, DRAW_PAINT, 255), 0);
  oval.Set<uint8_t>(3, 1, 0);
  EXPECT_EQ(PixelDifference(mask, oval), "");
  EXPECT_EQ(mask.Get<uint8_t>(-1, -1), 0);
}

TEST(RoiToMask, PolygonsOnOneRowAndOfTwoPointsAreLines) {
  const TestImage model(IMAGE_U8, 20, 12);
  const TestImage mask(IMAGE_U8, 1, 1);
  for (const auto& [values, expected] :
       {std::pair<Values, int64_t>{{0, 0, 9, 9, -32767, 5, 3, 4, 9, 4, 6, 4}, 7},
        {{0, 0, 9, 9, -32767, 5, 3, 4, 9, 6}, 7},
        {{0, 0, 9, 9, -32767, 5, 3, 4}, 0}}) {
    RegionRecord roi;
    ASSERT_EQ(FromArray(values, &roi), 0);
    ASSERT_EQ(ZEL_ROIToMask(mask, model, roi.Get(), 1), 0);
    const std::vector<uint8_t> pixels = mask.Pixels();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), 1), expected);
  }
}

TEST(RoiToMask, MasksOfOtherTypesTakeTheSizeOnly) {
  const TestImage model(IMAGE_U8, 6, 4);
  const TestImage small(IMAGE_U8, 5, 3);
  for (const Values& values : {Values{0, 0, 6, 4, -32767, ROI_WHOLE}, Values{}}) {
    const TestImage mask(IMAGE_I16, 6, 4, 1);
    const std::vector<uint8_t> before = mask.Block();
    RegionRecord roi;
    ASSERT_EQ(FromArray(values, &roi), 0);
    ASSERT_EQ(ZEL_ROIToMask(mask, model, roi.Get(), 1), 0);
    EXPECT_EQ(mask.Block(), before);
    ASSERT_EQ(ZEL_ROIToMask(mask, small, roi.Get(), 1), 0);
    EXPECT_EQ(mask.width(), values.empty() ? 6 : 5);
    EXPECT_EQ(mask.height(), 3);
  }
}

TEST(RoiToMask, RefusesUnknownMasksAndHugeRectangles) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({INT32_MIN, 0, 5, 5, -32767, ROI_POINT, 1, 1}, &roi), 0);
  EXPECT_EQ(ZEL_ROIToMask(12345, 0, roi.Get(), 1), -200);
  const TestImage mask(IMAGE_U8, 4, 4);
  EXPECT_EQ(ZEL_ROIToMask(mask, 0, roi.Get(), 1), -101);
  RegionRecord large;
  ASSERT_EQ(FromArray({0, 0, 70000, 70000, -32767, ROI_POINT, 1, 1}, &large), 0);
  EXPECT_EQ(ZEL_ROIToMask(mask, 0, large.Get(), 1), -101);
  EXPECT_EQ(mask.width(), 4);
}

TEST(RoiToMask, SurvivesEachRefusedAllocation) {
  RegionRecord roi;
  ASSERT_EQ(FromArray({0, 0, 300, 200, -32767, ROI_POLYGON, 1, 1, 200, 30, 40, 150}, &roi), 0);
  TestImage mask;
  test::RefuseEachAllocation([&] { mask = TestImage(IMAGE_U8, 4, 4); },
                             [&] { return ZEL_ROIToMask(mask, 0, roi.Get(), 1); });
}

}  // namespace
