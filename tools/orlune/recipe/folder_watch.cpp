// Files that come into a folder, as the system tells of them.
#include "orlune/recipe/folder_watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace front {
namespace {

namespace fs = std::filesystem;

constexpr int WAIT = 500;  // milliseconds, after which an interrupt is noticed in any case

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A lease for reading is given only where nobody writes.
bool IsBeingWritten(const fs::path& file) {
  const int descriptor = ::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool busy = ::fcntl(descriptor, F_SETLEASE, F_RDLCK) != 0 && errno == EAGAIN;
  ::close(descriptor);
  return busy;
}

void AddName(const std::string& name, std::vector<std::string>* names) {
  const bool isThere = std::find(names->begin(), names->end(), name) != names->end();
  if (!name.starts_with('.') && !isThere) names->push_back(name);
}

}  // namespace

FolderWatch::FolderWatch(const std::string& folder) : folder_(folder) {
  events_ = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (events_ < 0) Fail(folder);
  // A link is whole from the start, and is never closed.
  if (::inotify_add_watch(events_, folder.c_str(),
                          IN_CLOSE_WRITE | IN_MOVED_TO | IN_CREATE | IN_ONLYDIR) < 0) {
    const int reason = errno;
    ::close(events_);
    errno = reason;
    Fail(folder);
  }
}

FolderWatch::~FolderWatch() {
  ::close(events_);
}

void FolderWatch::TakeAll(std::vector<std::string>* names) {
  std::vector<std::string> found;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder_)) {
    const std::string name = entry.path().filename().string();
    if (!entry.is_regular_file() || known_.contains(name) || IsBeingWritten(entry.path())) continue;
    found.push_back(name);
  }
  std::sort(found.begin(), found.end());
  for (const std::string& name : found) AddName(name, names);
}

void FolderWatch::TakeEvents(std::vector<std::string>* names) {
  alignas(inotify_event) std::array<char, 64 * 1024> bytes;
  ssize_t count = 0;
  while ((count = ::read(events_, bytes.data(), bytes.size())) > 0) {
    const auto size = static_cast<size_t>(count);
    for (size_t at = 0; at + sizeof(inotify_event) <= size;) {
      inotify_event event;
      std::memcpy(&event, bytes.data() + at, sizeof event);
      const char* name = bytes.data() + at + sizeof event;
      at += sizeof event + event.len;
      if ((event.mask & IN_Q_OVERFLOW) != 0) TakeAll(names);
      if ((event.mask & IN_IGNORED) != 0) {
        errno = ENOENT;
        Fail(folder_);
      }
      if (event.len == 0 || (event.mask & IN_ISDIR) != 0) continue;
      std::error_code ignored;
      const bool isLink = fs::is_symlink(fs::path(folder_) / name, ignored);
      if ((event.mask & IN_CREATE) == 0 || isLink) AddName(name, names);
    }
  }
}

std::vector<std::string> FolderWatch::Next() {
  std::vector<std::string> names;
  if (!begun_) {
    TakeAll(&names);
  } else {
    pollfd watched{.fd = events_, .events = POLLIN, .revents = 0};
    if (::poll(&watched, 1, WAIT) <= 0) return {};
  }
  // Also after the list: what was closed meanwhile is told of, and is in the list.
  TakeEvents(&names);
  begun_ = true;
  std::vector<std::string> paths;
  for (const std::string& name : names) {
    known_.insert(name);
    paths.push_back((fs::path(folder_) / name).string());
  }
  return paths;
}

}  // namespace front
