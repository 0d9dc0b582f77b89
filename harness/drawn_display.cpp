#include "harness/drawn_display.h"

namespace test {
namespace {

struct Bar {
  int32_t left, top, right, bottom;  // of a digit's own pixels
};

// Without the upper right one they are a 6.
constexpr Bar UPPER_RIGHT = {7, 0, 9, 7};
constexpr Bar OTHERS[] = {{2, 0, 7, 2},  {7, 8, 9, 15}, {2, 13, 7, 15},
                          {0, 8, 2, 15}, {0, 0, 2, 7},  {2, 6, 7, 8}};

void Fill(const ImageInfo& info, int32_t digit, const Bar& bar) {
  const int32_t left = DRAWN_DIGIT[0] + digit * DRAWN_DIGIT_STEP;
  for (int32_t y = bar.top; y < bar.bottom; y++) {
    auto* row = static_cast<uint8_t*>(info.firstPixel) + (DRAWN_DIGIT[1] + y) * info.lineBytes;
    for (int32_t x = bar.left; x < bar.right; x++) row[left + x] = 30;
  }
}

}  // namespace

int32_t DrawDisplay(ImageRef* image) {
  int32_t result = ZEL_Create(image, IMAGE_U8, 0);
  if (result == 0) result = ZEL_SetImageSize(*image, 33, 24);
  if (result == 0) result = ZEL_FillImage(*image, 0, 200, 0, 0, 0);
  ImageInfo info{};
  if (result == 0) result = ZEL_GetImageInfo(*image, &info);
  if (result != 0) return result;
  for (int32_t digit = 0; digit < DRAWN_DIGITS; digit++) {
    for (const Bar& bar : OTHERS) Fill(info, digit, bar);
  }
  Fill(info, 0, UPPER_RIGHT);
  return 0;
}

}  // namespace test
