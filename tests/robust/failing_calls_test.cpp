// What a failing call has changed by the time that it fails, and what it has left, as the public
// headers tell it.
#include <gtest/gtest.h>

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

}  // namespace
