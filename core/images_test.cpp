#include <gtest/gtest.h>

#include "tests/support/test_image.h"

namespace {

using test::TestImage;

TEST(Images, LayoutOfATenByFourImageWithBorderThree) {
  const TestImage image(IMAGE_U8, 10, 4, 3);
  const ImageInfo info = image.Info();
  EXPECT_EQ(info.lineWidth, 24);
  EXPECT_EQ(info.totalBytes, 240);
}

}  // namespace
