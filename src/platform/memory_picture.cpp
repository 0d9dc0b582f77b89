// Drawing into a picture in memory.
#include "platform/memory_picture.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include "platform/built_in_face.h"
#include "platform/memory_desktop.h"

namespace zel {
namespace {

// Columns of a bitmap that columns of a canvas take, from the left.
struct Columns {
  const DesktopBitmap* bitmap;
  int64_t from, sourceWidth, destinationWidth;  // of the first column that is written, see At
  int64_t first, count;

  int64_t At(int64_t i) const { return from + (first + i) * sourceWidth / destinationWidth; }
};

// Calls with each column that is written and the one that it takes. The quotient is carried on from
// one column to the next: a division for each would take longer than the copying.
template <class Write>
void ForEachColumn(const Columns& columns, Write write) {
  if (columns.sourceWidth == columns.destinationWidth) {
    const int64_t x = columns.At(0);
    for (int64_t i = 0; i < columns.count; i++) write(i, x + i);
    return;
  }
  const int64_t step = columns.sourceWidth / columns.destinationWidth;
  const int64_t restStep = columns.sourceWidth % columns.destinationWidth;
  int64_t rest = columns.first * columns.sourceWidth % columns.destinationWidth;
  int64_t x = columns.At(0);
  for (int64_t i = 0; i < columns.count; i++) {
    write(i, x);
    x += step;
    rest += restStep;
    const bool isNext = rest >= columns.destinationWidth;
    x += isNext ? 1 : 0;
    rest -= isNext ? columns.destinationWidth : 0;
  }
}

void BlitRow(const Columns& columns, const uint8_t* row, uint32_t* to) {
  const uint32_t* colours = columns.bitmap->colours;
  switch (columns.bitmap->depth) {
    case 32:
      ForEachColumn(columns, [=](int64_t i, int64_t x) {
        uint32_t pixel = 0;
        std::memcpy(&pixel, row + 4 * x, sizeof pixel);
        to[i] = pixel & 0xFFFFFF;
      });
      return;
    case 24:
      ForEachColumn(columns, [=](int64_t i, int64_t x) {
        const uint8_t* pixel = row + 3 * x;
        to[i] = uint32_t{pixel[0]} << 16 | uint32_t{pixel[1]} << 8 | pixel[2];
      });
      return;
    case 8:
      ForEachColumn(columns, [=](int64_t i, int64_t x) { to[i] = colours[row[x]] & 0xFFFFFF; });
      return;
    default:
      ForEachColumn(columns, [=](int64_t i, int64_t x) {
        to[i] = colours[x % 2 == 0 ? row[x / 2] >> 4 : row[x / 2] & 15] & 0xFFFFFF;
      });
  }
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

// The family that letters in windows are taken from.
constexpr char WINDOW_FAMILY[] = "sans-serif";

// A line of letters of this many points is so many pixels high, on screens of 96 points an inch.
constexpr int32_t LineHeightOf(int32_t points) {
  return points * 8 / 5;
}

int32_t LinesOf(std::string_view text) {
  return static_cast<int32_t>(std::count(text.begin(), text.end(), '\n')) + 1;
}

}  // namespace

void MemoryPicture::Resize(int32_t width, int32_t height) {
  if (width == width_ && height == height_) return;
  width_ = width;
  height_ = height;
  clip = {0, 0, height, width};
  pixels_.reset();
  changed_ = NOTHING;
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
  Change({0, 0, width_, height_});
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
  Change({left, y, right, y + 1});
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
  Change(box);
  for (int64_t y = box.top; y < box.bottom; y++) {
    for (int64_t x = box.left; x < box.right; x++) *At(x, y) ^= 0xFFFFFF;
  }
}

void MemoryPicture::Line(std::string_view line, const FontRequest& font, const DesktopRect& place,
                         TextAlignment alignment, const TextRasteriser& fonts) {
  int32_t width = 0;
  if (fonts.measure(font, line, &width) != 0) return;
  const int32_t room = place.width - width;
  const int32_t indent = alignment == TextAlignment::LEFT     ? 0
                         : alignment == TextAlignment::CENTRE ? room / 2
                                                              : room;
  const Box box = Clipped(place);
  if (box.left >= box.right || box.top >= box.bottom) return;
  const TextPixels all{.first = nullptr,
                       .pitch = box.right - box.left,
                       .left = box.left - place.left - indent,
                       .top = static_cast<int32_t>(box.top - place.top),
                       .width = static_cast<int32_t>(box.right - box.left),
                       .height = static_cast<int32_t>(box.bottom - box.top)};
  const auto area = static_cast<size_t>(all.pitch * all.height);
  const std::unique_ptr<uint8_t[]> bits(new (std::nothrow) uint8_t[area]);
  TextPixels pixels = all;
  pixels.first = bits.get();
  if (!bits || fonts.draw(font, line, pixels) != 0) return;
  Change(box);
  const uint32_t colour = pen.foreground & 0xFFFFFF;
  for (size_t i = 0; i < area; i++) {
    if (bits[i] == 0) continue;
    uint32_t* pixel = At(box.left + static_cast<int64_t>(i) % all.pitch,
                         box.top + static_cast<int64_t>(i) / all.pitch);
    *pixel = pen.mode == PEN_INVERT ? *pixel ^ colour : colour;
  }
}

void MemoryPicture::Text(const char* text, const FontStyle& style, const DesktopRect& rect,
                         TextAlignment alignment, const TextRasteriser& fonts) {
  std::string_view rest = text;
  const int32_t lines = LinesOf(rest);
  const int32_t height = std::min(LineHeightOf(style.size), rect.height / lines);
  if (height < 1 || rect.width < 1) return;
  const FontRequest font{WINDOW_FAMILY,      height,           style.isBold, style.isItalic,
                         style.isUnderlined, style.isStruckOut};
  int32_t width = 0;
  const TextRasteriser& used = fonts.measure(font, "", &width) == 0 ? fonts : BUILT_IN_FACE;
  DesktopRect place{rect.top + (rect.height - lines * height) / 2, rect.left, height, rect.width};
  for (int32_t i = 0; i < lines; i++) {
    const size_t end = std::min(rest.find('\n'), rest.size());
    Line(rest.substr(0, end), font, place, alignment, used);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    place.top += height;
  }
}

void MemoryPicture::Blit(const DesktopBitmap& bitmap, const DesktopRect& source,
                         const DesktopRect& to) {
  Box box = Clipped(to);
  if (source.width < 1 || source.height < 1) return;
  // Columns that lie beside the bitmap are left out.
  const auto columnOf = [&](int64_t x) {
    return source.left + (x - to.left) * source.width / to.width;
  };
  while (box.left < box.right && columnOf(box.left) < 0) box.left++;
  while (box.left < box.right && columnOf(box.right - 1) >= bitmap.width) box.right--;
  if (box.left >= box.right) return;
  Change(box);
  const Columns columns{&bitmap,  source.left,        source.width,
                        to.width, box.left - to.left, box.right - box.left};
  int64_t copied = -1;
  for (int64_t y = box.top; y < box.bottom; y++) {
    const int64_t fromY = source.top + (y - to.top) * source.height / to.height;
    if (fromY < 0 || fromY >= bitmap.height) continue;
    if (fromY == copied) {
      std::copy_n(At(box.left, y - 1), columns.count, At(box.left, y));
    } else {
      BlitRow(columns, bitmap.rows + fromY * bitmap.pitch, At(box.left, y));
    }
    copied = fromY;
  }
}

void MemoryPicture::Change(const Box& box) {
  if (box.left >= box.right || box.top >= box.bottom) return;
  changed_ = {std::min(changed_.left, box.left), std::min(changed_.top, box.top),
              std::max(changed_.right, box.right), std::max(changed_.bottom, box.bottom)};
}

DesktopRect MemoryPicture::TakeChanged() {
  const Box box = std::exchange(changed_, NOTHING);
  if (box.left >= box.right) return {};
  return {static_cast<int32_t>(box.top), static_cast<int32_t>(box.left),
          static_cast<int32_t>(box.bottom - box.top), static_cast<int32_t>(box.right - box.left)};
}

}  // namespace zel
