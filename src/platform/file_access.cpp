// The machine's files, by system calls.
#include "platform/file_access.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace zel {
namespace {

// Rows handed to the system in one call; its own limit is 1024.
constexpr int64_t ROWS_A_CALL = 512;

int32_t RegularSize(const char* path, int64_t* bytes) {
  struct stat about {};
  if (stat(path, &about) != 0) return errno == ENOENT || errno == ENOTDIR ? 0 : -1;
  if (!S_ISREG(about.st_mode)) return -1;
  *bytes = about.st_size;
  return 1;
}

// Reading looks at what it has opened, in case the path has become something else since its size
// was asked for. Writing looks before: to open a device for writing may be to start it. Whatever
// the path becomes in between, nothing here waits for the other end of a pipe.
int32_t OpenRegular(const char* path, FileOpenMode mode) {
  int64_t bytes = 0;
  if (mode != FileOpenMode::Read && RegularSize(path, &bytes) < 0) return -1;
  constexpr int common = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
  constexpr mode_t permissions = 0666;
  const int how = mode == FileOpenMode::Read            ? O_RDONLY
                  : mode == FileOpenMode::WriteTruncate ? O_WRONLY | O_CREAT | O_TRUNC
                                                        : O_WRONLY;
  int file = -1;
  do {
    file = open(path, how | common, permissions);
  } while (file < 0 && errno == EINTR);
  if (file < 0 || mode != FileOpenMode::Read) return file;
  struct stat about {};
  if (fstat(file, &about) == 0 && S_ISREG(about.st_mode)) return file;
  close(file);
  return -1;
}

int32_t SeekFromStart(int32_t file, int64_t offset) {
  return offset < 0 || lseek(file, offset, SEEK_SET) < 0 ? -1 : 0;
}

// Repeats a transfer until all is done or nothing moves. A failure after some bytes is one.
template <class Transfer>
int64_t InTurns(size_t count, Transfer transfer) {
  size_t done = 0;
  while (done < count) {
    const ssize_t moved = transfer(done);
    if (moved < 0 && errno == EINTR) continue;
    if (moved < 0) return -1;
    if (moved == 0) break;
    done += static_cast<size_t>(moved);
  }
  return static_cast<int64_t>(done);
}

int64_t ReadBytes(int32_t file, void* bytes, size_t count) {
  return InTurns(count, [&](size_t done) {
    return read(file, static_cast<char*>(bytes) + done, count - done);
  });
}

int64_t WriteBytes(int32_t file, const void* bytes, size_t count) {
  return InTurns(count, [&](size_t done) {
    return write(file, static_cast<const char*>(bytes) + done, count - done);
  });
}

int32_t CloseNumber(int32_t file) {
  return close(file) == 0 ? 0 : -1;
}

template <class Vectors>
int64_t MoveRows(const ByteRows& rows, Vectors vectors) {
  if (rows.rowBytes <= 0 || rows.rows <= 0) return 0;
  const auto rowBytes = static_cast<size_t>(rows.rowBytes);
  return InTurns(rowBytes * static_cast<size_t>(rows.rows), [&](size_t done) {
    iovec parts[ROWS_A_CALL];
    int64_t row = static_cast<int64_t>(done / rowBytes);
    size_t skipped = done % rowBytes;
    const int64_t count = std::min(rows.rows - row, ROWS_A_CALL);
    for (int64_t i = 0; i < count; i++, row++) {
      parts[i] = {rows.first + row * rows.pitch + skipped, rowBytes - skipped};
      skipped = 0;
    }
    return vectors(parts, static_cast<int>(count));
  });
}

int64_t ReadRows(int32_t file, const ByteRows& rows) {
  return MoveRows(rows, [&](const iovec* parts, int count) { return readv(file, parts, count); });
}

int64_t WriteRows(int32_t file, const ByteRows& rows) {
  return MoveRows(rows, [&](const iovec* parts, int count) { return writev(file, parts, count); });
}

constexpr FileOperations MACHINE{&RegularSize, &OpenRegular, &SeekFromStart, &ReadBytes,
                                 &WriteBytes,  &CloseNumber, &ReadRows,      &WriteRows};
const FileOperations* inUse = &MACHINE;

}  // namespace

const FileOperations& FilesInUse() {
  return *inUse;
}

void FilesUse(const FileOperations* operations) {
  inUse = operations ? operations : &MACHINE;
}

}  // namespace zel
