// What the library asks of the machine's files: a plain record of operations.
#pragma once

#include <cstddef>
#include <cstdint>

namespace zel {

// Rows of bytes that lie at a fixed distance from each other in memory and follow each other
// without gaps in a file. The distance may be negative.
struct ByteRows {
  uint8_t* first;
  int64_t pitch;
  int64_t rowBytes;
  int64_t rows;
};

enum class FileOpenMode : int32_t {
  Read,           // an existing file, as it is
  WriteTruncate,  // made when it is missing, emptied when it is there
  WriteAsIs,      // an existing file, as it is
};

// Only regular files are served, and no operation ever waits for another process. A number is that
// of an open file. Transfers start at the file's position and move it on; they take as many turns
// as they need, so that a count below the one asked for means the end of the file or a full disk.
struct FileOperations {
  int32_t (*size)(const char* path, int64_t* bytes);         // 1 exists, 0 doesn't, -1 error
  int32_t (*open)(const char* path, FileOpenMode mode);      // a number, or -1
  int32_t (*seek)(int32_t file, int64_t offset);             // from the start; 0, or -1
  int64_t (*read)(int32_t file, void* bytes, size_t count);  // the count read, or -1
  int64_t (*write)(int32_t file, const void* bytes, size_t count);
  int32_t (*close)(int32_t file);  // 0, or -1; the number is free again either way

  // The same transfers to and from rows in one go. Null where the machine has none: the rows then
  // go one by one.
  int64_t (*readRows)(int32_t file, const ByteRows& rows);
  int64_t (*writeRows)(int32_t file, const ByteRows& rows);
};

// The ones in use: at first the machine's own.
const FileOperations& FilesInUse();
// Null puts the machine's own back.
void FilesUse(const FileOperations* operations);

}  // namespace zel
