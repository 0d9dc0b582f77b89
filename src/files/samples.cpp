// The classes of samples: their sizes, their byte order, and the choice of conversion.
#include "files/samples.h"

#include "core/numbers.h"
#include "files/bytes.h"

namespace zel {
namespace {

// Callers are told 3 planes for the 16-bit classes and 1 for separate planes, against what the
// classes are: kept, programs in the field look for these numbers.
constexpr ClassLayout LAYOUTS[PIXEL_CLASSES] = {
    {1, 1, 1, 8},  {2, 1, 1, 4},  {4, 1, 1, 2},  {8, 1, 1, 1},   //
    {12, 1, 2, 1}, {16, 3, 2, 1}, {16, 3, 2, 1}, {16, 3, 2, 1},  //
    {24, 3, 3, 1}, {24, 1, 1, 1}, {32, 1, 4, 1}, {32, 1, 4, 1},  //
    {32, 3, 4, 1}, {32, 1, 4, 1}, {48, 2, 6, 1}, {64, 2, 8, 1},
};

// An integer sample, whatever its class.
double IntegerSampleAt(PixelClass pixelClass, const uint8_t* samples, int64_t i) {
  const auto bitsAt = [&](int64_t bits) {
    const int64_t perByte = 8 / bits;
    const int64_t shift = 8 - bits - bits * (i % perByte);
    return samples[i / perByte] >> shift & ((1 << bits) - 1);
  };
  switch (pixelClass) {
    case CLASS_BITS1:
      return bitsAt(1);
    case CLASS_BITS2:
      return bitsAt(2);
    case CLASS_BITS4:
      return bitsAt(4);
    case CLASS_U8:
      return samples[i];
    case CLASS_U32:
      return LittleAt32(samples + 4 * i);
    case CLASS_I32:
      return static_cast<int32_t>(LittleAt32(samples + 4 * i));
    default:
      return static_cast<int16_t>(LittleAt16(samples + 2 * i));
  }
}

bool IsInteger(PixelClass pixelClass) {
  return pixelClass <= CLASS_I16 || pixelClass == CLASS_U32 || pixelClass == CLASS_I32;
}

SampleStretch StretchOf(const FileContext& context, int32_t imageType) {
  const IntegerLimits limits = LimitsOf(imageType);
  // A bilevel sample has no range to be found: it is black or white.
  if (imageType == IMAGE_U8 && context.pixelClass == CLASS_BITS1) {
    return {static_cast<double>(limits.high), 0.0, limits};
  }
  const int32_t min = CutLimited(static_cast<double>(context.rangeMin), INT32_MIN, INT32_MAX);
  const int32_t max = CutLimited(static_cast<double>(context.rangeMax), INT32_MIN, INT32_MAX);
  if (min >= max) return {1.0, 0.0, limits};
  const double scale = (limits.high - limits.low) / (static_cast<double>(max) - min);
  return {scale, -static_cast<double>(min) * scale, limits};
}

}  // namespace

const ClassLayout& ClassLayoutOf(PixelClass pixelClass) {
  return LAYOUTS[pixelClass];
}

bool SamplesAreDirect(PixelClass pixelClass, int32_t imageType) {
  switch (imageType) {
    case IMAGE_U8:
      return pixelClass == CLASS_U8;
    case IMAGE_I16:
      return pixelClass == CLASS_U16 || pixelClass == CLASS_I16;
    case IMAGE_SGL:
      return pixelClass == CLASS_SGL;
    case IMAGE_COMPLEX:
      return pixelClass == CLASS_COMPLEX;
    default:
      return pixelClass == CLASS_RGB32;
  }
}

// Colour pixels are reversed when the context does not ask for it, and words when it does: kept,
// files in the field are written that way.
ElementMove DirectReversal(const FileContext& context, int32_t imageType) {
  if (imageType == IMAGE_I16 && context.swapBytes == 1) return sampleRows().reverse16;
  if (imageType == IMAGE_RGB && context.swapBytes != 1) return sampleRows().reverse32;
  return nullptr;
}

void SamplesReverse(const FileContext& context, uint8_t* samples, int64_t bytes) {
  switch (context.pixelClass) {
    case CLASS_U16:
    case CLASS_I16:
    case CLASS_RGB15:
      if (context.swapBytes == 1) sampleRows().reverse16(samples, bytes / 2, samples);
      break;
    case CLASS_U32:
    case CLASS_I32:
    case CLASS_SGL:
      if (context.swapBytes == 1) sampleRows().reverse32(samples, bytes / 4, samples);
      break;
    case CLASS_RGB32:
      if (context.swapBytes != 1) sampleRows().reverse32(samples, bytes / 4, samples);
      break;
    default:
      break;
  }
}

SampleConverter::SampleConverter(const FileContext& context, int32_t imageType)
    : pixelClass_(context.pixelClass), imageType_(imageType) {
  if (context.scaleToRange != 0 && IsInteger(pixelClass_) && TypeIsInteger(imageType)) {
    stretches_ = true;
    stretch_ = StretchOf(context, imageType);
  } else if (pixelClass_ == CLASS_RGB_PLANES) {
    convert_ = sampleRows().convertPlane[context.planeIndex][imageType];
  } else if (pixelClass_ == CLASS_RGB24 && context.swapBytes == 1) {
    convert_ = sampleRows().convertBlueFirst[imageType];
  } else {
    convert_ = sampleRows().convert[pixelClass_][imageType];
  }
}

void SampleConverter::Convert(const uint8_t* samples, int64_t first, int64_t count,
                              void* pixels) const {
  if (!stretches_) {
    convert_(samples, first, count, pixels);
    return;
  }
  for (int64_t i = 0; i < count; i++) {
    const double sample = IntegerSampleAt(pixelClass_, samples, first + i);
    const double value = sample * stretch_.scale + stretch_.offset;
    const int32_t pixel = CutLimited(value, stretch_.limits.low, stretch_.limits.high);
    if (imageType_ == IMAGE_U8) {
      static_cast<uint8_t*>(pixels)[i] = static_cast<uint8_t>(pixel);
    } else {
      static_cast<int16_t*>(pixels)[i] = static_cast<int16_t>(pixel);
    }
  }
}

bool SamplesHaveRange(PixelClass pixelClass) {
  return IsInteger(pixelClass) && pixelClass != CLASS_BITS1 && pixelClass != CLASS_U12;
}

void SamplesRange(PixelClass pixelClass, const uint8_t* samples, int64_t count, float* min,
                  float* max) {
  if (!SamplesHaveRange(pixelClass)) return;
  for (int64_t i = 0; i < count; i++) {
    const auto sample = static_cast<float>(IntegerSampleAt(pixelClass, samples, i));
    if (sample < *min) *min = sample;
    if (sample > *max) *max = sample;
  }
}

}  // namespace zel
