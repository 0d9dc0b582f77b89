// The standard output, with the reason when it cannot be written.
#include "orlune/shared/standard_output.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>

#include "orlune/shared/interrupts.h"

namespace front {

StandardOutput::StandardOutput() : former_(std::cout.rdbuf(this)) {
  setp(buffer_.data(), buffer_.data() + buffer_.size());
}

StandardOutput::~StandardOutput() {
  WriteOut();
  std::cout.rdbuf(former_);
}

bool StandardOutput::Finish() {
  const bool written = WriteOut() && reason_ == 0;
  // A full disk may be told only now. The stream stays open under another number.
  const int copy = ::dup(STDOUT_FILENO);
  if (copy >= 0 && ::close(copy) != 0 && reason_ == 0) reason_ = errno;
  return written && reason_ == 0;
}

StandardOutput::int_type StandardOutput::overflow(int_type c) {
  if (!WriteOut()) return traits_type::eof();
  if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
  return sputc(traits_type::to_char_type(c));
}

int StandardOutput::sync() {
  return WriteOut() ? 0 : -1;
}

bool StandardOutput::WriteOut() {
  const char* at = pbase();
  while (reason_ == 0 && at < pptr()) {
    const ssize_t count = ::write(STDOUT_FILENO, at, static_cast<size_t>(pptr() - at));
    if (count >= 0) {
      at += count;
    } else if (errno != EINTR) {
      reason_ = errno;
      if (reason_ == EPIPE) NoteClosedPipe();
    }
  }
  setp(buffer_.data(), buffer_.data() + buffer_.size());
  return reason_ == 0;
}

void OccupyStandardStreams() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    // To be read only: writing to it fails as to a closed one.
    if (::fcntl(stream, F_GETFD) < 0) static_cast<void>(::open("/dev/null", O_RDONLY));
  }
}

}  // namespace front
