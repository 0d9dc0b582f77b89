// Drawing into colour pictures.
#include "orlune/shared/canvas.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>

namespace front {
namespace {

constexpr RGBValue TEXT_COLOUR = 0xFFFFFF;
constexpr RGBValue HALO_COLOUR = 0x000000;

constexpr int32_t FACE_WIDTH = 5;
constexpr int32_t FACE_HEIGHT = 7;
constexpr int32_t LARGE_PICTURE = 400;  // from this height on, text is drawn at double size

// A row of a character is 5 bits, the leftmost pixel in the highest.
using Face = uint8_t[FACE_HEIGHT];
constexpr Face DIGITS[10] = {
    {0x0E, 0x11, 0x13, 0x15, 0x19, 0x11, 0x0E}, {0x04, 0x0C, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x01, 0x02, 0x04, 0x08, 0x1F}, {0x1F, 0x02, 0x04, 0x02, 0x01, 0x11, 0x0E},
    {0x02, 0x06, 0x0A, 0x12, 0x1F, 0x02, 0x02}, {0x1F, 0x10, 0x1E, 0x01, 0x01, 0x11, 0x0E},
    {0x06, 0x08, 0x10, 0x1E, 0x11, 0x11, 0x0E}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x08, 0x08},
    {0x0E, 0x11, 0x11, 0x0E, 0x11, 0x11, 0x0E}, {0x0E, 0x11, 0x11, 0x0F, 0x01, 0x02, 0x0C}};
constexpr Face LETTERS[26] = {
    {0x04, 0x0A, 0x11, 0x11, 0x1F, 0x11, 0x11}, {0x1E, 0x11, 0x11, 0x1E, 0x11, 0x11, 0x1E},
    {0x0E, 0x11, 0x10, 0x10, 0x10, 0x11, 0x0E}, {0x1C, 0x12, 0x11, 0x11, 0x11, 0x12, 0x1C},
    {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F}, {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x10},
    {0x0E, 0x11, 0x10, 0x13, 0x11, 0x11, 0x0F}, {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11},
    {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E}, {0x07, 0x02, 0x02, 0x02, 0x02, 0x12, 0x0C},
    {0x11, 0x12, 0x14, 0x18, 0x14, 0x12, 0x11}, {0x10, 0x10, 0x10, 0x10, 0x10, 0x10, 0x1F},
    {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}, {0x11, 0x19, 0x19, 0x15, 0x13, 0x13, 0x11},
    {0x0E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}, {0x1E, 0x11, 0x11, 0x1E, 0x10, 0x10, 0x10},
    {0x0E, 0x11, 0x11, 0x11, 0x15, 0x12, 0x0D}, {0x1E, 0x11, 0x11, 0x1E, 0x14, 0x12, 0x11},
    {0x0F, 0x10, 0x10, 0x0E, 0x01, 0x01, 0x1E}, {0x1F, 0x04, 0x04, 0x04, 0x04, 0x04, 0x04},
    {0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x0E}, {0x11, 0x11, 0x11, 0x11, 0x0A, 0x0A, 0x04},
    {0x11, 0x11, 0x11, 0x15, 0x15, 0x1B, 0x11}, {0x11, 0x11, 0x0A, 0x04, 0x0A, 0x11, 0x11},
    {0x11, 0x11, 0x0A, 0x04, 0x04, 0x04, 0x04}, {0x1F, 0x01, 0x02, 0x04, 0x08, 0x10, 0x1F}};
constexpr Face BLANK = {};

struct SignFace {
  char sign;
  Face face;
};
constexpr SignFace SIGNS[] = {{'.', {0x00, 0x00, 0x00, 0x00, 0x00, 0x0C, 0x0C}},
                              {',', {0x00, 0x00, 0x00, 0x00, 0x0C, 0x04, 0x08}},
                              {':', {0x00, 0x0C, 0x0C, 0x00, 0x0C, 0x0C, 0x00}},
                              {'-', {0x00, 0x00, 0x00, 0x0E, 0x00, 0x00, 0x00}},
                              {'+', {0x00, 0x04, 0x04, 0x1F, 0x04, 0x04, 0x00}},
                              {'=', {0x00, 0x00, 0x1F, 0x00, 0x1F, 0x00, 0x00}},
                              {'<', {0x02, 0x04, 0x08, 0x10, 0x08, 0x04, 0x02}},
                              {'>', {0x08, 0x04, 0x02, 0x01, 0x02, 0x04, 0x08}},
                              {'(', {0x02, 0x04, 0x08, 0x08, 0x08, 0x04, 0x02}},
                              {')', {0x08, 0x04, 0x02, 0x02, 0x02, 0x04, 0x08}},
                              {'[', {0x0E, 0x08, 0x08, 0x08, 0x08, 0x08, 0x0E}},
                              {']', {0x0E, 0x02, 0x02, 0x02, 0x02, 0x02, 0x0E}},
                              {'/', {0x01, 0x01, 0x02, 0x04, 0x08, 0x10, 0x10}},
                              {'%', {0x18, 0x19, 0x02, 0x04, 0x08, 0x13, 0x03}},
                              {'\'', {0x04, 0x04, 0x08, 0x00, 0x00, 0x00, 0x00}},
                              {'"', {0x0A, 0x0A, 0x0A, 0x00, 0x00, 0x00, 0x00}},
                              {'*', {0x00, 0x0A, 0x04, 0x1F, 0x04, 0x0A, 0x00}},
                              {'_', {0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1F}},
                              {'#', {0x0A, 0x0A, 0x1F, 0x0A, 0x1F, 0x0A, 0x0A}},
                              {'?', {0x0E, 0x11, 0x01, 0x02, 0x04, 0x00, 0x04}}};

const Face& FaceOf(char character) {
  const auto byte = static_cast<unsigned char>(character);
  if (byte >= 0x80) return BLANK;
  if (std::isdigit(byte)) return DIGITS[byte - '0'];
  if (std::isalpha(byte)) return LETTERS[std::toupper(byte) - 'A'];
  const auto* sign = std::find_if(std::begin(SIGNS), std::end(SIGNS),
                                  [&](const SignFace& each) { return each.sign == character; });
  return sign == std::end(SIGNS) ? BLANK : sign->face;
}

// Calls function(x, y) for every pixel of the text in a grid of face pixels.
template <class Function>
void ForTextPixels(std::string_view text, Function function) {
  for (size_t i = 0; i < text.size(); ++i) {
    const Face& face = FaceOf(text[i]);
    for (int32_t y = 0; y < FACE_HEIGHT; ++y) {
      for (int32_t x = 0; x < FACE_WIDTH; ++x) {
        if (face[y] >> (FACE_WIDTH - 1 - x) & 1) {
          function(static_cast<int32_t>(i) * (FACE_WIDTH + 1) + x, y);
        }
      }
    }
  }
}

}  // namespace

void Canvas::CopyGray(const Image& gray) const {
  const ImageInfo info = gray.Info();
  for (int32_t y = 0; y < info.height; ++y) {
    const uint8_t* source = Row<uint8_t>(info, y);
    std::transform(source, source + info.width, RowAt(y),
                   [](uint8_t level) { return level * RGBValue{0x010101}; });
  }
}

void Canvas::Dot(int32_t x, int32_t y, RGBValue colour) const {
  if (x >= 0 && x < info_.width && y >= 0 && y < info_.height) RowAt(y)[x] = colour;
}

void Canvas::Block(int32_t left, int32_t top, int32_t size, RGBValue colour) const {
  for (int32_t y = top; y < top + size; ++y) {
    for (int32_t x = left; x < left + size; ++x) Dot(x, y, colour);
  }
}

void Canvas::Frame(int32_t left, int32_t top, int32_t right, int32_t bottom,
                   RGBValue colour) const {
  for (int32_t x = left; x <= right; ++x) {
    Dot(x, top, colour);
    Dot(x, bottom, colour);
  }
  for (int32_t y = top; y <= bottom; ++y) {
    Dot(left, y, colour);
    Dot(right, y, colour);
  }
}

void Canvas::Stroke(Place from, Place to, int32_t size, RGBValue colour) const {
  const double dx = to.x - from.x, dy = to.y - from.y;
  const auto steps =
      static_cast<int32_t>(std::min(std::ceil(std::max(std::abs(dx), std::abs(dy))), 1e6));
  for (int32_t i = 0; i <= steps; i++) {
    const double part = steps == 0 ? 0 : 1.0 * i / steps;
    const double middle = (size - 1) / 2.0;
    Block(static_cast<int32_t>(std::lround(from.x + part * dx - middle)),
          static_cast<int32_t>(std::lround(from.y + part * dy - middle)), size, colour);
  }
}

int32_t Canvas::TextSize() const {
  return info_.height >= LARGE_PICTURE ? 2 : 1;
}

void Canvas::Text(int32_t left, int32_t top, std::string_view text) const {
  const int32_t size = TextSize();
  left = std::max(size, std::min(left, info_.width - TextWidth(text, size) - size));
  top = std::max(size, std::min(top, info_.height - TextHeight(size) - size));
  ForTextPixels(text, [&](int32_t x, int32_t y) {
    Block(left + (x - 1) * size, top + (y - 1) * size, 3 * size, HALO_COLOUR);
  });
  ForTextPixels(text, [&](int32_t x, int32_t y) {
    Block(left + x * size, top + y * size, size, TEXT_COLOUR);
  });
}

void Canvas::Caption(std::string_view text) const {
  const int32_t size = TextSize();
  const int32_t pitch = TextHeight(size) + 3 * size;
  const auto room = static_cast<size_t>(std::max(1, (info_.height - size) / pitch));
  std::vector<std::string> lines = LinesOf(text, size, info_.width - 4 - 2 * size);
  if (lines.size() > room) lines.resize(room);
  const auto count = static_cast<int32_t>(lines.size());
  for (int32_t i = 0; i < count; ++i) {
    Text(4, info_.height - 4 - TextHeight(size) - (count - 1 - i) * pitch,
         lines[static_cast<size_t>(i)]);
  }
}

int32_t TextHeight(int32_t size) {
  return FACE_HEIGHT * size;
}

int32_t TextWidth(std::string_view text, int32_t size) {
  return (static_cast<int32_t>(text.size()) * (FACE_WIDTH + 1) - 1) * size;
}

std::vector<std::string> LinesOf(std::string_view text, int32_t size, int32_t width) {
  const auto most =
      static_cast<size_t>(std::max(1, (width / size + 1) / (FACE_WIDTH + 1)));  // characters
  std::vector<std::string> lines;
  while (text.size() > most) {
    const size_t blank = text.rfind(' ', most);
    const bool atBlank = blank != std::string_view::npos && blank > 0;
    const size_t length = atBlank ? blank : most;
    lines.emplace_back(text.substr(0, length));
    text.remove_prefix(atBlank ? length + 1 : length);
  }
  lines.emplace_back(text);
  return lines;
}

}  // namespace front
