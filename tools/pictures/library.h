// The library as C++ sees it: failures as exceptions, images that dispose of themselves.
#pragma once

#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "orlune_ptk.h"

namespace pictures {

// A failure that the library reported.
class LibraryFailure : public std::runtime_error {
 public:
  LibraryFailure(int32_t number, const std::string& function);
  int32_t number() const { return number_; }  // negative, as functions return it
  const std::string& function() const { return function_; }

 private:
  int32_t number_;
  std::string function_;
};

// The library's own message for a failure number of either sign; empty for a number that this
// program cannot meet.
std::string LibraryMessage(int32_t number);

// Throws LibraryFailure for any status but 0.
void Check(int32_t status);

class Image {
 public:
  explicit Image(int32_t type, int32_t border = 0) {
    Check(ZEL_Create(&reference_, static_cast<int16_t>(type), border));
  }
  Image(int32_t type, int32_t border, int32_t width, int32_t height) : Image(type, border) {
    Check(ZEL_SetImageSize(reference_, width, height));
  }
  Image(Image&& other) noexcept : reference_(std::exchange(other.reference_, 0)) {}
  Image& operator=(Image&& other) noexcept {
    std::swap(reference_, other.reference_);
    return *this;
  }
  ~Image() {
    if (reference_ != 0) ZEL_Dispose(reference_);
  }

  operator ImageRef() const { return reference_; }  // NOLINT: an image is its reference in calls

  ImageInfo Info() const {
    ImageInfo info;
    Check(-ZEL_GetImageInfo(reference_, &info));
    return info;
  }

 private:
  ImageRef reference_ = 0;
};

// Row y of an image that the record tells of.
template <class T>
T* Row(const ImageInfo& info, int32_t y) {
  return reinterpret_cast<T*>(static_cast<char*>(info.firstPixel) +
                              static_cast<int64_t>(y) * info.lineBytes);
}

struct FreeBlock {
  void operator()(void* block) const { ZEL_free(block); }
};
template <class T>
using Block = std::unique_ptr<T[], FreeBlock>;

}  // namespace pictures
