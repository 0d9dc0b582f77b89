// Text drawn into images. A line goes to bits first, of which only those are made that lie on the
// image.
#include <algorithm>
#include <cstring>
#include <string_view>

#include "core/heap.h"
#include "engine/operands.h"
#include "platform/fonts.h"

namespace zel {
namespace {

constexpr char LINE_END = 13;
constexpr size_t FAMILY_BYTES = 31;
static_assert(FONT_SIZE_LIMIT == FONT_HEIGHT_LIMIT);

struct TextPlace {
  int32_t x, y;
  int32_t align;  // a TextAlign

  int64_t LeftOf(int32_t lineWidth) const {
    if (align <= TEXT_ALIGN_LEFT) return x;
    return int64_t{x} - (align >= TEXT_ALIGN_RIGHT ? lineWidth : lineWidth / 2);
  }
};

constexpr bool TypeIsU8OrRgb(int32_t type) {
  return type == IMAGE_U8 || type == IMAGE_RGB;
}

// ---- pixels

// What becomes of a pixel of a letter, and of one of the ground.
template <class T>
struct TextInk {
  T kept, inverted, value;  // pixel & kept ^ inverted | value

  T Of(T pixel) const { return static_cast<T>(((pixel & kept) ^ inverted) | value); }
};

template <class T>
struct TextInks {
  TextInk<T> letter, ground;
};

template <class T>
TextInks<T> InksOf(int32_t mode, T white) {
  const auto all = static_cast<T>(~T{0});
  const TextInk<T> nothing{all, 0, 0};
  const TextInk<T> paintsWhite{0, 0, white};
  const TextInk<T> paintsBlack{0, 0, 0};
  if (mode <= TEXT_WHITE) return {paintsWhite, nothing};
  if (mode == TEXT_BLACK) return {paintsBlack, nothing};
  if (mode == TEXT_INVERT) return {{all, white, 0}, nothing};
  if (mode == TEXT_BLACK_ON_WHITE) return {paintsBlack, paintsWhite};
  return {paintsWhite, paintsBlack};
}

template <class T>
void BitsDraw(const PixelView& to, const TextPixels& bits, int32_t mode, T white) {
  const auto [letter, ground] = InksOf<T>(mode, white);
  const int32_t width = bits.width;
  for (int32_t y = 0; y < bits.height; y++) {
    const uint8_t* row = bits.first + y * bits.pitch;
    T* pixels = to.Row<T>(y);
#pragma GCC ivdep
    for (int32_t x = 0; x < width; x++) {
      const T onLetter = letter.Of(pixels[x]);
      const T onGround = ground.Of(pixels[x]);
      pixels[x] = row[x] != 0 ? onLetter : onGround;
    }
  }
}

// ---- lines

// Where a line meets the image.
struct LinePart {
  int64_t left, top, right, bottom;  // right and bottom are one past the last pixel

  bool IsEmpty() const { return left >= right || top >= bottom; }
};

LinePart PartOn(const PixelView& view, int64_t x, int64_t y, int32_t width, int32_t height) {
  return {std::max<int64_t>(x, 0), std::max<int64_t>(y, 0),
          std::min<int64_t>(x + width, view.width), std::min<int64_t>(y + height, view.height)};
}

struct TextLook {
  FontRequest font;
  int32_t mode;  // a TextMode
};

// The bits have room for a line as wide as the image.
Status LineDraw(const PixelView& to, const TextLook& look, const TextPlace& place, int64_t y,
                std::string_view line, uint8_t* bits) {
  const FontRequest& font = look.font;
  int32_t width = 0;
  int32_t failure = FontsInUse().measure(font, line, &width);
  if (failure != 0) return -failure;
  const int64_t x = place.LeftOf(width);
  const LinePart part = PartOn(to, x, y, width, font.height);
  if (part.IsEmpty()) return STATUS_OK;
  const TextPixels pixels{.first = bits,
                          .pitch = part.right - part.left,
                          .left = part.left - x,
                          .top = static_cast<int32_t>(part.top - y),
                          .width = static_cast<int32_t>(part.right - part.left),
                          .height = static_cast<int32_t>(part.bottom - part.top)};
  failure = FontsInUse().draw(font, line, pixels);
  if (failure != 0) return -failure;
  PixelView on = to;
  on.origin += part.top * to.pitch + part.left * to.pixelBytes;
  if (to.type == IMAGE_U8) {
    BitsDraw<uint8_t>(on, pixels, look.mode, 0xFF);
  } else {
    BitsDraw<uint32_t>(on, pixels, look.mode, 0xFFFFFF);
  }
  return STATUS_OK;
}

// Takes the first line off a text.
std::string_view LineNext(std::string_view* text) {
  const size_t end = std::min(text->find(LINE_END), text->size());
  const std::string_view line = text->substr(0, end);
  text->remove_prefix(std::min(end + 1, text->size()));
  return line;
}

Status LinesDraw(const PixelView& to, const TextLook& look, const TextPlace& place,
                 std::string_view text, uint8_t* bits) {
  for (int64_t y = place.y; !text.empty() && y < to.height; y += look.font.height) {
    const std::string_view line = LineNext(&text);
    if (line.size() > TEXT_LINE_BYTES) break;
    if (y + look.font.height <= 0) continue;
    const Status status = LineDraw(to, look, place, y, line, bits);
    if (status != STATUS_OK) return status;
  }
  return STATUS_OK;
}

Status TextDraw(ImageRef source, ImageRef destination, const TextPlace& place, const TextLook& look,
                std::string_view text) {
  Operands operands;
  operands.Source(source, &TypeIsU8OrRgb);
  operands.DestinationOfAnyType(destination);
  if (operands.HasFailed()) return operands.status();
  if (operands.destination()->type != operands.source().type) return STATUS_BAD_TYPE;
  int32_t width = 0;
  const int32_t failure = FontsInUse().measure(look.font, "", &width);
  if (failure != 0) return -failure;
  const int32_t height = std::min(look.font.height, operands.source().height);
  WorkArray<uint8_t> bits;
  const int64_t pixels = int64_t{operands.source().width} * height;
  if (!bits.Allocate(static_cast<uint64_t>(pixels))) return STATUS_MEMORY_FULL;
  operands.TakePixels();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  return LinesDraw(operands.To(), look, place, text, bits.data());
}

}  // namespace
}  // namespace zel

int32_t ZEL_DrawText(ImageRef source, ImageRef destination, int32_t x, int32_t y, int32_t textMode,
                     const char* text, int32_t size, int32_t style, int32_t align,
                     const char* fontName, int32_t* lineCount) {
  constexpr char name[] = "ZEL_DrawText";
  if (!text || !fontName) return ZEL_ProcessError(name, zel::STATUS_NO_TEXT);
  char family[zel::FAMILY_BYTES + 1] = {};
  std::memcpy(family, fontName, strnlen(fontName, zel::FAMILY_BYTES));
  const zel::FontRequest font{.family = family,
                              .height = std::max<int32_t>(size, FONT_SIZE_LEAST),
                              .isBold = (style & TEXT_BOLD) != 0,
                              .isItalic = (style & TEXT_ITALIC) != 0,
                              .isUnderlined = (style & TEXT_UNDERLINE) != 0,
                              .isStruckOut = (style & TEXT_STRIKEOUT) != 0};
  const std::string_view lines = text;
  const zel::Status status =
      zel::TextDraw(source, destination, {x, y, align}, {font, textMode}, lines);
  if (status == zel::STATUS_OK && lineCount) {
    const auto ends = std::count(lines.begin(), lines.end(), zel::LINE_END);
    *lineCount = static_cast<int32_t>(ends + 1);
  }
  return ZEL_ProcessError(name, status);
}
