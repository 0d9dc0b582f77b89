// Libraries that are opened when they are first wanted, so that this one needs none of them.
#pragma once

#include <dlfcn.h>

namespace zel {

// Looks up one function after the other, and remembers whether all were there.
class SharedLibrary {
 public:
  // Names stay the library's own, and its code stays when this library goes: other parts of the
  // program may use it.
  explicit SharedLibrary(const char* name)
      : handle_(dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE)),
        isWhole_(handle_ != nullptr) {}
  SharedLibrary(const SharedLibrary&) = delete;
  SharedLibrary& operator=(const SharedLibrary&) = delete;
  ~SharedLibrary() {
    if (handle_) dlclose(handle_);
  }

  template <class Function>
  void Find(const char* name, Function** function) {
    *function = handle_ ? reinterpret_cast<Function*>(dlsym(handle_, name)) : nullptr;
    isWhole_ = isWhole_ && *function;
  }
  bool IsWhole() const { return isWhole_; }

 private:
  void* handle_;
  bool isWhole_;
};

}  // namespace zel
