#include "harness/memory_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

namespace test {
namespace {

struct NamedFile {
  std::vector<char> path;
  MemoryFiles::Bytes bytes;

  bool Is(std::string_view name) const {
    return name == std::string_view(path.data(), path.size());
  }
};

struct OpenRow {
  int32_t number;
  size_t file;  // its place among the files
  int64_t position;
  bool writes;
};

// The operations are plain functions, so what they work on is reached from here. Only vectors: the
// memory sanitizer sees into them, unlike into maps and strings, whose insides the standard library
// has compiled.
struct State {
  std::vector<NamedFile> files;  // none is ever taken away
  std::vector<OpenRow> open;
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
  const auto row = std::find_if(state->open.begin(), state->open.end(),
                                [file](const OpenRow& one) { return one.number == file; });
  if (row == state->open.end()) Stop("a file is used that is not open");
  return *row;
}

NamedFile* FileOf(std::string_view path) {
  const auto file = std::find_if(state->files.begin(), state->files.end(),
                                 [path](const NamedFile& one) { return one.Is(path); });
  return file == state->files.end() ? nullptr : &*file;
}

NamedFile& FileMade(std::string_view path) {
  if (NamedFile* file = FileOf(path)) return *file;
  return state->files.emplace_back(NamedFile{{path.begin(), path.end()}, {}});
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
  const NamedFile* file = FileOf(path);
  if (!file) return 0;
  *bytes = static_cast<int64_t>(file->bytes.size());
  return 1;
}

int32_t Open(const char* path, zel::FileOpenMode mode) {
  if (FaultOf(FileOperation::Open)) return -1;
  const bool truncates = mode == zel::FileOpenMode::WriteTruncate;
  if (*path == '\0' || (!truncates && !FileOf(path))) return -1;
  NamedFile& file = FileMade(path);
  if (truncates) file.bytes.clear();
  const auto place = static_cast<size_t>(&file - state->files.data());
  state->open.push_back({++state->lastNumber, place, 0, mode != zel::FileOpenMode::Read});
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
  const MemoryFiles::Bytes& bytes = state->files[row.file].bytes;
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
  MemoryFiles::Bytes& bytes = state->files[row.file].bytes;
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
  state->open.erase(state->open.begin() + (&RowOf(file) - state->open.data()));
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

void MemoryFiles::Put(std::string_view path, Bytes bytes) {
  FileMade(path).bytes = std::move(bytes);
}

bool MemoryFiles::Has(std::string_view path) const {
  return FileOf(path) != nullptr;
}

const MemoryFiles::Bytes& MemoryFiles::Get(std::string_view path) const {
  static const Bytes none;
  const NamedFile* file = FileOf(path);
  return file ? file->bytes : none;
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
