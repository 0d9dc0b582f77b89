// A region of any pixels, or of bars of any widths, and each reader of bar codes on it.
#include <algorithm>

#include "fuzz/scene.h"
#include "fuzz/target.h"
#include "harness/input.h"
#include "orlune_ptk.h"

namespace {

using test::Input;
using Reader = int32_t (*)(ImageRef, const RoiDescriptor*, int32_t, char**, int32_t*);

constexpr uint8_t FIRST_DIGITS[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 200};

template <uint8_t digit>
int32_t ReadEan13(ImageRef image, const RoiDescriptor* roi, int32_t validate, char** text,
                  int32_t* length) {
  return ZEL_ReadEAN13(image, roi, validate, &FIRST_DIGITS[digit], text, length);
}

constexpr Reader READERS[] = {ZEL_ReadCodabar, ZEL_ReadCod25, ZEL_ReadMSI,  ZEL_ReadCodEAN8,
                              ReadEan13<3>,    ReadEan13<10>, ZEL_ReadUPCA, ZEL_ReadCod39,
                              ZEL_ReadCod93,   ZEL_ReadCod128};

// Half bytes are widths of light and dark by turns, two pixels a module.
void DrawBars(Input* input, const ImageInfo& info) {
  int32_t left = 0;
  int32_t byte = 0;
  for (int32_t run = 0; left < info.width; run++) {
    if (run % 2 == 0) byte = input->Byte();
    const int32_t width = 2 * (run % 2 == 0 ? byte >> 4 : byte & 15);
    const int32_t right = std::min(info.width, left + std::max(width, 1));
    for (int32_t y = 0; y < info.height; y++) {
      auto* row = static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
      std::fill(row + left * info.pixelBytes, row + right * info.pixelBytes,
                static_cast<uint8_t>(run % 2 == 0 ? 90 : 20));
    }
    left = right;
  }
}

void TakePixels(Input* input, const ImageInfo& info) {
  for (int32_t y = 0; y < info.height; y++) {
    auto* row = static_cast<uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes;
    std::generate(row, row + info.width * info.pixelBytes, [&] { return input->Byte(); });
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const uint8_t choice = input.Byte();
  Scene scene((choice & 0x80) != 0);
  const int32_t width = 2 * input.Byte();
  const int32_t height = input.Byte() % 12;
  const bool isWhole = (choice & 0x40) != 0;
  const int32_t corners[] = {isWhole ? 0 : input.Int(), isWhole ? 0 : input.Int(),
                             isWhole ? width - 1 : input.Int(), isWhole ? height : input.Int()};
  const int32_t flat[] = {0,        0,          0,          0,          ROI_MARKER_EXTERNAL,
                          ROI_RECT, corners[0], corners[1], corners[2], corners[3]};
  if (scene.MakeImage(choice, width, height) && ZEL_ArrayToROI(flat, 10, &scene.roi) == 0) {
    if ((choice & 0x20) != 0) {
      DrawBars(&input, scene.info);
    } else {
      TakePixels(&input, scene.info);
    }
    for (const Reader reader : READERS) {
      char* text = nullptr;
      int32_t length = -1;
      const int32_t result = reader(scene.image, scene.roi, choice & 0x10, &text, &length);
      test::Require(result <= 0, "a positive result");
      test::Require(result == 0 ? length >= 0 : !text && length == -1, "outputs of a failing call");
      test::Require(!text || text[length] == 0, "a text without its end");
      ZEL_free(text);
    }
    test::CheckImage(scene.image);
  }
  scene.End();
  return 0;
}
