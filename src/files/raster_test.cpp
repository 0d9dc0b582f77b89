#include <gtest/gtest.h>

#include "files/dispatch.h"
#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

zel::Status Read(const TestImage& image, zel::FileFormat format, int32_t pixelClass) {
  zel::FileContext context;
  const zel::ReadOptions options{.rawMode = 0,
                                 .pixelClass = pixelClass,
                                 .dataOffset = 0,
                                 .scaleToRange = 1,
                                 .rangeMin = 0,
                                 .rangeMax = 1,
                                 .littleEndian = 0};
  const zel::ReadRequest request{.format = format, .options = &options};
  return zel::FileReadKernel(image, "f", request, &context);
}

zel::Status Write(ImageRef image, zel::FileFormat format) {
  return zel::FileWriteKernel(image, "f", {.format = format});
}

TEST(Raster, ASizeInFrontOfThePixelsIsLittleEndian) {
  MemoryFiles files;
  const Bytes pixels = test::RandomBytes(12, 2);
  files.Put("f", test::FileBytes().Little(4, 2).Little(3, 2).Append(pixels));
  const TestImage image(IMAGE_U8, 2, 2, 1);
  ASSERT_EQ(Read(image, zel::FORMAT_RSTR, 3), 0);
  EXPECT_EQ(image.width(), 4);
  EXPECT_EQ(image.height(), 3);
  EXPECT_EQ(image.Pixels(), pixels);
  EXPECT_EQ(image.Info().unit, 3);
}

TEST(Raster, TheSizeIsWrittenBigEndianAndSoDoesNotComeBack) {
  MemoryFiles files;
  const int32_t types[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX};
  for (const int32_t type : types) {
    const TestImage image(type, 6, 3, 2);
    ASSERT_EQ(Write(image, zel::FORMAT_RSTR), 0);
    EXPECT_EQ(files.Get("f"), Bytes(test::FileBytes().Big(6, 2).Big(3, 2).Append(image.Pixels())));
  }
  const TestImage image(IMAGE_U8, 2, 2);
  ASSERT_EQ(Read(image, zel::FORMAT_RSTR, 15), 0);
  EXPECT_EQ(image.width(), 0x600);
  EXPECT_EQ(image.height(), 0x300);
}

TEST(Raster, ColourPixelsAreReversed) {
  MemoryFiles files;
  const TestImage image(IMAGE_RGB, 0x101 * 2, 0x101, 1);
  ASSERT_EQ(Write(image, zel::FORMAT_RSTR), 0);
  const Bytes& file = files.Get("f");
  EXPECT_EQ(test::BigNumber(file, 4, 4), image.Get<uint32_t>(0, 0));
  const TestImage back(IMAGE_RGB, 2, 2);
  ASSERT_EQ(Read(back, zel::FORMAT_RSTR, 12), 0);
  EXPECT_EQ(test::PixelDifference(back, image), "");
}

TEST(Raster, AFileWithoutItsSizeIs500) {
  MemoryFiles files;
  files.Put("f", {4, 0, 3});
  const TestImage image(IMAGE_U8, 2, 2);
  EXPECT_EQ(Read(image, zel::FORMAT_RSTR, 3), 500);
}

TEST(Raster, ATypeWithoutPixelsIs500) {
  MemoryFiles files;
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_OPAQUE, 0), 0);
  EXPECT_EQ(Write(image, zel::FORMAT_RSTR), 500);
  ZEL_Dispose(image);
}

TEST(Raster, FormatsWithoutReaderOrWriterAre509) {
  MemoryFiles files;
  files.Put("f", Bytes(100));
  const TestImage image(IMAGE_U8, 4, 4);
  const auto beyond = static_cast<zel::FileFormat>(7);
  EXPECT_EQ(Read(image, zel::FORMAT_PICT, 3), 509);
  EXPECT_EQ(Read(image, beyond, 3), 509);
  EXPECT_EQ(Write(image, zel::FORMAT_PICT), 509);
  EXPECT_EQ(Write(image, zel::FORMAT_RAW), 509);
  EXPECT_EQ(Write(image, beyond), 509);
  EXPECT_EQ(files.Get("f"), Bytes(100));
}

}  // namespace
