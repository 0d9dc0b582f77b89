// The images are painted, and their pixels, lines and arrays read and written.
#include <array>
#include <vector>

#include "harness/session/session.h"

namespace test {
namespace {

// Round spots of several levels on a dark ground, some with holes.
void Paint(ImageRef image, uint32_t seed) {
  for (int32_t y = 0; y < Session::HEIGHT; y++) {
    for (int32_t x = 0; x < Session::WIDTH; x++) {
      const int32_t dx = x % 12 - 6;
      const int32_t dy = y % 11 - 5;
      const int32_t distance = dx * dx + dy * dy;
      const bool spot = distance < 20 && (distance > 3 || (x / 12 + y / 11) % 2 == 0);
      const auto level =
          static_cast<float>(40 + (static_cast<uint32_t>(x * 7 + y * 13) + seed) % 180);
      ZEL_SetPixelValue(image, x, y, spot ? level : 0.0f);
    }
  }
}

int32_t RowCol(Session& s) {
  std::array<double, 64> row{};
  int32_t count = 0;
  const int32_t result = ZEL_GetRowCol(s.u8, 1, 5, ARRAY_DBL, row.data(), &count);
  s.Out(row);
  s.Out(count);
  return result;
}

int32_t Line(Session& s) {
  std::array<int16_t, 64> line{};
  int32_t count = 0;
  const int32_t result = ZEL_GetLine(s.u8, 0, 0, 30, 20, ARRAY_I16, line.data(), &count);
  s.Out(line);
  s.Out(count);
  return result;
}

int32_t Array(Session& s) {
  std::vector<float> array(static_cast<size_t>(Session::WIDTH) * Session::HEIGHT);
  int32_t width = 0;
  int32_t height = 0;
  const int32_t result =
      ZEL_ImageToArray(s.i16, 2, 3, 10, 12, ARRAY_SGL, array.data(), &width, &height);
  s.Out(array.data(), array.size());
  s.Out(width);
  s.Out(height);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_SetPixelValue",
     [](Session& s) {
       Paint(s.u8, 1);
       Paint(s.other, 90);
       Paint(s.i16, 5);
       Paint(s.sgl, 7);
       return ZEL_SetPixelValue(s.u8, 2, 2, 9);
     }},
    {"ZEL_FillImage", [](Session& s) { return ZEL_FillImage(s.mask, 0, 1, 0, 0, 0); }},
    {"ZEL_FillImage", [](Session& s) { return ZEL_FillImage(s.rgb, 0, 0, 0x102030, 0, 0); }},
    {"ZEL_FillImage", [](Session& s) { return ZEL_FillImage(s.complex, 0, 0, 0, 3, 4); }},
    {"ZEL_GetPixelValue",
     [](Session& s) {
       float value = 0;
       const int32_t result = ZEL_GetPixelValue(s.u8, 6, 2, &value);
       s.Out(value);
       return result;
     }},
    {"ZEL_GetRowCol", &RowCol},
    {"ZEL_SetRowCol",
     [](Session& s) {
       const double row[3] = {1.5, 2.5, 300};
       return ZEL_SetRowCol(s.i16, 0, 4, ARRAY_DBL, row, 3);
     }},
    {"ZEL_GetLine", &Line},
    {"ZEL_SetLine",
     [](Session& s) {
       const float line[4] = {9, 8, 7, 6};
       return ZEL_SetLine(s.i16, 3, 3, 20, 20, ARRAY_SGL, line, 4);
     }},
    {"ZEL_ImageToArray", &Array},
    {"ZEL_ArrayToImage",
     [](Session& s) {
       const std::vector<int32_t> array(40 * 30, 77);
       return ZEL_ArrayToImage(s.targetFloat, ARRAY_I32, array.data(), 40, 30);
     }},
    {"ZEL_ClearPixels", [](Session& s) { return ZEL_ClearPixels(s.targetFloat); }},
    {"ZEL_Interlace", [](Session& s) { return ZEL_Interlace(s.target, s.u8, s.other, 0); }},
    {"ZEL_Interlace", [](Session& s) { return ZEL_Interlace(s.target, 0, s.target, 1); }},
    {"ZEL_Expand", [](Session& s) { return ZEL_Expand(s.u8, s.target, 2, 3, 9, 8, 2, 3); }},
    {"ZEL_Expand", [](Session& s) { return ZEL_Expand(s.target, 0, 2, 3, 9, 8, 2, 3); }},
    {"ZEL_Extract", [](Session& s) { return ZEL_Extract(s.u8, s.target, 2, 3, 19, 18, 2, 3); }},
    {"ZEL_Extract", [](Session& s) { return ZEL_Extract(s.target, 0, 2, 3, 19, 18, 2, 1); }},
    {"ZEL_Copy", [](Session& s) { return ZEL_Copy(s.other, s.target); }},
    {"ZEL_ImageToImage", [](Session& s) { return ZEL_ImageToImage(s.u8, s.target, 5, -3); }},
    {"ZEL_Resample",
     [](Session& s) {
       return ZEL_Resample(s.u8, s.target, 1, 1, 20, 30, 45, 11, RESAMPLE_BILINEAR);
     }},
    {"ZEL_Resample",
     [](Session& s) { return ZEL_Resample(s.target, 0, 0, 0, 11, 45, 20, 20, RESAMPLE_SPLINE); }},
    {"ZEL_DrawLine",
     [](Session& s) { return ZEL_DrawLine(s.u8, s.target, -3, 2, 30, 50, DRAW_FRAME, 200); }},
    {"ZEL_DrawRect",
     [](Session& s) { return ZEL_DrawRect(s.i16, s.target16, 3, 4, 9, 50, DRAW_INVERT_PAINT, 0); }},
    {"ZEL_DrawOval",
     [](Session& s) { return ZEL_DrawOval(s.target, 0, -4, 5, 15, 22, DRAW_INVERT_FRAME, 0); }},
};

}  // namespace

constinit const std::span<const Step> UTILITY_STEPS{ROWS};

}  // namespace test
