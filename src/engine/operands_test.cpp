#include "engine/operands.h"

#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "core/heap.h"
#include "harness/test_image.h"
#include "tests/support/refused_memory.h"

namespace {

using namespace zel;
using test::PixelDifference;
using test::TestImage;

constexpr ImageRef UNKNOWN_IMAGE = 0x7FFF0000;
constexpr int32_t PIXEL_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

Image* Record(ImageRef reference) {
  Image* image = nullptr;
  ImageLookup(reference, &image);
  return image;
}

// As RefuseEachAllocation wants it: where the record of an image is refused it is
// STATUS_MEMORY_ERROR.
int32_t Refusal(Status status) {
  return status == STATUS_MEMORY_ERROR ? -STATUS_MEMORY_FULL : -status;
}

int32_t ImageCount() {
  int32_t count = 0;
  ZEL_GetImageReference(0, nullptr, &count);
  return count;
}

TestImage MaskAt(int32_t width, int32_t height, int32_t x, int32_t y) {
  TestImage mask(IMAGE_U8, width, height, 1, 5);
  ZEL_SetImageOffset(mask, x, y);
  return mask;
}

// ---- masks placed, and regions

TEST(MaskPlace, PointsAtTheMatchingMaskPixel) {
  const TestImage image(IMAGE_SGL, 7, 5);
  const TestImage mask = MaskAt(4, 3, -1, -2);
  PlacedMask placed{};
  ASSERT_EQ(MaskPlace(*Record(image), mask, &placed), 0);
  EXPECT_EQ(placed.overlap.width, 3);
  EXPECT_EQ(placed.overlap.height, 1);
  EXPECT_EQ(placed.view.Row(0), mask.At<uint8_t>(1, 2));
  EXPECT_FALSE(placed.view.SelectsAll());
}

TEST(MaskPlace, AMaskBesideTheImageCoversNothing) {
  const TestImage image(IMAGE_U8, 7, 5);
  for (const TestImage& mask : {MaskAt(4, 3, 7, 0), MaskAt(4, 3, 0, -3), MaskAt(0, 0, 3, 3)}) {
    PlacedMask placed{};
    placed.overlap.width = placed.overlap.height = 9;
    ASSERT_EQ(MaskPlace(*Record(image), mask, &placed), 0);
    EXPECT_TRUE(placed.overlap.IsEmpty());
  }
}

TEST(MaskPlace, RefusesUnknownImagesAndOtherTypes) {
  const TestImage image(IMAGE_U8, 7, 5);
  const TestImage words(IMAGE_I16, 4, 3);
  PlacedMask placed{};
  EXPECT_EQ(MaskPlace(*Record(image), words, &placed), 301);
  EXPECT_EQ(MaskPlace(*Record(image), UNKNOWN_IMAGE, &placed), 200);
  EXPECT_EQ(MaskPlace(*Record(image), 0, &placed), 200);
}

TEST(RegionOf, WithoutAMaskIsTheWholeImage) {
  for (const int32_t type : PIXEL_TYPES) {
    const TestImage image(type, 7, 5, 2);
    for (const ImageRef mask : {ImageRef{0}, ImageRef{image}}) {
      Region region{};
      ASSERT_EQ(RegionOf(image, mask, &region), 0);
      EXPECT_EQ(region.view.Row<void>(3), image.At<void>(0, 3));
      EXPECT_EQ(region.view.width, 7);
      EXPECT_EQ(region.view.height, 5);
      EXPECT_EQ(region.view.type, type);
      EXPECT_EQ(region.view.pixelBytes, image.Info().pixelBytes);
      EXPECT_TRUE(region.mask.SelectsAll());
      EXPECT_EQ(region.mask.Row(3), nullptr);
    }
  }
}

TEST(RegionOf, UnderAMaskIsWhatItCovers) {
  for (const int32_t type : PIXEL_TYPES) {
    const TestImage image(type, 7, 5, 2);
    const TestImage mask = MaskAt(9, 3, 2, -1);
    Region region{};
    ASSERT_EQ(RegionOf(image, mask, &region), 0);
    EXPECT_EQ(region.view.width, 5);
    EXPECT_EQ(region.view.height, 2);
    EXPECT_EQ(region.view.Row<void>(1), image.At<void>(2, 1));
    EXPECT_EQ(region.mask.Row(1), mask.At<uint8_t>(0, 2));
  }
}

TEST(RegionOf, UnderAMaskBesideTheImageIsEmpty) {
  const TestImage image(IMAGE_U8, 7, 5);
  const TestImage mask = MaskAt(4, 4, 100, 0);
  Region region{};
  ASSERT_EQ(RegionOf(image, mask, &region), 0);
  EXPECT_TRUE(region.view.IsEmpty());
  EXPECT_EQ(region.view.type, IMAGE_U8);
}

TEST(RegionOf, AnImageWithoutPixelsHasNoOrigin) {
  ImageRef opaque = 0;
  ASSERT_EQ(ZEL_Create(&opaque, IMAGE_OPAQUE, 0), 0);
  ASSERT_EQ(ZEL_SetImageSize(opaque, 7, 5), 0);
  Region region{};
  ASSERT_EQ(RegionOf(opaque, 0, &region), 0);
  EXPECT_EQ(region.view.origin, nullptr);
  EXPECT_EQ(region.view.width, 7);
  const TestImage mask = MaskAt(2, 2, 1, 1);
  ASSERT_EQ(RegionOf(opaque, mask, &region), 0);
  EXPECT_EQ(region.view.origin, nullptr);
  EXPECT_EQ(region.view.width, 2);
  ZEL_Dispose(opaque);
}

TEST(RegionOf, LooksAtTheImageFirst) {
  const TestImage image(IMAGE_U8, 7, 5);
  const TestImage words(IMAGE_I16, 7, 5);
  Region region{};
  EXPECT_EQ(RegionOf(UNKNOWN_IMAGE, words, &region), 200);
  EXPECT_EQ(RegionOf(image, UNKNOWN_IMAGE, &region), 200);
  EXPECT_EQ(RegionOf(image, words, &region), 301);
  EXPECT_EQ(RegionOf(UNKNOWN_IMAGE, UNKNOWN_IMAGE, &region), 200);
}

// ---- temporary images

TEST(ReplacementImage, TakesThePlaceOnlyOnceWritten) {
  const TestImage image(IMAGE_U8, 4, 4);
  const auto before = image.Block();
  {
    ReplacementImage unwritten;
    EXPECT_EQ(unwritten.image(), nullptr);
    ASSERT_EQ(unwritten.Create(image, *Record(image)), 0);
    EXPECT_NE(unwritten.image(), nullptr);
    *ViewOf(*unwritten.image()).Row<uint8_t>(0) = static_cast<uint8_t>(before[0] + 1);
  }
  EXPECT_EQ(image.Block(), before);
  {
    ReplacementImage written;
    ASSERT_EQ(written.Create(image, *Record(image)), 0);
    std::memset(ViewOf(*written.image()).Row<void>(0), 77, 4);
    written.Written();
    EXPECT_EQ(image.Block(), before) << "before the end of the scope";
  }
  for (int32_t x = 0; x < 4; x++) EXPECT_EQ(image.Get<uint8_t>(x, 0), 77);
  EXPECT_EQ(ImageCount(), 1);
  ImageRef reference = 0;
  EXPECT_EQ(ZEL_GetImageReference(0, &reference, nullptr), 2);  // flags stay with their rows
}

TEST(ReplacementImage, IsLikeTheRecordThatItIsMadeAfter) {
  const TestImage image(IMAGE_U8, 4, 4);
  const TestImage like(IMAGE_SGL, 9, 3, 2);
  ZEL_SetImageCalibration(like, 4, 0.5f, 0.25f);
  {
    ReplacementImage replacement;
    ASSERT_EQ(replacement.Create(image, *Record(like)), 0);
    replacement.Written();
  }
  const ImageInfo info = image.Info();
  EXPECT_EQ(info.type, IMAGE_SGL);
  EXPECT_EQ(info.width, 9);
  EXPECT_EQ(info.height, 3);
  EXPECT_EQ(info.border, 2);
  EXPECT_EQ(info.xStep, 0.5f);
}

TEST(ReplacementImage, ARefusedAllocationLeavesNothingBehind) {
  const TestImage image(IMAGE_U8, 40, 40);
  const auto before = image.Block();
  test::RefuseEachAllocation([] {},
                             [&] {
                               ReplacementImage replacement;
                               return Refusal(replacement.Create(image, *Record(image)));
                             });
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(ImageCount(), 1);
}

TEST(ScratchImage, LivesForItsScope) {
  const TestImage other(IMAGE_U8, 1, 1);
  for (const int32_t type : PIXEL_TYPES) {
    ScratchImage scratch;
    EXPECT_EQ(scratch.image(), nullptr);
    ASSERT_EQ(scratch.Create(static_cast<int16_t>(type), 9, 3, 2), 0);
    EXPECT_EQ(scratch.image()->type, type);
    EXPECT_EQ(scratch.image()->width, 9);
    EXPECT_EQ(scratch.image()->height, 3);
    EXPECT_EQ(scratch.image()->border, 2);
    EXPECT_EQ(ImageCount(), 2);
  }
  EXPECT_EQ(ImageCount(), 1);
}

TEST(ScratchImage, ARefusedAllocationLeavesNothingBehind) {
  const TestImage other(IMAGE_U8, 1, 1);
  test::RefuseEachAllocation([] {},
                             [] {
                               ScratchImage scratch;
                               return Refusal(scratch.Create(IMAGE_I16, 40, 40, 3));
                             });
  EXPECT_EQ(ImageCount(), 1);
}

// ---- the operands of a call

TEST(Operands, TheSourceIsLookedUpAndItsTypeChecked) {
  const TestImage colour(IMAGE_RGB, 4, 4);
  Operands unknown;
  unknown.Source(UNKNOWN_IMAGE, &TypeIsScalar);
  EXPECT_EQ(unknown.status(), 200);
  Operands none;
  none.Source(0, &TypeIsScalar);
  EXPECT_EQ(none.status(), 200);
  Operands wrong;
  wrong.Source(colour, &TypeIsScalar);
  EXPECT_EQ(wrong.status(), 301);
  Operands wrongAsTold;
  wrongAsTold.Source(colour, &TypeIsScalar, STATUS_BAD_OPERAND_TYPE);
  EXPECT_EQ(wrongAsTold.status(), 302);
  Operands right;
  right.Source(colour, &TypeHasPixels);
  EXPECT_EQ(right.status(), 0);
  EXPECT_EQ(&right.source(), Record(colour));
}

TEST(Operands, TheDestinationIsTheSourceOrOfItsType) {
  const TestImage source(IMAGE_U8, 7, 5);
  const TestImage same(IMAGE_U8, 1, 1);
  const TestImage other(IMAGE_SGL, 1, 1);
  const auto settle = [&](ImageRef destination, Image** settled) {
    Operands operands;
    operands.Source(source, &TypeIsScalar);
    operands.Destination(destination);
    *settled = operands.destination();
    return operands.status();
  };
  Image* settled = nullptr;
  EXPECT_EQ(settle(0, &settled), 0);
  EXPECT_EQ(settled, Record(source));
  EXPECT_EQ(settle(source, &settled), 0);
  EXPECT_EQ(settled, Record(source));
  EXPECT_EQ(settle(same, &settled), 0);
  EXPECT_EQ(settled, Record(same));
  EXPECT_EQ(settle(other, &settled), 304);
  EXPECT_EQ(settle(UNKNOWN_IMAGE, &settled), 200);
}

TEST(Operands, FailuresCountInTheOrderOfTheStepsAndTheFirstIsKept) {
  const TestImage source(IMAGE_U8, 7, 5);
  const TestImage words(IMAGE_I16, 7, 5);
  {
    Operands operands;
    operands.Source(words, &TypeIsU8);
    operands.Destination(UNKNOWN_IMAGE);
    operands.Mask(UNKNOWN_IMAGE);
    operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
    operands.TakeInfo();
    operands.TakeSize();
    operands.TakePixels();
    EXPECT_EQ(operands.status(), 301);
    EXPECT_TRUE(operands.From().IsEmpty());
    EXPECT_TRUE(operands.To().IsEmpty());
  }
  {
    Operands operands;
    operands.Source(source, &TypeIsU8);
    operands.Destination(words);
    operands.Mask(UNKNOWN_IMAGE);
    EXPECT_EQ(operands.status(), 304);
  }
  {
    Operands operands;
    operands.Source(source, &TypeIsU8);
    operands.Mask(words);
    operands.Destination(UNKNOWN_IMAGE);
    EXPECT_EQ(operands.status(), 301);
  }
  {
    Operands operands;
    operands.Source(source, &TypeIsU8);
    operands.Mask(UNKNOWN_IMAGE);
    operands.Destination(words);
    EXPECT_EQ(operands.status(), 200);
  }
}

TEST(Operands, AfterAFailureTheDestinationIsAsItWas) {
  const TestImage source(IMAGE_U8, 7, 5);
  const TestImage words(IMAGE_I16, 7, 5);
  const TestImage destination(IMAGE_U8, 3, 3, 1);
  const auto before = destination.Block();
  ZEL_SetImageOffset(source, 5, 6);
  {
    Operands operands;
    operands.Source(source, &TypeIsU8);
    operands.Destination(destination);
    operands.Mask(words);
    operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
    operands.TakeInfo();
    operands.TakeSize();
    operands.TakePixels();
    EXPECT_EQ(operands.status(), 301);
  }
  EXPECT_EQ(destination.Block(), before);
  EXPECT_EQ(destination.Info().offsetX, 0);
}

TEST(Operands, TheDestinationTakesSizeInfoAndPixels) {
  for (const int32_t type : PIXEL_TYPES) {
    const TestImage source(type, 7, 5, 2, 3);
    ZEL_SetImageCalibration(source, 4, 0.5f, 0.25f);
    ZEL_SetImageOffset(source, 5, 6);
    const TestImage destination(type, 3, 3, 1);
    Operands operands;
    operands.Source(source, &TypeHasPixels);
    operands.Destination(destination);
    operands.TakeSize();
    ASSERT_EQ(destination.width(), 7);
    ASSERT_EQ(destination.height(), 5);
    ASSERT_EQ(destination.Info().border, 1);
    ASSERT_EQ(destination.Info().offsetX, 0);
    operands.TakeInfo();
    ASSERT_EQ(destination.Info().offsetX, 5);
    ASSERT_EQ(destination.Info().yStep, 0.25f);
    operands.TakePixels();
    ASSERT_EQ(operands.status(), 0);
    ASSERT_EQ(PixelDifference(destination, source), "");
  }
}

TEST(Operands, ViewsAreOfTheWholeImages) {
  const TestImage source(IMAGE_I16, 7, 5, 2);
  const TestImage destination(IMAGE_I16, 3, 3, 1);
  Operands operands;
  operands.Source(source, &TypeIsScalar);
  operands.Destination(destination);
  operands.Mask(0);
  operands.TakeSize();
  ASSERT_EQ(operands.status(), 0);
  EXPECT_FALSE(operands.HasMask());
  EXPECT_TRUE(operands.MaskOver().SelectsAll());
  EXPECT_EQ(operands.From().Row<void>(4), source.At<void>(0, 4));
  EXPECT_EQ(operands.To().Row<void>(4), destination.At<void>(0, 4));
  EXPECT_EQ(operands.To().width, 7);
  EXPECT_EQ(operands.To().height, 5);
}

TEST(Operands, ViewsAreOfWhatLiesUnderTheMask) {
  const TestImage source(IMAGE_I16, 7, 5, 2);
  const TestImage destination(IMAGE_I16, 3, 3, 1);
  const TestImage mask = MaskAt(3, 9, 2, -1);
  Operands operands;
  operands.Source(source, &TypeIsScalar);
  operands.Destination(destination);
  operands.Mask(mask);
  operands.WriteBeside(Operands::CAN_RUN_IN_PLACE);
  operands.TakePixels();
  ASSERT_EQ(operands.status(), 0);
  EXPECT_TRUE(operands.HasMask());
  EXPECT_EQ(operands.overlap().imageX, 2);
  for (const PixelView& view : {operands.From(), operands.To()}) {
    EXPECT_EQ(view.width, 3);
    EXPECT_EQ(view.height, 5);
  }
  EXPECT_EQ(operands.From().Row<void>(1), source.At<void>(2, 1));
  EXPECT_EQ(operands.To().Row<void>(1), destination.At<void>(2, 1));
  EXPECT_EQ(operands.MaskOver().Row(0), mask.At<uint8_t>(0, 1));
}

TEST(Operands, TheSourceAsMaskIsNoMask) {
  const TestImage source(IMAGE_I16, 7, 5);
  Operands operands;
  operands.Source(source, &TypeIsScalar);
  operands.Mask(source);
  EXPECT_EQ(operands.status(), 0);
  EXPECT_FALSE(operands.HasMask());
}

TEST(Operands, InPlaceWhatCanRunInPlaceWritesToTheSource) {
  const TestImage source(IMAGE_U8, 7, 5, 1);
  const TestImage mask = MaskAt(3, 3, 0, 0);
  for (const ImageRef placed : {ImageRef{0}, ImageRef{mask}}) {
    Operands operands;
    operands.Source(source, &TypeIsU8);
    operands.Destination(0);
    operands.Mask(placed);
    operands.WriteBeside(Operands::CAN_RUN_IN_PLACE);
    operands.TakeInfo();
    operands.TakeSize();
    operands.TakePixels();
    ASSERT_EQ(operands.status(), 0);
    EXPECT_EQ(operands.destination(), Record(source));
    EXPECT_EQ(operands.To().origin, operands.From().origin);
    EXPECT_EQ(ImageCount(), 2);
  }
}

TEST(Operands, InPlaceWhatCannotRunInPlaceWritesToATemporaryImage) {
  const TestImage source(IMAGE_U8, 7, 5, 1);
  for (const bool writes : {false, true}) {
    const auto before = source.Pixels();
    {
      Operands operands;
      operands.Source(source, &TypeIsU8);
      operands.Destination(source);
      operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
      operands.TakeSize();
      ASSERT_EQ(operands.status(), 0);
      EXPECT_NE(operands.destination(), Record(source));
      EXPECT_EQ(operands.destination()->border, 1);
      if (writes) operands.Written();
      const PixelView to = operands.To();
      for (int64_t y = 0; y < to.height; y++) std::memset(to.Row<void>(y), 9, 7);
      EXPECT_EQ(source.Pixels(), before);
    }
    EXPECT_EQ(source.Pixels(), writes ? std::vector<uint8_t>(35, 9) : before);
    EXPECT_EQ(ImageCount(), 1);
  }
}

TEST(Operands, AnotherDestinationNeedsNoTemporaryImage) {
  const TestImage source(IMAGE_U8, 7, 5);
  const TestImage destination(IMAGE_U8, 1, 1);
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Destination(destination);
  operands.WriteBeside(Operands::CANNOT_RUN_IN_PLACE);
  EXPECT_EQ(operands.destination(), Record(destination));
  EXPECT_EQ(ImageCount(), 2);
}

TEST(Operands, TheMaskAsDestinationIsReadToTheEndAndReplacedThen) {
  for (const auto inPlace : {Operands::CAN_RUN_IN_PLACE, Operands::CANNOT_RUN_IN_PLACE}) {
    for (const bool writes : {false, true}) {
      const TestImage source(IMAGE_U8, 7, 5, 0, 3);
      const TestImage mask = MaskAt(4, 4, 2, 2);
      const auto before = mask.Pixels();
      {
        Operands operands;
        operands.Source(source, &TypeIsU8);
        operands.Destination(mask);
        operands.Mask(mask);
        operands.WriteBeside(inPlace);
        if (writes) operands.TakePixels();
        ASSERT_EQ(operands.status(), 0);
        EXPECT_EQ(mask.Pixels(), before);
        EXPECT_EQ(operands.MaskOver().Row(0), mask.At<uint8_t>(0, 0));
        EXPECT_NE(operands.destination(), Record(mask));
      }
      EXPECT_EQ(mask.Pixels(), writes ? source.Pixels() : before);
      EXPECT_EQ(mask.Info().offsetX, 2);
      EXPECT_EQ(ImageCount(), 2);
    }
  }
}

TEST(Operands, ARefusedAllocationLeavesTheMaskAndNothingBehind) {
  const TestImage source(IMAGE_U8, 70, 50);
  std::optional<TestImage> mask;
  std::vector<uint8_t> before;
  test::RefuseEachAllocation(
      [&] {
        mask.emplace(MaskAt(4, 4, 2, 2));
        before = mask->Pixels();
      },
      [&] {
        Status status = STATUS_OK;
        {
          Operands operands;
          operands.Source(source, &TypeIsU8);
          operands.Destination(*mask);
          operands.Mask(*mask);
          operands.WriteBeside(Operands::CAN_RUN_IN_PLACE);
          operands.TakeInfo();
          operands.TakePixels();
          status = operands.status();
        }
        if (status != STATUS_OK) {
          EXPECT_EQ(mask->Pixels(), before);
        }
        EXPECT_EQ(ImageCount(), 2);
        return Refusal(status);
      });
}

}  // namespace
