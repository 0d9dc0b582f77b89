// A picture of a canvas in memory, drawn in integers: the same pixels on every machine.
#pragma once

#include <cstdint>
#include <memory>

#include "platform/desktop.h"
#include "platform/fonts.h"

namespace zel {

class MemoryPicture {
 public:
  // Forgets what was drawn.
  void Resize(int32_t width, int32_t height);
  int32_t Width() const { return width_; }
  int32_t Height() const { return height_; }
  void SetBackground(uint32_t colour) { background_ = colour; }

  // Pixels that the picture takes once something is drawn; 0 for a size beyond the limit.
  int64_t Area() const;
  bool IsDrawn() const { return pixels_ != nullptr; }
  // Makes the pixels. False where they cannot be had.
  bool Begin();

  uint32_t Pixel(int32_t x, int32_t y) const;
  const uint32_t* Row(int32_t y) const { return pixels_.get() + int64_t{y} * width_; }
  DesktopPen pen;
  DesktopRect clip{};

  void Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2);
  void Rect(const DesktopRect& rect, ShapeFill fill);
  void Oval(const DesktopRect& rect, ShapeFill fill);
  void Invert(const DesktopRect& rect);
  // Lines are parted by line feeds and stand in the middle of the rectangle's height, no higher
  // than fits there. Letters take the pen's foreground without its pattern; where the fonts given
  // are none, they are those of the built-in face.
  void Text(const char* text, const FontStyle& style, const DesktopRect& rect,
            TextAlignment alignment, const TextRasteriser& fonts);
  void Blit(const DesktopBitmap& bitmap, const DesktopRect& source, const DesktopRect& to);

  // What was drawn on since the last call: all that is not in it is as it was.
  DesktopRect TakeChanged();

 private:
  struct Box {
    int64_t left, top, right, bottom;  // right and bottom are one past the last pixel
  };
  static constexpr Box NOTHING{INT32_MAX, INT32_MAX, 0, 0};
  void Change(const Box& box);
  Box Clipped(const DesktopRect& rect) const;
  void Line(std::string_view line, const FontRequest& font, const DesktopRect& place,
            TextAlignment alignment, const TextRasteriser& fonts);
  void Dot(int64_t x, int64_t y);
  void Span(int64_t left, int64_t right, int64_t y);
  uint32_t* At(int64_t x, int64_t y) { return pixels_.get() + y * width_ + x; }

  int32_t width_ = 0, height_ = 0;
  uint32_t background_ = 0xFFFFFF;
  Box changed_ = NOTHING;
  std::unique_ptr<uint32_t[]> pixels_;
};

}  // namespace zel
