// File operations with failure numbers for answers.
#include "files/access.h"

namespace zel {
namespace {

// Sizes and offsets in the formats are signed 32-bit numbers.
constexpr int64_t FILE_SIZE_LIMIT = 0x7FFFFFFF;

template <class Transfer>
int64_t RowByRow(const ByteRows& rows, Transfer transfer) {
  int64_t done = 0;
  for (int64_t row = 0; row < rows.rows; row++) {
    const int64_t moved = transfer(rows.first + row * rows.pitch);
    if (moved < 0) return -1;
    done += moved;
    if (moved < rows.rowBytes) break;
  }
  return done;
}

}  // namespace

Status FileSize(const char* path, int64_t* bytes) {
  int64_t size = 0;
  if (FilesInUse().size(path, &size) != 1 || size < 0 || size > FILE_SIZE_LIMIT) {
    return STATUS_FILE_INFO;
  }
  *bytes = size;
  return STATUS_OK;
}

Status FileSeek(const OpenFile& file, int64_t offset) {
  return FilesInUse().seek(file.number(), offset) < 0 ? STATUS_FILE_SEEK : STATUS_OK;
}

Status FileRead(const OpenFile& file, void* bytes, int64_t count, int64_t* got) {
  *got = FilesInUse().read(file.number(), bytes, static_cast<size_t>(count));
  return *got < 0 ? STATUS_FILE_READ : STATUS_OK;
}

Status FileReadRows(const OpenFile& file, const ByteRows& rows, int64_t* got) {
  const FileOperations& files = FilesInUse();
  if (rows.rows == 1) return FileRead(file, rows.first, rows.rowBytes, got);
  const auto rowBytes = static_cast<size_t>(rows.rowBytes);
  *got = files.readRows ? files.readRows(file.number(), rows) : RowByRow(rows, [&](uint8_t* row) {
    return files.read(file.number(), row, rowBytes);
  });
  return *got < 0 ? STATUS_FILE_READ : STATUS_OK;
}

Status FileWrite(const OpenFile& file, const void* bytes, int64_t count) {
  return FilesInUse().write(file.number(), bytes, static_cast<size_t>(count)) == count
             ? STATUS_OK
             : STATUS_FILE_WRITE;
}

Status FileWriteRows(const OpenFile& file, const ByteRows& rows) {
  const FileOperations& files = FilesInUse();
  if (rows.rows == 1) return FileWrite(file, rows.first, rows.rowBytes);
  const auto rowBytes = static_cast<size_t>(rows.rowBytes);
  const int64_t done = files.writeRows ? files.writeRows(file.number(), rows)
                                       : RowByRow(rows, [&](const uint8_t* row) {
                                           return files.write(file.number(), row, rowBytes);
                                         });
  return done == rows.rowBytes * rows.rows ? STATUS_OK : STATUS_FILE_WRITE;
}

Status FileReadAt(const OpenFile& file, int64_t offset, void* bytes, int64_t count,
                  Status failure) {
  int64_t got = 0;
  if (FileSeek(file, offset) != STATUS_OK) return failure;
  return FileRead(file, bytes, count, &got) == STATUS_OK && got == count ? STATUS_OK : failure;
}

Status FileWriteAt(const OpenFile& file, int64_t offset, const void* bytes, int64_t count,
                   Status failure) {
  if (FileSeek(file, offset) != STATUS_OK) return failure;
  return FileWrite(file, bytes, count) == STATUS_OK ? STATUS_OK : failure;
}

}  // namespace zel
