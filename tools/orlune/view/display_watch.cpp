// Watching the display by a connection to it.
#include "orlune/view/display_watch.h"

#include <dlfcn.h>
#include <sys/socket.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "orlune/shared/interrupts.h"

namespace front {
namespace {

// Milliseconds between two looks where it is not known by which connection news come.
constexpr int BLIND_WAIT = 40;

template <class Function>
Function* Find(void* library, const char* name) {
  return library != nullptr ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

using Connect = void*(const char* display, int* screen);
using HasError = int(void* connection);
using GetDescriptor = int(void* connection);
using Disconnect = void(void* connection);
struct Request {
  unsigned int number;
};
using AskFocus = Request(void* connection);
using AwaitFocus = void*(void* connection, Request request, void** error);

// The address at the other end; empty where there is none.
std::string PeerOf(int descriptor) {
  sockaddr_storage address{};
  socklen_t size = sizeof address;
  if (getpeername(descriptor, reinterpret_cast<sockaddr*>(&address), &size) != 0) return {};
  std::string peer(size, '\0');
  std::memcpy(peer.data(), &address, size);
  return peer;
}

}  // namespace

DisplayWatch::DisplayWatch() : library_(dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL)) {
  const auto connect = Find<Connect>(library_, "xcb_connect");
  const auto hasError = Find<HasError>(library_, "xcb_connection_has_error");
  const auto disconnect = Find<Disconnect>(library_, "xcb_disconnect");
  if (connect == nullptr || hasError == nullptr || disconnect == nullptr) return;
  connection_ = connect(nullptr, nullptr);
  if (hasError(connection_) == 0) return;
  disconnect(connection_);
  connection_ = nullptr;
}

DisplayWatch::~DisplayWatch() {
  if (connection_ != nullptr) Find<Disconnect>(library_, "xcb_disconnect")(connection_);
  if (library_ != nullptr) dlclose(library_);
}

bool DisplayWatch::Answers() const {
  const auto ask = Find<AskFocus>(library_, "xcb_get_input_focus");
  const auto await = Find<AwaitFocus>(library_, "xcb_get_input_focus_reply");
  if (connection_ == nullptr || ask == nullptr || await == nullptr) return false;
  void* reply = await(connection_, ask(connection_), nullptr);
  std::free(reply);
  return reply != nullptr;
}

int DisplayWatch::Descriptor() const {
  const auto descriptor = Find<GetDescriptor>(library_, "xcb_get_file_descriptor");
  return connection_ != nullptr && descriptor != nullptr ? descriptor(connection_) : -1;
}

void DisplayWatch::FindNeighbours() {
  const int own = Descriptor();
  const std::string display = PeerOf(own);
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", failure)) {
    const int descriptor = std::atoi(entry.path().filename().c_str());
    if (descriptor != own && !display.empty() && PeerOf(descriptor) == display) {
      neighbours_.push_back(descriptor);
    }
  }
}

bool DisplayWatch::Wait(int milliseconds) {
  if (Descriptor() < 0) return false;
  if (neighbours_.empty()) FindNeighbours();
  // Of the watch's own connection only the end counts.
  std::vector<pollfd> ends{{Descriptor(), 0, 0}};
  for (const int neighbour : neighbours_) ends.push_back({neighbour, POLLIN, 0});
  const bool isBlind = neighbours_.empty() && (milliseconds < 0 || milliseconds > BLIND_WAIT);
  PollUntilInterrupted(&ends, isBlind ? BLIND_WAIT : milliseconds);
  return ends[0].revents == 0;
}

}  // namespace front
