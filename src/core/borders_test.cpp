#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "core/images.h"
#include "harness/test_image.h"

namespace {

using namespace zel;
using test::TestImage;

constexpr int32_t FILLABLE_TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_RGB};

using Fill = Status (*)(ImageRef);

// The pixel that an outside column or row takes its value from; -1 stands for 0.
int32_t Mirrored(int32_t position, int32_t size) {
  if (position < 0) return -1 - position;
  return position >= size ? 2 * size - 1 - position : position;
}

int32_t Replicated(int32_t position, int32_t size) {
  return std::clamp(position, 0, size - 1);
}

int32_t Zeroed(int32_t position, int32_t size) {
  return position < 0 || position >= size ? -1 : position;
}

void CheckBorder(int32_t type, int32_t width, int32_t height, int32_t border, Fill fill,
                 int32_t (*from)(int32_t, int32_t)) {
  const TestImage image(type, width, height, border, 5);
  const TestImage before(type, width, height, border, 5);
  ASSERT_EQ(fill(image), 0);
  const auto bytes = static_cast<size_t>(image.Info().pixelBytes);
  const std::vector<uint8_t> zero(bytes, 0);
  for (int32_t y = -border; y < height + border; y++) {
    for (int32_t x = -border; x < width + border; x++) {
      const int32_t sourceX = from(x, width);
      const int32_t sourceY = from(y, height);
      const uint8_t* wanted =
          sourceX < 0 || sourceY < 0 ? zero.data() : before.At<uint8_t>(sourceX, sourceY);
      ASSERT_EQ(std::memcmp(image.At<uint8_t>(x, y), wanted, bytes), 0)
          << "type " << type << ", " << width << " x " << height << ", border " << border << ", at "
          << x << ", " << y;
    }
  }
}

TEST(Borders, MirrorRepeatsTheEdgePixelOnce) {
  for (const int32_t type : FILLABLE_TYPES) {
    for (int32_t border = 1; border <= 9; border++) {
      for (int32_t size = border; size <= border + 9; size++) {
        CheckBorder(type, size, size + 1, border, &BorderMirror, &Mirrored);
        CheckBorder(type, size + 1, size, border, &BorderMirror, &Mirrored);
      }
    }
  }
}

TEST(Borders, ReplicateTakesTheEdgePixel) {
  for (const int32_t type : FILLABLE_TYPES) {
    for (int32_t border = 1; border <= 9; border++) {
      for (int32_t size = 1; size <= 10; size++) {
        CheckBorder(type, size, 11 - size, border, &BorderReplicate, &Replicated);
      }
    }
  }
}

TEST(Borders, ZeroClears) {
  for (const int32_t type : FILLABLE_TYPES) {
    for (int32_t border = 1; border <= 9; border++) {
      for (int32_t size = 1; size <= 10; size++) {
        CheckBorder(type, size, 11 - size, border, &BorderZero, &Zeroed);
      }
    }
  }
}

TEST(Borders, MirrorOfASmallImageAddressesItAsIfItsSizeWereItsBorder) {
  // Told on the bare block: the image "begins" at row `effective`, after the padding of that many.
  for (const int32_t type : FILLABLE_TYPES) {
    for (int32_t border = 1; border <= 9; border++) {
      for (int32_t width = 1; width <= 9; width++) {
        for (int32_t height = 1; height <= 9; height++) {
          if (width >= border && height >= border) continue;
          const TestImage image(type, width, height, border, 5);
          const ImageInfo info = image.Info();
          std::vector<uint8_t> expected = image.Block();
          const int32_t effective = std::min(width, height);
          const int32_t leftPad = (effective * info.pixelBytes + 7) / 8 * 8 / info.pixelBytes;
          const auto at = [&](int32_t x, int32_t y) {
            return expected.begin() + (y + effective) * info.lineBytes +
                   (leftPad + x) * info.pixelBytes;
          };
          for (int32_t y = 0; y < height; y++) {
            for (int32_t k = 0; k < effective; k++) {
              std::copy_n(at(k, y), info.pixelBytes, at(-1 - k, y));
              std::copy_n(at(width - 1 - k, y), info.pixelBytes, at(width + k, y));
            }
          }
          for (int32_t k = 0; k < effective; k++) {
            const auto line = [&](int32_t y) {
              return expected.begin() + (y + effective) * info.lineBytes;
            };
            std::copy_n(line(k), info.lineBytes, line(-1 - k));
            std::copy_n(line(height - 1 - k), info.lineBytes, line(height + k));
          }
          ASSERT_EQ(BorderMirror(image), 0);
          ASSERT_EQ(image.Block(), expected) << width << " x " << height << ", border " << border;
        }
      }
    }
  }
}

TEST(Borders, ColumnPaddingOfImageRowsStays) {
  for (const Fill fill : {&BorderMirror, &BorderReplicate, &BorderZero}) {
    const TestImage image(IMAGE_U8, 10, 4, 3, 5);
    const std::vector<uint8_t> before = image.Block();
    ASSERT_EQ(fill(image), 0);
    const std::vector<uint8_t> after = image.Block();
    for (size_t row = 3; row < 7; row++) {
      for (const size_t padding : {0u, 4u, 21u, 23u}) {
        EXPECT_EQ(after[row * 24 + padding], before[row * 24 + padding]);
      }
    }
  }
}

TEST(Borders, AreRefusedInOrder) {
  for (const Fill fill : {&BorderMirror, &BorderReplicate, &BorderZero}) {
    EXPECT_EQ(fill(0x7FFF0000), 200);
    EXPECT_EQ(fill(TestImage(IMAGE_U8, 3, 3, 0)), 308);
    EXPECT_EQ(fill(TestImage(IMAGE_COMPLEX, 3, 3, 0)), 308);
    EXPECT_EQ(fill(TestImage(IMAGE_COMPLEX, 0, 0, 1)), 0);
    EXPECT_EQ(fill(TestImage(IMAGE_COMPLEX, 3, 3, 1)), 300);
    const TestImage empty(IMAGE_U8, 0, 0, 2, 4);
    const std::vector<uint8_t> block = empty.Block();
    EXPECT_EQ(fill(empty), 0);
    EXPECT_EQ(empty.Block(), block);
  }
}

}  // namespace
