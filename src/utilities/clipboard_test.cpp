// Images into the clipboard of a desktop in memory, and bitmaps of all kinds out of it.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <vector>

#include "core/heap.h"
#include "harness/test_image.h"
#include "platform/memory_desktop.h"

namespace {

using test::TestImage;
using Bytes = std::vector<uint8_t>;
using Palette = std::array<RGBValue, 256>;

void Append(Bytes* to, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; i++) to->push_back(static_cast<uint8_t>(value >> (8 * i)));
}

struct Header {
  uint32_t bytes = 40;
  int32_t width = 3, height = 2;
  uint16_t bits = 8;
  uint32_t compression = 0, colours = 0;
};

Bytes HeaderBytes(const Header& header) {
  Bytes bytes;
  Append(&bytes, header.bytes, 4);
  Append(&bytes, static_cast<uint32_t>(header.width), 4);
  Append(&bytes, static_cast<uint32_t>(header.height), 4);
  Append(&bytes, 1, 2);
  Append(&bytes, header.bits, 2);
  Append(&bytes, header.compression, 4);
  for (int i = 0; i < 3; i++) Append(&bytes, 0, 4);
  Append(&bytes, header.colours, 4);
  Append(&bytes, 0, 4);
  return bytes;
}

void Append(Bytes* to, const Bytes& more) {
  to->insert(to->end(), more.begin(), more.end());
}

class Clipboard : public testing::Test {
 protected:
  Clipboard() { zel::MemoryDesktopReset(); }
  ~Clipboard() override { zel::MemoryDesktopReset(); }

  static void Put(const Bytes& bytes) {
    ASSERT_TRUE(zel::MEMORY_DESKTOP.clipboardWrite({bytes.data(), bytes.size()}));
  }
  static Bytes Content() {
    zel::ClipboardBitmap bitmap{};
    if (zel::MEMORY_DESKTOP.clipboardRead(&bitmap) != zel::ClipboardState::FILLED) return {};
    return {bitmap.bytes, bitmap.bytes + bitmap.size};
  }
  static int32_t Take(const TestImage& image, Palette* palette = nullptr) {
    int32_t available = -5;
    const int32_t result =
        ZEL_ClipboardToImage(image, palette ? palette->data() : nullptr, &available);
    EXPECT_EQ(available, 1);
    return result;
  }
};

TEST_F(Clipboard, WithoutAPictureLeavesTheImage) {
  const TestImage image(IMAGE_U8, 5, 4, 2);
  const Bytes before = image.Block();
  int32_t available = 9;
  Palette palette{7};
  EXPECT_EQ(ZEL_ClipboardToImage(image, palette.data(), &available), 0);
  EXPECT_EQ(available, 0);
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(palette[0], 7U);
  available = 9;
  EXPECT_EQ(ZEL_ClipboardToImage(12345, nullptr, &available), 0) << "no image is looked for";
  EXPECT_EQ(available, 0);
}

TEST_F(Clipboard, KeepsGrayImagesOfAllWidths) {
  for (const int32_t width : {1, 2, 3, 4, 5, 31, 32, 33}) {
    const TestImage image(IMAGE_U8, width, 7, 3, static_cast<uint64_t>(width));
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
    const TestImage taken(IMAGE_U8, 2, 2, 1);
    Palette palette{};
    ASSERT_EQ(Take(taken, &palette), 0);
    EXPECT_EQ(taken.width(), width);
    EXPECT_EQ(taken.Pixels(), image.Pixels());
    for (uint32_t i = 0; i < 256; i++) EXPECT_EQ(palette[i], i * 0x010101);
  }
}

TEST_F(Clipboard, KeepsColoursWithAFourthByteOf0) {
  const TestImage image(IMAGE_RGB, 5, 3, 1);
  image.FillRandom(4);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const TestImage taken(IMAGE_RGB, 1, 1, 2);
  Palette palette{};
  ASSERT_EQ(Take(taken, &palette), 0);
  for (int32_t i = 0; i < 15; i++) {
    const auto color = image.Get<RGBValue>(i % 5, i / 5);
    EXPECT_EQ(taken.Get<RGBValue>(i % 5, i / 5), color & 0xFFFFFF);
  }
  EXPECT_EQ(palette[200], 200U * 0x010101) << "of a bitmap without colours";
}

TEST_F(Clipboard, HoldsABitmapWithTheBottomRowFirst) {
  const TestImage image(IMAGE_U8, 3, 2, 0);
  for (int32_t i = 0; i < 6; i++) image.Set<uint8_t>(i % 3, i / 3, static_cast<uint8_t>(10 + i));
  Palette palette;
  for (uint32_t i = 0; i < 256; i++) palette[i] = 0xEE000000 | i << 16 | 0x1200 | (255 - i);
  ASSERT_EQ(ZEL_ImageToClipboard(image, palette.data()), 0);
  Bytes expected = HeaderBytes({.colours = 256});
  for (const RGBValue colour : palette) Append(&expected, colour & 0xFFFFFF, 4);
  Append(&expected, Bytes{13, 14, 15, 0, 10, 11, 12, 0});
  EXPECT_EQ(Content(), expected);

  const TestImage colours(IMAGE_RGB, 1, 1);
  Palette taken{};
  ASSERT_EQ(Take(colours, &taken), 0);
  EXPECT_EQ(colours.Get<RGBValue>(1, 1), palette[14] & 0xFFFFFF);
  EXPECT_EQ(taken[14], palette[14] & 0xFFFFFF);
}

TEST_F(Clipboard, HoldsColoursWithoutATable) {
  const TestImage image(IMAGE_RGB, 2, 1, 0);
  image.Set<RGBValue>(0, 0, 0xAB112233);
  image.Set<RGBValue>(1, 0, 0x445566);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  Bytes expected = HeaderBytes({.width = 2, .height = 1, .bits = 24});
  Append(&expected, Bytes{0x33, 0x22, 0x11, 0x66, 0x55, 0x44, 0, 0});
  EXPECT_EQ(Content(), expected);
}

TEST_F(Clipboard, GivesTheMeanOfColoursToGrayImages) {
  Bytes bitmap = HeaderBytes({.width = 1, .height = 1, .bits = 24});
  Append(&bitmap, Bytes{255, 255, 253, 0});
  Put(bitmap);
  const TestImage image(IMAGE_U8, 4, 4);
  ASSERT_EQ(Take(image), 0);
  EXPECT_EQ(image.Get<uint8_t>(0, 0), 254);
}

TEST_F(Clipboard, FillsAShortTableWithGrayLevelsFromItsEnd) {
  Bytes bitmap = HeaderBytes({.width = 2, .height = 1, .colours = 2});
  Append(&bitmap, Bytes{1, 2, 3, 99, 4, 5, 6, 99});
  Append(&bitmap, Bytes{1, 2, 0, 0});
  Put(bitmap);
  const TestImage image(IMAGE_RGB, 1, 1);
  Palette palette{};
  ASSERT_EQ(Take(image, &palette), 0);
  EXPECT_EQ(palette[0], 0x030201U);
  EXPECT_EQ(palette[1], 0x060504U);
  EXPECT_EQ(palette[2], 0x020202U);
  EXPECT_EQ(palette[255], 0xFFFFFFU);
  EXPECT_EQ(image.Get<RGBValue>(0, 0), 0x060504U);
  EXPECT_EQ(image.Get<RGBValue>(1, 0), 0x020202U);
}

TEST_F(Clipboard, SkipsColoursBeyond256AndTablesOf24Bits) {
  Bytes large = HeaderBytes({.width = 1, .height = 1, .colours = 300});
  for (uint32_t i = 0; i < 300; i++) Append(&large, i, 4);
  Append(&large, Bytes{9, 0, 0, 0});
  Put(large);
  const TestImage image(IMAGE_U8, 1, 1);
  ASSERT_EQ(Take(image), 0);
  EXPECT_EQ(image.Get<uint8_t>(0, 0), 9);

  Bytes table = HeaderBytes({.width = 1, .height = 1, .bits = 24, .colours = 2});
  Append(&table, Bytes{1, 1, 1, 1, 2, 2, 2, 2, 30, 30, 30, 0});
  Put(table);
  Palette palette{};
  ASSERT_EQ(Take(image, &palette), 0);
  EXPECT_EQ(image.Get<uint8_t>(0, 0), 30);
  EXPECT_EQ(palette[1], 0x010101U);
}

TEST_F(Clipboard, TakesRowsFromTheTopWhereTheHeightIsNegative) {
  Bytes bitmap = HeaderBytes({.width = 1, .height = -2, .bits = 24});
  Append(&bitmap, Bytes{1, 1, 1, 0, 2, 2, 2, 0});
  Put(bitmap);
  const TestImage image(IMAGE_U8, 1, 1);
  ASSERT_EQ(Take(image), 0);
  EXPECT_EQ(image.height(), 2);
  EXPECT_EQ(image.Get<uint8_t>(0, 0), 1);
  EXPECT_EQ(image.Get<uint8_t>(0, 1), 2);
}

TEST_F(Clipboard, GivesAnEmptyImageForABitmapWithoutPixels) {
  for (const Header& header : {Header{.width = 0}, Header{.width = -3}, Header{.height = 0}}) {
    Put(HeaderBytes(header));
    const TestImage image(IMAGE_U8, 4, 4);
    ASSERT_EQ(Take(image), 0);
    EXPECT_EQ(image.width(), 0);
    EXPECT_EQ(image.height(), 0);
  }
}

TEST_F(Clipboard, RefusesWhatItCannotReadOnceTheImageHasTheSize) {
  for (const Header& header : {Header{.bits = 1}, Header{.bits = 32}, Header{.compression = 1},
                               Header{.bytes = 12}, Header{.bits = 0}}) {
    Bytes bitmap = HeaderBytes(header);
    bitmap.resize(3000);
    Put(bitmap);
    const TestImage image(IMAGE_U8, 4, 4);
    Palette palette{77};
    EXPECT_EQ(Take(image, &palette), -1);
    EXPECT_EQ(image.width(), 3);
    EXPECT_EQ(image.height(), 2);
    EXPECT_EQ(palette[0], 77U);
  }
}

TEST_F(Clipboard, RefusesEveryBitmapThatIsCutShort) {
  const TestImage whole(IMAGE_U8, 3, 2);
  ASSERT_EQ(ZEL_ImageToClipboard(whole, nullptr), 0);
  const Bytes bitmap = Content();
  for (size_t size = 1; size < bitmap.size(); size++) {
    Put({bitmap.begin(), bitmap.begin() + static_cast<std::ptrdiff_t>(size)});
    const TestImage image(IMAGE_U8, 4, 4);
    ASSERT_EQ(Take(image), -1) << size;
    EXPECT_EQ(image.width(), size < 12 ? 4 : 3) << size;
  }
}

TEST_F(Clipboard, MakesNoImageOfASizeThatIsNotThere) {
  for (const Header& header :
       {Header{.width = INT32_MAX, .height = INT32_MAX}, Header{.width = 1, .height = INT32_MIN},
        Header{.width = INT32_MAX, .height = INT32_MAX, .bits = UINT16_MAX},
        Header{.width = 2000, .height = 2000}, Header{.bytes = UINT32_MAX},
        Header{.colours = UINT32_MAX}}) {
    Put(HeaderBytes(header));
    const TestImage image(IMAGE_U8, 4, 4);
    EXPECT_EQ(Take(image), -1);
    EXPECT_EQ(image.width(), 4);
  }
}

TEST_F(Clipboard, RefusesImagesOfOtherTypesAndUnknownOnes) {
  const TestImage image(IMAGE_U8, 3, 2);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const Bytes before = Content();
  for (const int32_t type : {IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX}) {
    const TestImage other(type, 3, 2);
    EXPECT_EQ(ZEL_ImageToClipboard(other, nullptr), ZEL_ERR_BAD_TYPE);
    EXPECT_EQ(Take(other), ZEL_ERR_BAD_TYPE);
  }
  EXPECT_EQ(ZEL_ImageToClipboard(99999, nullptr), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(ZEL_ImageToClipboard(0, nullptr), ZEL_ERR_BAD_IMAGE);
  int32_t available = 0;
  EXPECT_EQ(ZEL_ClipboardToImage(99999, nullptr, &available), ZEL_ERR_BAD_IMAGE);
  EXPECT_EQ(available, 1);
  EXPECT_EQ(ZEL_ClipboardToImage(image, nullptr, nullptr), ZEL_ERR_NULL_POINTER);
  EXPECT_EQ(Content(), before);
}

TEST_F(Clipboard, ReportsBothDirectionsUnderOneName) {
  char name[ERROR_PROCEDURE_BYTES] = "";
  ZEL_ImageToClipboard(99999, nullptr);
  EXPECT_EQ(ZEL_GetLastError(name), ZEL_ERR_BAD_IMAGE);
  EXPECT_STREQ(name, "ZEL_ClipboardToImage");
}

TEST_F(Clipboard, KeepsWhatLiesInItForAnEmptyImage) {
  const TestImage image(IMAGE_U8, 3, 2);
  const TestImage empty(IMAGE_RGB, 0, 0);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const Bytes before = Content();
  EXPECT_EQ(ZEL_ImageToClipboard(empty, nullptr), 0);
  EXPECT_EQ(Content(), before);
}

TEST_F(Clipboard, KeepsItsPictureWhenTheLibraryIsClosed) {
  Bytes before;
  {
    const TestImage image(IMAGE_RGB, 3, 2);
    ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
    before = Content();
  }
  ZEL_CloseSys();
  EXPECT_EQ(Content(), before);
}

TEST_F(Clipboard, ThatCannotBeOpenedIsNoFailure) {
  const TestImage image(IMAGE_U8, 3, 2);
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const Bytes before = Content();
  zel::DesktopFaultsGet()->noClipboard = true;
  int32_t available = 7;
  Palette palette{7};
  EXPECT_EQ(ZEL_ClipboardToImage(image, palette.data(), &available), 0);
  EXPECT_EQ(available, 7);
  EXPECT_EQ(palette[0], 7U);
  const TestImage other(IMAGE_U8, 5, 5);
  EXPECT_EQ(ZEL_ImageToClipboard(other, nullptr), 0);
  zel::DesktopFaultsGet()->noClipboard = false;
  EXPECT_EQ(Content(), before);
}

TEST_F(Clipboard, NeedsMemory) {
  const TestImage image(IMAGE_U8, 300, 300);
  zel::HeapHooksGet()->failAt = zel::HeapHooksGet()->requests + 1;
  EXPECT_EQ(ZEL_ImageToClipboard(image, nullptr), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(Content().empty());
  ASSERT_EQ(ZEL_ImageToClipboard(image, nullptr), 0);
  const TestImage small(IMAGE_U8, 3, 3);
  zel::HeapHooksGet()->failAt = zel::HeapHooksGet()->requests + 1;
  EXPECT_EQ(Take(small), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(small.width(), 3);
}

}  // namespace
