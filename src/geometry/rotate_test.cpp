#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "geometry/geometry_test.h"

namespace {

using test::MOVED_TYPES;
using test::ODD_SIZES;
using test::PixelDifference;
using test::TestImage;

// ---- the rules as they are stated, pixel by pixel

int64_t Fixed(double value) {
  const double cut = std::trunc(value);
  return static_cast<int64_t>(cut) + (value - cut > 0.5 ? 1 : 0);
}

int32_t AsInt32(int64_t value) {
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(value)));
}

int32_t NearestPixel(int32_t position) {
  const int64_t magnitude = std::abs(int64_t{position});
  int64_t pixel = magnitude / 1024;
  if (magnitude % 1024 > 512) pixel++;
  return static_cast<int32_t>(position < 0 ? -pixel : pixel);
}

int64_t FloorPixel(int32_t position) {
  return static_cast<int64_t>(std::floor(position / 1024.0));
}

struct Corner {
  int32_t x, y;
};

int32_t RoundedByte(int64_t p00, int64_t p10, int64_t p01, int64_t p11, int64_t fx, int64_t fy) {
  const int64_t t = ((p11 - p10 - p01 + p00) * fy + ((p10 - p00) << 10)) * fx +
                    (((p01 - p00) * fy + (p00 << 10)) << 10);
  const int64_t whole = t / (1 << 20);
  return static_cast<int32_t>(whole + (std::abs(t % (1 << 20)) > (1 << 19) ? 1 : 0));
}

int16_t CutWord(int64_t p00, int64_t p10, int64_t p01, int64_t p11, int64_t fx, int64_t fy) {
  fx = (fx >> 4) & 63;
  fy = (fy >> 4) & 63;
  const int64_t t =
      ((p11 - p10 - p01 + p00) * fy + (p10 - p00) * 64) * fx + ((p01 - p00) * fy + p00 * 64) * 64;
  return static_cast<int16_t>(t / 4096);
}

float JoinedFloat(float f00, float f10, float f01, float f11, int64_t fx, int64_t fy) {
  if (fx == 0 && fy == 0) return f00;
  const double a = static_cast<double>(fx) / 1024;
  const double b = static_cast<double>(fy) / 1024;
  const double p00 = static_cast<double>(f00);
  const double p10 = static_cast<double>(f10);
  const double p01 = static_cast<double>(f01);
  const double p11 = static_cast<double>(f11);
  return static_cast<float>(((p11 - p10 - p01 + p00) * b + (p10 - p00)) * a +
                            ((p01 - p00) * b + p00));
}

void SetOutside(const TestImage& result, int32_t x, int32_t y, float fill, int64_t whole) {
  switch (result.Info().type) {
    case IMAGE_U8:
      return result.Set(x, y, static_cast<uint8_t>(whole));
    case IMAGE_I16:
      return result.Set(x, y, static_cast<int16_t>(whole));
    case IMAGE_SGL:
      return result.Set(x, y, fill);
    default:
      for (int32_t k = 0; k < 3; k++) result.At<uint8_t>(x, y)[k] = static_cast<uint8_t>(whole);
  }
}

void SetJoined(const TestImage& source, const Corner& at, const Corner& step, int64_t fx,
               int64_t fy, const TestImage& result, int32_t x, int32_t y) {
  const auto corners = [&]<class T>(T, auto join) {
    return join(source.Get<T>(at.x, at.y), source.Get<T>(at.x + step.x, at.y),
                source.Get<T>(at.x, at.y + step.y), source.Get<T>(at.x + step.x, at.y + step.y), fx,
                fy);
  };
  switch (source.Info().type) {
    case IMAGE_U8:
      return result.Set(x, y, static_cast<uint8_t>(corners(uint8_t{}, RoundedByte)));
    case IMAGE_I16:
      return result.Set(x, y, corners(int16_t{}, CutWord));
    case IMAGE_SGL:
      return result.Set(x, y, corners(0.0f, JoinedFloat));
    default:
      for (int32_t k = 0; k < 3; k++) {
        const auto byte = [&](int32_t column, int32_t row) {
          return int64_t{source.At<uint8_t>(column, row)[k]};
        };
        result.At<uint8_t>(x, y)[k] = static_cast<uint8_t>(
            RoundedByte(byte(at.x, at.y), byte(at.x + step.x, at.y), byte(at.x, at.y + step.y),
                        byte(at.x + step.x, at.y + step.y), fx, fy));
      }
      result.At<uint8_t>(x, y)[3] = 0;
  }
}

// Into a result that has the source's size.
void RotateInto(const TestImage& source, float angle, float fill, int64_t wholeFill,
                bool interpolates, const TestImage& result) {
  const ImageInfo info = source.Info();
  const double radians =
      (std::isfinite(angle) ? static_cast<double>(angle) : 0.0) * 0.017453292776760863;
  const int64_t s = Fixed(512 * std::sin(radians));
  const int64_t c = Fixed(512 * std::cos(radians));
  const int64_t w = info.width;
  const int64_t h = info.height;
  for (int32_t y = 0; y < info.height; y++) {
    for (int32_t x = 0; x < info.width; x++) {
      const int64_t u = 2 * int64_t{x} - (w - 1);
      const int64_t v = 2 * int64_t{y} - (h - 1);
      const int32_t px = AsInt32(512 * (w - 1) + u * c - v * s);
      const int32_t py = AsInt32(512 * (h - 1) + v * c + u * s);
      if (!interpolates) {
        const int32_t ix = NearestPixel(px);
        const int32_t iy = NearestPixel(py);
        if (ix >= 0 && ix < w && iy >= 0 && iy < h) {
          test::CopyPixel(source, ix, iy, result, x, y);
        } else {
          SetOutside(result, x, y, fill, wholeFill);
        }
        continue;
      }
      const int64_t ix = FloorPixel(px);
      const int64_t iy = FloorPixel(py);
      if (ix < -1 || ix > w - 1 || iy < -1 || iy > h - 1) {
        SetOutside(result, x, y, fill, wholeFill);
        continue;
      }
      const Corner at{static_cast<int32_t>(ix < 0 ? 0 : ix), static_cast<int32_t>(iy < 0 ? 0 : iy)};
      const Corner step{ix < 0 || ix == w - 1 ? 0 : 1, iy < 0 || iy == h - 1 ? 0 : 1};
      SetJoined(source, at, step, px - ix * 1024, py - iy * 1024, result, x, y);
    }
  }
}

struct Fill {
  float value = 9;
  int64_t whole = 9;
};

// The fourth byte of IMAGE_RGB that is not set is 0 in a new image, and stays in another one.
void ExpectRotated(const TestImage& source, float angle, bool interpolates, const Fill& fill = {}) {
  const ImageInfo info = source.Info();
  const auto rotate = [&](ImageRef from, ImageRef to) {
    return ZEL_Rotate(from, to, angle, fill.value, interpolates ? -7 : 0);
  };
  const TestImage expected(info.type, info.width, info.height, 0, 3);
  ZEL_ClearPixels(expected);
  RotateInto(source, angle, fill.value, fill.whole, interpolates, expected);
  for (const bool byReference : {false, true}) {
    const TestImage from = test::CloneOf(source);
    ASSERT_EQ(rotate(from, byReference ? ImageRef{from} : 0), 0);
    ASSERT_EQ(PixelDifference(from, expected), "") << "in place of the source";
  }
  const TestImage destination(info.type, info.width, info.height, 2, 8);
  const auto around = destination.Surroundings();
  const TestImage kept = test::CloneOf(destination);
  RotateInto(source, angle, fill.value, fill.whole, interpolates, kept);
  ASSERT_EQ(rotate(source, destination), 0);
  ASSERT_EQ(PixelDifference(destination, kept), "") << "beside the source";
  EXPECT_EQ(destination.Surroundings(), around);
}

constexpr float ANGLES[] = {0,   17,  90,   -90,   180,     270,  45, 30,
                            -30, 359, 1.5f, 89.9f, -133.3f, 0.1f, 200};

TEST(Rotate, GivesTheStatedPixelsForAllTypesSizesAndAngles) {
  for (const int32_t type : MOVED_TYPES) {
    for (const bool interpolates : {false, true}) {
      uint64_t seed = 1;
      for (const auto& [width, height] : ODD_SIZES) {
        for (const float angle : {0.0f, 17.0f, 90.0f, -133.3f}) {
          SCOPED_TRACE("type " + std::to_string(type) + ", " + std::to_string(width) + " x " +
                       std::to_string(height) + ", " + std::to_string(angle) +
                       (interpolates ? " bilinear" : " nearest"));
          seed++;
          ExpectRotated(TestImage(type, width, height, static_cast<int32_t>(seed % 3), seed), angle,
                        interpolates);
          if (HasFatalFailure()) return;
        }
      }
      for (const auto& [width, height] : {std::pair{40, 37}, {3, 50}, {97, 64}, {64, 64}}) {
        for (const float angle : ANGLES) {
          SCOPED_TRACE("type " + std::to_string(type) + ", " + std::to_string(width) + " x " +
                       std::to_string(height) + ", " + std::to_string(angle) +
                       (interpolates ? " bilinear" : " nearest"));
          seed++;
          ExpectRotated(TestImage(type, width, height, 0, seed), angle, interpolates);
          if (HasFatalFailure()) return;
        }
      }
    }
  }
}

TEST(Rotate, OfALargerImageGivesTheStatedPixels) {
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 179, 113, 0, 3);
    for (const float angle : ANGLES) {
      ExpectRotated(source, angle, false);
      ExpectRotated(source, angle, true);
      if (HasFatalFailure()) return;
    }
  }
}

TEST(Rotate, ByNothingIsTheSource) {
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 33, 20, 1, 5);
    if (type == IMAGE_RGB) {
      for (int32_t i = 0; i < 33 * 20; i++) source.At<uint8_t>(i % 33, i / 33)[3] = 0;
    }
    for (const float angle :
         {0.0f, -0.0f, std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity(), std::numeric_limits<float>::quiet_NaN()}) {
      for (const int32_t interpolate : {0, 1, -5, INT32_MIN}) {
        const TestImage dest(type, 0, 0);
        ASSERT_EQ(ZEL_Rotate(source, dest, angle, 3, interpolate), 0);
        EXPECT_EQ(PixelDifference(dest, source), "");
      }
    }
  }
}

TEST(Rotate, ByARightAngleIsExact) {
  const TestImage source(IMAGE_U8, 21, 21, 0, 5);
  for (const int32_t interpolate : {0, 1}) {
    const TestImage dest(IMAGE_U8, 0, 0);
    ASSERT_EQ(ZEL_Rotate(source, dest, 90, 3, interpolate), 0);
    for (int32_t y = 0; y < 21; y++) {
      for (int32_t x = 0; x < 21; x++) {
        EXPECT_EQ(dest.Get<uint8_t>(x, y), source.Get<uint8_t>(20 - y, x));
      }
    }
  }
}

TEST(Rotate, KeepsInfinitiesAndNaNOnTheirPixels) {
  const TestImage source(IMAGE_SGL, 20, 11, 0, 5);
  source.Set(3, 3, std::numeric_limits<float>::infinity());
  source.Set(8, 2, -std::numeric_limits<float>::infinity());
  source.Set(9, 9, std::numeric_limits<float>::quiet_NaN());
  source.Set(10, 9, -0.0f);
  const TestImage dest(IMAGE_SGL, 0, 0);
  ASSERT_EQ(ZEL_Rotate(source, dest, 0, 0, 1), 0);
  EXPECT_EQ(dest.Pixels(), source.Pixels());
  for (const float angle : ANGLES) ExpectRotated(source, angle, true);
}

TEST(Rotate, JoinsTheExtremesOfAllTypes) {
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 64, 40, 0, 5);
    for (int32_t y = 0; y < 40; y++) {
      for (int32_t x = 0; x < 64; x++) {
        const bool high = ((x ^ y) & 1) != 0;
        if (type == IMAGE_U8) source.Set<uint8_t>(x, y, high ? 255 : 0);
        if (type == IMAGE_I16) source.Set<int16_t>(x, y, high ? INT16_MAX : INT16_MIN);
        if (type == IMAGE_SGL) source.Set<float>(x, y, high ? 3.4e38f : -3.4e38f);
        if (type == IMAGE_RGB) source.Set<uint32_t>(x, y, high ? 0xFFFFFFFF : 0x00FF00FF);
      }
    }
    for (const float angle : ANGLES) ExpectRotated(source, angle, true);
  }
}

TEST(Rotate, TakesTheLowBitsOfAnyFill) {
  for (const int32_t type : MOVED_TYPES) {
    const TestImage source(type, 20, 11, 1, 5);
    for (const Fill& fill : {Fill{300.7f, 300},
                             {-1.0f, -1},
                             {1e10f, 10000000000},
                             {1e19f, 0},
                             {std::numeric_limits<float>::quiet_NaN(), 0}}) {
      ExpectRotated(source, 33, false, fill);
      ExpectRotated(source, 33, true, fill);
    }
  }
}

// Positions far from the centre of a long image pass 2^31.
TEST(Rotate, TakesPositionsModuloTheirWord) {
  ExpectRotated(TestImage(IMAGE_U8, 2200000, 1, 0, 5), 17, true);
  ExpectRotated(TestImage(IMAGE_U8, 1, 2200000, 0, 5), 0, false);
}

TEST(Rotate, PassesOnCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 20, 11, 1, 5);
  const TestImage expected(IMAGE_U8, 20, 11);
  RotateInto(source, 17, 9, 9, true, expected);
  test::ExpectMoved(source, expected,
                    [](ImageRef from, ImageRef to) { return ZEL_Rotate(from, to, 17, 9, 1); });
}

TEST(Rotate, IsTheSameForAnyNumberOfWorkers) {
  const TestImage source(IMAGE_U8, 150, 100, 1, 5);
  for (const int32_t interpolate : {0, 1}) {
    const TestImage expected(IMAGE_U8, 150, 100);
    RotateInto(source, 17, 9, 9, interpolate != 0, expected);
    test::ExpectMovedByWorkers(source, expected, [=](ImageRef from, ImageRef to) {
      return ZEL_Rotate(from, to, 17, 9, interpolate);
    });
  }
}

TEST(Rotate, RefusesInTheOrderOfTheOperands) {
  test::ExpectMoveRefusals(
      [](ImageRef from, ImageRef to) { return ZEL_Rotate(from, to, 5, 0, 1); });
}

TEST(Rotate, BearsRefusedMemory) {
  test::ExpectMoveMemoryRefusals(
      [](ImageRef from, ImageRef to) { return ZEL_Rotate(from, to, 5, 0, 1); });
}

}  // namespace
