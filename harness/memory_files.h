// Files in memory, in place of the machine's: named arrays of bytes, operations that can be made to
// fail, and a count of the files left open.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/file_access.h"

namespace test {

enum class FileOperation { Size, Open, Seek, Read, Write, Close };
constexpr FileOperation FILE_OPERATIONS[] = {FileOperation::Size,  FileOperation::Open,
                                             FileOperation::Seek,  FileOperation::Read,
                                             FileOperation::Write, FileOperation::Close};

enum class FaultKind {
  Fails,         // the operation answers that it failed
  OneByteShort,  // a transfer leaves out its last byte
  MovesNothing,  // a transfer moves no byte at all
};

struct FileFault {
  FileOperation operation;
  FaultKind kind;
  int64_t at;       // which operation of its sort, from 1
  bool fromThenOn;  // ... and all later ones
};

// In use from its making to its end; one at a time. A path that was not put is missing, as long as
// no write makes it.
class MemoryFiles {
 public:
  using Bytes = std::vector<uint8_t>;

  // With rowsAtOnce clear there are no operations on rows, as on a machine without them.
  explicit MemoryFiles(bool rowsAtOnce = true);
  MemoryFiles(const MemoryFiles&) = delete;
  MemoryFiles& operator=(const MemoryFiles&) = delete;
  ~MemoryFiles();

  void Put(std::string_view path, Bytes bytes);
  bool Has(std::string_view path) const;
  const Bytes& Get(std::string_view path) const;  // empty for a missing one

  // Counts start over.
  void Inject(const FileFault& fault);
  void NoFault();
  int64_t Count(FileOperation operation) const;  // since the last Inject or NoFault
  int64_t OpenFiles() const;

 private:
  zel::FileOperations operations_;
};

}  // namespace test
