// The images of one call: each reference is looked up and checked once, the destination settled,
// the mask placed. What comes out are views, which hold until the call ends.
#pragma once

#include "core/images.h"
#include "core/pixel_types.h"
#include "core/views.h"

namespace zel {

using TypeTest = bool (*)(int32_t type);

// A temporary image that takes the place of another one at the end of the scope, so that a caller's
// reference survives a kernel that cannot run in place. The exchange happens once the kernel has
// announced that it writes; before that the caller keeps its pixels, since nothing has replaced
// them.
class ReplacementImage {
 public:
  ReplacementImage() = default;
  ReplacementImage(const ReplacementImage&) = delete;
  ReplacementImage& operator=(const ReplacementImage&) = delete;
  ~ReplacementImage();

  // Makes the temporary image after a record.
  Status Create(ImageRef replaced, const Image& like);
  Image* image() const { return image_; }
  void Written() { written_ = true; }

 private:
  ImageRef replaced_ = 0;
  ImageRef reference_ = 0;
  Image* image_ = nullptr;
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
  Image* image() const { return image_; }

 private:
  ImageRef reference_ = 0;
  Image* image_ = nullptr;
};

// A mask on an image: what it covers, and its bytes over that.
struct PlacedMask {
  OverlapRect overlap;
  MaskView view;
};
// STATUS_BAD_IMAGE for an unknown reference, STATUS_BAD_TYPE for a mask that is not U8.
Status MaskPlace(const Image& image, ImageRef mask, PlacedMask* placed);

// The pixels of an image that statistics look at: all of it, or the part that a mask covers with
// the mask over it. A mask of 0 or the image itself is no mask. STATUS_BAD_IMAGE for either
// reference, STATUS_BAD_TYPE for a mask that is not U8; the image may have any type, and one
// without pixels has no origin.
struct Region {
  PixelView view;
  MaskView mask;
};
Status RegionOf(ImageRef image, ImageRef mask, Region* region);
// The same for a record; only a mask of 0 is no mask.
Status RegionOf(const Image& image, ImageRef mask, Region* region);

// How a border is filled from the image's pixels.
enum BorderFill : int32_t { BORDER_MIRROR, BORDER_REPLICATE, BORDER_ZERO };

// Source, mask and destination of an operation that keeps the pixel type. The steps are called in
// the order in which their failures count; after a failure the others do nothing, and status()
// tells the first. Source comes first, and views are asked for last.
class Operands {
 public:
  // STATUS_BAD_IMAGE, and `refusal` for a type that the operation does not take.
  void Source(ImageRef reference, TypeTest takesType, Status refusal = STATUS_BAD_TYPE);

  // For an operation that reads `width` pixels of the source's border. STATUS_BORDER_TOO_SMALL;
  // else all of the border is filled, at once or, where failures still to come have to leave it
  // alone, later.
  void Border(BorderFill fill, int32_t width);
  void BorderAtLeast(int32_t width);
  void BorderFilled(BorderFill fill);

  // 0 or the source: the result replaces the source. Else STATUS_BAD_IMAGE and
  // STATUS_DESTINATION_TYPE_DIFFERS.
  void Destination(ImageRef reference);
  void DestinationOfAnyType(ImageRef reference);
  // For a result of a type of its own, `refusal` where the destination has another.
  void Destination(ImageRef reference, int32_t type, Status refusal);

  // 0 or the source: none. Else STATUS_BAD_IMAGE and STATUS_BAD_TYPE.
  void Mask(ImageRef reference);

  // The result goes to a temporary image wherever the destination is read while it is written: the
  // mask is, and the source unless the operation can run in place. STATUS_MEMORY_FULL.
  enum InPlace : bool { CANNOT_RUN_IN_PLACE = false, CAN_RUN_IN_PLACE = true };
  void WriteBeside(InPlace inPlace);

  // Instead of that and of what follows, for a result of a size of its own: it goes to a temporary
  // image in place of the source, and any other destination takes the size; then the source's
  // information. STATUS_MEMORY_FULL, also for a size that no image can have.
  void WriteSized(int64_t width, int64_t height);

  // What the destination takes from the source; nothing to do in place. STATUS_MEMORY_FULL.
  void TakeSize();
  void TakeInfo();    // calibration, offset and attachments
  void TakePixels();  // size and pixels; the result is written from then on

  Status status() const { return status_; }
  bool HasFailed() const { return status_ != STATUS_OK; }
  const Image& source() const { return *source_; }
  Image* destination() const { return destination_; }
  bool HasMask() const { return hasMask_; }
  const OverlapRect& overlap() const { return mask_.overlap; }
  // From now on the temporary image takes the destination's place at the end.
  void Written() { replacement_.Written(); }

  // Both whole images, or what lies under the mask. Empty where there is nothing to do.
  PixelView From() const;
  PixelView To() const;
  MaskView MaskOver() const { return mask_.view; }

 private:
  PixelView Selected(const Image& image) const;

  Status status_ = STATUS_OK;
  ImageRef sourceReference_ = 0;
  ImageRef maskReference_ = 0;
  ImageRef destinationReference_ = 0;
  Image* source_ = nullptr;
  Image* destination_ = nullptr;
  bool hasMask_ = false;
  PlacedMask mask_{};
  ReplacementImage replacement_;
};

}  // namespace zel
