#include "platform/file_access.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

namespace {

int interruptions = 0;  // calls of the system that a signal comes before

bool IsInterrupted() {
  if (interruptions == 0) return false;
  interruptions--;
  errno = EINTR;
  return true;
}

}  // namespace

// The linker puts these in the place of the system's.
extern "C" {
int __real_open(const char* path, int how, ...);
ssize_t __real_read(int file, void* bytes, size_t count);
ssize_t __real_write(int file, const void* bytes, size_t count);
int __wrap_open(const char* path, int how, mode_t permissions);
ssize_t __wrap_read(int file, void* bytes, size_t count);
ssize_t __wrap_write(int file, const void* bytes, size_t count);

int __wrap_open(const char* path, int how, mode_t permissions) {
  return IsInterrupted() ? -1 : __real_open(path, how, permissions);
}
ssize_t __wrap_read(int file, void* bytes, size_t count) {
  return IsInterrupted() ? -1 : __real_read(file, bytes, count);
}
ssize_t __wrap_write(int file, const void* bytes, size_t count) {
  return IsInterrupted() ? -1 : __real_write(file, bytes, count);
}
}

namespace {

using zel::FileOpenMode;
using zel::FileOperations;

class MachineFiles : public testing::Test {
 protected:
  void SetUp() override {
    folder_ = (std::filesystem::temp_directory_path() / "ptk_platform_XXXXXX").string();
    ASSERT_NE(mkdtemp(folder_.data()), nullptr);
    path_ = folder_ + "/file";
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  void WriteText(const std::string& text, FileOpenMode mode) {
    const int32_t file = files_.open(path_.c_str(), mode);
    ASSERT_GE(file, 0);
    EXPECT_EQ(files_.write(file, text.data(), text.size()), static_cast<int64_t>(text.size()));
    EXPECT_EQ(files_.close(file), 0);
  }
  std::string ReadText() {
    const int32_t file = files_.open(path_.c_str(), FileOpenMode::Read);
    std::string text(100, '?');
    const int64_t count = files_.read(file, text.data(), text.size());
    EXPECT_EQ(files_.close(file), 0);
    return text.substr(0, static_cast<size_t>(count));
  }

  const FileOperations& files_ = zel::FilesInUse();
  std::string folder_;
  std::string path_;
};

TEST_F(MachineFiles, SizesTellRegularMissingAndOtherThings) {
  int64_t bytes = -1;
  EXPECT_EQ(files_.size(path_.c_str(), &bytes), 0);
  WriteText("hello", FileOpenMode::WriteTruncate);
  EXPECT_EQ(files_.size(path_.c_str(), &bytes), 1);
  EXPECT_EQ(bytes, 5);
  EXPECT_EQ(files_.size(folder_.c_str(), &bytes), -1);
  EXPECT_EQ(files_.size("/dev/null", &bytes), -1);
  EXPECT_EQ(files_.size("", &bytes), 0);
}

TEST_F(MachineFiles, WritingEmptiesAFileOrNot) {
  EXPECT_LT(files_.open(path_.c_str(), FileOpenMode::WriteAsIs), 0) << "it is not there";
  WriteText("hello world", FileOpenMode::WriteTruncate);
  WriteText("HE", FileOpenMode::WriteAsIs);
  EXPECT_EQ(ReadText(), "HEllo world");
  WriteText("new", FileOpenMode::WriteTruncate);
  EXPECT_EQ(ReadText(), "new");
}

TEST_F(MachineFiles, SignalsInterruptNothing) {
  interruptions = 3;
  const int32_t written = files_.open(path_.c_str(), FileOpenMode::WriteTruncate);
  ASSERT_GE(written, 0);
  EXPECT_EQ(interruptions, 0);
  interruptions = 3;
  EXPECT_EQ(files_.write(written, "hello", 5), 5);
  EXPECT_EQ(interruptions, 0);
  EXPECT_EQ(files_.close(written), 0);
  const int32_t file = files_.open(path_.c_str(), FileOpenMode::Read);
  char text[6] = "";
  interruptions = 3;
  EXPECT_EQ(files_.read(file, text, 5), 5);
  EXPECT_EQ(interruptions, 0);
  EXPECT_STREQ(text, "hello");
  EXPECT_EQ(files_.close(file), 0);
}

TEST_F(MachineFiles, NothingButRegularFilesIsOpened) {
  const std::string pipe = folder_ + "/pipe";
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const FileOpenMode mode :
       {FileOpenMode::Read, FileOpenMode::WriteTruncate, FileOpenMode::WriteAsIs}) {
    for (const std::string& path : {pipe, folder_, std::string("/dev/null"), std::string()}) {
      EXPECT_LT(files_.open(path.c_str(), mode), 0) << path;
    }
  }
}

TEST_F(MachineFiles, NumbersAreNotHandedToOtherPrograms) {
  WriteText("x", FileOpenMode::WriteTruncate);
  const int32_t file = files_.open(path_.c_str(), FileOpenMode::Read);
  EXPECT_NE(fcntl(file, F_GETFD) & FD_CLOEXEC, 0);
  files_.close(file);
}

TEST_F(MachineFiles, SeeksGoFromTheStart) {
  WriteText("hello", FileOpenMode::WriteTruncate);
  const int32_t file = files_.open(path_.c_str(), FileOpenMode::Read);
  char letter = 0;
  EXPECT_EQ(files_.seek(file, 4), 0);
  EXPECT_EQ(files_.read(file, &letter, 1), 1);
  EXPECT_EQ(letter, 'o');
  EXPECT_EQ(files_.read(file, &letter, 1), 0) << "the end";
  EXPECT_EQ(files_.seek(file, 1000), 0) << "beyond the end is a place too";
  EXPECT_EQ(files_.read(file, &letter, 1), 0);
  EXPECT_EQ(files_.seek(file, -1), -1);
  EXPECT_EQ(files_.write(file, &letter, 1), -1) << "open for reading";
  EXPECT_EQ(files_.close(file), 0);
  EXPECT_EQ(files_.close(file), -1);
}

TEST_F(MachineFiles, RowsOfAnyNumberAndDirectionAreMoved) {
  constexpr int64_t rows = 1203;
  constexpr int64_t pitch = 16;
  constexpr int64_t rowBytes = 11;
  std::vector<uint8_t> from(rows * pitch);
  for (size_t i = 0; i < from.size(); i++) from[i] = static_cast<uint8_t>(i * 7 + i / 256);
  int32_t file = files_.open(path_.c_str(), FileOpenMode::WriteTruncate);
  EXPECT_EQ(files_.writeRows(file, {from.data(), pitch, rowBytes, rows}), rows * rowBytes);
  files_.close(file);

  std::vector<uint8_t> to(rows * pitch, 0xEE);
  file = files_.open(path_.c_str(), FileOpenMode::Read);
  // The last row first, and one row more than there is.
  EXPECT_EQ(files_.readRows(file, {to.data() + (rows - 1) * pitch, -pitch, rowBytes, rows}),
            rows * rowBytes);
  EXPECT_EQ(files_.readRows(file, {to.data(), pitch, rowBytes, 2}), 0);
  files_.close(file);
  for (int64_t row = 0; row < rows; row++) {
    const uint8_t* read = to.data() + (rows - 1 - row) * pitch;
    EXPECT_EQ(std::memcmp(read, from.data() + row * pitch, rowBytes), 0);
    EXPECT_EQ(read[rowBytes], 0xEE);
  }
}

TEST_F(MachineFiles, AWriteThatCannotBeFinishedFails) {
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  const auto handler = signal(SIGXFSZ, SIG_IGN);
  const rlimit small{100, before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
  std::vector<uint8_t> bytes(1000, 7);
  const int32_t file = files_.open(path_.c_str(), FileOpenMode::WriteTruncate);
  const int64_t plain = files_.write(file, bytes.data(), bytes.size());
  EXPECT_EQ(files_.seek(file, 0), 0);
  const int64_t rows = files_.writeRows(file, {bytes.data(), 20, 10, 50});
  files_.close(file);
  setrlimit(RLIMIT_FSIZE, &before);
  signal(SIGXFSZ, handler);
  EXPECT_EQ(plain, -1);
  EXPECT_EQ(rows, -1);
}

TEST_F(MachineFiles, ReadingRowsStopsAtTheEnd) {
  WriteText("0123456789abcd", FileOpenMode::WriteTruncate);
  char rows[5][8];
  std::memset(rows, '.', sizeof(rows));
  const int32_t file = files_.open(path_.c_str(), FileOpenMode::Read);
  EXPECT_EQ(files_.readRows(file, {reinterpret_cast<uint8_t*>(rows[0]), 8, 4, 5}), 14);
  files_.close(file);
  EXPECT_EQ(std::string(rows[3], 8), "cd......");
  EXPECT_EQ(std::string(rows[4], 8), "........");
}

}  // namespace
