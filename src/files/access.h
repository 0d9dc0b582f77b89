// The thin layer that turns what the machine's files answer into failure numbers.
#pragma once

#include <utility>

#include "core/status.h"
#include "platform/file_access.h"

namespace zel {

// A file of one call, closed at the end of the scope. What closing answers is of no interest where
// all that mattered has been read by then, or has failed; one that was written is finished before.
class OpenFile {
 public:
  OpenFile() = default;
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (number_ >= 0) FilesInUse().close(number_);
  }

  Status Open(const char* path, FileOpenMode mode) {  // STATUS_FILE_OPEN
    number_ = FilesInUse().open(path, mode);
    return number_ < 0 ? STATUS_FILE_OPEN : STATUS_OK;
  }
  // Closes a file that has been written. A write is complete only now: a network, or a quota, may
  // refuse what it took before. STATUS_FILE_WRITE.
  Status Finish() {
    return FilesInUse().close(std::exchange(number_, -1)) < 0 ? STATUS_FILE_WRITE : STATUS_OK;
  }
  int32_t number() const { return number_; }

 private:
  int32_t number_ = -1;
};

// STATUS_FILE_INFO for a path that is missing, no regular file, or longer than 2^31 - 1 bytes.
Status FileSize(const char* path, int64_t* bytes);

Status FileSeek(const OpenFile& file, int64_t offset);  // STATUS_FILE_SEEK
// STATUS_FILE_READ. Fewer bytes than asked for are the end of the file and no failure.
Status FileRead(const OpenFile& file, void* bytes, int64_t count, int64_t* got);
Status FileReadRows(const OpenFile& file, const ByteRows& rows, int64_t* got);
// STATUS_FILE_WRITE, also when not all could be written.
Status FileWrite(const OpenFile& file, const void* bytes, int64_t count);
Status FileWriteRows(const OpenFile& file, const ByteRows& rows);

// A seek and a read or write of all `count` bytes, or the given failure: what headers need.
Status FileReadAt(const OpenFile& file, int64_t offset, void* bytes, int64_t count, Status failure);
Status FileWriteAt(const OpenFile& file, int64_t offset, const void* bytes, int64_t count,
                   Status failure);

}  // namespace zel
