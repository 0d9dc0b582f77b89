// What a failing call has changed by the time that it fails, and what it has left, as the public
// headers tell it.
#include <gtest/gtest.h>

#include <memory>
#include <utility>
#include <vector>

#include "core/heap.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::TestImage;

constexpr int32_t LARGE = 700;  // of such a width and height no image is had under SmallBlocksOnly

// As long as it lives there is no memory for blocks of more bytes.
class SmallBlocksOnly {
 public:
  explicit SmallBlocksOnly(uint64_t bytes = 100000) { zel::HeapHooksGet()->blockBudget = bytes; }
  SmallBlocksOnly(const SmallBlocksOnly&) = delete;
  SmallBlocksOnly& operator=(const SmallBlocksOnly&) = delete;
  ~SmallBlocksOnly() { zel::HeapHooksGet()->blockBudget = 0; }
};

// An image with a calibration and an offset that no other has.
TestImage Marked(int32_t type, int32_t width, int32_t height, int32_t mark, int32_t border = 0) {
  TestImage image(type, width, height, border, static_cast<uint64_t>(mark));
  ZEL_SetImageCalibration(image, mark, 1.0f + static_cast<float>(mark), 0.5f);
  ZEL_SetImageOffset(image, mark, -mark);
  return image;
}

bool IsCalibratedAs(const TestImage& image, int32_t mark) {
  const ImageInfo info = image.Info();
  return info.unit == mark && info.offsetX == mark && info.offsetY == -mark;
}

bool HasSize(const TestImage& image, int32_t width, int32_t height) {
  return image.width() == width && image.height() == height;
}

TEST(Operators, OfDifferentSizesHaveCalibratedTheDestination) {
  const TestImage first = Marked(IMAGE_U8, 9, 5, 1);
  const TestImage second = Marked(IMAGE_U8, 8, 5, 2);
  const TestImage destination = Marked(IMAGE_U8, 3, 3, 3);
  const std::vector<uint8_t> before = destination.Block();
  EXPECT_EQ(ZEL_Add(first, second, destination, 0), ZEL_ERR_SIZE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(destination, 1));
  EXPECT_EQ(destination.Block(), before);

  const TestImage other = Marked(IMAGE_U8, 3, 3, 4);
  EXPECT_EQ(ZEL_And(first, second, other, 0, 0), ZEL_ERR_SIZE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(other, 1) && HasSize(other, 3, 3));
}

TEST(Operators, OfTypesWithoutArithmeticHaveResizedTheDestination) {
  const TestImage first = Marked(IMAGE_U8, 9, 5, 1);
  const TestImage second = Marked(IMAGE_RGB, 9, 5, 2);
  const TestImage destination = Marked(IMAGE_RGB, 3, 3, 3);
  EXPECT_EQ(ZEL_Add(first, second, destination, 0), ZEL_ERR_BAD_OPERAND_TYPE);
  EXPECT_TRUE(IsCalibratedAs(destination, 1) && HasSize(destination, 9, 5));

  const TestImage gray = Marked(IMAGE_U8, 3, 3, 4);
  EXPECT_EQ(ZEL_MulDiv(first, 0, gray, 2), ZEL_ERR_SECOND_IMAGE_MISSING);
  EXPECT_TRUE(IsCalibratedAs(gray, 1) && HasSize(gray, 9, 5));

  const TestImage complex = Marked(IMAGE_COMPLEX, 3, 3, 5);
  const std::vector<uint8_t> before = complex.Block();
  EXPECT_EQ(ZEL_And(complex, 0, complex, 0, 7), ZEL_ERR_BAD_OPERAND_TYPE);
  EXPECT_EQ(ZEL_Add(first, 0, complex, 7), ZEL_ERR_OPERAND_TYPE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(complex, 5));
  EXPECT_EQ(complex.Block(), before);
}

TEST(Operators, WithOneEmptyImageCopyTheOtherWithABorderOfTheSameWidth) {
  const TestImage first = Marked(IMAGE_U8, 0, 0, 1, 3);
  const TestImage second = Marked(IMAGE_U8, 9, 5, 2, 3);
  const TestImage alike = Marked(IMAGE_U8, 4, 4, 3, 3);
  EXPECT_EQ(ZEL_Add(first, second, alike, 0), 0);
  EXPECT_EQ(alike.Block(), second.Block());
  EXPECT_TRUE(IsCalibratedAs(alike, 1));

  const TestImage wide = Marked(IMAGE_I16, 4, 4, 4);
  const TestImage empty = Marked(IMAGE_I16, 0, 0, 5);
  EXPECT_EQ(ZEL_Add(empty, second, wide, 0), ZEL_ERR_COPY_TYPE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(wide, 5) && HasSize(wide, 4, 4));
}

TEST(Destinations, ThatCannotBeResizedHaveTheCalibrationAndTheirPixels) {
  const TestImage bytes = Marked(IMAGE_U8, LARGE, LARGE, 1);
  const TestImage words = Marked(IMAGE_I16, LARGE, LARGE, 1);
  const TestImage toBytes = Marked(IMAGE_U8, 5, 4, 2);
  const TestImage toWords = Marked(IMAGE_I16, 5, 4, 2);
  const std::vector<uint8_t> bytesBefore = toBytes.Block();
  const std::vector<uint8_t> wordsBefore = toWords.Block();
  const uint8_t table[2] = {1, 0};
  const SmallBlocksOnly noMemory;
  const auto expectCalibrated = [&](int32_t result) {
    EXPECT_EQ(result, ZEL_ERR_MEMORY_FULL);
    EXPECT_TRUE(IsCalibratedAs(toBytes, 1) || IsCalibratedAs(toWords, 1));
    EXPECT_EQ(toBytes.Block(), bytesBefore);
    EXPECT_EQ(toWords.Block(), wordsBefore);
    for (const TestImage* image : {&toBytes, &toWords}) {
      ZEL_SetImageCalibration(*image, 2, 3.0f, 0.5f);
      ZEL_SetImageOffset(*image, 2, -2);
    }
  };
  expectCalibrated(ZEL_Add(bytes, bytes, toBytes, 0));
  expectCalibrated(ZEL_Xor(bytes, 0, toBytes, 1, 3));
  expectCalibrated(ZEL_Threshold(bytes, toBytes, 1, 2, 3, 1));
  expectCalibrated(ZEL_Convert(bytes, toWords));
  expectCalibrated(ZEL_ConvertByLookup(bytes, toWords, ARRAY_U8, table, 2));
}

TEST(Destinations, ThatTakeTheirSizeFirstAreAsTheyWereWhenItCannotBeHad) {
  const TestImage bytes = Marked(IMAGE_U8, LARGE, LARGE, 1);
  const TestImage words = Marked(IMAGE_I16, LARGE, LARGE, 1);
  const TestImage destination = Marked(IMAGE_U8, 5, 4, 2);
  const std::vector<uint8_t> before = destination.Block();
  const uint8_t table[2] = {1, 0};
  const SmallBlocksOnly noMemory;
  const auto expectUntouched = [&](int32_t result) {
    EXPECT_EQ(result, ZEL_ERR_MEMORY_FULL);
    EXPECT_TRUE(IsCalibratedAs(destination, 2) && HasSize(destination, 5, 4));
    EXPECT_EQ(destination.Block(), before);
  };
  expectUntouched(ZEL_Shift16To8(words, destination, 2));
  expectUntouched(ZEL_UserLookup(bytes, 0, destination, ARRAY_U8, table, 2));
  expectUntouched(ZEL_MathLookup(bytes, 0, destination, MATH_SQRT, 0, 0, 0));
  expectUntouched(ZEL_Equalize(bytes, 0, destination, nullptr, 0, nullptr, 0, 0));
}

TEST(Destinations, OfMaskedResultsThatCannotBeResizedAreAsTheyWere) {
  const TestImage source = Marked(IMAGE_U8, LARGE, LARGE, 1);
  const TestImage mask(IMAGE_U8, 5, 5);
  const TestImage destination = Marked(IMAGE_U8, 5, 4, 2);
  const std::vector<uint8_t> before = destination.Block();
  const uint8_t table[2] = {1, 0};
  const SmallBlocksOnly noMemory;
  const auto expectUntouched = [&](int32_t result) {
    EXPECT_EQ(result, ZEL_ERR_MEMORY_FULL);
    EXPECT_TRUE(IsCalibratedAs(destination, 2));
    EXPECT_EQ(destination.Block(), before);
  };
  expectUntouched(ZEL_UserLookup(source, mask, destination, ARRAY_U8, table, 2));
  expectUntouched(ZEL_MathLookup(source, mask, destination, MATH_SQRT, 0, 0, 0));
  expectUntouched(ZEL_Mask(source, mask, destination));
  expectUntouched(ZEL_Mask(source, 0, destination));
  EXPECT_EQ(ZEL_Mask(source, mask, mask), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(HasSize(mask, 5, 5));
}

TEST(Destinations, ThatLackATableAreUntouched) {
  const TestImage source = Marked(IMAGE_I16, 9, 5, 1);
  const TestImage mask(IMAGE_U8, 4, 4);
  const TestImage destination = Marked(IMAGE_I16, 3, 3, 2);
  const std::vector<uint8_t> sourceBefore = source.Block();
  const std::vector<uint8_t> before = destination.Block();
  const int16_t table[2] = {1, 0};
  const ThresholdClass classes[17] = {};
  const SmallBlocksOnly noMemory;
  const auto expectUntouched = [&](int32_t result) {
    EXPECT_EQ(result, ZEL_ERR_MEMORY_FULL);
    EXPECT_TRUE(IsCalibratedAs(destination, 2) && HasSize(destination, 3, 3));
    EXPECT_EQ(destination.Block(), before);
    EXPECT_EQ(source.Block(), sourceBefore);
  };
  for (const ImageRef over : {ImageRef{0}, ImageRef{mask}}) {
    expectUntouched(ZEL_UserLookup(source, over, destination, ARRAY_I16, table, 2));
    expectUntouched(ZEL_MathLookup(source, over, destination, MATH_SQRT, 0, 0, 0));
    expectUntouched(ZEL_MathLookup(source, over, 0, MATH_SQRT, 0, 0, 0));
  }
  expectUntouched(ZEL_MultiThreshold(source, destination, 17, classes));
}

TEST(Casts, ThatFailLeaveTheImageAndThatSucceedClearItsBorder) {
  const TestImage image = Marked(IMAGE_U8, 300, 300, 1, 2);
  const std::vector<uint8_t> before = image.Block();
  {
    const SmallBlocksOnly noMemory;
    EXPECT_EQ(ZEL_Cast(image, IMAGE_SGL), ZEL_ERR_MEMORY_FULL);
  }
  EXPECT_EQ(ZEL_Cast(image, 77), ZEL_ERR_BAD_LAYOUT_TYPE);
  EXPECT_EQ(ZEL_Cast(image, IMAGE_OPAQUE), ZEL_ERR_OPERAND_TYPE_DIFFERS);
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(ZEL_Cast(image, IMAGE_SGL), 0);
  EXPECT_TRUE(IsCalibratedAs(image, 1) && HasSize(image, 300, 300) && image.Info().border == 2);
  for (int32_t x = -2; x < 302; x++) EXPECT_EQ(image.Get<float>(x, -1), 0.0f);
}

TEST(Labels, ThatDoNotFitHaveClearedBordersAndResizedTheDestination) {
  const TestImage source = Marked(IMAGE_U8, 9, 5, 1, 2);
  const TestImage floats = Marked(IMAGE_SGL, 3, 3, 2, 2);
  int32_t count = -1;
  EXPECT_EQ(ZEL_Label(source, floats, CONNECTIVITY_8, &count), ZEL_ERR_DESTINATION_UNSUPPORTED);
  EXPECT_GT(count, 0);
  EXPECT_TRUE(IsCalibratedAs(floats, 2) && HasSize(floats, 9, 5));
  EXPECT_EQ(source.Get<uint8_t>(-1, -1), 0);

  // Every second pixel of every second row of so many is a particle of its own.
  const TestImage noise = Marked(IMAGE_U8, 1000, 600, 1, 2);
  ZEL_ClearPixels(noise);
  for (int32_t y = 0; y < 600; y += 2) {
    for (int32_t x = 0; x < 1000; x += 2) noise.Set<uint8_t>(x, y, 1);
  }
  noise.Set<uint8_t>(-1, -1, 9);
  const TestImage words = Marked(IMAGE_I16, 3, 3, 2, 2);
  EXPECT_EQ(ZEL_Label(noise, words, CONNECTIVITY_8, &count), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(IsCalibratedAs(words, 2) && HasSize(words, 1000, 600));
  EXPECT_EQ(words.Get<int16_t>(-1, -1), 0);
  EXPECT_EQ(noise.Get<uint8_t>(-1, -1), 0);
}

TEST(Labels, WithoutMemoryForTheDestinationChangeNothing) {
  const TestImage source = Marked(IMAGE_U8, LARGE, LARGE, 1, 2);
  const TestImage words = Marked(IMAGE_I16, 3, 3, 2, 2);
  const std::vector<uint8_t> sourceBefore = source.Block();
  const std::vector<uint8_t> wordsBefore = words.Block();
  const SmallBlocksOnly noMemory;
  EXPECT_EQ(ZEL_Label(source, words, CONNECTIVITY_8, nullptr), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(source.Block(), sourceBefore);
  EXPECT_EQ(words.Block(), wordsBefore);
  EXPECT_TRUE(IsCalibratedAs(words, 2));
}

// A picture of 22 x 22 particles.
TestImage Dots() {
  TestImage image(IMAGE_U8, 64, 64, 2);
  ZEL_ClearPixels(image);
  for (int32_t y = 0; y < 64; y += 3) {
    for (int32_t x = 0; x < 64; x += 3) image.Set<uint8_t>(x, y, 1);
  }
  return image;
}

// A result table with the count beside it.
template <class Report>
struct Table {
  Report* former = static_cast<Report*>(ZEL_malloc(8));
  Report* records = former;
  int32_t count = -1;

  Table() = default;
  Table(const Table&) = delete;
  Table& operator=(const Table&) = delete;
  ~Table() { ZEL_free(records); }
};

// Calls a function with its last allocation refused, which is that of its table.
template <class Report, class Call>
void RefuseTheTable(const Call& call, Table<Report>* refused) {
  zel::HeapHooks* hooks = zel::HeapHooksGet();
  // The second call has a spare row in the table of handles, as the refused one has.
  for (Table<Report> made[2]; Table<Report> & table : made) {
    hooks->requests = 0;
    ASSERT_EQ(call(&table), 0);
  }
  hooks->failAt = hooks->requests;
  hooks->requests = 0;
  EXPECT_EQ(call(refused), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(hooks->requests, hooks->failAt);
  hooks->failAt = 0;
  EXPECT_EQ(refused->count, 0);
}

TEST(ResultTables, ThatCannotBeHadLeaveTheFormerBlock) {
  const TestImage dots = Dots();
  Table<ParticleReport> particles;
  RefuseTheTable(
      [&](auto* table) {
        return ZEL_Particle(dots, CONNECTIVITY_8, &table->records, &table->count);
      },
      &particles);
  EXPECT_EQ(particles.records, particles.former);

  const TestImage labels(IMAGE_U8, 64, 64);
  Table<QuantifyReport> regions;
  RefuseTheTable(
      [&](auto* table) {
        return ZEL_Quantify(dots, labels, nullptr, &table->records, &table->count);
      },
      &regions);
  EXPECT_EQ(regions.records, regions.former);
}

TEST(ResultTables, OfBasicParticlesThatCannotBeHadAreReleased) {
  const TestImage dots = Dots();
  Table<BasicParticleReport> particles;
  RefuseTheTable(
      [&](auto* table) {
        return ZEL_BasicParticle(dots, CONNECTIVITY_8, &table->records, &table->count);
      },
      &particles);
  EXPECT_EQ(particles.records, nullptr);
}

TEST(Fields, OfASplitWithoutMemoryForOneOfThemAreAsTheyWere) {
  const TestImage frame = Marked(IMAGE_U8, LARGE, LARGE, 1);
  // One that shrinks, one that grows a little, one that cannot grow so much.
  const TestImage wide = Marked(IMAGE_U8, LARGE, LARGE / 2 + 1, 2);
  const TestImage large = Marked(IMAGE_U8, LARGE, LARGE / 2 - 9, 3);
  const TestImage small = Marked(IMAGE_U8, 3, 3, 4);
  const std::vector<uint8_t> before[] = {frame.Block(), wide.Block(), large.Block(), small.Block()};
  const auto expectUntouched = [&](const TestImage& first, const TestImage& second) {
    EXPECT_EQ(ZEL_Interlace(frame, first, second, INTERLACE_SPLIT), ZEL_ERR_MEMORY_FULL);
    EXPECT_TRUE(HasSize(wide, LARGE, LARGE / 2 + 1) && HasSize(large, LARGE, LARGE / 2 - 9) &&
                HasSize(small, 3, 3));
    EXPECT_EQ(frame.Block(), before[0]);
    EXPECT_EQ(wide.Block(), before[1]);
    EXPECT_EQ(large.Block(), before[2]);
    EXPECT_EQ(small.Block(), before[3]);
  };
  const SmallBlocksOnly noMemory;
  expectUntouched(wide, small);
  expectUntouched(small, wide);
  expectUntouched(large, small);
  expectUntouched(small, large);
  // The second allocation fails: of one that has grown, or after it.
  zel::HeapHooksGet()->blockBudget = 0;
  for (const auto& [first, second] : {std::pair{&large, &small}, {&small, &large}}) {
    zel::HeapHooksGet()->requests = 0;
    zel::HeapHooksGet()->failAt = 2;
    expectUntouched(*first, *second);
    zel::HeapHooksGet()->failAt = 0;
  }
}

TEST(Reading, ThatFailsAfterTheHeaderHasSetTheCalibration) {
  const test::MemoryFiles files;
  const char* file = "large.orln";
  const TestImage large = Marked(IMAGE_U8, LARGE, LARGE, 9);
  ASSERT_EQ(ZEL_WriteFile(large, file, FILE_FORMAT_NATIVE, nullptr, 0), 0);
  const TestImage small = Marked(IMAGE_U8, 4, 3, 1);
  {
    const SmallBlocksOnly noMemory;
    EXPECT_EQ(ZEL_ReadFile(small, file, 0, nullptr, nullptr), ZEL_ERR_MEMORY_FULL);
  }
  EXPECT_EQ(small.Info().unit, 9);
  EXPECT_EQ(small.Info().offsetX, 1);
  EXPECT_TRUE(HasSize(small, 4, 3));

  const TestImage opaque(IMAGE_OPAQUE, 0, 0);
  int32_t count = 0;
  EXPECT_EQ(ZEL_ReadFile(opaque, file, 0, nullptr, &count), ZEL_ERR_BAD_LAYOUT_TYPE);
  EXPECT_EQ(count, FILE_TABLE_ENTRIES);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(opaque, &info), -ZEL_ERR_BAD_LAYOUT_TYPE);
  EXPECT_EQ(info.unit, 9);
  EXPECT_EQ(info.width, LARGE);

  const TestImage other = Marked(IMAGE_U8, 4, 3, 1);
  const std::vector<uint8_t> before = other.Block();
  EXPECT_EQ(ZEL_ReadFile(other, "missing", 0, nullptr, nullptr), ZEL_ERR_FILE_INFO);
  EXPECT_TRUE(IsCalibratedAs(other, 1));
  EXPECT_EQ(other.Block(), before);
}

TEST(Images, OfATypeWithoutLayoutExistAndCanBeMadeOver) {
  ImageRef image = 0;
  EXPECT_EQ(ZEL_Create(&image, 66, 1), ZEL_ERR_BAD_LAYOUT_TYPE);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(image, &info), -ZEL_ERR_BAD_LAYOUT_TYPE);
  EXPECT_EQ(info.type, 66);
  EXPECT_EQ(info.pixelBytes, 0);
  const TestImage source = Marked(IMAGE_U8, 9, 5, 1, 2);
  const std::vector<uint8_t> before = source.Block();
  EXPECT_EQ(ZEL_Label(source, image, CONNECTIVITY_4, nullptr), ZEL_ERR_BAD_LAYOUT_TYPE);
  EXPECT_EQ(source.Block(), before);
  const ImageRef reference = image;
  EXPECT_EQ(ZEL_Create(&image, IMAGE_U8, 1), 0);
  EXPECT_EQ(image, reference);
  EXPECT_EQ(ZEL_Create(&image, IMAGE_U8, INT32_MAX), ZEL_ERR_MEMORY_FULL);
  EXPECT_EQ(ZEL_Create(&image, IMAGE_U8, -1), ZEL_ERR_NO_BORDER);
  EXPECT_EQ(ZEL_GetImageInfo(image, &info), 0);
  EXPECT_EQ(info.border, 1);
  EXPECT_EQ(ZEL_Dispose(image), 0);
}

TEST(Images, WithoutPixelsHaveTheirBorderOnly) {
  const TestImage bare(IMAGE_U8, 0, 0, 0);
  const TestImage framed(IMAGE_U8, 0, 0, 2);
  void* address = &address;
  EXPECT_EQ(ZEL_GetPixelAddress(bare, 0, 0, &address), 0);
  EXPECT_EQ(address, nullptr);
  EXPECT_EQ(ZEL_GetPixelAddress(bare, 1, 0, &address), ZEL_ERR_INTERNAL);
  EXPECT_EQ(ZEL_GetPixelAddress(framed, -2, 1, &address), 0);
  EXPECT_EQ(ZEL_GetPixelAddress(framed, 2, 0, &address), ZEL_ERR_INTERNAL);
  EXPECT_EQ(bare.Info().firstPixel, nullptr);
  EXPECT_NE(framed.Info().firstPixel, nullptr);
}

// As the header of lookups tells: from the truncated rangeMin on, over rangeMax - rangeMin
// truncated.
TEST(MathLookups, OfIntegersTakeARangeOfWholeLevels) {
  const TestImage image(IMAGE_U8, 256, 1);
  for (int32_t x = 0; x < 256; x++) image.Set<uint8_t>(x, 0, static_cast<uint8_t>(x));
  EXPECT_EQ(ZEL_MathLookup(image, 0, 0, MATH_LINEAR, 0, 3.5f, 10.2f), 0);
  EXPECT_EQ(image.Get<uint8_t>(2, 0), 0);
  EXPECT_EQ(image.Get<uint8_t>(4, 0), 38);   // 1 x 255 / 6.7
  EXPECT_EQ(image.Get<uint8_t>(9, 0), 228);  // 6 x 255 / 6.7
  EXPECT_EQ(image.Get<uint8_t>(10, 0), 255);
}

TEST(ColorPlanes, ThatAreRefusedLeaveThoseBeforeThemSettled) {
  const TestImage colors = Marked(IMAGE_RGB, 9, 5, 1);
  const TestImage first = Marked(IMAGE_U8, 3, 3, 2);
  const TestImage words = Marked(IMAGE_I16, 3, 3, 3);
  const TestImage last = Marked(IMAGE_U8, 3, 3, 4);
  EXPECT_EQ(ZEL_ExtractColorPlanes(colors, first, words, last, MODE_HSL), ZEL_ERR_BAD_TYPE);
  EXPECT_TRUE(IsCalibratedAs(first, 1) && HasSize(first, 9, 5));
  EXPECT_TRUE(IsCalibratedAs(words, 1) && HasSize(words, 3, 3));
  EXPECT_TRUE(IsCalibratedAs(last, 4) && HasSize(last, 3, 3));
  EXPECT_EQ(ZEL_ExtractColorPlanes(colors, last, 0, last, MODE_HSL), ZEL_ERR_SAME_IMAGE);
  EXPECT_TRUE(IsCalibratedAs(last, 1) && HasSize(last, 9, 5));
}

TEST(ColorPlanes, OfAnotherSizeHaveCalibratedTheDestination) {
  const TestImage colors = Marked(IMAGE_RGB, 9, 5, 1);
  const TestImage destination = Marked(IMAGE_RGB, 3, 3, 2);
  const TestImage plane = Marked(IMAGE_U8, 8, 5, 3);
  const std::vector<uint8_t> before = destination.Block();
  EXPECT_EQ(ZEL_ReplaceColorPlanes(colors, destination, plane, 0, 0, MODE_RGB),
            ZEL_ERR_SIZE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(destination, 1) && HasSize(destination, 3, 3));
  EXPECT_EQ(destination.Block(), before);
}

TEST(Colors, WithoutMemoryHaveCalibratedTheDestination) {
  const TestImage colors = Marked(IMAGE_RGB, LARGE, LARGE, 1);
  const TestImage gray = Marked(IMAGE_U8, 3, 3, 2);
  const TestImage copy = Marked(IMAGE_RGB, 3, 3, 3);
  const uint8_t table[256] = {};
  const SmallBlocksOnly small;
  EXPECT_EQ(ZEL_ColorThreshold(colors, gray, MODE_RGB, 1, 1, 2, 3, 4, 5, 6), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(gray, 1) && HasSize(gray, 3, 3));
  EXPECT_EQ(ZEL_ColorUserLookup(colors, 0, copy, MODE_RGB, ARRAY_U8, table, nullptr, nullptr),
            ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(copy, 1) && HasSize(copy, 3, 3));
}

TEST(Spectra, OfAnotherTypeAreCalibratedAndEmptied) {
  const TestImage spectrum = Marked(IMAGE_COMPLEX, 9, 5, 1);
  const TestImage floats = Marked(IMAGE_SGL, 3, 3, 2);
  const TestImage colors = Marked(IMAGE_RGB, 3, 3, 3);
  EXPECT_EQ(ZEL_ComplexFlipFrequency(spectrum, floats), ZEL_ERR_DESTINATION_TYPE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(floats, 1) && HasSize(floats, 0, 0));
  EXPECT_EQ(ZEL_ExtractComplexPlane(spectrum, colors, 0), ZEL_ERR_DESTINATION_TYPE_DIFFERS);
  EXPECT_TRUE(IsCalibratedAs(colors, 1) && HasSize(colors, 0, 0));
}

TEST(Spectra, WithoutMemoryHaveCalibratedTheDestination) {
  const TestImage spectrum = Marked(IMAGE_COMPLEX, LARGE, LARGE, 1);
  const TestImage sum = Marked(IMAGE_COMPLEX, 3, 3, 2);
  const TestImage plane = Marked(IMAGE_SGL, 3, 3, 3);
  const SmallBlocksOnly small;
  EXPECT_EQ(ZEL_ComplexAdd(spectrum, 0, sum, 1, 1), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(sum, 1) && HasSize(sum, 3, 3));
  EXPECT_EQ(ZEL_ExtractComplexPlane(spectrum, plane, 0), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(plane, 1) && HasSize(plane, 3, 3));
}

TEST(Spectra, WithoutWorkMemoryHaveSettledTheDestination) {
  const TestImage image = Marked(IMAGE_U8, 16, 4096, 1);
  const TestImage spectrum = Marked(IMAGE_COMPLEX, 16, 4096, 2);
  const TestImage result = Marked(IMAGE_U8, 3, 3, 3);
  const SmallBlocksOnly small;  // which has no room for signals of 4096 elements
  EXPECT_EQ(ZEL_FFT(image, spectrum), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(spectrum, 1));
  EXPECT_EQ(ZEL_InverseFFT(spectrum, result), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(result, 1) && HasSize(result, 16, 4096));
}

struct FreeRegion {
  void operator()(RoiDescriptor* region) const { ZEL_FreeROI(region); }
};
using Region = std::unique_ptr<RoiDescriptor, FreeRegion>;

// Contours of one type, each of so many points at 0, 1, 2 and so on.
std::vector<int32_t> FlatContours(int32_t type, const std::vector<int32_t>& pointCounts) {
  std::vector<int32_t> flat(4);
  for (const int32_t count : pointCounts) {
    flat.insert(flat.end(), {ROI_MARKER_EXTERNAL, type});
    for (int32_t i = 0; i < 2 * count; ++i) flat.push_back(i);
  }
  return flat;
}

Region MakeRegion(const std::vector<int32_t>& flat) {
  RoiDescriptor* region = nullptr;
  EXPECT_EQ(ZEL_ArrayToROI(flat.data(), static_cast<int32_t>(flat.size()), &region), 0);
  return Region(region);
}

TEST(Regions, WithoutMemoryForAContourHaveThoseBeforeIt) {
  const std::vector<int32_t> flat = FlatContours(ROI_POLYGON, {3, 4, 10000, 5});
  const SmallBlocksOnly small(10000);
  RoiDescriptor* made = nullptr;
  EXPECT_EQ(ZEL_ArrayToROI(flat.data(), static_cast<int32_t>(flat.size()), &made),
            ZEL_ERR_MEMORY_FULL);
  const Region region(made);
  ASSERT_NE(region, nullptr);
  ASSERT_EQ(region->contourCount, 2);
  EXPECT_EQ(region->contours[0]->pointCount, 3);
  EXPECT_EQ(region->contours[1]->points[3].y, 7);
}

TEST(Regions, ThatCannotBeTracedLeaveTheRecord) {
  const TestImage words = Marked(IMAGE_I16, 9, 5, 1);
  const TestImage large(IMAGE_U8, LARGE, LARGE, 0, 2);
  Region region = MakeRegion(FlatContours(ROI_POLYGON, {3, 4}));
  int32_t limitReached = 7;
  RoiDescriptor* record = region.get();
  EXPECT_EQ(ZEL_MaskToROI(words, 0, 100, &record, &limitReached), ZEL_ERR_BAD_TYPE);
  {
    const SmallBlocksOnly small(10000);
    EXPECT_EQ(ZEL_MaskToROI(large, 0, 100000, &record, &limitReached), ZEL_ERR_MEMORY_FULL);
  }
  EXPECT_EQ(record, region.get());
  EXPECT_EQ(record->contourCount, 2);
  EXPECT_EQ(record->contours[1]->pointCount, 4);
  EXPECT_EQ(limitReached, 7);
}

TEST(Regions, TooLargeToBePaintedLeaveTheMask) {
  const TestImage mask = Marked(IMAGE_U8, 9, 5, 1);
  const TestImage model(IMAGE_U8, LARGE, LARGE);
  const std::vector<uint8_t> before = mask.Block();
  const Region region = MakeRegion(FlatContours(ROI_RECT, {2}));
  const SmallBlocksOnly small;
  EXPECT_EQ(ZEL_ROIToMask(mask, model, region.get(), 255), ZEL_ERR_MEMORY_FULL);
  EXPECT_TRUE(IsCalibratedAs(mask, 1) && HasSize(mask, 9, 5));
  EXPECT_EQ(mask.Block(), before);
}

// A result table that is there already, as failing calls have to leave it.
template <class Element>
struct KeptTable {
  Element* elements = static_cast<Element*>(ZEL_malloc(sizeof(Element)));
  Element* const before = elements;
  int32_t count = 77;

  KeptTable() = default;
  KeptTable(const KeptTable&) = delete;
  KeptTable& operator=(const KeptTable&) = delete;
  ~KeptTable() { ZEL_free(elements); }

  bool IsUntouched() const { return elements == before && count == 77; }
};

std::vector<PointInt> PathOf(int32_t length) {
  std::vector<PointInt> path;
  for (int32_t x = 0; x < length; ++x) path.push_back({x, 2});
  return path;
}

TEST(Gauges, ThatFailLeaveTheirTables) {
  const TestImage image = Marked(IMAGE_U8, 40, 5, 1);
  const TestImage colors = Marked(IMAGE_RGB, 40, 5, 2);
  const std::vector<PointInt> path = PathOf(40);
  KeptTable<EdgeRecord> edges;
  KeptTable<CaliperReport> pairs;
  KeptTable<PointFloat> places, ends;
  KeptTable<float> values;
  EXPECT_EQ(ZEL_FindEdges(image, path.data(), 40, 9, 2, 5, 2, 0, &edges.count, &edges.elements,
                          &places.elements),
            ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(ZEL_FindEdges(image, path.data(), 4, 0, 2, 5, 2, 0, &edges.count, &edges.elements,
                          &places.elements),
            ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(ZEL_Caliper(image, path.data(), 4, 0, 2, 5, 2, 0, PAIR_ANY, 0, 0, &pairs.count,
                        &pairs.elements, &ends.count, &ends.elements),
            ZEL_ERR_TOO_FEW_POINTS);
  EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), 40, 9, 2, &values.elements, &values.count),
            ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(ZEL_SimpleEdge(colors, path.data(), 40, EDGE_ALL, 0, 9, 1, 1, &places.elements,
                           &places.count),
            ZEL_ERR_BAD_TYPE);
  {
    const SmallBlocksOnly small(10000);
    EXPECT_EQ(ZEL_FindEdges(image, path.data(), 40, INTERP_LINEAR, 10000, 1, 2, 0, &edges.count,
                            &edges.elements, &places.elements),
              ZEL_ERR_MEMORY_FULL);
    EXPECT_EQ(ZEL_Interpolate1D(image, path.data(), 40, INTERP_SPLINE, 10000, &values.elements,
                                &values.count),
              ZEL_ERR_MEMORY_FULL);
  }
  EXPECT_TRUE(edges.IsUntouched() && pairs.IsUntouched() && places.IsUntouched() &&
              ends.IsUntouched() && values.IsUntouched());
}

TEST(Gauges, AlongLinesHaveMeasuredThoseBeforeTheOneOutside) {
  const TestImage image = Marked(IMAGE_U8, 40, 5, 1);
  const PointInt beside[] = {{0, 1}, {0, 1}, {0, 100}, {0, 100}, {0, 2}, {0, 2}};
  float results[] = {-7, -7, -7, -7};
  const auto gauge = [&](int32_t method, int32_t oversampling, int32_t mode) {
    return ZEL_LineGauge(image, 0, 1, 30, 1, method, oversampling, 10, 2, 0, mode, beside, 6, 0, 0,
                         0, 0, 0, 0, results);
  };
  EXPECT_EQ(gauge(9, 2, GAUGE_EDGE_TO_EDGE), ZEL_ERR_BAD_INTERPOLATION);
  EXPECT_EQ(results[0], -7);
  EXPECT_EQ(gauge(INTERP_LINEAR, 0, GAUGE_POINT_TO_POINT), 0);
  EXPECT_EQ(results[0], 30);
  EXPECT_EQ(results[1], 30);
  EXPECT_EQ(results[2], -7);
  EXPECT_EQ(results[3], -7);
}

TEST(Gauges, OfCurvesThatFailLeaveTheirTables) {
  const std::vector<double> curve(3000, 1.0);
  KeptTable<double> places, heights, bends;
  const auto detect = [&](int32_t width) {
    return ZEL_PeakValleyDetector(curve.data(), 3000, 0, width, DETECT_PEAKS, &places.count,
                                  &places.elements, &heights.elements, &bends.elements);
  };
  EXPECT_EQ(detect(2), ZEL_ERR_BAD_WIDTH);
  EXPECT_TRUE(places.IsUntouched() && heights.IsUntouched() && bends.IsUntouched());
}

// ---- dials

TEST(Meters, ThatFailLeaveWhatTheyWouldGive) {
  const TestImage image = Marked(IMAGE_U8, 40, 40, 1);
  const TestImage colors = Marked(IMAGE_RGB, 40, 40, 2);
  KeptTable<PointFloat> arc;
  PointFloat base = {3, 4}, tip = {5, 6};
  float percent = 7;
  const std::vector<int32_t> parallel = {0, 0, 0, 0, ROI_MARKER_EXTERNAL, ROI_LINE,
                                         1, 1, 9, 1, ROI_MARKER_EXTERNAL, ROI_LINE,
                                         1, 5, 9, 5};
  const Region region = MakeRegion(parallel);
  EXPECT_EQ(ZEL_CalibrateMeter(region.get(), &base, &arc.elements, &arc.count),
            ZEL_ERR_NO_SOLUTION);
  EXPECT_EQ(ZEL_CalibrateMeter2(20, 20, 20, 20, 30, 20, &arc.elements, &arc.count),
            ZEL_ERR_TOO_FEW_POINTS);
  {
    const SmallBlocksOnly small(10000);
    EXPECT_EQ(ZEL_CalibrateMeter2(20, 20, 5000, 20, 20, 5000, &arc.elements, &arc.count),
              ZEL_ERR_MEMORY_FULL);
  }
  EXPECT_TRUE(arc.IsUntouched());
  const PointFloat closed[] = {{30, 20}, {20, 30}, {30, 20}};
  EXPECT_EQ(ZEL_ReadMeter(image, 20, 20, closed, 3, 0, &percent, &tip), ZEL_ERR_DIVIDED_BY_ZERO);
  EXPECT_EQ(ZEL_ReadMeter(colors, 20, 20, closed, 3, 0, &percent, &tip), ZEL_ERR_BAD_TYPE);
  EXPECT_EQ(base.x, 3);
  EXPECT_EQ(percent, 7);
  EXPECT_EQ(tip.y, 6);
}

// A dark bar of some columns on a light ground.
TestImage Upright(int32_t left, int32_t right) {
  TestImage image(IMAGE_U8, 60, 40);
  ZEL_FillImage(image, 0, 200, 0, 0, 0);
  ZEL_DrawRect(image, image, 5, left, 30, right - left, DRAW_PAINT, 20);
  return image;
}

std::vector<int32_t> Digits(const std::vector<int32_t>& lefts) {
  std::vector<int32_t> flat(4);
  for (const int32_t left : lefts) {
    flat.insert(flat.end(), {ROI_MARKER_EXTERNAL, ROI_RECT, left, 5, left + 19, 34});
  }
  return flat;
}

TEST(Digits, WithoutSegmentsGiveTheirStatesAlone) {
  const TestImage image = Upright(0, 1);
  const Region region = MakeRegion(Digits({20}));
  KeptTable<char> text;
  double value = -1;
  DigitSegments segments = {9, {9, 9, 9, 9, 9, 9, 9}};
  EXPECT_EQ(ZEL_ReadSingleDigit(image, region.get(), 0, 10, 0, &text.elements, &value, &segments),
            ZEL_ERR_NO_SEGMENT);
  EXPECT_TRUE(text.IsUntouched());
  EXPECT_EQ(value, -1);
  EXPECT_EQ(segments.count, 1);
  for (const uint8_t state : segments.states) EXPECT_EQ(state, 0);
}

TEST(Digits, ThatAreNearToOneGiveIt) {
  const TestImage image = Upright(20, 24);  // the left segments alone
  const Region region = MakeRegion(Digits({20}));
  char* text = nullptr;
  double value = -1;
  DigitSegments segments{};
  EXPECT_EQ(ZEL_ReadSingleDigit(image, region.get(), 0, 10, 0, &text, &value, &segments),
            ZEL_ERR_INEXACT_DIGIT);
  ASSERT_NE(text, nullptr);
  EXPECT_EQ(text[0], '0' + static_cast<char>(value));
  EXPECT_EQ(text[1], 0);
  EXPECT_EQ(segments.states[4] + segments.states[5], 2);
  ZEL_free(text);
}

TEST(Displays, ThatFailAtADigitGiveNothing) {
  const TestImage image = Upright(16, 20);  // a 1 in the first place, nothing in the second
  const Region region = MakeRegion(Digits({0, 35}));
  const Region good = MakeRegion(Digits({0}));
  KeptTable<char> text;
  KeptTable<uint8_t> states;
  double value = -1;
  const auto read = [&](const Region& digits) {
    return ZEL_ReadLCDDisplay(image, digits.get(), 0, 10, 1, 1, &text.elements, &value,
                              &states.elements, &states.count);
  };
  EXPECT_EQ(read(region), ZEL_ERR_NO_SEGMENT);
  EXPECT_TRUE(text.IsUntouched() && states.IsUntouched());
  EXPECT_EQ(value, -1);
  EXPECT_EQ(read(good), 0);
  EXPECT_EQ(value, 1);
}

TEST(Displays, WithoutADigitLeaveTheRegionThatIsThere) {
  const TestImage image = Upright(0, 0);
  const Region region = MakeRegion(Digits({10}));
  const Region kept = MakeRegion(Digits({1, 2, 3}));
  RoiDescriptor* found = kept.get();
  EXPECT_EQ(ZEL_CalibrateLCD(image, region.get(), 0, 10, &found), ZEL_ERR_NO_SEGMENT);
  EXPECT_EQ(found, kept.get());
  EXPECT_EQ(found->contourCount, 3);
}

}  // namespace
