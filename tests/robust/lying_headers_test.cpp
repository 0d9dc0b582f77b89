// Small files whose headers claim very large images: what a read costs follows what the file holds.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <time.h>

#include <string>
#include <vector>

#include "harness/checks.h"
#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/tiff_file.h"
#include "orlune_ptk.h"
#include "tests/support/process.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::ResidentBytes;

constexpr double SECONDS_ALLOWED = 0.1;        // of the processor's time
constexpr int64_t RESIDENT_ALLOWED = 4 << 20;  // bytes
constexpr int32_t TYPES[] = {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB};

double ProcessorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

struct Claim {
  std::string name;
  Bytes file;
};

Bytes Tiff(uint32_t width, uint32_t height, uint32_t bits, uint32_t photometric) {
  test::TiffFile file = test::TiffOf(width, height, {bits}, {{0x5A, 0x5A, 0x5A}}, height);
  file.Set(256, test::TIFF_LONG, {width}).Set(257, test::TIFF_LONG, {height});
  file.Set(278, test::TIFF_LONG, {height}).Set(262, test::TIFF_SHORT, {photometric});
  // Without counts the one strip is taken to hold everything.
  return file.Drop(279).Build();
}

std::vector<Claim> Claims() {
  std::vector<Claim> claims;
  const std::pair<uint32_t, uint32_t> sizes[] = {
      {2000000000, 1}, {1, 250000000}, {46000, 46000}, {16001, 16001}, {3, 60000000}};
  for (const auto& [width, height] : sizes) {
    const std::string size = std::to_string(width) + " x " + std::to_string(height);
    for (const uint32_t photometric : {0u, 1u}) {
      for (const uint32_t bits : {1u, 8u, 16u}) {
        claims.push_back({"tiff of " + std::to_string(bits) + " bits, photometric " +
                              std::to_string(photometric) + ", " + size,
                          Tiff(width, height, bits, photometric)});
      }
    }
    for (const uint32_t bits : {4u, 8u, 24u}) {
      claims.push_back({"bmp of " + std::to_string(bits) + " bits, " + size,
                        test::BmpFile({.width = static_cast<int32_t>(width),
                                       .height = static_cast<int32_t>(height),
                                       .bits = bits,
                                       .rows = Bytes(200000, 0x5A)})});
    }
    if (width > 65535 || height > 65535) continue;
    for (uint32_t code = 1; code <= 6; code++) {
      claims.push_back({"native " + std::to_string(code) + ", " + size,
                        test::NativeFile(width, height, code, Bytes(5, 0x5A))});
    }
  }
  return claims;
}

// A read of a file into an image, with what it costs. An image of such a size may not be had at
// all.
void ExpectCheapRead(ImageRef image, const std::string& about) {
  SCOPED_TRACE(about);
  const int64_t residentBefore = ResidentBytes();
  const double secondsBefore = ProcessorSeconds();
  const int32_t result = ZEL_ReadFile(image, "f", 0, nullptr, nullptr);
  EXPECT_LT(ProcessorSeconds() - secondsBefore, SECONDS_ALLOWED);
  EXPECT_LT(ResidentBytes() - residentBefore, RESIDENT_ALLOWED);
  EXPECT_TRUE(result == 0 || result == ZEL_ERR_MEMORY_FULL) << result;
}

TEST(LyingHeaders, CostNoMoreThanTheirFilesHold) {
  if (test::MemoryIsWatched()) GTEST_SKIP();  // and marked, byte by byte, when it is given out
  MemoryFiles files;
  for (const Claim& claim : Claims()) {
    files.Put("f", claim.file);
    for (const int32_t type : TYPES) {
      ImageRef image = 0;
      ASSERT_EQ(ZEL_Create(&image, static_cast<int16_t>(type), 2), 0);
      const std::string about = claim.name + " into type " + std::to_string(type);
      ExpectCheapRead(image, about);
      ZEL_Dispose(image);
    }
  }
}

// What a file that is merely cut lacks is inverted with the rest, as ever.
TEST(LyingHeaders, LeaveWhatIsMissingOfAnOrdinaryImageInverted) {
  MemoryFiles files;
  files.Put("f", Tiff(100, 50, 8, 0));
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_U8, 0), 0);
  for (int round = 0; round < 2; round++) {
    ASSERT_EQ(ZEL_ReadFile(image, "f", 0, nullptr, nullptr), 0);
    float pixel = 0;
    ZEL_GetPixelValue(image, 1, 0, &pixel);
    EXPECT_EQ(pixel, 0xA5);
    ZEL_GetPixelValue(image, 99, 49, &pixel);
    EXPECT_EQ(pixel, round == 0 ? 255 : 0);
  }
  ZEL_Dispose(image);
}

// The claim is there all the same: every pixel can be read, and what nothing was read for is 0.
TEST(LyingHeaders, GiveAnImageOfTheClaimedSize) {
  if (test::MemoryIsWatched()) GTEST_SKIP();  // and marked, byte by byte, when it is given out
  MemoryFiles files;
  files.Put("f", Tiff(46000, 46000, 8, 0));
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_U8, 0), 0);
  const int32_t result = ZEL_ReadFile(image, "f", 0, nullptr, nullptr);
  if (result == ZEL_ERR_MEMORY_FULL) GTEST_SKIP();
  ASSERT_EQ(result, 0);
  float pixel = -1;
  ZEL_GetPixelValue(image, 2, 0, &pixel);
  EXPECT_EQ(pixel, 0xA5);
  for (const int32_t at : {3, 30000, 45999}) {
    ZEL_GetPixelValue(image, at, at, &pixel);
    EXPECT_EQ(pixel, 0);
  }
  ZEL_Dispose(image);
}

}  // namespace
