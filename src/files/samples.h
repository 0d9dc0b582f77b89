// What the classes of samples are, and how each becomes the pixels of an image.
#pragma once

#include "core/pixel_types.h"
#include "files/context.h"
#include "files/samples_rows.h"

namespace zel {

struct ClassLayout {
  int32_t bitsPerPixel;  // as told to callers
  int32_t planes;
  int32_t unitBytes;   // the smallest run of whole bytes that holds whole samples
  int32_t unitPixels;  // ... and how many
};
const ClassLayout& ClassLayoutOf(PixelClass pixelClass);

// Whether pixels and samples are the same bytes but for their order, and what sets that right.
bool SamplesAreDirect(PixelClass pixelClass, int32_t imageType);
ElementMove DirectReversal(const FileContext& context, int32_t imageType);  // null: none

// Reverses the bytes of a run of samples in place where the context asks for it; an incomplete
// sample at the end stays.
void SamplesReverse(const FileContext& context, uint8_t* samples, int64_t bytes);

// The stretch of a range of integer samples to that of the image's type.
struct SampleStretch {
  double scale, offset;
  IntegerLimits limits;
};

// How samples become pixels: by a row routine, or stretched.
class SampleConverter {
 public:
  SampleConverter(const FileContext& context, int32_t imageType);

  // False for samples that leave no trace in an image of this type.
  bool HasEffect() const { return convert_ != nullptr || stretches_; }
  void Convert(const uint8_t* samples, int64_t first, int64_t count, void* pixels) const;

 private:
  SampleConvert convert_ = nullptr;
  bool stretches_ = false;
  SampleStretch stretch_{};
  PixelClass pixelClass_;
  int32_t imageType_;
};

// The smallest and largest of a run of integer samples, joined to what min and max hold. Nothing
// happens for classes that have no range.
bool SamplesHaveRange(PixelClass pixelClass);
void SamplesRange(PixelClass pixelClass, const uint8_t* samples, int64_t count, float* min,
                  float* max);

}  // namespace zel
