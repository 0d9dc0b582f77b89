// Watching the display by a connection to it.
#include "orlune/view/display_watch.h"

#include <dlfcn.h>
#include <poll.h>

namespace front {
namespace {

template <class Function>
Function* Find(void* library, const char* name) {
  return library != nullptr ? reinterpret_cast<Function*>(dlsym(library, name)) : nullptr;
}

using Connect = void*(const char* display, int* screen);
using HasError = int(void* connection);
using Descriptor = int(void* connection);
using Disconnect = void(void* connection);

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

bool DisplayWatch::Wait(int milliseconds) const {
  const auto descriptor = Find<Descriptor>(library_, "xcb_get_file_descriptor");
  if (connection_ == nullptr || descriptor == nullptr) return false;
  // What may arrive is not asked for: only the connection's end counts.
  pollfd end{descriptor(connection_), 0, 0};
  return poll(&end, 1, milliseconds) <= 0;
}

}  // namespace front
