#include "tests/support/memory_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

namespace test {
namespace {

struct OpenRow {
  std::string path;
  int64_t position = 0;
  bool writes = false;
};

// The operations are plain functions, so what they work on is reached from here.
struct State {
  std::map<std::string, MemoryFiles::Bytes> files;
  std::map<int32_t, OpenRow> open;
  int32_t lastNumber = 100;
  std::optional<FileFault> fault;
  std::array<int64_t, std::size(FILE_OPERATIONS)> counts{};
};
State* state = nullptr;

[[noreturn]] void Stop(const char* what) {
  std::fprintf(stderr, "memory files: %s\n", what);
  std::abort();
}

OpenRow& RowOf(int32_t file) {
  const auto row = state->open.find(file);
  if (row == state->open.end()) Stop("a file is used that is not open");
  return row->second;
}

std::optional<FaultKind> FaultOf(FileOperation operation) {
  const int64_t count = ++state->counts[static_cast<size_t>(operation)];
  if (!state->fault || state->fault->operation != operation) return {};
  const bool hit =
      count == state->fault->at || (state->fault->fromThenOn && count > state->fault->at);
  return hit ? std::optional(state->fault->kind) : std::nullopt;
}

int32_t Size(const char* path, int64_t* bytes) {
  if (FaultOf(FileOperation::Size)) return -1;
  const auto file = state->files.find(path);
  if (file == state->files.end()) return 0;
  *bytes = static_cast<int64_t>(file->second.size());
  return 1;
}

int32_t Open(const char* path, zel::FileOpenMode mode) {
  if (FaultOf(FileOperation::Open)) return -1;
  const bool there = state->files.count(path) != 0;
  if (*path == '\0' || (!there && mode != zel::FileOpenMode::WriteTruncate)) return -1;
  if (mode == zel::FileOpenMode::WriteTruncate) state->files[path].clear();
  state->open[++state->lastNumber] = {path, 0, mode != zel::FileOpenMode::Read};
  return state->lastNumber;
}

int32_t Seek(int32_t file, int64_t offset) {
  OpenRow& row = RowOf(file);
  if (FaultOf(FileOperation::Seek) || offset < 0) return -1;
  row.position = offset;
  return 0;
}

// How much of a transfer a fault lets through; below 0 for none and a failure.
int64_t Allowed(FileOperation operation, int64_t count) {
  const auto fault = FaultOf(operation);
  if (!fault) return count;
  switch (*fault) {
    case FaultKind::Fails:
      return -1;
    case FaultKind::OneByteShort:
      return std::max<int64_t>(count - 1, 0);
    default:
      return 0;
  }
}

int64_t ReadBytes(int32_t file, const zel::ByteRows& rows) {
  OpenRow& row = RowOf(file);
  if (row.writes) Stop("a read of a file that is open for writing");
  const MemoryFiles::Bytes& bytes = state->files[row.path];
  const int64_t there = std::max<int64_t>(static_cast<int64_t>(bytes.size()) - row.position, 0);
  const int64_t count = Allowed(FileOperation::Read, std::min(there, rows.rowBytes * rows.rows));
  for (int64_t done = 0; done < count;) {
    const int64_t part = std::min(rows.rowBytes, count - done);
    std::memcpy(rows.first + done / rows.rowBytes * rows.pitch, bytes.data() + row.position,
                static_cast<size_t>(part));
    done += part;
    row.position += part;
  }
  return count;
}

int64_t WriteBytes(int32_t file, const zel::ByteRows& rows) {
  OpenRow& row = RowOf(file);
  if (!row.writes) Stop("a write to a file that is open for reading");
  MemoryFiles::Bytes& bytes = state->files[row.path];
  const int64_t count = Allowed(FileOperation::Write, rows.rowBytes * rows.rows);
  if (count <= 0) return count;
  bytes.resize(std::max(bytes.size(), static_cast<size_t>(row.position + count)));
  for (int64_t done = 0; done < count;) {
    const int64_t part = std::min(rows.rowBytes, count - done);
    std::memcpy(bytes.data() + row.position, rows.first + done / rows.rowBytes * rows.pitch,
                static_cast<size_t>(part));
    done += part;
    row.position += part;
  }
  return count;
}

int64_t Read(int32_t file, void* bytes, size_t count) {
  return ReadBytes(file, {static_cast<uint8_t*>(bytes), 0, static_cast<int64_t>(count), 1});
}

int64_t Write(int32_t file, const void* bytes, size_t count) {
  auto* from = static_cast<uint8_t*>(const_cast<void*>(bytes));
  return WriteBytes(file, {from, 0, static_cast<int64_t>(count), 1});
}

int32_t Close(int32_t file) {
  RowOf(file);
  state->open.erase(file);
  return FaultOf(FileOperation::Close) ? -1 : 0;
}

}  // namespace

MemoryFiles::MemoryFiles(bool rowsAtOnce)
    : operations_{&Size, &Open, &Seek, &Read, &Write, &Close, nullptr, nullptr} {
  if (state) Stop("two at a time");
  state = new State;
  if (rowsAtOnce) {
    operations_.readRows = &ReadBytes;
    operations_.writeRows = &WriteBytes;
  }
  zel::FilesUse(&operations_);
}

MemoryFiles::~MemoryFiles() {
  zel::FilesUse(nullptr);
  delete state;
  state = nullptr;
}

void MemoryFiles::Put(const std::string& path, Bytes bytes) {
  state->files[path] = std::move(bytes);
}

bool MemoryFiles::Has(const std::string& path) const {
  return state->files.count(path) != 0;
}

const MemoryFiles::Bytes& MemoryFiles::Get(const std::string& path) const {
  static const Bytes none;
  const auto file = state->files.find(path);
  return file == state->files.end() ? none : file->second;
}

void MemoryFiles::Inject(const FileFault& fault) {
  state->counts = {};
  state->fault = fault;
}

void MemoryFiles::NoFault() {
  state->counts = {};
  state->fault.reset();
}

int64_t MemoryFiles::Count(FileOperation operation) const {
  return state->counts[static_cast<size_t>(operation)];
}

int64_t MemoryFiles::OpenFiles() const {
  return static_cast<int64_t>(state->open.size());
}

}  // namespace test
