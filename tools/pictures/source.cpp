// Where pictures come from.
#include "pictures/source.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

namespace pictures {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ > STDERR_FILENO) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

std::string Reason(int error) {
  switch (error) {
    case ENOENT:
    case ENOTDIR:
      return "there is no such file";
    case EACCES:
    case EPERM:
      return "it may not be read: " + std::string(std::strerror(error));
    default:
      return "it cannot be read: " + std::string(std::strerror(error));
  }
}

// A pipe or a device under the name of a file would be waited for.
size_t ExpectedBytes(int descriptor, bool standardInput) {
  struct stat file {};
  if (::fstat(descriptor, &file) != 0) throw BadFile(Reason(errno));
  if (S_ISDIR(file.st_mode)) throw BadFile("this is a folder");
  if (S_ISREG(file.st_mode)) return static_cast<size_t>(file.st_size);
  if (!standardInput) throw BadFile("this is no ordinary file; - reads standard input");
  return 0;
}

FileBytes ReadToEnd(int descriptor, size_t expected) {
  constexpr size_t STEP = 1 << 16;
  FileBytes bytes(expected + 1);  // one more, to see the end without another round
  size_t filled = 0;
  for (;;) {
    if (filled == bytes.size()) bytes.resize(bytes.size() + std::max(STEP, bytes.size() / 2));
    const ssize_t count = ::read(descriptor, bytes.data() + filled, bytes.size() - filled);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) throw BadFile(Reason(errno));
    if (count == 0) break;
    filled += static_cast<size_t>(count);
  }
  bytes.resize(filled);
  return bytes;
}

}  // namespace

Source SourceOf(const std::string& name) {
  std::error_code ignored;
  const size_t mark = name.rfind('#');
  if (mark == std::string::npos || mark == 0 || std::filesystem::exists(name, ignored)) {
    return {.path = name};
  }
  int32_t page = 0;
  const char* end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + mark + 1, end, page);
  if (error != std::errc() || stop != end) return {.path = name};
  return {.path = name.substr(0, mark), .page = page, .pageNamed = true};
}

FileBytes ReadBytes(const Source& source) {
  const bool standardInput = source.IsStandardInput();
  const Descriptor file(standardInput
                            ? STDIN_FILENO
                            : ::open(source.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.number() < 0) throw BadFile(Reason(errno));
  FileBytes bytes = ReadToEnd(file.number(), ExpectedBytes(file.number(), standardInput));
  if (bytes.empty()) {
    throw BadFile(standardInput ? "nothing comes from standard input" : "the file is empty");
  }
  return bytes;
}

}  // namespace pictures
