// Verdicts as lines in a pipe with a name.
#include "orlune/recipe/verdict_pipe.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <stdexcept>

#include "orlune/shared/readable.h"

namespace front {

std::string VerdictLine(const PictureResult& result) {
  std::string line(NameOf(result.verdict));
  line += '\t' + LineText(result.file) + '\t' + LineText(result.reason);
  // A pipe takes so much at once or not at all; of more, a reader could see a part.
  constexpr size_t CUT_CHARACTER = 9;  // three bytes of one, each replaced by three
  constexpr size_t MOST = PIPE_BUF - CUT_CHARACTER - 1;
  if (line.size() > MOST) line = ReadableText(std::string_view(line).substr(0, MOST));
  return line + '\n';
}

VerdictPipe::VerdictPipe(const std::string& path) : path_(path) {
  struct stat file {};
  if (::stat(path.c_str(), &file) == 0 && (S_ISFIFO(file.st_mode) || S_ISCHR(file.st_mode))) return;
  throw std::invalid_argument("--verdicts " + path + ": there is no such pipe; mkfifo makes one");
}

VerdictPipe::~VerdictPipe() {
  Close();
}

void VerdictPipe::Close() {
  if (descriptor_ >= 0) ::close(descriptor_);
  descriptor_ = -1;
}

void VerdictPipe::Send(const std::string& line) {
  if (!Write(line)) unread_++;
}

bool VerdictPipe::Write(const std::string& line) {
  // Only where there is a reader; the one that went away may have been followed by another one.
  for (int attempt = 0; attempt < 2; attempt++) {
    if (descriptor_ < 0) {
      descriptor_ = ::open(path_.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    }
    if (descriptor_ < 0) return false;
    ssize_t count = 0;
    do {
      count = ::write(descriptor_, line.data(), line.size());
    } while (count < 0 && errno == EINTR);
    if (count == static_cast<ssize_t>(line.size())) return true;
    if (count < 0 && errno == EAGAIN) return false;
    Close();
  }
  return false;
}

}  // namespace front
