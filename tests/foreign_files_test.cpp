// Files that other programs wrote (tests/tools/make_foreign_files.sh makes them) give the pictures
// that went into them.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;

uint32_t GrayAt(int32_t x, int32_t y) {
  return static_cast<uint32_t>((23 * x + 41 * y) % 256);
}

uint32_t ColourAt(int32_t x, int32_t y) {
  return GrayAt(x, y) << 16 | static_cast<uint32_t>((5 * x + 7 * y) % 256) << 8 |
         static_cast<uint32_t>((200 + x + 3 * y) % 256);
}

// A picture of few colours.
uint32_t FewAt(int32_t x, int32_t y) {
  const auto step = static_cast<uint32_t>(16 * ((x + y) % 16));
  return step << 16 | (255 - step) << 8 | 40;
}

class Foreign : public testing::Test {
 protected:
  // Reads a file and tells what it said of itself.
  FileInfo Read(const std::string& name, const TestImage& image) {
    const std::string path = std::string(PTK_TEST_DATA) + "/foreign/" + name;
    FileInfo info{};
    EXPECT_EQ(ZEL_PtkFileInfo(path.c_str(), &info), 0);
    EXPECT_EQ(ZEL_ReadFile(image, path.c_str(), 1, table_.data(), &count_), 0) << name;
    return info;
  }

  const TestImage gray_{IMAGE_U8, 2, 2, 1};
  const TestImage colour_{IMAGE_RGB, 2, 2, 1};
  std::vector<RGBValue> table_ = std::vector<RGBValue>(256);
  int32_t count_ = -1;
};

TEST_F(Foreign, GrayTiffs) {
  for (const char* name :
       {"libtiff_gray.tif", "libtiff_gray_strips.tif", "libtiff_gray_big_endian.tif"}) {
    const FileInfo info = Read(name, gray_);
    EXPECT_EQ(info.fileType, 2);
    EXPECT_EQ(info.bitsPerPixel, 8);
    ASSERT_EQ(gray_.width(), 10);
    ASSERT_EQ(gray_.height(), 6);
    for (int32_t y = 0; y < 6; y++) {
      for (int32_t x = 0; x < 10; x++) ASSERT_EQ(gray_.Get<uint8_t>(x, y), GrayAt(x, y)) << name;
    }
  }
}

TEST_F(Foreign, SixteenBitTiffsThatAreBigEndian) {
  const TestImage words(IMAGE_I16, 2, 2);
  EXPECT_EQ(Read("magick_16_bits.tif", words).bitsPerPixel, 16);
  for (int32_t y = 0; y < 6; y++) {
    for (int32_t x = 0; x < 10; x++) ASSERT_EQ(words.Get<uint16_t>(x, y), GrayAt(x, y) * 257);
  }
}

TEST_F(Foreign, ColourTiffs) {
  for (const char* name : {"libtiff_colour.tif", "libtiff_colour_big_endian.tif"}) {
    EXPECT_EQ(Read(name, colour_).bitsPerPixel, 24);
    for (int32_t y = 0; y < 6; y++) {
      for (int32_t x = 0; x < 10; x++) {
        ASSERT_EQ(colour_.Get<uint32_t>(x, y), ColourAt(x, y)) << name;
      }
    }
  }
}

TEST_F(Foreign, TiffsInPlanesHaveTheLaterColoursFurtherOn) {
  EXPECT_EQ(Read("libtiff_planes.tif", colour_).planes, 1);
  for (int32_t k = 0; k < 60; k++) {
    const auto at = [&](int32_t position) { return ColourAt(position % 10, position / 10); };
    const uint32_t green = k < 1 ? 0 : at(k - 1) & 0xFF00;
    const uint32_t blue = k < 2 ? 0 : at(k - 2) & 0xFF;
    ASSERT_EQ(colour_.Get<uint32_t>(k % 10, k / 10), (at(k) & 0xFF0000) | green | blue);
  }
}

TEST_F(Foreign, BilevelTiffsThatAreWhiteAtZero) {
  EXPECT_EQ(Read("libtiff_bilevel.tif", gray_).bitsPerPixel, 1);
  for (int32_t y = 0; y < 16; y++) {
    for (int32_t x = 0; x < 16; x++) {
      const bool white = (x * y + x) % 3 == 0;
      ASSERT_EQ(gray_.Get<uint8_t>(x, y), white ? 0xFF : 0xFE);
    }
  }
}

TEST_F(Foreign, Bitmaps) {
  EXPECT_EQ(Read("magick_colour.bmp", colour_).bitsPerPixel, 24);
  for (int32_t y = 0; y < 6; y++) {
    for (int32_t x = 0; x < 10; x++) ASSERT_EQ(colour_.Get<uint32_t>(x, y), ColourAt(x, y));
  }
  EXPECT_EQ(Read("magick_gray.bmp", gray_).bitsPerPixel, 8);
  EXPECT_EQ(count_, 256);
  for (int32_t y = 0; y < 6; y++) {
    for (int32_t x = 0; x < 10; x++) {
      ASSERT_EQ(table_[gray_.Get<uint8_t>(x, y)], GrayAt(x, y) * 0x010101);
    }
  }
  EXPECT_EQ(Read("magick_16_colours.bmp", gray_).bitsPerPixel, 4);
  EXPECT_EQ(count_, 256);
  for (int32_t y = 0; y < 6; y++) {
    for (int32_t x = 0; x < 10; x++) ASSERT_EQ(table_[gray_.Get<uint8_t>(x, y)], FewAt(x, y));
  }
}

TEST_F(Foreign, APaletteOf16ColoursHasOnlyTheRedsOfItsFirstOnes) {
  EXPECT_EQ(Read("magick_palette.tif", gray_).bitsPerPixel, 4);
  EXPECT_EQ(count_, 256);
  for (int32_t y = 0; y < 6; y++) {
    for (int32_t x = 0; x < 10; x++) {
      const RGBValue entry = table_[gray_.Get<uint8_t>(x, y)];
      // 48 values count as 48 entries a colour: green and blue would lie behind them.
      ASSERT_EQ(entry, FewAt(x, y) & 0xFF0000);
    }
  }
}

}  // namespace
