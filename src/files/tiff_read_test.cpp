#include <gtest/gtest.h>

#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"
#include "harness/tiff_file.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;
using test::TiffFile;
using test::TiffOf;

int32_t Read(const TestImage& image) {
  return ZEL_ReadFile(image, "f", 0, nullptr, nullptr);
}

FileInfo InfoOfFile() {
  FileInfo info{-1, 77, -1, -1, -1};
  EXPECT_EQ(ZEL_PtkFileInfo("f", &info), 0);
  return info;
}

std::vector<Bytes> InStrips(const Bytes& data, size_t stripBytes) {
  std::vector<Bytes> strips;
  for (size_t at = 0; at < data.size(); at += stripBytes) {
    const size_t end = std::min(at + stripBytes, data.size());
    strips.emplace_back(data.begin() + static_cast<int64_t>(at),
                        data.begin() + static_cast<int64_t>(end));
  }
  return strips;
}

// 8 x 6, gray of 8 bits, one strip.
TiffFile Plain(bool little = true) {
  return TiffOf(8, 6, {8}, {test::RandomBytes(48, 11)}, 6, little);
}

class TiffRead : public testing::Test {
 protected:
  int32_t ReadInto(const TestImage& image, const TiffFile& file) {
    files_.Put("f", file.Build());
    return Read(image);
  }
  int32_t ReadGray(const TiffFile& file) {
    gray_ = TestImage(IMAGE_U8, 8, 6, 1);
    return ReadInto(gray_, file);
  }

  MemoryFiles files_;
  TestImage gray_;
};

TEST_F(TiffRead, GrayOfEitherByteOrderInStripsOfAnyHeight) {
  for (const auto& [width, height] : test::ODD_SIZES) {
    if (width == 0) continue;
    for (const int32_t rows : {1, 2, height}) {
      for (const bool little : {true, false}) {
        const auto w = static_cast<size_t>(width);
        const Bytes data = test::RandomBytes(w * static_cast<size_t>(height), 3);
        const TestImage image(IMAGE_U8, width + width % 2, height, rows);
        const Bytes around = image.Surroundings();
        ASSERT_EQ(
            ReadInto(image, TiffOf(static_cast<uint32_t>(width), static_cast<uint32_t>(height), {8},
                                   InStrips(data, w * static_cast<size_t>(rows)),
                                   static_cast<uint32_t>(rows), little)),
            0);
        ASSERT_EQ(image.width(), width + width % 2);
        ASSERT_EQ(image.height(), height);
        EXPECT_EQ(image.Surroundings(), around);
        for (int32_t y = 0; y < height; y++) {
          for (int32_t x = 0; x < image.width(); x++) {
            ASSERT_EQ(image.Get<uint8_t>(x, y),
                      x < width ? data[static_cast<size_t>(y * width + x)] : 0);
          }
        }
      }
    }
  }
}

TEST_F(TiffRead, StripsMayLieAnywhereAndInAnyOrder) {
  const Bytes data = test::RandomBytes(48, 5);
  TiffFile file = TiffOf(8, 6, {8}, InStrips(data, 16), 2);
  std::reverse(file.strips.begin(), file.strips.end());
  const size_t first = file.StripAt(0);
  file.Set(273, test::TIFF_LONG,
           {static_cast<uint32_t>(first + 32), static_cast<uint32_t>(first + 16),
            static_cast<uint32_t>(first)});
  ASSERT_EQ(ReadGray(file), 0);
  EXPECT_EQ(gray_.Pixels(), data);
}

TEST_F(TiffRead, SixteenBitSamplesAreBigEndianWhateverTheMark) {
  const Bytes data = test::RandomBytes(96, 5);
  for (const bool little : {true, false}) {
    const TestImage image(IMAGE_I16, 8, 6, 2);
    ASSERT_EQ(ReadInto(image, TiffOf(8, 6, {16}, {data}, 6, little)), 0);
    for (int32_t k = 0; k < 48; k++) {
      const uint64_t sample = test::BigNumber(data, static_cast<size_t>(2 * k), 2);
      EXPECT_EQ(image.Get<uint16_t>(k % 8, k / 8), sample);
    }
    const FileInfo info = InfoOfFile();
    EXPECT_EQ(info.bitsPerPixel, 16);
    EXPECT_EQ(info.planes, 3);
  }
}

TEST_F(TiffRead, ColourIsRedGreenBlueWhateverTheMark) {
  const Bytes data = test::RandomBytes(144, 5);
  for (const bool little : {true, false}) {
    const TestImage image(IMAGE_RGB, 8, 6, 2);
    ASSERT_EQ(ReadInto(image, TiffOf(8, 6, {8, 8, 8}, InStrips(data, 48), 2, little)), 0);
    for (int32_t k = 0; k < 48; k++) {
      const uint64_t sample = test::BigNumber(data, static_cast<size_t>(3 * k), 3);
      EXPECT_EQ(image.Get<uint32_t>(k % 8, k / 8), sample);
    }
    EXPECT_EQ(InfoOfFile().planes, 3);
  }
}

TEST_F(TiffRead, SmallSamplesAreOneStreamWithoutRowPadding) {
  for (const uint32_t bits : {1u, 2u, 4u}) {
    const Bytes data = test::RandomBytes(8 * 6 * bits / 8, 5);
    const TiffFile file = TiffOf(8, 6, {bits}, {data}, 6).Drop(279);
    ASSERT_EQ(ReadGray(file), 0);
    for (size_t k = 0; k < 48; k++) {
      const size_t bit = k * bits;
      const int sample = data[bit / 8] >> (8 - bits - bit % 8) & ((1 << bits) - 1);
      EXPECT_EQ(gray_.Get<uint8_t>(static_cast<int32_t>(k % 8), static_cast<int32_t>(k / 8)),
                sample);
    }
    EXPECT_EQ(InfoOfFile().bitsPerPixel, static_cast<int32_t>(bits));
  }
}

TEST_F(TiffRead, SmallSamplesOfAWidthThatNoByteEndsAt) {
  // 5 pixels of 2 bits: row 1 begins in the middle of byte 1. Without counts 15 pixels are 3 bytes.
  const TiffFile file = TiffOf(5, 3, {2}, {{0x1B, 0xE4, 0x93, 0x55}}, 3).Drop(279);
  const TestImage image(IMAGE_I16, 6, 3, 1, 4);
  const TestImage before(IMAGE_I16, 6, 3, 1, 4);
  ASSERT_EQ(ReadInto(image, file), 0);
  const int16_t expected[] = {0, 1, 2, 3, 3, 2, 1, 0, 2, 1, 0, 3};
  for (int32_t k = 0; k < 15; k++) {
    const int32_t x = k % 5;
    const int32_t y = k / 5;
    EXPECT_EQ(image.Get<int16_t>(x, y), k < 12 ? expected[k] : before.Get<int16_t>(x, y));
  }
}

TEST_F(TiffRead, ABilevelImageWithPhotometric0IsInvertedBitwise) {
  const TiffFile file =
      TiffOf(8, 4, {1}, {{0xA5, 0x0F, 0x00, 0xFF, 0, 0, 0, 0}}, 4).Set(262, test::TIFF_SHORT, {0});
  const TestImage image(IMAGE_U8, 8, 4, 1);
  const Bytes around = image.Surroundings();
  ASSERT_EQ(ReadInto(image, file), 0);
  EXPECT_EQ(image.Get<uint8_t>(0, 0), 0xFE);
  EXPECT_EQ(image.Get<uint8_t>(1, 0), 0xFF);
  EXPECT_EQ(image.Get<uint8_t>(0, 3), 0xFE);
  EXPECT_EQ(image.Surroundings(), around);
}

TEST_F(TiffRead, InversionCoversMissingPixelsAndSparesTheOddColumn) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB}) {
    const TestImage image(type, 8, 6, 2);
    const TestImage before(type, 8, 6, 2);
    const TiffFile file =
        TiffOf(7, 6, {8}, {test::RandomBytes(14, 3)}, 6).Set(262, test::TIFF_SHORT, {0});
    ASSERT_EQ(ReadInto(image, file), 0);
    const auto pixelBytes = static_cast<size_t>(image.Info().pixelBytes);
    for (int32_t y = 2; y < 6; y++) {
      for (int32_t x = 0; x < 8; x++) {
        const uint8_t* old = before.At<uint8_t>(x, y);
        Bytes expected(old, old + pixelBytes);
        if (type == IMAGE_U8 || type == IMAGE_I16) {
          for (uint8_t& byte : expected) byte = static_cast<uint8_t>(~byte);
        }
        if (x == 7) expected.assign(pixelBytes, 0);
        const uint8_t* pixel = image.At<uint8_t>(x, y);
        EXPECT_EQ(Bytes(pixel, pixel + pixelBytes), expected) << type << ' ' << x << ' ' << y;
      }
    }
  }
}

TEST_F(TiffRead, ACountIsMadeAMultipleOfTheWidth) {
  // Two bytes hold 16 bilevel pixels, but two is no multiple of 16: nothing is read.
  const TestImage image(IMAGE_U8, 16, 1, 1);
  const Bytes before = image.Block();
  ASSERT_EQ(ReadInto(image, TiffOf(16, 1, {1}, {{0xFF, 0xFF}}, 1)), 0);
  EXPECT_EQ(image.Block(), before);

  // The first strip's 17 bytes count as 16; the second strip goes right behind them.
  const Bytes first = test::RandomBytes(17, 3);
  const Bytes second = test::RandomBytes(16, 4);
  ASSERT_EQ(ReadGray(TiffOf(8, 4, {8}, {first, second}, 2)), 0);
  Bytes expected(first.begin(), first.begin() + 16);
  expected.insert(expected.end(), second.begin(), second.end());
  EXPECT_EQ(gray_.Pixels(), expected);
}

TEST_F(TiffRead, APartOfASampleAtTheEndOfAStripIsLeftOut) {
  const std::vector<Bytes> strips = {{0x10, 0x11, 0x12}, {0x20, 0x21, 0x22}, {0x30, 0x31, 0x32}};
  const std::vector<Bytes> apart = {
      {0x10, 0x11, 0x12, 0}, {0x20, 0x21, 0x22, 0}, {0x30, 0x31, 0x32}};
  for (const auto& data : {strips, apart}) {
    const TestImage image(IMAGE_I16, 3, 3);
    const auto below = image.Get<int16_t>(0, 1);
    TiffFile file = TiffOf(3, 3, {16}, data, 1);
    file.Set(279, test::TIFF_LONG, {3, 3, 3});
    ASSERT_EQ(ReadInto(image, file), 0);
    EXPECT_EQ(image.Get<int16_t>(0, 0), 0x1011);
    EXPECT_EQ(image.Get<int16_t>(1, 0), 0x2021);
    EXPECT_EQ(image.Get<int16_t>(2, 0), 0x3031);
    EXPECT_EQ(image.Get<int16_t>(0, 1), below);
  }
}

TEST_F(TiffRead, AStripThatTheFileCutsShortStillTakesItsPlace) {
  TiffFile file = TiffOf(8, 4, {8}, {Bytes(16, 1), Bytes(16, 2)}, 2);
  // The first strip is said to begin 4 bytes before the end.
  const auto end = static_cast<uint32_t>(file.Build().size());
  const auto second = static_cast<uint32_t>(file.StripAt(1));
  file.Set(273, test::TIFF_LONG, {end - 4, second});
  const TestImage image(IMAGE_U8, 8, 4, 1);
  const Bytes before = image.Pixels();
  ASSERT_EQ(ReadInto(image, file), 0);
  Bytes expected = before;
  for (size_t i = 0; i < 4; i++) expected[i] = 2;
  for (size_t i = 16; i < 32; i++) expected[i] = 2;
  EXPECT_EQ(image.Pixels(), expected);
}

TEST_F(TiffRead, PixelsBeyondTheImageAreDropped) {
  const TestImage image(IMAGE_U8, 8, 6, 2);
  const Bytes around = image.Surroundings();
  const Bytes data = test::RandomBytes(5000, 3);
  ASSERT_EQ(ReadInto(image, TiffOf(8, 6, {8}, {data}, 6)), 0);
  EXPECT_EQ(image.Surroundings(), around);
  EXPECT_EQ(image.Pixels(), test::Cut(data, 48));
}

TEST_F(TiffRead, WithoutCountsOneReadTakesTheWholeImage) {
  const Bytes data = test::RandomBytes(48, 9);
  TiffFile file = TiffOf(8, 6, {8}, InStrips(data, 16), 2).Drop(279);
  ASSERT_EQ(ReadGray(file), 0);
  EXPECT_EQ(gray_.Pixels(), data);
  const Bytes other = test::RandomBytes(48, 10);
  TiffFile oneOffset = TiffOf(8, 6, {8}, {other}, 2).Drop(279);  // for three strips
  ASSERT_EQ(ReadGray(oneOffset), 0);
  EXPECT_EQ(gray_.Pixels(), other);
}

TEST_F(TiffRead, WithoutCountsAndOffsetsIs514) {
  TiffFile file = TiffOf(8, 6, {8}, {Bytes(48, 7)}, 6).Drop(279).Count(273, 0);
  EXPECT_EQ(ReadGray(file), -514);
}

TEST_F(TiffRead, PlanesJoin) {
  const size_t pixels = 8 * 6;
  const Bytes planes = test::RandomBytes(3 * pixels, 21);
  for (const uint32_t rows : {2u, 6u}) {
    const TiffFile file =
        TiffOf(8, 6, {8, 8, 8}, InStrips(planes, rows * 8), rows).Set(284, test::TIFF_SHORT, {2});
    for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
      const TestImage image(type, 8, 6, 1);
      const Bytes around = image.Surroundings();
      ASSERT_EQ(ReadInto(image, file), 0);
      EXPECT_EQ(image.Surroundings(), around);
      for (size_t k = 0; k < pixels; k++) {
        const auto x = static_cast<int32_t>(k % 8);
        const auto y = static_cast<int32_t>(k / 8);
        const int red = planes[k];
        const int green = planes[pixels + k];
        const int blue = planes[2 * pixels + k];
        if (type == IMAGE_U8) {
          const int half = (green + red) >> 1;
          EXPECT_EQ(image.Get<uint8_t>(x, y), (blue + 2 * half) / 3);
        } else if (type == IMAGE_I16) {
          EXPECT_EQ(image.Get<int16_t>(x, y), red);
        } else if (type == IMAGE_SGL) {
          EXPECT_EQ(image.Get<float>(x, y), static_cast<float>(red));
        } else if (type == IMAGE_COMPLEX) {
          EXPECT_EQ(image.At<float>(x, y)[0], static_cast<float>(red));
          EXPECT_EQ(image.At<float>(x, y)[1], 0.0f);
        } else {
          // Green lies one pixel further on and blue two.
          const uint8_t* pixel = image.At<uint8_t>(x, y);
          EXPECT_EQ(pixel[2], red);
          EXPECT_EQ(pixel[1], k < 1 ? 0 : planes[pixels + k - 1]);
          EXPECT_EQ(pixel[0], k < 2 ? 0 : planes[2 * pixels + k - 2]);
          EXPECT_EQ(pixel[3], 0);
        }
      }
    }
    EXPECT_EQ(InfoOfFile().bitsPerPixel, 24);
    EXPECT_EQ(InfoOfFile().planes, 1);
  }
}

TEST_F(TiffRead, PlanesWithoutCountsGiveTheFirstOneOnly) {
  const Bytes planes = test::RandomBytes(144, 21);
  const TiffFile file =
      TiffOf(8, 6, {8, 8, 8}, InStrips(planes, 48), 6).Set(284, test::TIFF_SHORT, {2}).Drop(279);
  ASSERT_EQ(ReadGray(file), 0);
  EXPECT_EQ(gray_.Pixels(), test::Cut(planes, 48));
}

TEST_F(TiffRead, CompressedFilesAre514AndNothingElseIsLookedAt) {
  for (const uint32_t compression : {0u, 2u, 5u, 7u, 32773u}) {
    EXPECT_EQ(ReadGray(Plain().Set(259, test::TIFF_SHORT, {compression})), -514);
    EXPECT_EQ(gray_.width(), 8);
    TiffFile alone;
    alone.Set(259, test::TIFF_SHORT, {compression});
    EXPECT_EQ(ReadGray(alone), -514);
  }
}

TEST_F(TiffRead, OddNumbersOfSamplesCountAsOne) {
  for (const uint32_t samples : {0u, 2u, 4u, 65535u}) {
    const TiffFile file = Plain().Set(277, test::TIFF_SHORT, {samples});
    EXPECT_EQ(ReadGray(file), 0);
    EXPECT_EQ(gray_.Pixels(), file.strips[0]);
    EXPECT_EQ(InfoOfFile().bitsPerPixel, 8);
  }
}

TEST_F(TiffRead, OddNumbersOfBitsCountAsOne) {
  for (const uint32_t bits : {0u, 3u, 12u, 32u, 64u}) {
    EXPECT_EQ(ReadGray(Plain().Set(258, test::TIFF_SHORT, {bits})), 0);
    EXPECT_EQ(InfoOfFile().bitsPerPixel, 1);
  }
}

TEST_F(TiffRead, ThreeSamplesOfOtherThan8BitsAre500) {
  for (const uint32_t bits : {1u, 2u, 4u, 16u}) {
    const TiffFile file = TiffOf(8, 6, {bits, bits, bits}, {Bytes(400)}, 6);
    EXPECT_EQ(ReadGray(file), -500);
    EXPECT_EQ(InfoOfFile().fileType, 0);
    EXPECT_EQ(InfoOfFile().bitsPerPixel, 77);
  }
}

TEST_F(TiffRead, DefaultsStandInForMissingTags) {
  TiffFile file;
  file.strips = {test::RandomBytes(6, 3)};
  file.Set(256, test::TIFF_SHORT, {8})
      .Set(257, test::TIFF_SHORT, {6})
      .Set(273, test::TIFF_LONG, {});
  ASSERT_EQ(ReadGray(file), 0);
  for (int32_t k = 0; k < 48; k++) {
    const int sample = file.strips[0][static_cast<size_t>(k / 8)] >> (7 - k % 8) & 1;
    EXPECT_EQ(gray_.Get<uint8_t>(k % 8, k / 8), sample);
  }
}

TEST_F(TiffRead, MissingSizesAre514) {
  EXPECT_EQ(ReadGray(Plain().Drop(256)), -514);
  EXPECT_EQ(ReadGray(Plain().Drop(257)), -514);
  for (const uint32_t size : {0u, 0xFFFFFFFFu, 0x80000000u}) {
    EXPECT_EQ(ReadGray(Plain().Set(256, test::TIFF_LONG, {size})), -514);
    EXPECT_EQ(ReadGray(Plain().Set(257, test::TIFF_LONG, {size})), -514);
  }
  EXPECT_EQ(ReadGray(Plain().Set(256, test::TIFF_LONG, {0x7FFFFFFF})), -514)
      << "no even width above";
  EXPECT_EQ(gray_.width(), 8);
}

TEST_F(TiffRead, MissingOffsetsAreFoundAfterTheResize) {
  TiffFile file = TiffOf(4, 4, {8}, {Bytes(16)}, 4).Drop(273);
  EXPECT_EQ(ReadGray(file), -514);
  EXPECT_EQ(gray_.width(), 4);
  EXPECT_EQ(InfoOfFile().fileType, 2);
}

TEST_F(TiffRead, RowsPerStrip) {
  for (const uint32_t rows : {6u, 7u, 1000u, 65535u}) {
    EXPECT_EQ(ReadGray(Plain().Set(278, test::TIFF_SHORT, {rows})), 0);
  }
  for (const uint32_t rows : {0x80000000u, 0xFFFFFFFFu, 0x7FFFFFFFu}) {
    EXPECT_EQ(ReadGray(Plain().Set(278, test::TIFF_LONG, {rows})), 0);
  }
  EXPECT_EQ(ReadGray(Plain().Drop(278)), 0);
  EXPECT_EQ(ReadGray(Plain().Set(278, test::TIFF_SHORT, {0})), -514);
  EXPECT_EQ(InfoOfFile().fileType, 2);
  EXPECT_EQ(ReadGray(Plain().Set(278, test::TIFF_SHORT, {5})), -514) << "two strips, one offset";
}

TEST_F(TiffRead, ArraysOfStripsAreBytesShortsOrLongs) {
  const Bytes data = test::RandomBytes(48, 8);
  for (const bool little : {true, false}) {
    TiffFile file = TiffOf(8, 6, {8}, InStrips(data, 16), 2, little);
    std::vector<uint32_t> offsets;
    // The arrays of shorts are 6 bytes shorter.
    for (size_t i = 0; i < 3; i++) {
      offsets.push_back(static_cast<uint32_t>(file.StripAt(i)) - 12);
    }
    file.Set(273, test::TIFF_SHORT, offsets).Set(279, test::TIFF_SHORT, {16, 16, 16});
    ASSERT_EQ(file.StripAt(0), offsets[0]);
    ASSERT_EQ(ReadGray(file), 0);
    EXPECT_EQ(gray_.Pixels(), data);

    TiffFile bytes = TiffOf(8, 6, {8}, InStrips(data, 16), 2, little);
    bytes.Set(279, test::TIFF_BYTE, {16, 16, 16});
    ASSERT_EQ(ReadGray(bytes), 0);
    EXPECT_EQ(gray_.Pixels(), data);

    // Other elements are 0: counts of nothing.
    for (const uint32_t kind : {test::TIFF_ASCII, test::TIFF_RATIONAL}) {
      TiffFile other = TiffOf(8, 6, {8}, InStrips(data, 16), 2, little);
      other.Set(279, kind, {16, 1, 16, 1, 16, 1});
      const TestImage image(IMAGE_U8, 8, 6);
      const Bytes before = image.Pixels();
      ASSERT_EQ(ReadInto(image, other), 0);
      EXPECT_EQ(image.Pixels(), before);
    }
  }
}

TEST_F(TiffRead, ArraysShorterThanTheStripsAre514BeforeAnyPixel) {
  for (const uint32_t tag : {273u, 279u}) {
    TiffFile file = TiffOf(8, 6, {8}, InStrips(Bytes(48, 7), 16), 2);
    file.Set(tag, test::TIFF_LONG, {200, 16});
    const TestImage image(IMAGE_U8, 8, 6);
    const Bytes before = image.Pixels();
    EXPECT_EQ(ReadInto(image, file), -514);
    EXPECT_EQ(image.Pixels(), before);
  }
}

TEST_F(TiffRead, ManyStripsAreFoundThroughAWindowOnTheirArray) {
  const Bytes data = test::RandomBytes(4 * 3000, 8);
  std::vector<Bytes> strips = InStrips(data, 4);
  for (Bytes& strip : strips) strip.push_back(0xEE);  // so that they cannot be joined
  TiffFile file = TiffOf(4, 3000, {8}, strips, 1);
  const TestImage image(IMAGE_U8, 4, 3000, 1);
  ASSERT_EQ(ReadInto(image, file), 0);
  EXPECT_EQ(image.Pixels(), data);
}

TEST_F(TiffRead, NegativeOffsets) {
  EXPECT_EQ(ReadGray(Plain().Field(273, 0xFFFFFFF0)), -511) << "of a strip";
  TiffFile colour = TiffOf(8, 6, {8, 8, 8}, {Bytes(144)}, 6);
  EXPECT_EQ(ReadGray(colour.Count(258, 3).Field(258, 0xFFFFFFF0)), -507) << "of a value";
  files_.Put("f", test::Overwritten(Plain().Build(), 4, {0xF0, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Read(gray_), -514) << "of the directory";
}

TEST_F(TiffRead, StripsBehindTheEndAreMissing) {
  const TestImage image(IMAGE_U8, 8, 6);
  const Bytes before = image.Pixels();
  for (const uint32_t offset : {0x100000u, 0x7FFFFFFFu}) {
    EXPECT_EQ(ReadInto(image, Plain().Field(273, offset)), 0);
    EXPECT_EQ(image.Pixels(), before);
  }
}

TEST_F(TiffRead, DirectoriesThatTheFileCutsAre514) {
  const Bytes whole = Plain().Build();
  for (size_t size = 8; size < 10 + 12 * 10; size++) {
    files_.Put("f", test::Cut(whole, size));
    EXPECT_EQ(Read(gray_ = TestImage(IMAGE_U8, 4, 4)), -514) << size;
  }
  files_.Put("f", test::Cut(whole, 10 + 12 * 10));
  EXPECT_EQ(Read(gray_), 0) << "the link to the next directory is not needed";
}

TEST_F(TiffRead, UnknownTypesAreRefusedOnlyInTagsThatAreKept) {
  for (const uint32_t kind : {0u, 6u, 12u, 65535u}) {
    EXPECT_EQ(ReadGray(Plain().Add(254, kind, 1, 0)), -514);
    EXPECT_EQ(ReadGray(Plain().Add(700, kind, 0x7FFFFFFF, 0x7FFFFFF0)), 0);
  }
}

TEST_F(TiffRead, ValuesBeyondTheFileAre514) {
  EXPECT_EQ(ReadGray(Plain().Add(320, test::TIFF_SHORT, 768, 0x100000)), -514);
  EXPECT_EQ(ReadGray(Plain().Add(320, test::TIFF_RATIONAL, 0x20000001, 8)), -514);
  EXPECT_EQ(ReadGray(Plain().Add(320, test::TIFF_LONG, 0xFFFFFFFF, 8)), -514);
  EXPECT_EQ(ReadGray(Plain().Add(320, test::TIFF_LONG, 0, 0x100000)), 0) << "of no elements";
}

TEST_F(TiffRead, TwoShortsInAnEntryAreAnOffset) {
  // The field of two shorts (8, 8) reads as the offset 0x00080008, which lies behind the end.
  EXPECT_EQ(ReadGray(Plain().Count(258, 2).Field(258, 0x00080008)), -514);
  // Four bytes at the offset that their field forms: 8, 8, 8, 8 become the number 0x0808.
  TiffFile file = Plain();
  file.strips[0].insert(file.strips[0].end(), {8, 8, 8, 8});
  const auto at = static_cast<uint32_t>(file.StripAt(0) + 48);
  for (auto& entry : file.entries) {
    if (entry.tag == 258) entry = {258, test::TIFF_BYTE, {}, 4, at};
  }
  EXPECT_EQ(ReadGray(file), 0);
  EXPECT_EQ(InfoOfFile().bitsPerPixel, 1);
}

TEST_F(TiffRead, ScalarsOfOtherTypes) {
  for (const bool little : {true, false}) {
    TiffFile file = Plain(little);
    file.Set(256, test::TIFF_BYTE, {8});
    EXPECT_EQ(ReadGray(file), 0);
    EXPECT_EQ(gray_.Pixels(), file.strips[0]);
    file.Set(256, test::TIFF_LONG, {8}).Set(257, test::TIFF_RATIONAL, {6, 1});
    file.Set(258, test::TIFF_LONG, {0x50008}) /* the low half */;
    EXPECT_EQ(ReadGray(file), 0);
    EXPECT_EQ(gray_.Pixels(), file.strips[0]);
    file.Set(256, test::TIFF_SHORT, {8, 99}) /* the first one */;
    EXPECT_EQ(ReadGray(file), 0);
    EXPECT_EQ(InfoOfFile().width, 8);
    // A count of 0 is a value of no bytes, and so 0.
    EXPECT_EQ(ReadGray(Plain(little).Count(256, 0)), -514);
    EXPECT_EQ(ReadGray(Plain(little).Count(259, 0)), -514);
  }
}

TEST_F(TiffRead, OfTagsThatComeTwiceTheLastOneCounts) {
  TiffFile file = Plain();
  file.Add(256, test::TIFF_SHORT, 1, 4).Add(257, test::TIFF_SHORT, 1, 3);
  EXPECT_EQ(ReadGray(file), 0);
  EXPECT_EQ(gray_.width(), 4);
  EXPECT_EQ(gray_.height(), 3);
}

TEST_F(TiffRead, OddPhotometricsAreGray) {
  for (const uint32_t photometric : {1u, 2u, 3u, 4u, 65535u}) {
    const TiffFile file = Plain().Set(262, test::TIFF_SHORT, {photometric});
    EXPECT_EQ(ReadGray(file), 0);
    EXPECT_EQ(gray_.Pixels(), file.strips[0]);
  }
}

// The table of a file with this map.
std::vector<RGBValue> TableOf(MemoryFiles* files, const TiffFile& file,
                              int32_t expectedCount = 256) {
  const TestImage image(IMAGE_U8, 8, 6);
  std::vector<RGBValue> table(256, 0xCC000000);
  int32_t count = -1;
  files->Put("f", file.Build());
  EXPECT_EQ(ZEL_ReadFile(image, "f", 1, table.data(), &count), 0);
  EXPECT_EQ(count, expectedCount);
  return table;
}

TEST_F(TiffRead, TheColourMapIsThreePlanesOfHighBytes) {
  std::vector<uint32_t> map(768);
  for (uint32_t i = 0; i < 768; i++) map[i] = (i * 40503 + 77) & 0xFFFF;
  for (const bool little : {true, false}) {
    const auto table = TableOf(&files_, Plain(little).Set(320, test::TIFF_SHORT, map));
    for (size_t i = 0; i < 256; i++) {
      const uint32_t expected = (map[i] >> 8) << 16 | (map[256 + i] >> 8) << 8 | map[512 + i] >> 8;
      EXPECT_EQ(table[i], 0xCC000000 | expected);
    }
  }
}

TEST_F(TiffRead, AShortMapIsReadWithItsWholeCountAsEveryPlane) {
  for (const size_t count : {2u, 3u, 47u, 48u, 255u, 767u, 1000u}) {
    std::vector<uint32_t> map(count);
    for (size_t i = 0; i < count; i++) map[i] = static_cast<uint32_t>((i * 997 + 256) & 0xFFFF);
    const size_t entries = std::min<size_t>(count, 256);
    const auto at = [&](size_t position) { return position < count ? map[position] >> 8 : 0; };
    const auto table = TableOf(&files_, Plain().Set(320, test::TIFF_SHORT, map));
    for (size_t i = 0; i < 256; i++) {
      const uint32_t expected = i < entries
                                    ? at(i) << 16 | at(entries + i) << 8 | at(2 * entries + i)
                                    : static_cast<uint32_t>(i * 65793);
      EXPECT_EQ(table[i], 0xCC000000 | expected) << count << ": " << i;
    }
  }
}

TEST_F(TiffRead, MapsOfOtherTypesAreTakenAsWords) {
  std::vector<uint32_t> bytes(768);
  for (uint32_t i = 0; i < 768; i++) bytes[i] = i & 0xFF;
  const auto table = TableOf(&files_, Plain(false).Set(320, test::TIFF_BYTE, bytes));
  EXPECT_EQ(table[1] & 0xFFFFFF, (3u << 16) | (3u << 8)) << "bytes 2, 3; 514, 515; none";
  const auto longs = TableOf(
      &files_, Plain(false).Set(320, test::TIFF_LONG, std::vector<uint32_t>(768, 0x11223344)));
  EXPECT_EQ(longs[0] & 0xFFFFFF, 0x333333u);
  EXPECT_EQ(longs[1] & 0xFFFFFF, 0x111111u);
  const auto one = TableOf(&files_, Plain().Add(320, test::TIFF_SHORT, 1, 0x1234));
  EXPECT_EQ(one[0] & 0xFFFFFF, 0x120000u);
  EXPECT_EQ(one[1] & 0xFFFFFF, 0x010101u);
  const auto none = TableOf(&files_, Plain().Add(320, test::TIFF_SHORT, 0, 0));
  EXPECT_EQ(none[0] & 0xFFFFFF, 0u);
  EXPECT_EQ(none[255] & 0xFFFFFF, 0xFFFFFFu);
  TableOf(&files_, Plain(), 0);
}

TEST_F(TiffRead, TheMapComesWithAnyPhotometric) {
  const std::vector<uint32_t> map(768, 0x8000);
  for (const uint32_t photometric : {0u, 1u, 3u}) {
    const auto table = TableOf(
        &files_, Plain().Set(262, test::TIFF_SHORT, {photometric}).Set(320, test::TIFF_SHORT, map));
    EXPECT_EQ(table[9] & 0xFFFFFF, 0x808080u);
  }
}

}  // namespace
