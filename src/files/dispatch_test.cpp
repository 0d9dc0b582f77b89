#include "files/dispatch.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "harness/file_bytes.h"
#include "harness/memory_files.h"
#include "harness/test_image.h"

namespace {

using test::Bytes;
using test::MemoryFiles;
using test::TestImage;

constexpr int32_t NATIVE = 1;
constexpr int32_t TIFF = 2;
constexpr int32_t BMP = 3;

int32_t Read(const TestImage& image, const char* path) {
  return ZEL_ReadFile(image, path, 0, nullptr, nullptr);
}

int32_t Write(const TestImage& image, const char* path, int32_t format) {
  return ZEL_WriteFile(image, path, format, nullptr, 0);
}

FileInfo InfoOf(const char* path, int32_t bitsBefore = 77) {
  FileInfo info{-1, bitsBefore, -1, -1, -1};
  EXPECT_EQ(ZEL_PtkFileInfo(path, &info), 0);
  return info;
}

void ExpectInfo(const FileInfo& info, int32_t type, int32_t bits, int32_t planes, int32_t width,
                int32_t height) {
  EXPECT_EQ(info.fileType, type);
  EXPECT_EQ(info.bitsPerPixel, bits);
  EXPECT_EQ(info.planes, planes);
  EXPECT_EQ(info.width, width);
  EXPECT_EQ(info.height, height);
}

TEST(FileDispatch, AMissingFileIs510AndNoFailureOfTheInformation) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  for (const char* path : {"", "missing.tif", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(Read(image, path), -510);
    ExpectInfo(InfoOf(path), 0, 77, 0, 0, 0);
  }
}

TEST(FileDispatch, ANullPathCannotBeWritten) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  EXPECT_EQ(Write(image, nullptr, NATIVE), -503);
  EXPECT_EQ(Write(image, "", BMP), -503);
}

TEST(FileDispatch, ANullInfoIs3009) {
  EXPECT_EQ(ZEL_PtkFileInfo("x", nullptr), -3009);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_PtkFileInfo");
}

TEST(FileDispatch, TheImageIsLookedUpBeforeThePath) {
  MemoryFiles files;
  int32_t count = -1;
  EXPECT_EQ(ZEL_ReadFile(4711, "missing", 1, nullptr, &count), -200);
  EXPECT_EQ(count, 256);
  files.Put("kept", {1, 2, 3});
  EXPECT_EQ(ZEL_WriteFile(4711, "kept", NATIVE, nullptr, 0), -200);
  EXPECT_EQ(files.Get("kept"), Bytes({1, 2, 3}));
  EXPECT_EQ(files.Count(test::FileOperation::Open), 0);
}

TEST(FileDispatch, FailuresAreReportedUnderTheExportsNames) {
  MemoryFiles files;
  char name[256];
  const TestImage image(IMAGE_U8, 4, 4);
  Read(image, "missing");
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_ReadFile");
  Write(image, "", BMP);
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_WriteFile");
}

TEST(FileDispatch, AFileWithoutASignatureIs509) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  const Bytes whole = test::NativeFile(2, 2, 1, Bytes(4));
  const std::vector<Bytes> strangers = {
      {},
      {'B'},
      {'I', 'I'},
      Bytes(64),
      {'I', 'I', 0, 42, 8, 0, 0, 0},
      {'M', 'M', 42, 0, 8, 0, 0, 0},
      {'I', 'M', 42, 0, 8, 0, 0, 0},
      {'B', 'M', 11, 0, 0, 0, 0, 0, 0, 0},
      {'o', 'r', 'l', 'n', 0, 0},
  };
  for (const Bytes& stranger : strangers) {
    files.Put("f", stranger);
    EXPECT_EQ(Read(image, "f"), -509);
    ExpectInfo(InfoOf("f"), 0, 77, 0, 0, 0);
  }
  EXPECT_EQ(files.OpenFiles(), 0);
}

TEST(FileDispatch, AFileOfTheSignatureAloneFailsInItsHeader) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  files.Put("native", {'O', 'R', 'L', 'N'});
  files.Put("bmp", {'B', 'M', 6, 0, 0, 0});
  files.Put("tiff", {'I', 'I', 42});
  files.Put("tiff2", {'M', 'M', 0, 42});
  for (const char* path : {"native", "bmp", "tiff", "tiff2"}) {
    EXPECT_EQ(Read(image, path), -500) << path;
    ExpectInfo(InfoOf(path), 0, 77, 0, 0, 0);
  }
}

TEST(FileDispatch, ABmpWithATrailingByteIsNotRecognised) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  Bytes file = test::BmpFile({.rows = Bytes(48)});
  files.Put("f", file);
  EXPECT_EQ(Read(image, "f"), 0);
  file.push_back(0);
  files.Put("f", file);
  EXPECT_EQ(Read(image, "f"), -509);
}

TEST(FileDispatch, ARefusedHeaderLeavesTheImageAsItWas) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 6, 5, 2);
  ZEL_SetImageCalibration(image, 9, 2.0f, 3.0f);
  const Bytes before = image.Block();
  files.Put("f", test::NativeFile(10, 10, 1, Bytes(100), 1.0f, 3, 2));
  EXPECT_EQ(Read(image, "f"), -500);
  EXPECT_EQ(image.Block(), before);
  EXPECT_EQ(image.Info().width, 6);
  EXPECT_EQ(image.Info().unit, 9);
  EXPECT_EQ(image.Info().xStep, 2.0f);
}

TEST(FileDispatch, OnlyNativeFilesBringACalibration) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 8, 6);
  files.Put("native", test::NativeFile(4, 4, 1, Bytes(16), 0.25f, 0xFFFE));
  EXPECT_EQ(Read(image, "native"), 0);
  EXPECT_EQ(image.Info().unit, -2);
  EXPECT_EQ(image.Info().xStep, 0.25f);
  EXPECT_EQ(image.Info().yStep, 0.25f);
  files.Put("bmp", test::BmpFile({.rows = Bytes(48)}));
  EXPECT_EQ(Read(image, "bmp"), 0);
  EXPECT_EQ(image.Info().unit, 3);
  EXPECT_EQ(image.Info().xStep, 1.0f);
  EXPECT_EQ(image.Info().yStep, 1.0f);
}

TEST(FileDispatch, AnyOtherFormatNumberWritesBmp) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  for (const int32_t format : {0, 3, 99, -1, 4, 5, INT32_MIN}) {
    EXPECT_EQ(Write(image, "f", format), 0);
    ExpectInfo(InfoOf("f"), 3, 8, 1, 4, 4);
  }
  EXPECT_EQ(Write(image, "f", NATIVE), 0);
  ExpectInfo(InfoOf("f"), 1, 8, 1, 4, 4);
  EXPECT_EQ(Write(image, "f", TIFF), 0);
  ExpectInfo(InfoOf("f"), 2, 8, 1, 4, 4);
}

TEST(FileDispatch, WritingLeavesAnImageWithLinePaddingUnchanged) {
  MemoryFiles files;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL, IMAGE_COMPLEX, IMAGE_RGB}) {
    for (const int32_t format : {NATIVE, TIFF, BMP}) {
      const TestImage image(type, 7, 5, 3);
      const Bytes before = image.Block();
      Write(image, "f", format);
      EXPECT_EQ(image.Block(), before) << type << ' ' << format;
      EXPECT_EQ(files.OpenFiles(), 0);
    }
  }
}

TEST(FileDispatch, CountsAndTablesAreWrittenOnlyWhereATableIs) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4);
  files.Put("native", test::NativeFile(4, 4, 1, Bytes(16)));
  Bytes colours(64);
  for (size_t i = 0; i < 64; i++) colours[i] = static_cast<uint8_t>(i * 3 + 1);
  files.Put("bmp", test::BmpFile({.width = 8, .bits = 4, .colours = colours, .rows = Bytes(24)}));

  std::vector<RGBValue> table(256, 0xAB123456);
  const std::vector<RGBValue> untouched = table;
  int32_t count = -1;
  EXPECT_EQ(ZEL_ReadFile(image, "native", 1, table.data(), &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(table, untouched);
  EXPECT_EQ(ZEL_ReadFile(image, "bmp", 0, table.data(), &count), 0);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(table, untouched);
  EXPECT_EQ(ZEL_ReadFile(image, "missing", 1, table.data(), &count), -510);
  EXPECT_EQ(count, 256);
  EXPECT_EQ(table, untouched);
  EXPECT_EQ(ZEL_ReadFile(image, "bmp", 1, nullptr, nullptr), 0);

  // 0x10000 is non-zero although its low 16 bits are 0.
  EXPECT_EQ(ZEL_ReadFile(image, "bmp", 0x10000, table.data(), &count), 0);
  EXPECT_EQ(count, 256);
  for (uint32_t i = 0; i < 256; i++) {
    const uint32_t expected =
        i < 16 ? static_cast<uint32_t>(test::LittleNumber(colours, 4 * i, 3)) : i * 0x010101;
    EXPECT_EQ(table[i], 0xAB000000 | expected) << i;
  }
}

TEST(FileDispatch, AnOpaqueImageIsResizedAndThenRefused) {
  MemoryFiles files;
  files.Put("f", test::NativeFile(4, 4, 1, Bytes(16), 0.5f, 7));
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, IMAGE_OPAQUE, 0), 0);
  EXPECT_EQ(ZEL_ReadFile(image, "f", 0, nullptr, nullptr), -300);
  ImageInfo info{};
  ZEL_GetImageInfo(image, &info);
  EXPECT_EQ(info.width, 4);
  EXPECT_EQ(info.unit, 7);
  for (const int32_t format : {NATIVE, TIFF, BMP}) {
    EXPECT_EQ(ZEL_WriteFile(image, "out", format, nullptr, 0), -500);
  }
  ZEL_Dispose(image);
}

TEST(FileDispatch, AnImageOfNoTypeIsRefused) {
  MemoryFiles files;
  files.Put("f", test::NativeFile(4, 4, 1, Bytes(16)));
  ImageRef image = 0;
  ASSERT_EQ(ZEL_Create(&image, 17, 0), -300);
  EXPECT_EQ(ZEL_ReadFile(image, "f", 0, nullptr, nullptr), -300);
  for (const int32_t format : {NATIVE, TIFF, BMP}) {
    EXPECT_EQ(ZEL_WriteFile(image, "out", format, nullptr, 0), -500);
  }
  ZEL_Dispose(image);
}

TEST(FileDispatch, SizesThatNoImageCanHaveAre101) {
  MemoryFiles files;
  const TestImage image(IMAGE_U8, 4, 4, 1);
  files.Put("f", test::NativeFile(65535, 65535, 1, Bytes(16), 0.5f, 7));
  EXPECT_EQ(Read(image, "f"), -101);
  EXPECT_EQ(image.Info().width, 4);
  EXPECT_EQ(image.Info().unit, 7) << "the calibration comes before the size";
}

// On the machine's own files.
class OnDisk : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "ptk_files_XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }
  std::string Path(const char* name) const { return (folder_ / name).string(); }

  std::filesystem::path folder_;
};

TEST_F(OnDisk, FoldersPipesAndDevicesAreRefusedWithoutWaiting) {
  const TestImage image(IMAGE_U8, 4, 4);
  const std::string pipe = Path("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path : {pipe, folder_.string(), std::string("/dev/null"),
                                  std::string("/dev/zero"), Path("pipe/below")}) {
    EXPECT_EQ(Read(image, path.c_str()), -510) << path;
    ExpectInfo(InfoOf(path.c_str()), 0, 77, 0, 0, 0);
    EXPECT_EQ(Write(image, path.c_str(), NATIVE), -503) << path;
  }
}

TEST_F(OnDisk, AFileBeyondTwoGigabytesIs510) {
  const TestImage image(IMAGE_U8, 4, 4);
  const std::string path = Path("large");
  std::ofstream(path).put('x');
  std::filesystem::resize_file(path, 0x80000000);
  EXPECT_EQ(Read(image, path.c_str()), -510);
}

TEST_F(OnDisk, ImagesWithManyPaddedRowsGoThroughWholeAndComeBack) {
  const std::string path = Path("image");
  for (const int32_t format : {NATIVE, TIFF}) {
    const TestImage written(IMAGE_U8, 6, 1500, 3, 5);
    ASSERT_EQ(Write(written, path.c_str(), format), 0);
    const TestImage read(IMAGE_U8, 2, 2, 5);
    ASSERT_EQ(Read(read, path.c_str()), 0);
    EXPECT_EQ(test::PixelDifference(read, written), "");
  }
}

}  // namespace
