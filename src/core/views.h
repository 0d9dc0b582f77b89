// Where pixels lie: the records that every walk over an image speaks. A view is valid until its
// image is resized or replaced, so views are made when all images of a call are settled.
#pragma once

#include <cstdint>

namespace zel {

// The part of an image that a mask placed at its offsets covers. An empty one has a width or
// height below 1.
struct OverlapRect {
  int32_t imageX, imageY;  // first pixel in the image
  int32_t maskX, maskY;    // the matching pixel in the mask
  int32_t width, height;

  bool IsEmpty() const { return width < 1 || height < 1; }
};

// The pixels of an image, or of a part of one.
struct PixelView {
  uint8_t* origin = nullptr;  // pixel (0, 0); null for an image without pixels
  int64_t pitch = 0;          // bytes from one row to the next
  int32_t width = 0;
  int32_t height = 0;
  int16_t type = 0;  // ImageType
  int16_t pixelBytes = 0;

  bool IsEmpty() const { return width < 1 || height < 1; }
  template <class T>
  T* Row(int64_t y) const {
    return reinterpret_cast<T*>(origin + y * pitch);
  }
  template <class T>
  T* At(int64_t x, int64_t y) const {
    return Row<T>(y) + x;
  }
  int64_t RowBytes() const { return int64_t{width} * pixelBytes; }
  int64_t Bytes() const { return RowBytes() * height; }

  PixelView Columns(int32_t first, int32_t end) const {
    PixelView part = *this;
    part.origin += int64_t{first} * pixelBytes;
    part.width = end - first;
    return part;
  }
  PixelView Rows(int32_t first, int32_t end) const {
    PixelView part = *this;
    part.origin += first * pitch;
    part.height = end - first;
    return part;
  }
  PixelView Part(const OverlapRect& overlap) const {
    return Rows(overlap.imageY, overlap.imageY + overlap.height)
        .Columns(overlap.imageX, overlap.imageX + overlap.width);
  }
};

// The bytes of a mask over a view: the one over pixel (0, 0), and the pitch.
struct MaskView {
  const uint8_t* origin = nullptr;  // null: every pixel is selected
  int64_t pitch = 0;

  bool SelectsAll() const { return !origin; }
  const uint8_t* Row(int64_t y) const { return origin ? origin + y * pitch : nullptr; }

  MaskView Rows(int32_t first) const { return {Row(first), pitch}; }
  MaskView Columns(int32_t first) const { return {origin ? origin + first : nullptr, pitch}; }
};

}  // namespace zel
