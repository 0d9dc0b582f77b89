// Drawing into a picture in memory.
#include "platform/memory_picture.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "platform/memory_desktop.h"

namespace zel {
namespace {

uint32_t ColourOf(const DesktopBitmap& bitmap, int64_t x, int64_t y) {
  const uint8_t* row = bitmap.rows + y * bitmap.pitch;
  if (bitmap.depth == 24) {
    return uint32_t{row[3 * x]} << 16 | uint32_t{row[3 * x + 1]} << 8 | row[3 * x + 2];
  }
  if (bitmap.depth == 8) return bitmap.colours[row[x]] & 0xFFFFFF;
  return bitmap.colours[(x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15)] & 0xFFFFFF;
}

// How many pixels an oval of a box leaves out at each end of a row: those whose middles lie outside
// the ellipse that touches the box. The middle of a row always belongs to it.
int64_t OvalInset(int64_t width, int64_t height, int64_t row) {
  // 8192 pixels a side make 13 bits each, so that products of four sides fit.
  const int64_t v = 2 * row + 1 - height;
  const int64_t room = width * width * (height * height - v * v);
  int64_t inset = 0;
  for (int64_t u = width - 1; u > 1 && height * height * u * u > room; u -= 2) inset++;
  return inset;
}

}  // namespace

void MemoryPicture::Resize(int32_t width, int32_t height) {
  if (width == width_ && height == height_) return;
  width_ = width;
  height_ = height;
  clip = {0, 0, height, width};
  pixels_.reset();
}

int64_t MemoryPicture::Area() const {
  const auto isFit = [](int32_t side) { return side > 0 && side <= MEMORY_CANVAS_LIMIT; };
  return isFit(width_) && isFit(height_) ? int64_t{width_} * height_ : 0;
}

bool MemoryPicture::Begin() {
  if (pixels_) return true;
  const auto area = static_cast<size_t>(Area());
  if (area == 0) return false;
  pixels_.reset(new (std::nothrow) uint32_t[area]);
  if (!pixels_) return false;
  std::fill_n(pixels_.get(), area, background_);
  return true;
}

uint32_t MemoryPicture::Pixel(int32_t x, int32_t y) const {
  const bool isInside = x >= 0 && x < width_ && y >= 0 && y < height_;
  return pixels_ && isInside ? pixels_[static_cast<size_t>(y) * static_cast<size_t>(width_) +
                                       static_cast<size_t>(x)]
                             : UINT32_MAX;
}

MemoryPicture::Box MemoryPicture::Clipped(const DesktopRect& rect) const {
  const auto low = [](int64_t a, int64_t b) { return std::max({a, b, int64_t{0}}); };
  const auto high = [](int64_t a, int64_t b, int64_t side) { return std::min({a, b, side}); };
  return {low(rect.left, clip.left), low(rect.top, clip.top),
          high(int64_t{rect.left} + rect.width, int64_t{clip.left} + clip.width, width_),
          high(int64_t{rect.top} + rect.height, int64_t{clip.top} + clip.height, height_)};
}

void MemoryPicture::Dot(int64_t x, int64_t y) {
  Span(x, x + 1, y);
}

void MemoryPicture::Span(int64_t left, int64_t right, int64_t y) {
  const Box box = Clipped({0, 0, height_, width_});
  if (y < box.top || y >= box.bottom) return;
  left = std::max(left, box.left);
  right = std::min(right, box.right);
  const uint32_t bits = pen.pattern[y % 8];
  for (int64_t x = left; x < right; x++) {
    const bool isSet = (bits >> (7 - x % 8)) & 1;
    const uint32_t colour = (isSet ? pen.foreground : pen.background) & 0xFFFFFF;
    uint32_t* pixel = At(x, y);
    *pixel = pen.mode == PEN_INVERT ? *pixel ^ colour : colour;
  }
}

void MemoryPicture::Line(int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  const int64_t dx = std::abs(int64_t{x2} - x1);
  const int64_t dy = std::abs(int64_t{y2} - y1);
  // Step by step, so that the pixels don't depend on the clip; of lines that reach far beyond any
  // picture nothing is drawn.
  constexpr int64_t longest = 4 * int64_t{MEMORY_CANVAS_LIMIT};
  if (std::max(dx, dy) > longest) return;
  const int64_t stepX = x1 < x2 ? 1 : -1;
  const int64_t stepY = y1 < y2 ? 1 : -1;
  int64_t x = x1;
  int64_t y = y1;
  int64_t error = dx - dy;
  for (int64_t points = std::max(dx, dy) + 1; points > 0; points--) {
    Dot(x, y);
    const int64_t doubled = 2 * error;
    if (doubled > -dy) {
      error -= dy;
      x += stepX;
    }
    if (doubled < dx) {
      error += dx;
      y += stepY;
    }
  }
}

void MemoryPicture::Rect(const DesktopRect& rect, ShapeFill fill) {
  if (rect.width < 1 || rect.height < 1) return;
  const int64_t right = int64_t{rect.left} + rect.width;
  const int64_t bottom = int64_t{rect.top} + rect.height;
  const int64_t last = std::min<int64_t>(bottom, height_);
  for (int64_t y = std::max(rect.top, 0); y < last; y++) {
    if (fill == ShapeFill::FILL || y == rect.top || y == bottom - 1) {
      Span(rect.left, right, y);
    } else {
      Dot(rect.left, y);
      if (rect.width > 1) Dot(right - 1, y);
    }
  }
}

void MemoryPicture::Oval(const DesktopRect& rect, ShapeFill fill) {
  const int64_t width = rect.width;
  const int64_t height = rect.height;
  if (width < 1 || height < 1 || width > MEMORY_CANVAS_LIMIT || height > MEMORY_CANVAS_LIMIT) {
    return;
  }
  const int64_t right = int64_t{rect.left} + width;
  for (int64_t row = 0; row < height; row++) {
    const int64_t y = rect.top + row;
    const int64_t inset = OvalInset(width, height, row);
    // An outline reaches as far in as the rows above and below begin.
    const int64_t above = row == 0 ? (width + 1) / 2 : OvalInset(width, height, row - 1);
    const int64_t below = row == height - 1 ? (width + 1) / 2 : OvalInset(width, height, row + 1);
    const int64_t end = std::max({inset + 1, above, below});
    if (fill == ShapeFill::FILL || 2 * end >= width) {
      Span(rect.left + inset, right - inset, y);
    } else {
      Span(rect.left + inset, rect.left + end, y);
      Span(right - end, right - inset, y);
    }
  }
}

void MemoryPicture::Invert(const DesktopRect& rect) {
  const Box box = Clipped(rect);
  for (int64_t y = box.top; y < box.bottom; y++) {
    for (int64_t x = box.left; x < box.right; x++) *At(x, y) ^= 0xFFFFFF;
  }
}

void MemoryPicture::Blit(const DesktopBitmap& bitmap, const DesktopRect& source,
                         const DesktopRect& to) {
  const Box box = Clipped(to);
  for (int64_t y = box.top; y < box.bottom; y++) {
    const int64_t fromY = source.top + (y - to.top) * source.height / to.height;
    if (fromY < 0 || fromY >= bitmap.height) continue;
    for (int64_t x = box.left; x < box.right; x++) {
      const int64_t fromX = source.left + (x - to.left) * source.width / to.width;
      if (fromX < 0 || fromX >= bitmap.width) continue;
      *At(x, y) = ColourOf(bitmap, fromX, fromY);
    }
  }
}

}  // namespace zel
