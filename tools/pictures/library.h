// The library as C++ sees it: failures as exceptions, images that dispose of themselves.
#pragma once

#include <array>
#include <cstddef>
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
  // One whose pixels are all going to be written: a new image in all but these, which may be those
  // of a spare image.
  static Image ForNewPixels(int32_t type, int32_t border, int32_t width, int32_t height);

  Image(Image&& other) noexcept
      : reference_(std::exchange(other.reference_, 0)), reusable_(other.reusable_) {}
  Image& operator=(Image&& other) noexcept {
    std::swap(reference_, other.reference_);
    std::swap(reusable_, other.reusable_);
    return *this;
  }
  ~Image();

  operator ImageRef() const { return reference_; }  // NOLINT: an image is its reference in calls

  ImageInfo Info() const {
    ImageInfo info;
    Check(-ZEL_GetImageInfo(reference_, &info));
    return info;
  }

 private:
  Image() = default;

  ImageRef reference_ = 0;
  bool reusable_ = false;
};

// While one of these lives, some images for new pixels are kept for such images of the same kind
// when they are disposed of. The library clears the pixels of an image that it makes, which takes
// as long as a quick step on them.
class SpareImages {
 public:
  SpareImages();
  ~SpareImages();
  SpareImages(const SpareImages&) = delete;
  SpareImages& operator=(const SpareImages&) = delete;

  // 0 if there is none of this kind.
  ImageRef Take(int32_t type, int32_t border, int32_t width, int32_t height);
  // False for an image that is too large to be kept.
  bool Keep(ImageRef image);

 private:
  static constexpr size_t MOST = 4;
  static constexpr int32_t MOST_BYTES = 1 << 23;  // of one of them

  std::array<ImageRef, MOST> images_{};  // 0 for none
  size_t next_ = 0;
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
