#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;

// The bytes of the fill value of a type.
std::vector<uint8_t> PixelBytesOf(int32_t type) {
  const float real = -2.5f;
  const float imaginary = 7.25f;
  const float value = 298.75f;
  std::vector<uint8_t> bytes(8);
  switch (type) {
    case IMAGE_U8:
      return {42};
    case IMAGE_I16:
      return {42, 1};
    case IMAGE_SGL:
      bytes.resize(4);
      std::memcpy(bytes.data(), &value, 4);
      return bytes;
    case IMAGE_RGB:
      return {0x44, 0x33, 0x22, 0x11};
    default:
      std::memcpy(bytes.data(), &real, 4);
      std::memcpy(bytes.data() + 4, &imaginary, 4);
      return bytes;
  }
}

int32_t Fill(ImageRef image, ImageRef mask) {
  return ZEL_FillImage(image, mask, 298.75f, 0x11223344, -2.5f, 7.25f);
}

TEST(Fill, ByteImageOfTenByFourFillsFortyBytesOfItsBlock) {
  const TestImage image(IMAGE_U8, 10, 4);
  auto expected = image.Block();
  ASSERT_EQ(expected.size(), 64u);
  std::memset(expected.data(), 42, 40);
  ASSERT_EQ(Fill(image, 0), 0);
  EXPECT_EQ(image.Block(), expected);
}

TEST(Fill, OtherTypesFillFromTheStartOfEachLine) {
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t border : {0, 1, 3}) {
      const TestImage image(type, 6, 3, border);
      const ImageInfo info = image.Info();
      const auto pixel = PixelBytesOf(type);
      auto expected = image.Block();
      for (int32_t y = 0; y < 3 + 2 * border; y++) {
        for (int32_t x = 0; x < 6 + 2 * border; x++) {
          std::memcpy(expected.data() + y * info.lineBytes + x * info.pixelBytes, pixel.data(),
                      pixel.size());
        }
      }
      ASSERT_EQ(Fill(image, image), 0);
      EXPECT_EQ(image.Block(), expected) << "type " << type << ", border " << border;
    }
  }
}

TEST(Fill, MaskSelectsThePixelsOfEveryType) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const auto& [width, height] : test::ODD_SIZES) {
      const TestImage image(type, width, height, 2, 3);
      const TestImage expected(type, width, height, 2, 3);
      const TestImage mask(IMAGE_U8, width + 1, height, 0, 8);
      for (int32_t x = 0; x <= width && height > 0; x += 3) mask.Set<uint8_t>(x, 0, 0);
      ASSERT_EQ(ZEL_SetImageOffset(mask, -2, 1), 0);
      const auto pixel = PixelBytesOf(type);
      for (int32_t y = 1; y < height; y++) {
        for (int32_t x = 0; x < width - 1; x++) {
          if (mask.Get<uint8_t>(x + 2, y - 1) == 0) continue;
          std::memcpy(expected.At<uint8_t>(x, y), pixel.data(), pixel.size());
        }
      }
      ASSERT_EQ(Fill(image, mask), 0);
      ASSERT_EQ(image.Block(), expected.Block()) << "type " << type << ", width " << width;
    }
  }
}

TEST(Fill, MaskBesideTheImageLeavesItAlone) {
  const TestImage image(IMAGE_U8, 8, 8);
  const TestImage mask(IMAGE_U8, 4, 4);
  for (const auto& [x, y] :
       {std::pair{8, 0}, {0, 8}, {-4, 0}, {0, -4}, {INT32_MAX, 0}, {0, INT32_MIN}}) {
    ZEL_SetImageOffset(mask, x, y);
    const auto before = image.Block();
    EXPECT_EQ(Fill(image, mask), 0);
    EXPECT_EQ(image.Block(), before);
  }
}

TEST(Fill, WrongImagesAndMasksAreRefused) {
  const TestImage image(IMAGE_U8, 4, 4);
  const TestImage words(IMAGE_I16, 4, 4);
  ImageRef opaque = 0;
  ASSERT_EQ(ZEL_Create(&opaque, IMAGE_OPAQUE, 0), 0);
  const auto before = image.Block();
  EXPECT_EQ(Fill(999, 0), -200);
  EXPECT_EQ(Fill(image, 999), -200);
  EXPECT_EQ(Fill(image, words), -301);
  EXPECT_EQ(Fill(opaque, 999), -301);
  EXPECT_EQ(image.Block(), before);
  ZEL_Dispose(opaque);
}

TEST(Fill, EmptyImageIsNoFailure) {
  const TestImage image(IMAGE_SGL, 0, 0, 3);
  const auto before = image.Block();
  EXPECT_EQ(Fill(image, 0), 0);
  EXPECT_EQ(image.Block(), before);
}

TEST(Clear, ZeroesTheWholeBlockOfEveryType) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    const TestImage image(type, 9, 4, 3);
    ASSERT_EQ(ZEL_ClearPixels(image), 0);
    EXPECT_EQ(image.Block(), std::vector<uint8_t>(image.Block().size(), 0));
  }
}

TEST(Clear, RefusesUnknownAndOpaqueImages) {
  ImageRef opaque = 0;
  ASSERT_EQ(ZEL_Create(&opaque, IMAGE_OPAQUE, 0), 0);
  EXPECT_EQ(ZEL_ClearPixels(0), -200);
  EXPECT_EQ(ZEL_ClearPixels(opaque), -300);
  ZEL_Dispose(opaque);
}

}  // namespace
