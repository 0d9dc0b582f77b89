// Files that come into a folder, as the system tells of them.
#include "orlune/recipe/folder_watch.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <system_error>

namespace front {
namespace {

namespace fs = std::filesystem;

constexpr int WAIT = 500;       // milliseconds, after which an interrupt is noticed in any case
constexpr int SHORT_WAIT = 20;  // while there are files that may become whole unnoticed
constexpr double QUIET = 2;     // seconds

[[noreturn]] void Fail(const std::string& what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// Nothing was written for a while. A time in the future tells nothing.
bool IsQuiet(const struct stat& file) {
  timespec now{};
  ::clock_gettime(CLOCK_REALTIME, &now);
  const double age = static_cast<double>(now.tv_sec - file.st_mtim.tv_sec) +
                     static_cast<double>(now.tv_nsec - file.st_mtim.tv_nsec) * 1e-9;
  return age < 0 || age >= QUIET;
}

// A lease for reading is given only where nobody writes. Of files that this user may not read, of
// those of other users, and on some file systems there are none: they are whole once they are
// quiet, but for those made meanwhile, whose closing is told, unless they are links.
bool IsBeingWritten(const fs::path& path, bool madeMeanwhile) {
  const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  const bool isLeased = descriptor >= 0 && ::fcntl(descriptor, F_SETLEASE, F_RDLCK) == 0;
  const int reason = errno;
  if (descriptor >= 0) ::close(descriptor);
  if (isLeased) return false;
  if (reason == EAGAIN) return true;
  struct stat file {};
  if (::stat(path.c_str(), &file) != 0) return false;
  return (madeMeanwhile && file.st_nlink == 1) || !IsQuiet(file);
}

bool IsEmpty(const fs::path& path) {
  struct stat file {};
  return ::stat(path.c_str(), &file) == 0 && S_ISREG(file.st_mode) && file.st_size == 0;
}

void AddName(const std::string& name, std::vector<std::string>* names) {
  const bool isThere = std::find(names->begin(), names->end(), name) != names->end();
  if (!name.starts_with('.') && !isThere) names->push_back(name);
}

}  // namespace

FolderWatch::FolderWatch(const std::string& folder) : folder_(folder) {
  // A writer that comes while a file is leased has the system send this.
  std::signal(SIGIO, SIG_IGN);
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
    std::error_code gone;
    if (!entry.is_regular_file(gone) || known_.contains(name)) continue;
    if (IsBeingWritten(entry.path(), false)) {
      made_.emplace(name, false);
    } else {
      found.push_back(name);
    }
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
      TakeEvent(event.mask, event.len == 0 ? "" : name, names);
    }
  }
}

void FolderWatch::TakeEvent(uint32_t mask, const std::string& name,
                            std::vector<std::string>* names) {
  if ((mask & IN_Q_OVERFLOW) != 0) TakeAll(names);
  if ((mask & IN_IGNORED) != 0) {
    errno = ENOENT;
    Fail(folder_);
  }
  if (name.empty() || (mask & IN_ISDIR) != 0) return;
  if ((mask & IN_CREATE) != 0) {
    std::error_code gone;
    const fs::file_type type = fs::symlink_status(fs::path(folder_) / name, gone).type();
    if (type == fs::file_type::regular) made_.emplace(name, true);
    if (type != fs::file_type::symlink) return;
  }
  made_.erase(name);
  AddName(name, names);
}

// A hard link is whole from the start and never closed, and what is written by the name of another
// folder is closed by that. A file that its writer has just made is empty, and one that he closes
// is told of before nobody writes it.
void FolderWatch::TakeMade(std::vector<std::string>* names) {
  std::vector<std::string> whole;
  for (const auto& [name, meanwhile] : made_) {
    const fs::path path = fs::path(folder_) / name;
    if (!IsEmpty(path) && !IsBeingWritten(path, meanwhile)) whole.push_back(name);
  }
  TakeEvents(names);
  for (const std::string& name : whole) {
    std::error_code failed;
    const bool isThere = fs::is_regular_file(fs::path(folder_) / name, failed);
    if (made_.erase(name) > 0 && isThere) AddName(name, names);
  }
}

std::vector<std::string> FolderWatch::Next() {
  std::vector<std::string> names;
  if (!begun_) {
    TakeAll(&names);
  } else {
    pollfd watched{.fd = events_, .events = POLLIN, .revents = 0};
    const int ready = ::poll(&watched, 1, made_.empty() ? WAIT : SHORT_WAIT);
    if (ready < 0 || (ready == 0 && made_.empty())) return {};
  }
  // Also after the list: what was closed meanwhile is told of, and is in the list.
  TakeEvents(&names);
  TakeMade(&names);
  begun_ = true;
  std::vector<std::string> paths;
  for (const std::string& name : names) {
    known_.insert(name);
    paths.push_back((fs::path(folder_) / name).string());
  }
  return paths;
}

}  // namespace front
