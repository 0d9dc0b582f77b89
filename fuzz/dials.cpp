// A region of any pixels, or of upright bars, read as a meter and as a display, and calibrated as
// one.
#include <cmath>
#include <cstring>

#include "fuzz/scene.h"
#include "fuzz/target.h"
#include "harness/input.h"
#include "orlune_ptk.h"

namespace {

using test::Input;
using test::Require;

// Pixels that the input gives, each for a run of columns, in bands of rows.
void DrawRuns(Input* input, const ImageInfo& info) {
  uint8_t level = 0;
  int32_t run = 0;
  for (int32_t y = 0; y < info.height; y++) {
    auto* row = static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    const int32_t bytes = info.width * info.pixelBytes;
    if (y % 4 != 0) {
      std::memcpy(row, row - info.lineBytes, static_cast<size_t>(bytes));
      continue;
    }
    for (int32_t x = 0; x < bytes; x++) {
      if (run-- <= 0) {
        level = input->Byte();
        run = input->Byte() % 8 * info.pixelBytes;
      }
      row[x] = level;
    }
  }
}

// Any contours of a few points; mostly of the types that readers of displays take.
RoiDescriptor* MakeRegion(Input* input, int32_t width, int32_t height) {
  int32_t flat[4 + 4 * 12] = {};
  int32_t count = 4;
  for (int32_t left = input->Byte() % 4; left >= 0; left--) {
    const uint8_t choice = input->Byte();
    const bool isPolygon = choice % 2 == 0;
    flat[count++] = choice < 240 ? ROI_MARKER_EXTERNAL : ROI_MARKER_INTERNAL;
    flat[count++] = choice % 16 == 15 ? input->Int() : isPolygon ? ROI_POLYGON : ROI_RECT;
    for (int32_t point = choice % 32 == 7 ? choice % 5 : isPolygon ? 4 : 2; point > 0; point--) {
      const bool isInside = (choice & 0x40) == 0;
      flat[count++] = isInside ? input->Byte() % (width + 1) : input->Int();
      flat[count++] = isInside ? input->Byte() % (height + 1) : input->Int();
    }
  }
  RoiDescriptor* roi = nullptr;
  ZEL_ArrayToROI(flat, count, &roi);
  return roi;
}

void TryDisplay(Input* input, ImageRef image, const RoiDescriptor* roi) {
  const uint8_t choice = input->Byte();
  const float threshold = choice % 4 == 0 ? input->Float() : static_cast<float>(choice);
  const int32_t isLight = choice & 1;
  char* text = nullptr;
  uint8_t* states = nullptr;
  double value = -1;
  int32_t count = -1;
  int32_t result =
      ZEL_ReadLCDDisplay(image, roi, isLight, threshold, 1, 1, &text, &value, &states, &count);
  Require(result <= 0, "a positive result");
  Require(result == 0 ? count > 0 && std::strlen(text) > static_cast<size_t>(count) - 1
                      : !text && !states && count == -1,
          "outputs of a display");
  ZEL_free(states);

  DigitSegments segments{};
  result = ZEL_ReadSingleDigit(image, roi, isLight, threshold, 1, &text, &value, &segments);
  Require(result <= 0, "a positive result");
  const bool wasScanned =
      result == 0 || result == ZEL_ERR_NO_SEGMENT || result == ZEL_ERR_INEXACT_DIGIT;
  Require(segments.count == (wasScanned ? 1 : 0), "segments of a digit");
  ZEL_free(text);

  RoiDescriptor* digits = nullptr;
  result = ZEL_CalibrateLCD(image, roi, isLight, threshold, &digits);
  Require(result == 0 ? digits && digits->contourCount > 0 : result < 0 && !digits,
          "digits of a display");
  ZEL_FreeROI(digits);
}

float CoordinateOf(Input* input) {
  const float value = input->Float();
  // The longest circles cost a second.
  return std::fabs(value) <= METER_COORDINATE_LIMIT ? std::fmod(value, 2000.0f) : value;
}

void TryMeter(Input* input, ImageRef image, const RoiDescriptor* roi) {
  PointFloat* arc = nullptr;
  PointFloat base{};
  int32_t count = 0;
  if (ZEL_CalibrateMeter(roi, &base, &arc, &count) != 0) {
    const float all[] = {CoordinateOf(input), CoordinateOf(input), CoordinateOf(input),
                         CoordinateOf(input), CoordinateOf(input), CoordinateOf(input)};
    base = {all[0], all[1]};
    ZEL_CalibrateMeter2(base.x, base.y, all[2], all[3], all[4], all[5], &arc, &count);
  }
  float percent = 0;
  PointFloat tip{};
  const int32_t result =
      ZEL_ReadMeter(image, base.x, base.y, arc, count, input->Byte() & 1, &percent, &tip);
  Require(result <= 0, "a positive result");
  ZEL_free(arc);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint8_t choice = input.Byte();
  Scene scene((choice & 0x80) != 0);
  const int32_t width = input.Byte() % 100;
  const int32_t height = input.Byte() % 80;
  scene.roi = MakeRegion(&input, width, height);
  if (scene.roi && scene.MakeImage(choice, width, height)) {
    DrawRuns(&input, scene.info);
    TryDisplay(&input, scene.image, scene.roi);
    TryMeter(&input, scene.image, scene.roi);
    test::CheckImage(scene.image);
  }
  scene.End();
  return 0;
}
