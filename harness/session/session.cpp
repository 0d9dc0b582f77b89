#include "harness/session/session.h"

#include <array>
#include <cstring>
#include <iterator>

namespace test {
namespace {

constexpr int32_t WIDTH = 37;
constexpr int32_t HEIGHT = 23;
constexpr int32_t BORDER = 2;

// Makes an image with its size. After a failure nothing is left of it, so that it can be tried
// again.
int32_t Make(ImageRef* image, int16_t type, int32_t width, int32_t height) {
  int32_t result = ZEL_Create(image, type, BORDER);
  if (result == 0) result = ZEL_SetImageSize(*image, width, height);
  if (result != 0) {
    if (*image != 0 && *image != 0xFFFFFFFF) ZEL_Dispose(*image);
    *image = 0;
  }
  return result;
}

// Round spots of several levels on a dark ground, some with holes.
void Paint(ImageRef image, uint32_t seed) {
  for (int32_t y = 0; y < HEIGHT; y++) {
    for (int32_t x = 0; x < WIDTH; x++) {
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

template <int32_t (*Operator)(ImageRef, ImageRef, ImageRef, float)>
int32_t Combine(Session& s) {
  return Operator(s.u8, s.other, s.target, 3.0f);
}

template <int32_t (*Operator)(ImageRef, ImageRef, ImageRef, int16_t, uint32_t)>
int32_t Logic(Session& s) {
  return Operator(s.u8, s.other, s.target, 1, 0x5A);
}

int32_t Histogram(Session& s) {
  std::array<uint32_t, 40> counts{};
  HistogramReport report{};
  const int32_t result = ZEL_Histogram(s.i16, s.mask, 40, 0, 0, counts.data(), &report);
  s.Out(counts);
  s.Out(report);
  return result;
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
  std::vector<float> array(static_cast<size_t>(WIDTH) * HEIGHT);
  int32_t width = 0;
  int32_t height = 0;
  const int32_t result =
      ZEL_ImageToArray(s.i16, 2, 3, 10, 12, ARRAY_SGL, array.data(), &width, &height);
  s.Out(array.data(), array.size());
  s.Out(width);
  s.Out(height);
  return result;
}

int32_t Profile(Session& s) {
  std::array<float, 64> profile{};
  LineProfileReport report{};
  int32_t count = 0;
  const int32_t result =
      ZEL_LineProfile(s.u8, 0, 3, 36, 20, ARRAY_SGL, profile.data(), &count, &report);
  s.Out(profile);
  s.Out(report);
  return result;
}

int32_t Coefficients(Session& s) {
  std::array<uint32_t, 50> measures{};
  for (uint32_t i = 0; i < 50; i++) measures[i] = i;
  std::vector<float> values(static_cast<size_t>(s.particleCount) * 50);
  const int32_t result =
      ZEL_ParticleCoeffs(s.u8, measures.data(), 50, s.particles, s.particleCount, values.data());
  s.Out(values.data(), values.size());
  return result;
}

int32_t Discriminate(Session& s) {
  std::vector<ParticleReport> reports(s.particles, s.particles + s.particleCount);
  const ParticleCriterion criterion{MEASURE_AREA_PIXELS, 10, 1000};
  int32_t kept = 0;
  const int32_t result =
      ZEL_ParticleDiscrim(s.u8, &criterion, 1, reports.data(), s.particleCount, &kept);
  s.Out(reports.data(), reports.size());
  s.Out(kept);
  return result;
}

int32_t AutoThreshold(Session& s) {
  std::array<float, 256> lookup{};
  int32_t threshold = 0;
  const int32_t result =
      ZEL_AutoBThreshold(s.u8, AUTOB_CLUSTERING, ARRAY_SGL, lookup.data(), &threshold);
  s.Out(lookup);
  s.Out(threshold);
  return result;
}

int32_t AutoClasses(Session& s) {
  std::array<int32_t, 256> lookup{};
  std::array<ThresholdClass, 4> classes{};
  const int32_t result = ZEL_AutoMThreshold(s.u8, 4, ARRAY_I32, lookup.data(), classes.data());
  s.Out(lookup);
  for (const ThresholdClass& one : classes) {
    s.Out(one.rangeMin);
    s.Out(one.rangeMax);
    s.Out(one.newValue);
    s.Out(one.useNew);
  }
  return result;
}

}  // namespace

Session::~Session() {
  ZEL_free(particles);
  ZEL_free(basic);
  ZEL_free(regions);
}

uint64_t Session::Digest() const {
  uint64_t digest = 0xCBF29CE484222325u;
  const auto add = [&digest](const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < size; i++) digest = (digest ^ bytes[i]) * 0x100000001B3u;
  };
  add(outputs.data(), outputs.size());
  for (const ImageRef image :
       {u8, other, mask, i16, sgl, complex, rgb, target, target16, targetFloat}) {
    ImageInfo info{};
    if (image == 0 || ZEL_GetImageInfo(image, &info) != 0) continue;
    add(&info.width, sizeof(info.width));
    add(&info.height, sizeof(info.height));
    add(&info.type, sizeof(info.type));
    add(&info.xStep, sizeof(info.xStep));
    for (int32_t y = 0; y < info.height; y++) {
      add(static_cast<const uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes,
          static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes));
    }
  }
  return digest;
}

const Step STEPS[] = {
    {"ZEL_InitSys", [](Session&) { return ZEL_InitSys(); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.u8, IMAGE_U8, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.other, IMAGE_U8, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.mask, IMAGE_U8, 20, 15); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.i16, IMAGE_I16, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.sgl, IMAGE_SGL, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.complex, IMAGE_COMPLEX, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.rgb, IMAGE_RGB, WIDTH, HEIGHT); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.target, IMAGE_U8, 0, 0); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.target16, IMAGE_I16, 0, 0); }},
    {"ZEL_Create", [](Session& s) { return Make(&s.targetFloat, IMAGE_SGL, 0, 0); }},
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
    {"ZEL_SetImageOffset", [](Session& s) { return ZEL_SetImageOffset(s.mask, 5, 4); }},
    {"ZEL_SetImageCalibration",
     [](Session& s) { return ZEL_SetImageCalibration(s.u8, 3, 0.5f, 0.25f); }},
    {"ZEL_GetImageInfo",
     [](Session& s) {
       ImageInfo info{};
       const int32_t result = ZEL_GetImageInfo(s.u8, &info);
       s.Out(info.width);
       return result;
     }},
    {"ZEL_GetPixelAddress",
     [](Session& s) {
       void* address = nullptr;
       return ZEL_GetPixelAddress(s.u8, 0, 0, &address);
     }},
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
    {"ZEL_Add", &Combine<ZEL_Add>},
    {"ZEL_Subtract", &Combine<ZEL_Subtract>},
    {"ZEL_Multiply", &Combine<ZEL_Multiply>},
    {"ZEL_Divide", &Combine<ZEL_Divide>},
    {"ZEL_Modulo", &Combine<ZEL_Modulo>},
    {"ZEL_MulDiv", &Combine<ZEL_MulDiv>},
    {"ZEL_And", &Logic<ZEL_And>},
    {"ZEL_Or", &Logic<ZEL_Or>},
    {"ZEL_Xor", &Logic<ZEL_Xor>},
    {"ZEL_LogDiff", [](Session& s) { return ZEL_LogDiff(s.u8, s.other, s.target, 0); }},
    {"ZEL_Compare", [](Session& s) { return ZEL_Compare(s.u8, 0, s.target, 4, 100); }},
    {"ZEL_Mask", [](Session& s) { return ZEL_Mask(s.other, s.mask, s.target); }},
    {"ZEL_Mask", [](Session& s) { return ZEL_Mask(s.other, s.mask, 0); }},
    {"ZEL_Convert", [](Session& s) { return ZEL_Convert(s.rgb, s.target); }},
    {"ZEL_Cast", [](Session& s) { return ZEL_Cast(s.complex, IMAGE_SGL); }},
    {"ZEL_ConvertByLookup",
     [](Session& s) {
       const double table[3] = {5, 6, 7};
       return ZEL_ConvertByLookup(s.i16, s.target, ARRAY_DBL, table, 3);
     }},
    {"ZEL_Shift16To8", [](Session& s) { return ZEL_Shift16To8(s.i16, s.target, 2); }},
    {"ZEL_Threshold", [](Session& s) { return ZEL_Threshold(s.i16, s.target16, 50, 150, 1, 1); }},
    {"ZEL_MultiThreshold",
     [](Session& s) {
       const ThresholdClass classes[2] = {{10, 90, 1, 1}, {80, 200, 2, 1}};
       return ZEL_MultiThreshold(s.u8, s.target, 2, classes);
     }},
    {"ZEL_AutoBThreshold", &AutoThreshold},
    {"ZEL_AutoMThreshold", &AutoClasses},
    {"ZEL_UserLookup",
     [](Session& s) {
       const int32_t table[4] = {9, 8, 7, 6};
       return ZEL_UserLookup(s.u8, s.mask, s.target, ARRAY_I32, table, 4);
     }},
    {"ZEL_UserLookup",
     [](Session& s) {
       const int32_t table[4] = {9, 8, 7, 6};
       return ZEL_UserLookup(s.i16, 0, s.target16, ARRAY_I32, table, 4);
     }},
    {"ZEL_MathLookup", [](Session& s) { return ZEL_MathLookup(s.i16, 0, s.target16, 4, 2, 0, 0); }},
    {"ZEL_Equalize",
     [](Session& s) {
       return ZEL_Equalize(s.sgl, s.mask, s.targetFloat, nullptr, 0, nullptr, 0, 0);
     }},
    {"ZEL_Histogram", &Histogram},
    {"ZEL_Quantify",
     [](Session& s) {
       QuantifyReport global{};
       int32_t count = 0;
       const int32_t result = ZEL_Quantify(s.i16, s.mask, &global, &s.regions, &count);
       s.Out(global);
       s.Out(count);
       if (s.regions) s.Out(s.regions[0]);
       return result;
     }},
    {"ZEL_Centroid",
     [](Session& s) {
       float x = 0;
       float y = 0;
       const int32_t result = ZEL_Centroid(s.sgl, s.mask, &x, &y);
       s.Out(x);
       s.Out(y);
       return result;
     }},
    {"ZEL_LineProfile", &Profile},
    {"ZEL_Label",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_Label(s.u8, s.target, 1, &count);
       s.Out(count);
       return result;
     }},
    {"ZEL_Label",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_Label(s.u8, s.target16, 0, &count);
       s.Out(count);
       return result;
     }},
    {"ZEL_BasicParticle",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_BasicParticle(s.u8, 1, &s.basic, &count);
       if (result == 0) s.Out(s.basic, static_cast<size_t>(count));
       return result;
     }},
    {"ZEL_Particle",
     [](Session& s) {
       const int32_t result = ZEL_Particle(s.u8, 1, &s.particles, &s.particleCount);
       if (result == 0) s.Out(s.particles, static_cast<size_t>(s.particleCount));
       return result;
     }},
    {"ZEL_ParticleCoeffs", &Coefficients},
    {"ZEL_ParticleDiscrim", &Discriminate},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.orln", 1, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.i16, "b.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.rgb, "c.tif", 2, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.u8, "a.bmp", 0, nullptr, 0); }},
    {"ZEL_WriteFile", [](Session& s) { return ZEL_WriteFile(s.rgb, "c.bmp", 0, nullptr, 0); }},
    {"ZEL_PtkFileInfo",
     [](Session& s) {
       FileInfo info{};
       const int32_t result = ZEL_PtkFileInfo("b.tif", &info);
       s.Out(info);
       return result;
     }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.targetFloat, "a.orln", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile",
     [](Session& s) {
       std::array<RGBValue, 256> table{};
       int32_t count = 0;
       const int32_t result = ZEL_ReadFile(s.target, "a.tif", 1, table.data(), &count);
       s.Out(table);
       s.Out(count);
       return result;
     }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.target16, "b.tif", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile", [](Session& s) { return ZEL_ReadFile(s.rgb, "c.tif", 0, nullptr, nullptr); }},
    {"ZEL_ReadFile",
     [](Session& s) { return ZEL_ReadFile(s.target, "c.bmp", 0, nullptr, nullptr); }},
};

const size_t STEP_COUNT = std::size(STEPS);

}  // namespace test
