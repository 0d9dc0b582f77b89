#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/heap.h"
#include "core/images.h"
#include "core/tables.h"
#include "core/world.h"
#include "harness/test_image.h"

namespace {

using namespace zel;
using test::PixelDifference;
using test::TestImage;

constexpr int32_t PIXEL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};
constexpr ImageRef UNKNOWN_IMAGE = 0x7FFF0000;

Image* Record(ImageRef reference) {
  Image* image = nullptr;
  ImageLookup(reference, &image);
  return image;
}

TEST(ImageClone, BringsTypeBorderCalibrationAndEveryByte) {
  for (const int32_t type : PIXEL_TYPES) {
    const TestImage source(type, 11, 5, 3, 7);
    ZEL_SetImageCalibration(source, 3, 0.5f, 0.25f);
    ZEL_SetImageOffset(source, -4, 9);
    const TestImage destination(IMAGE_U8, 100, 2, 1, 8);
    EXPECT_EQ(ImageClone(source, destination), 0);
    EXPECT_EQ(destination.Block(), source.Block());
    EXPECT_EQ(destination.Info().type, type);
    EXPECT_EQ(destination.Info().border, 3);
    EXPECT_EQ(destination.Info().offsetX, -4);
    EXPECT_EQ(destination.Info().xStep, 0.5f);
  }
}

TEST(ImageClone, ChecksReferencesBeforeComparingThem) {
  const TestImage image(IMAGE_U8, 2, 2);
  EXPECT_EQ(ImageClone(image, image), 0);
  EXPECT_EQ(ImageClone(UNKNOWN_IMAGE, UNKNOWN_IMAGE), 200);
  EXPECT_EQ(ImageClone(image, 0), 200);
  EXPECT_EQ(ImageClone(0, image), 200);
}

TEST(ImageClone, ARefusedBlockLeavesTheDestination) {
  const TestImage source(IMAGE_U8, 100, 100);
  const TestImage destination(IMAGE_I16, 3, 3, 1);
  const std::vector<uint8_t> block = destination.Block();
  HeapHooksGet()->blockBudget = 500;
  EXPECT_EQ(ImageClone(source, destination), 101);
  HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(destination.Info().type, IMAGE_I16);
  EXPECT_EQ(destination.Block(), block);
}

TEST(ImageClone, KeptMemoryStaysWhenItIsBigEnough) {
  const TestImage source(IMAGE_U8, 8, 8);
  const TestImage destination(IMAGE_U8, 64, 64);
  Record(destination)->keepMemory = 1;
  EXPECT_EQ(ImageClone(source, destination), 0);
  EXPECT_EQ(HandleByteSize(Record(destination)->pixels), 64u * 64u);
  EXPECT_EQ(Record(destination)->keepMemory, 1u);
  EXPECT_EQ(PixelDifference(destination, source), "");
  EXPECT_EQ(ZEL_SetImageSize(destination, 30, 30), 0);
  EXPECT_EQ(HandleByteSize(Record(destination)->pixels), 64u * 64u);
}

TEST(ImageCopyPixels, KeepsTheDestinationsBorderAndRecord) {
  for (const int32_t type : PIXEL_TYPES) {
    for (const int32_t border : {0, 1, 5}) {
      for (const auto& [width, height] : test::ODD_SIZES) {
        const TestImage source(type, width, height, 3, 7);
        const TestImage destination(type, 4, 4, border, 8);
        ZEL_SetImageOffset(destination, 6, 7);
        ASSERT_EQ(ImageCopyPixels(source, destination), 0);
        ASSERT_EQ(PixelDifference(destination, source), "");
        ASSERT_EQ(destination.Info().border, border);
        ASSERT_EQ(destination.Info().offsetX, 6);
      }
    }
  }
}

TEST(ImageCopyPixels, WithEqualBordersTheBorderComesAlong) {
  const TestImage source(IMAGE_U8, 9, 4, 2, 7);
  const TestImage destination(IMAGE_U8, 9, 4, 2, 8);
  EXPECT_EQ(ImageCopyPixels(source, destination), 0);
  EXPECT_EQ(destination.Block(), source.Block());
}

TEST(ImageCopyPixels, WithOtherBordersAndTheSameSizeTheBorderStays) {
  const TestImage source(IMAGE_U8, 9, 4, 1, 7);
  const TestImage destination(IMAGE_U8, 9, 4, 2, 8);
  const std::vector<uint8_t> around = destination.Surroundings();
  EXPECT_EQ(ImageCopyPixels(source, destination), 0);
  EXPECT_EQ(destination.Surroundings(), around);
  EXPECT_EQ(PixelDifference(destination, source), "");
}

TEST(ImageCopyPixels, RefusesAnotherType) {
  const TestImage source(IMAGE_U8, 9, 4);
  const TestImage destination(IMAGE_I16, 9, 4);
  EXPECT_EQ(ImageCopyPixels(source, destination), 303);
  EXPECT_EQ(ImageCopyPixels(source, UNKNOWN_IMAGE), 200);
  EXPECT_EQ(ImageCopyPixels(source, source), 0);
}

TEST(ImageCopyPixels, OpaqueImagesCopyTheirBlock) {
  ImageRef images[2] = {0, 0};
  for (ImageRef& image : images) ASSERT_EQ(ZEL_Create(&image, IMAGE_OPAQUE, 0), 0);
  Record(images[0])->opaqueSize = 5;
  HandleResize(Record(images[0])->pixels, 5);
  std::memcpy(VectorData<char>(Record(images[0])->pixels), "bytes", 5);
  EXPECT_EQ(ImageCopyPixels(images[0], images[1]), 0);
  EXPECT_EQ(Record(images[1])->opaqueSize, 5);
  EXPECT_EQ(std::memcmp(VectorData<char>(Record(images[1])->pixels), "bytes", 5), 0);
  Record(images[0])->opaqueType = IMAGE_SGL;
  EXPECT_EQ(ImageCopyPixels(images[0], images[1]), 303);
  std::memcpy(VectorData<char>(Record(images[0])->pixels), "other", 5);
  EXPECT_EQ(ImageClone(images[0], images[1]), 0);
  EXPECT_EQ(Record(images[1])->opaqueType, IMAGE_SGL);
  EXPECT_EQ(std::memcmp(VectorData<char>(Record(images[1])->pixels), "other", 5), 0);
  for (const ImageRef image : images) ZEL_Dispose(image);
}

TEST(ImageCopyInfo, CopiesCalibrationAndOffset) {
  const TestImage source(IMAGE_U8, 2, 2);
  ZEL_SetImageCalibration(source, 4, 1.5f, 2.5f);
  ZEL_SetImageOffset(source, 10, -20);
  const TestImage destination(IMAGE_SGL, 5, 5, 2);
  EXPECT_EQ(ImageCopyInfo(source, destination), 0);
  const ImageInfo info = destination.Info();
  EXPECT_EQ(info.unit, 4);
  EXPECT_EQ(info.xStep, 1.5f);
  EXPECT_EQ(info.yStep, 2.5f);
  EXPECT_EQ(info.offsetX, 10);
  EXPECT_EQ(info.offsetY, -20);
  EXPECT_EQ(info.width, 5);
  EXPECT_EQ(info.type, IMAGE_SGL);
  EXPECT_EQ(ImageCopyInfo(source, UNKNOWN_IMAGE), 200);
  EXPECT_EQ(ImageCopyInfo(UNKNOWN_IMAGE, source), 200);
}

void Attach(ImageRef image, uint32_t flags, uint8_t byte) {
  Handle block = 0;
  ASSERT_EQ(HandleAlloc(&block, 3), 0);
  std::memset(VectorData<void>(block), byte, 3);
  Image* record = Record(image);
  uint32_t count = 0;
  if (record->attachments == 0) {
    ASSERT_EQ(VectorNew(&record->attachments), 0);
  } else {
    VectorCount(record->attachments, &count);
  }
  ASSERT_EQ(VectorResize(record->attachments, sizeof(Attachment), count + 1), 0);
  VectorData<Attachment>(record->attachments)[count] = {flags, block};
}

std::vector<std::pair<uint32_t, int>> Attached(ImageRef image) {
  std::vector<std::pair<uint32_t, int>> list;
  uint32_t count = 0;
  if (Record(image)->attachments == 0) return list;
  VectorCount(Record(image)->attachments, &count);
  for (uint32_t i = 0; i < count; i++) {
    const Attachment entry = VectorData<Attachment>(Record(image)->attachments)[i];
    list.emplace_back(entry.flags, entry.handle != 0 ? *VectorData<uint8_t>(entry.handle) : -1);
  }
  return list;
}

using List = std::vector<std::pair<uint32_t, int>>;

TEST(Attachments, AreCopiedWithTheInfoAndThoseThatStayAreKept) {
  const TestImage source(IMAGE_U8, 1, 1);
  const TestImage destination(IMAGE_U8, 1, 1);
  Attach(source, 1, 10);
  Attach(source, 4, 11);
  Attach(destination, 2, 20);
  Attach(destination, 4, 21);
  EXPECT_EQ(ImageCopyInfo(source, destination), 0);
  EXPECT_EQ(Attached(destination), (List{{4, 21}, {1, 10}, {0, -1}}));
  const TestImage bare(IMAGE_U8, 1, 1);
  EXPECT_EQ(ImageCopyInfo(bare, destination), 0);
  EXPECT_EQ(Attached(destination), (List{{4, 21}}));
  const TestImage loose(IMAGE_U8, 1, 1);
  Attach(loose, 1, 30);
  EXPECT_EQ(ImageCopyInfo(bare, loose), 0);
  EXPECT_EQ(Record(loose)->attachments, 0);
  EXPECT_EQ(ImageCopyInfo(source, bare), 0);
  EXPECT_EQ(Attached(bare), (List{{1, 10}, {0, -1}}));
}

TEST(Attachments, GoWithTheirImage) {
  const uint32_t handles = coreTables.handleRows;
  {
    const TestImage image(IMAGE_U8, 1, 1);
    Attach(image, 1, 10);
    Attach(image, 4, 11);
  }
  EXPECT_EQ(coreTables.handleRows, handles);
}

TEST(Attachments, GoIntoATemporaryImage) {
  const TestImage source(IMAGE_U8, 1, 1);
  Attach(source, 1, 10);
  Attach(source, 4, 11);
  ImageRef temporary = 0;
  ASSERT_EQ(ImageCreateLike(&temporary, *Record(source)), 0);
  EXPECT_EQ(Attached(temporary), (List{{1, 10}, {0, -1}}));
  EXPECT_EQ(ImageDestroy(temporary), 0);
}

TEST(Attachments, WithoutMemoryAreNotCopiedAndLeaveTheSource) {
  const TestImage source(IMAGE_U8, 1, 1);
  Attach(source, 1, 10);
  Attach(source, 2, 12);
  Attach(source, 4, 11);
  const List before = Attached(source);
  HeapHooks* hooks = HeapHooksGet();
  uint64_t refused = 0;
  for (bool complete = false; !complete; refused++) {
    const TestImage destination(IMAGE_U8, 1, 1);
    hooks->requests = 0;
    hooks->failAt = refused + 1;
    const Status status = ImageCopyInfo(source, destination);
    complete = hooks->requests <= refused;
    hooks->failAt = 0;
    EXPECT_TRUE(status == STATUS_OK || (!complete && status == STATUS_MEMORY_FULL)) << status;
    EXPECT_EQ(Attached(source), before);
    EXPECT_EQ(WorldFault(), nullptr);
  }
  EXPECT_GT(refused, 3u);
}

TEST(Attachments, WithoutMemoryKeepATemporaryImageFromBeingMadeWhole) {
  const TestImage source(IMAGE_U8, 1, 1);
  Attach(source, 1, 10);
  HeapHooks* hooks = HeapHooksGet();
  Status status = STATUS_MEMORY_FULL;
  for (uint64_t at = 1; status != STATUS_OK && at < 50; at++) {
    ImageRef temporary = 0;
    hooks->requests = 0;
    hooks->failAt = at;
    status = ImageCreateLike(&temporary, *Record(source));
    if (hooks->requests >= at && status == STATUS_OK) status = STATUS_MEMORY_FULL;  // a spare row
    hooks->failAt = 0;
    EXPECT_EQ(WorldFault(), nullptr);
    if (temporary != 0) ImageDestroy(temporary);
  }
  EXPECT_EQ(status, STATUS_OK);
}

TEST(Attachments, OfAListThatIsNoneAreRefused) {
  const TestImage image(IMAGE_U8, 1, 1);
  constexpr Handle noHandle = 0x7FFF;
  EXPECT_EQ(AttachmentsAppendCopies(noHandle, Record(image)->pixels), STATUS_INTERNAL);
  Handle list = 0;
  ASSERT_EQ(VectorNew(&list), STATUS_OK);
  EXPECT_EQ(AttachmentsAppendCopies(list, noHandle), STATUS_INTERNAL);
  EXPECT_EQ(VectorFree(list), STATUS_OK);
}

TEST(ImageCopyPixels, ARefusedBlockLeavesTheDestination) {
  const TestImage source(IMAGE_U8, 300, 300);
  for (const int32_t border : {0, 2}) {
    const TestImage destination(IMAGE_U8, 4, 3, border, 7);
    const std::vector<uint8_t> before = destination.Block();
    HeapHooksGet()->blockBudget = 1000;
    EXPECT_EQ(ImageCopyPixels(source, destination), STATUS_MEMORY_FULL);
    HeapHooksGet()->blockBudget = 0;
    EXPECT_EQ(destination.Block(), before);
  }
}

TEST(ImageCopyPixels, OpaqueImagesWithoutMemoryStay) {
  ImageRef images[2] = {0, 0};
  for (ImageRef& image : images) ASSERT_EQ(ZEL_Create(&image, IMAGE_OPAQUE, 0), 0);
  Record(images[0])->opaqueSize = 5000;
  ASSERT_EQ(HandleResize(Record(images[0])->pixels, 5000), STATUS_OK);
  HeapHooksGet()->blockBudget = 1000;
  EXPECT_EQ(ImageCopyPixels(images[0], images[1]), STATUS_MEMORY_FULL);
  EXPECT_EQ(ImageClone(images[0], images[1]), STATUS_MEMORY_FULL);
  HeapHooksGet()->blockBudget = 0;
  EXPECT_EQ(Record(images[1])->opaqueSize, 0);
  // A larger block is kept where the image asks for that.
  EXPECT_EQ(ImageClone(images[0], images[1]), STATUS_OK);
  Record(images[1])->keepMemory = 1;
  Record(images[0])->opaqueSize = 10;
  EXPECT_EQ(ImageCopyPixels(images[0], images[1]), STATUS_OK);
  EXPECT_EQ(Record(images[1])->opaqueSize, 5000);
  for (const ImageRef image : images) ZEL_Dispose(image);
}

TEST(ImageFillAll, AnUnknownImageOrTypeIsRefused) {
  const uint8_t pixel = 3;
  EXPECT_EQ(ImageFillAll(UNKNOWN_IMAGE, &pixel), STATUS_BAD_IMAGE);
  EXPECT_EQ(ImageClearAll(UNKNOWN_IMAGE), STATUS_BAD_IMAGE);
  const TestImage image(IMAGE_U8, 3, 3);
  Record(image)->type = 77;
  EXPECT_EQ(ImageFillAll(image, &pixel), STATUS_BAD_LAYOUT_TYPE);
  EXPECT_EQ(ImageClearAll(image), STATUS_BAD_LAYOUT_TYPE);
  Record(image)->type = IMAGE_U8;
}

TEST(ImageFillAll, AU8ImageTakesOneRunFromTheBlocksStart) {
  const TestImage image(IMAGE_U8, 10, 4, 0, 3);
  const std::vector<uint8_t> before = image.Block();
  const uint8_t value = 0x77;
  EXPECT_EQ(ImageFillAll(image, &value), 0);
  std::vector<uint8_t> expected = before;
  std::fill_n(expected.begin(), 40, value);
  EXPECT_EQ(image.Block(), expected);
}

TEST(ImageFillAll, OtherTypesTakeARunFromTheStartOfEachLine) {
  const TestImage image(IMAGE_I16, 6, 3, 1, 3);
  const std::vector<uint8_t> before = image.Block();
  const uint16_t value = 0x1234;
  EXPECT_EQ(ImageFillAll(image, &value), 0);
  std::vector<uint8_t> expected = before;
  for (size_t line = 0; line < 5; line++) {
    for (size_t x = 0; x < 8; x++) {
      expected[line * 24 + 2 * x] = 0x34;
      expected[line * 24 + 2 * x + 1] = 0x12;
    }
  }
  EXPECT_EQ(image.Block(), expected);
  EXPECT_NE(image.Get<uint16_t>(5, 0), value);  // behind leftPad's extra pixels the tail stays
}

TEST(ImageFillAll, NullClearsEverythingAndAnEmptyImageIsLeftAlone) {
  for (const int32_t type : PIXEL_TYPES) {
    const TestImage image(type, 5, 5, 2);
    EXPECT_EQ(ImageFillAll(image, nullptr), 0);
    for (const uint8_t byte : image.Block()) ASSERT_EQ(byte, 0);
    const TestImage empty(type, 0, 0, 1, 9);
    const std::vector<uint8_t> block = empty.Block();
    const uint64_t pixel = 0;
    EXPECT_EQ(ImageFillAll(empty, &pixel), 0);
    EXPECT_EQ(empty.Block(), block);
    EXPECT_EQ(ImageClearAll(empty), 0);
  }
  EXPECT_EQ(ImageFillAll(UNKNOWN_IMAGE, nullptr), 200);
}

TEST(MaskOverlap, AgreesWithCountingCoveredPixels) {
  const TestImage image(IMAGE_U8, 7, 5);
  const TestImage mask(IMAGE_U8, 4, 3);
  for (int32_t offsetX = -6; offsetX <= 9; offsetX++) {
    for (int32_t offsetY = -5; offsetY <= 7; offsetY++) {
      ZEL_SetImageOffset(mask, offsetX, offsetY);
      const OverlapRect overlap = MaskOverlap(*Record(image), *Record(mask));
      int32_t covered = 0;
      for (int32_t y = 0; y < 5; y++) {
        for (int32_t x = 0; x < 7; x++) {
          const bool inMask =
              x - offsetX >= 0 && x - offsetX < 4 && y - offsetY >= 0 && y - offsetY < 3;
          const bool inOverlap = x >= overlap.imageX && x < overlap.imageX + overlap.width &&
                                 y >= overlap.imageY && y < overlap.imageY + overlap.height;
          ASSERT_EQ(inMask, inOverlap);
          covered += inMask ? 1 : 0;
        }
      }
      ASSERT_EQ(overlap.IsEmpty(), covered == 0);
      if (covered == 0) continue;
      ASSERT_EQ(overlap.maskX, overlap.imageX - offsetX);
      ASSERT_EQ(overlap.maskY, overlap.imageY - offsetY);
    }
  }
}

TEST(MaskOverlap, FarOffsetsAndEmptyMasksCoverNothing) {
  const TestImage image(IMAGE_U8, 7, 5);
  const TestImage mask(IMAGE_U8, 4, 3);
  for (const int32_t far : {INT32_MIN, INT32_MIN + 1, INT32_MAX, INT32_MAX - 1}) {
    ZEL_SetImageOffset(mask, far, 0);
    EXPECT_TRUE(MaskOverlap(*Record(image), *Record(mask)).IsEmpty()) << far;
    ZEL_SetImageOffset(mask, 0, far);
    EXPECT_TRUE(MaskOverlap(*Record(image), *Record(mask)).IsEmpty()) << far;
  }
  const TestImage empty(IMAGE_U8, 0, 0);
  for (const int32_t offset : {-1, 0, 3}) {
    ZEL_SetImageOffset(empty, offset, offset);
    EXPECT_TRUE(MaskOverlap(*Record(image), *Record(empty)).IsEmpty());
    EXPECT_TRUE(MaskOverlap(*Record(empty), *Record(image)).IsEmpty());
  }
}

}  // namespace
