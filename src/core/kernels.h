// What kernels have in common: settling the destination, working through a temporary image that
// takes another's place at the end, and placing a mask.
#pragma once

#include "core/images.h"

namespace zel {

inline bool TypeIsInteger(int32_t type) {
  return type == IMAGE_U8 || type == IMAGE_I16;
}
inline bool TypeIsScalar(int32_t type) {
  return TypeIsInteger(type) || type == IMAGE_SGL;
}
inline bool TypeHasPixels(int32_t type) {
  return type >= IMAGE_U8 && type <= IMAGE_RGB;
}

// The destination of a kernel that can run in place: the source itself for 0 or the source, else
// an image that must exist (STATUS_BAD_IMAGE) and have the source's type
// (STATUS_DESTINATION_TYPE_DIFFERS). It is not resized yet.
ImageRef DestinationOfSameType(ImageRef source, ImageRef destination, Status* status);

// Gives a destination the source's calibration, offset and size. Nothing to do for the source.
void DestinationLikeSource(ImageRef source, ImageRef destination, Status* status);

// A temporary image that takes the place of another one at the end of the scope, so that a
// caller's reference survives a kernel that cannot run in place. The exchange happens, whatever
// the status, once the kernel has announced that it writes; before that the caller keeps its
// pixels, since nothing has replaced them.
class ReplacementImage {
 public:
  explicit ReplacementImage(Status* status) : status_(status) {}
  ReplacementImage(const ReplacementImage&) = delete;
  ReplacementImage& operator=(const ReplacementImage&) = delete;
  ~ReplacementImage();

  // Makes the temporary image after a record; false and a status when there is no memory.
  bool Create(ImageRef replaced, const Image& like);
  bool IsMade() const { return reference_ != 0; }
  ImageRef reference() const { return reference_; }
  void Written() { written_ = true; }

 private:
  Status* status_;
  ImageRef replaced_ = 0;
  ImageRef reference_ = 0;
  bool written_ = false;
};

// A temporary image for the time of one call.
class ScratchImage {
 public:
  ScratchImage() = default;
  ScratchImage(const ScratchImage&) = delete;
  ScratchImage& operator=(const ScratchImage&) = delete;
  ~ScratchImage() {
    if (reference_ != 0) ImageDestroy(reference_);
  }
  Status Create(int16_t type, int32_t width, int32_t height, int32_t border);
  ImageRef reference() const { return reference_; }

 private:
  ImageRef reference_ = 0;
};

// A mask of U8 pixels placed on an image by its offset.
struct PlacedMask {
  OverlapRect overlap;
  const uint8_t* pixels;  // the mask pixel that matches the overlap's first image pixel
  int64_t pitch;          // bytes from one mask row to the next
  bool IsEmpty() const { return overlap.width < 1 || overlap.height < 1; }
};

// STATUS_BAD_IMAGE for an unknown reference, STATUS_BAD_TYPE for a mask that is not U8.
void MaskPlace(ImageRef image, ImageRef mask, PlacedMask* placed, Status* status);

}  // namespace zel
