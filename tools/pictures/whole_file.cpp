// Files that are there whole or not at all.
#include "pictures/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <iostream>

namespace pictures {
namespace {

namespace fs = std::filesystem;

// Names of half-written files, for the signal handler: of fixed size, since it may not allocate.
constexpr size_t MOST_OPEN = 8, LONGEST_NAME = 4096;
struct HalfWritten {
  std::atomic<pid_t> owner{0};  // 0: free; a child of the process has its own files
  char name[LONGEST_NAME];
};
std::array<HalfWritten, MOST_OPEN> halfWritten;

void Remember(const std::string& name) {
  if (name.size() >= LONGEST_NAME) return;
  for (HalfWritten& entry : halfWritten) {
    if (entry.owner != 0) continue;
    std::memcpy(entry.name, name.c_str(), name.size() + 1);
    entry.owner = ::getpid();
    return;
  }
}

void Forget(const std::string& name) {
  for (HalfWritten& entry : halfWritten) {
    if (entry.owner == ::getpid() && name == entry.name) entry.owner = 0;
  }
}

std::string Reason(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "there is no such folder";
    case ENOSPC:
    case EDQUOT:
      return "the disk is full";
    case EISDIR:
      return "this is a folder";
    default:
      return error == 0 ? "it could not be written to its end" : std::strerror(error);
  }
}

[[noreturn]] void Fail(int error) {
  throw WriteFailure("cannot be written: " + Reason(error));
}

mode_t UsualMode() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

}  // namespace

WholeFile::WholeFile(const std::string& path) : path_(path) {
  if (path == "-") {
    standardOutput_ = true;
    return;
  }
  std::error_code failed;
  struct stat file {};
  const bool there = ::stat(path.c_str(), &file) == 0;
  if (there && S_ISDIR(file.st_mode)) Fail(EISDIR);
  if (there && !S_ISREG(file.st_mode)) {
    file_.open(path, std::ios::binary);
    if (!file_) Fail(errno);
    return;
  }
  // Whoever may write the folder could put a new file in place of one that may not be written.
  if (there && ::access(path.c_str(), W_OK) != 0) Fail(errno);
  target_ = fs::is_symlink(path, failed) ? fs::weakly_canonical(path, failed).string() : path;
  if (failed) target_ = path;
  std::string name = target_ + ".XXXXXX";
  const int descriptor = ::mkstemp(name.data());
  if (descriptor < 0) Fail(errno);
  beside_ = name;
  Remember(beside_);
  ::fchmod(descriptor, there ? file.st_mode & 07777 : UsualMode());
  ::close(descriptor);
  file_.open(beside_, std::ios::binary | std::ios::trunc);
  if (!file_) {
    const int error = errno;
    ::unlink(beside_.c_str());
    Forget(beside_);
    Fail(error);
  }
}

WholeFile::~WholeFile() {
  if (beside_.empty()) return;
  file_.close();
  ::unlink(beside_.c_str());
  Forget(beside_);
}

std::ostream& WholeFile::stream() {
  return standardOutput_ ? std::cout : file_;
}

void WholeFile::Finish() {
  errno = 0;
  if (standardOutput_) {
    std::cout.flush();
    if (!std::cout) Fail(errno);
    return;
  }
  file_.flush();
  const bool written = file_.good();
  file_.close();
  if (!written || file_.fail()) Fail(errno);
  if (beside_.empty()) return;
  if (::rename(beside_.c_str(), target_.c_str()) != 0) Fail(errno);
  Forget(beside_);
  beside_.clear();
}

void WriteWhole(const std::string& path, Bytes bytes) {
  WholeFile file(path);
  errno = 0;
  file.stream().write(reinterpret_cast<const char*>(bytes.data()),
                      static_cast<std::streamsize>(bytes.size()));
  if (!file.stream()) Fail(errno);
  file.Finish();
}

std::string IdentityOf(const fs::path& path) {
  struct stat file {};
  if (::stat(path.c_str(), &file) == 0) {
    return std::to_string(file.st_dev) + ":" + std::to_string(file.st_ino);
  }
  std::error_code failed;
  const fs::path whole = fs::absolute(path, failed);
  const fs::path plain = fs::weakly_canonical(whole, failed);
  return (failed ? whole.lexically_normal() : plain).string();
}

void RemoveHalfWritten() {
  const pid_t self = ::getpid();
  for (HalfWritten& entry : halfWritten) {
    if (entry.owner == self) ::unlink(entry.name);
  }
}

}  // namespace pictures
