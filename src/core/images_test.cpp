#include "core/images.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "core/heap.h"
#include "core/poison.h"
#include "core/tables.h"
#include "core/world.h"
#include "harness/test_image.h"

namespace {

using namespace zel;
using test::TestImage;

constexpr int32_t PIXEL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};
constexpr int32_t PIXEL_BYTES[] = {1, 2, 4, 8, 4};
constexpr ImageRef UNKNOWN_IMAGE = 0x7FFF0000;

int32_t ImageCount() {
  int32_t count = -1;
  ZEL_GetImageReference(0, nullptr, &count);
  return count;
}

TEST(Images, LayoutOfATenByFourImageWithBorderThree) {
  const TestImage image(IMAGE_U8, 10, 4, 3);
  const ImageInfo info = image.Info();
  EXPECT_EQ(info.lineWidth, 24);
  EXPECT_EQ(info.totalBytes, 240);
  EXPECT_EQ(image.At<uint8_t>(-3, -3) + 3 + 3 * 24, image.At<uint8_t>(0, 0));
}

TEST(Images, LayoutOfASixteenBitImageWithBorderOne) {
  const TestImage image(IMAGE_I16, 6, 2, 1);
  EXPECT_EQ(image.Info().lineWidth, 12);
}

TEST(Images, LayoutFollowsTheRuleForAllTypesSizesAndBorders) {
  for (size_t t = 0; t < 5; t++) {
    for (int32_t border = 0; border <= 9; border++) {
      for (int32_t width = 0; width <= 18; width++) {
        const TestImage image(PIXEL_TYPES[t], width, 3, border);
        const ImageInfo info = image.Info();
        const int32_t bytes = PIXEL_BYTES[t];
        // Whole groups of 8 bytes before column 0, and from it on.
        const int32_t left = (border * bytes + 7) / 8 * 8;
        const int32_t right = ((border + width) * bytes + 7) / 8 * 8;
        const int32_t rows = (width == 0 ? 0 : 3) + 2 * border;
        ASSERT_EQ(info.lineBytes, left + right);
        ASSERT_EQ(info.totalBytes, rows * (left + right));
        ASSERT_EQ(info.pixelBytes, bytes);
        ASSERT_EQ(info.lineWidth * bytes, info.lineBytes);
        if (width == 0) continue;
        ASSERT_EQ(reinterpret_cast<uintptr_t>(info.firstPixel) % 8, 0u);
        ASSERT_EQ(image.At<uint8_t>(-border, 1) - static_cast<uint8_t*>(info.firstPixel),
                  info.lineBytes - border * bytes);
      }
    }
  }
}

TEST(Images, AViewOfAnImageWithoutPixelsTellsHowLargeTheyWouldBe) {
  for (int32_t type = IMAGE_U8; type <= IMAGE_RGB; type++) {
    const TestImage image(type, 0, 0, 0);
    Image* record = nullptr;
    ASSERT_EQ(ImageLookup(image, &record), STATUS_OK);
    const PixelView view = ViewOf(*record);
    EXPECT_TRUE(view.IsEmpty());
    EXPECT_EQ(view.origin, nullptr);
    EXPECT_EQ(view.pixelBytes, PIXEL_BYTES[type]);
  }
}

TEST(Images, ANewImageHasTheDefaults) {
  ImageRef reference = 0;
  ASSERT_EQ(ZEL_Create(&reference, IMAGE_SGL, 2), 0);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(reference, &info), 0);
  EXPECT_EQ(info.width, 0);
  EXPECT_EQ(info.height, 0);
  EXPECT_EQ(info.type, IMAGE_SGL);
  EXPECT_EQ(info.border, 2);
  EXPECT_EQ(info.lineWidth, 4);
  EXPECT_EQ(info.totalBytes, 64);
  EXPECT_EQ(info.unit, 0);
  EXPECT_EQ(info.xStep, 1.0f);
  EXPECT_EQ(info.yStep, 1.0f);
  EXPECT_EQ(info.offsetX, 0);
  EXPECT_NE(info.firstPixel, nullptr);
  EXPECT_EQ(ZEL_Dispose(reference), 0);
}

TEST(Images, AWidthOrHeightBelowOneGivesAnEmptyImage) {
  const TestImage image(IMAGE_U8, 7, 5);
  for (const auto& [width, height] :
       std::vector<std::pair<int32_t, int32_t>>{{0, 5}, {5, 0}, {-3, 4}, {4, -3}, {INT32_MIN, 1}}) {
    EXPECT_EQ(ZEL_SetImageSize(image, width, height), 0);
    EXPECT_EQ(image.width(), 0);
    EXPECT_EQ(image.height(), 0);
    EXPECT_EQ(image.Info().firstPixel, nullptr);
  }
}

TEST(Images, TheSameSizeKeepsThePixels) {
  const TestImage image(IMAGE_I16, 9, 5, 1);
  const std::vector<uint8_t> block = image.Block();
  EXPECT_EQ(ZEL_SetImageSize(image, 9, 5), 0);
  EXPECT_EQ(image.Block(), block);
}

TEST(Images, TheSameSizeWithAnotherBorderIsLaidOutAnew) {
  const TestImage image(IMAGE_U8, 9, 5, 1);
  Image* record = nullptr;
  ASSERT_EQ(ImageLookup(image, &record), 0);
  record->border = 20;
  EXPECT_EQ(ImageSetSize(image, 9, 5), 0);
  EXPECT_EQ(image.Info().lineWidth, 56);
  EXPECT_EQ(image.Info().totalBytes, 56 * 45);
  EXPECT_EQ(WorldFault(), nullptr);
}

TEST(Images, TheFirstPixelLiesOnACacheLineWhateverTheBorder) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t border : {0, 1, 3, 8}) {
      const TestImage image(type, 1, 1, border);
      for (const int32_t width : {1, 4, 40, 121, 364, 1093, 3280, 1500, 700, 90, 2}) {
        ASSERT_EQ(ZEL_SetImageSize(image, width, 77), 0);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(image.At<uint8_t>(0, 0)) % 64, 0u);
      }
    }
  }
}

TEST(Images, PixelsThatAResizeAddsReadZero) {
  const TestImage image(IMAGE_U8, 8, 2);
  EXPECT_EQ(ZEL_SetImageSize(image, 8, 100), 0);
  for (int32_t y = 2; y < 100; y++) EXPECT_EQ(image.Get<uint8_t>(7, y), 0);
}

TEST(Images, SizesBeyondTheLimitAreNoMemoryAndChangeNothing) {
  const TestImage image(IMAGE_COMPLEX, 3, 3);
  const std::vector<uint8_t> block = image.Block();
  HeapHooksGet()->largestRequest = 0;
  for (const auto& [width, height] :
       std::vector<std::pair<int32_t, int32_t>>{{INT32_MAX, INT32_MAX},
                                                {INT32_MAX, 1},
                                                {1, INT32_MAX},
                                                {16384, 16384},
                                                {65536, 65536}}) {
    EXPECT_EQ(ZEL_SetImageSize(image, width, height), -101);
  }
  EXPECT_LE(HeapHooksGet()->largestRequest, 65536u);
  EXPECT_EQ(image.width(), 3);
  EXPECT_EQ(image.Block(), block);
}

TEST(Images, ARefusedResizeLeavesTheImageAsItWas) {
  const TestImage image(IMAGE_U8, 30, 3, 2);
  const std::vector<uint8_t> block = image.Block();
  HeapHooksGet()->blockBudget = 1000;
  EXPECT_EQ(ZEL_SetImageSize(image, 300, 300), -101);
  HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(image.width(), 30);
  EXPECT_EQ(image.Block(), block);
}

// Bytes count, with the rows' padding: they decide whether memory is always had.
TEST(Images, ShrinkToASizeWhoseBlockHasFewerBytes) {
  const TestImage image(IMAGE_U8, 16, 5);
  Image* record = nullptr;
  ASSERT_EQ(ImageLookup(image, &record), 0);
  EXPECT_TRUE(ImageShrinksTo(*record, 16, 4));
  EXPECT_TRUE(ImageShrinksTo(*record, 8, 5));
  EXPECT_FALSE(ImageShrinksTo(*record, 16, 5));
  EXPECT_FALSE(ImageShrinksTo(*record, 9, 5)) << "the same bytes in a row";
  EXPECT_FALSE(ImageShrinksTo(*record, 16, 6));
  EXPECT_FALSE(ImageShrinksTo(*record, INT32_MAX, INT32_MAX));
}

TEST(Images, PixelAddressesReachTheBorderAndNoFurther) {
  const TestImage image(IMAGE_U8, 10, 4, 3);
  void* address = nullptr;
  EXPECT_EQ(ZEL_GetPixelAddress(image, -3, -3, &address), 0);
  EXPECT_EQ(ZEL_GetPixelAddress(image, 12, 6, &address), 0);
  void* untouched = &address;
  EXPECT_EQ(ZEL_GetPixelAddress(image, 13, 0, &untouched), -1001);
  EXPECT_EQ(ZEL_GetPixelAddress(image, 0, 7, &untouched), -1001);
  EXPECT_EQ(ZEL_GetPixelAddress(image, -4, 0, &untouched), -1001);
  EXPECT_EQ(ZEL_GetPixelAddress(image, 0, INT32_MIN, &untouched), -1001);
  EXPECT_EQ(untouched, &address);
  EXPECT_EQ(ZEL_GetPixelAddress(image, 0, 0, nullptr), -3009);
  EXPECT_EQ(ZEL_GetPixelAddress(UNKNOWN_IMAGE, 0, 0, &untouched), -200);
  EXPECT_EQ(ZEL_GetPixelAddress(0, 0, 0, &untouched), -200);
}

TEST(Images, AnEmptyImageHasItsBorderAndOnePointWithoutOne) {
  const TestImage bordered(IMAGE_U8, 0, 0, 2);
  void* address = nullptr;
  EXPECT_EQ(ZEL_GetPixelAddress(bordered, 1, 1, &address), 0);
  EXPECT_EQ(ZEL_GetPixelAddress(bordered, -2, -2, &address), 0);
  EXPECT_EQ(ZEL_GetPixelAddress(bordered, 2, 0, &address), -1001);
  const TestImage bare(IMAGE_U8, 0, 0, 0);
  address = &address;
  EXPECT_EQ(ZEL_GetPixelAddress(bare, 0, 0, &address), 0);
  EXPECT_EQ(address, nullptr);
  EXPECT_EQ(ZEL_GetPixelAddress(bare, 1, 0, &address), -1001);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(bare, &info), 0);
}

TEST(Images, CreateOnALiveReferenceMakesTheImageOver) {
  ImageRef reference = 0;
  ASSERT_EQ(ZEL_Create(&reference, IMAGE_U8, 0), 0);
  ZEL_SetImageSize(reference, 10, 10);
  ZEL_SetImageCalibration(reference, 5, 2.0f, 3.0f);
  ZEL_SetImageOffset(reference, 7, 8);
  const ImageRef kept = reference;
  EXPECT_EQ(ZEL_Create(&reference, IMAGE_RGB, 4), 0);
  EXPECT_EQ(reference, kept);
  ImageInfo info{};
  ZEL_GetImageInfo(reference, &info);
  EXPECT_EQ(info.type, IMAGE_RGB);
  EXPECT_EQ(info.border, 4);
  EXPECT_EQ(info.width, 0);
  EXPECT_EQ(info.unit, 0);
  EXPECT_EQ(info.xStep, 1.0f);
  EXPECT_EQ(info.offsetX, 0);
  EXPECT_EQ(ImageCount(), 1);
  ZEL_Dispose(reference);
}

TEST(Images, CreateOnAStaleReferenceMakesANewOne) {
  ImageRef reference = 0;
  ZEL_Create(&reference, IMAGE_U8, 0);
  const ImageRef stale = reference;
  ZEL_Dispose(reference);
  EXPECT_EQ(ZEL_Create(&reference, IMAGE_U8, 0), 0);
  EXPECT_GT(reference, stale);
  ZEL_Dispose(reference);
}

TEST(Images, ABadTypeLeavesAnUnusableImageThatCanBeDisposedOf) {
  for (const int16_t bad : std::vector<int16_t>{-1, 6, INT16_MAX, INT16_MIN}) {
    ImageRef reference = 0;
    EXPECT_EQ(ZEL_Create(&reference, bad, 1), -300);
    ASSERT_NE(reference, 0u);
    ASSERT_NE(reference, 0xFFFFFFFFu);
    ImageInfo info{};
    EXPECT_EQ(ZEL_GetImageInfo(reference, &info), 300);
    EXPECT_EQ(info.type, bad);
    EXPECT_EQ(info.lineWidth, 0);
    EXPECT_EQ(info.pixelBytes, 0);
    EXPECT_EQ(info.firstPixel, nullptr);
    EXPECT_EQ(ZEL_SetImageOffset(reference, 1, 1), -301);
    EXPECT_EQ(ZEL_SetImageSize(reference, 3, 3), -300);
    EXPECT_EQ(ImageClearAll(reference), 300);
    EXPECT_EQ(BorderZero(reference), 0);  // it is empty
    EXPECT_EQ(ZEL_Dispose(reference), 0);
  }
}

TEST(Images, ABadTypeOnALiveReferenceKeepsTheReference) {
  ImageRef reference = 0;
  ZEL_Create(&reference, IMAGE_U8, 1);
  ZEL_SetImageSize(reference, 9, 9);
  const ImageRef kept = reference;
  EXPECT_EQ(ZEL_Create(&reference, 77, 2), -300);
  EXPECT_EQ(reference, kept);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(reference, &info), 300);
  EXPECT_EQ(info.width, 0);
  EXPECT_EQ(info.lineWidth, 0);
  EXPECT_EQ(ZEL_Create(&reference, IMAGE_U8, 0), 0);  // and it can be made good again
  EXPECT_EQ(ZEL_Dispose(reference), 0);
}

TEST(Images, ANegativeBorderMakesNothing) {
  ImageRef reference = 0;
  EXPECT_EQ(ZEL_Create(&reference, IMAGE_U8, -1), -308);
  EXPECT_EQ(reference, 0u);
  EXPECT_EQ(ImageCount(), 0);
  EXPECT_EQ(ZEL_Create(nullptr, IMAGE_U8, 0), -3009);
}

TEST(Images, AnAbsurdBorderIsNoMemory) {
  ImageRef reference = 0;
  EXPECT_EQ(ZEL_Create(&reference, IMAGE_U8, 1000000000), -101);
  EXPECT_EQ(ZEL_Dispose(reference), 0);
  const TestImage live(IMAGE_U8, 5, 5, 1);
  ImageRef again = live;
  const std::vector<uint8_t> block = live.Block();
  EXPECT_EQ(ZEL_Create(&again, IMAGE_I16, 1000000000), -101);
  EXPECT_EQ(live.Block(), block);  // the image is what it was
}

TEST(Images, AnOpaqueImageHasNoPixelAddresses) {
  ImageRef reference = 0;
  ASSERT_EQ(ZEL_Create(&reference, IMAGE_OPAQUE, 1), 0);
  EXPECT_EQ(ZEL_SetImageSize(reference, 20, 3), 0);
  ImageInfo info{};
  EXPECT_EQ(ZEL_GetImageInfo(reference, &info), 300);
  EXPECT_EQ(info.width, 20);
  EXPECT_EQ(info.pixelBytes, 1);
  EXPECT_EQ(info.firstPixel, nullptr);
  void* address = nullptr;
  EXPECT_EQ(ZEL_GetPixelAddress(reference, 0, 0, &address), -300);
  EXPECT_EQ(ZEL_SetImageOffset(reference, 3, 4), 0);
  ZEL_Dispose(reference);
}

TEST(Images, InfoAnswersThePositiveNumber) {
  ImageInfo info{};
  info.width = 12345;
  EXPECT_EQ(ZEL_GetImageInfo(UNKNOWN_IMAGE, &info), 200);
  EXPECT_EQ(info.width, 12345);
  EXPECT_EQ(ZEL_GetLastError(nullptr), -200);
  const TestImage image(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_GetImageInfo(image, nullptr), 3009);
}

TEST(Images, CalibrationKeepsTheLowBitsOfTheUnitAndAnyStep) {
  const TestImage image(IMAGE_U8, 1, 1);
  EXPECT_EQ(ZEL_SetImageCalibration(image, 0x1FFFF, -2.0f, NAN), 0);
  EXPECT_EQ(image.Info().unit, -1);
  EXPECT_EQ(image.Info().xStep, -2.0f);
  EXPECT_TRUE(std::isnan(image.Info().yStep));
  EXPECT_EQ(ZEL_SetImageCalibration(UNKNOWN_IMAGE, 1, 1, 1), -200);
  EXPECT_EQ(ZEL_SetImageOffset(UNKNOWN_IMAGE, 1, 1), -200);
}

TEST(Images, DisposeTwiceFailsTheSecondTime) {
  ImageRef reference = 0;
  ZEL_Create(&reference, IMAGE_U8, 0);
  EXPECT_EQ(ZEL_Dispose(reference), 0);
  EXPECT_EQ(ZEL_Dispose(reference), -200);
  EXPECT_EQ(ZEL_Dispose(0), -200);
  EXPECT_EQ(ZEL_Dispose(0xFFFFFFFF), -200);
}

TEST(Images, ReferencesRiseAndAreNeverUsedAgain) {
  ImageRef first = 0;
  ImageRef second = 0;
  ZEL_Create(&first, IMAGE_U8, 0);
  ZEL_Create(&second, IMAGE_U8, 0);
  EXPECT_EQ(second, first + 1);
  ZEL_CloseSys();
  EXPECT_EQ(ZEL_Dispose(first), -200);
  ImageRef third = first;
  ZEL_Create(&third, IMAGE_U8, 0);
  EXPECT_EQ(third, second + 1);
  ZEL_Dispose(third);
}

TEST(Images, TheLastReferencesAreNotIssued) {
  EXPECT_EQ(ZEL_InitSys(), 0);
  const uint32_t kept = coreTables.lastReference;
  coreTables.lastReference = 0xFFFFFFFD;
  ImageRef last = 0;
  EXPECT_EQ(ZEL_Create(&last, IMAGE_U8, 0), 0);
  EXPECT_EQ(last, 0xFFFFFFFEu);
  ImageRef none = 0;
  EXPECT_EQ(ZEL_Create(&none, IMAGE_U8, 0), -1001);
  EXPECT_EQ(none, 0xFFFFFFFFu);
  ZEL_Dispose(last);
  coreTables.lastReference = kept;
}

TEST(Images, WalkingSkipsEmptyRows) {
  int32_t count = -1;
  ImageRef reference = 99;
  EXPECT_EQ(ZEL_GetImageReference(0, &reference, &count), 1);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(reference, 99u);
  TestImage a(IMAGE_U8, 1, 1);
  TestImage c;
  {
    const TestImage b(IMAGE_U8, 1, 1);
    c = TestImage(IMAGE_U8, 1, 1);
  }
  EXPECT_EQ(ZEL_GetImageReference(0, &reference, &count), 0);
  EXPECT_EQ(reference, a);
  EXPECT_EQ(ZEL_GetImageReference(1, &reference, &count), 0);
  EXPECT_EQ(reference, c);
  reference = 99;
  EXPECT_EQ(ZEL_GetImageReference(2, &reference, &count), 1);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(ZEL_GetImageReference(-1, &reference, &count), 1);
  EXPECT_EQ(reference, 99u);
  EXPECT_EQ(ZEL_GetImageReference(0, nullptr, nullptr), 0);
  ImageRef temporary = 0;
  Image like{};
  ImageCreateLike(&temporary, like);
  EXPECT_EQ(ZEL_GetImageReference(1, &reference, &count), 2);  // the row that was free
  EXPECT_EQ(reference, temporary);
  ZEL_Dispose(temporary);
}

TEST(Images, SwapExchangesWhatReferencesName) {
  const TestImage a(IMAGE_U8, 3, 3);
  const TestImage b(IMAGE_I16, 5, 5);
  EXPECT_EQ(ImageSwap(a, b), 0);
  EXPECT_EQ(a.Info().type, IMAGE_I16);
  EXPECT_EQ(b.width(), 3);
  EXPECT_EQ(ImageSwap(a, UNKNOWN_IMAGE), 200);
  EXPECT_TRUE(ImageSame(a, a));
  EXPECT_FALSE(ImageSame(a, b));
  EXPECT_TRUE(ImageSame(a, UNKNOWN_IMAGE));
  EXPECT_TRUE(ImageSame(0, b));
}

TEST(Images, EveryFailingAllocationOfACreationIsSurvived) {
  HeapHooks* hooks = HeapHooksGet();
  for (const bool all : {false, true}) {
    for (uint64_t k = 1;; k++) {
      ZEL_CloseSys();
      *hooks = {};
      hooks->failAt = k;
      hooks->failAllAfter = all;
      ImageRef reference = 0;
      const int32_t result = ZEL_Create(&reference, IMAGE_U8, 3);
      const int32_t sized = result == 0 ? ZEL_SetImageSize(reference, 50, 50) : 0;
      hooks->failAt = 0;
      ASSERT_EQ(WorldFault(), nullptr) << WorldFault();
      ASSERT_TRUE(result == 0 || result == -101 || result == -102 || result == -1001) << result;
      if (reference != 0xFFFFFFFF) {
        EXPECT_EQ(ZEL_Dispose(reference), 0);
      }
      EXPECT_EQ(ImageCount(), 0);
      if (result == 0 && sized == 0 && hooks->refusals == 0) break;
    }
  }
}

TEST(Images, ManyImagesComeAndGoWithFlatMemory) {
  ImageRef image = 0;
  ZEL_Create(&image, IMAGE_U8, 1);
  const int64_t blocks = HeapHooksGet()->liveBlocks;
  const int64_t bytes = HeapHooksGet()->liveBytes;
  for (int i = 0; i < 20000; i++) {
    ImageRef other = 0;
    ASSERT_EQ(ZEL_Create(&other, IMAGE_I16, 2), 0);
    ASSERT_EQ(ZEL_SetImageSize(other, 20, 20), 0);
    ASSERT_EQ(ZEL_Dispose(other), 0);
  }
  EXPECT_EQ(HeapHooksGet()->liveBlocks, blocks);
  EXPECT_LE(HeapHooksGet()->liveBytes, bytes + 512);  // two more rows in each table at most
  ZEL_Dispose(image);
}

TEST(Images, ThousandsOfImagesAreFoundByTheirReferences) {
  std::vector<ImageRef> images(3000);
  for (ImageRef& image : images) ASSERT_EQ(ZEL_Create(&image, IMAGE_U8, 0), 0);
  for (size_t i = 0; i < images.size(); i += 3) ASSERT_EQ(ZEL_Dispose(images[i]), 0);
  for (size_t i = 0; i < images.size(); i++) {
    EXPECT_EQ(ZEL_SetImageSize(images[i], 1, 1), i % 3 == 0 ? -200 : 0);
  }
  ZEL_CloseSys();
}

TEST(Images, CallsAfterClosingStartOver) {
  ImageRef image = 0;
  ZEL_Create(&image, IMAGE_U8, 0);
  EXPECT_EQ(ZEL_CloseSys(), 0);
  EXPECT_EQ(ZEL_CloseSys(), 0);
  EXPECT_EQ(ZEL_SetImageSize(image, 1, 1), -200);
  EXPECT_EQ(ZEL_InitSys(), 0);
}

// The block of pixels lies somewhere inside a block of the heap, whose ends alone a sanitizer
// watches by itself.
TEST(PixelBlocks, HaveEndsThatTheAddressSanitizerWatches) {
#if defined(ZEL_ADDRESS_SANITIZER)
  for (const int32_t border : {0, 3}) {
    for (const int32_t width : {1, 100}) {
      const TestImage image(IMAGE_U8, width, 3, border);
      const ImageInfo info = image.Info();
      const int32_t leftPad = (border + 7) / 8 * 8;
      const volatile uint8_t* block = image.At<uint8_t>(0, 0) - border * info.lineBytes - leftPad;
      static_cast<void>(block[0] + block[info.totalBytes - 1]);
      EXPECT_DEATH(static_cast<void>(block[info.totalBytes]), "AddressSanitizer");
      EXPECT_DEATH(static_cast<void>(block[-1]), "AddressSanitizer");
    }
  }
#else
  GTEST_SKIP() << "a build for the address sanitizer shows it";
#endif
}

}  // namespace
