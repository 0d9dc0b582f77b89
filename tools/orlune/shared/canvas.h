// Drawing into colour pictures. What lies outside them is not drawn.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "orlune/gauge/poses.h"
#include "orlune/shared/pictures.h"

namespace front {

class Canvas {
 public:
  // Of an IMAGE_RGB, which has to live as long as this.
  explicit Canvas(const Image& image) : info_(image.Info()) {}

  int32_t width() const { return info_.width; }
  int32_t height() const { return info_.height; }
  RGBValue* RowAt(int32_t y) const { return Row<RGBValue>(info_, y); }

  // Of an IMAGE_U8 of the same size.
  void CopyGray(const Image& gray) const;
  void Dot(int32_t x, int32_t y, RGBValue colour) const;
  void Block(int32_t left, int32_t top, int32_t size, RGBValue colour) const;
  void Frame(int32_t left, int32_t top, int32_t right, int32_t bottom, RGBValue colour) const;
  void Stroke(Place from, Place to, int32_t size, RGBValue colour) const;

  // White with a dark edge, moved into the picture where it would reach out of it. Figures, letters
  // (as capitals) and common signs; others are blanks.
  void Text(int32_t left, int32_t top, std::string_view text) const;
  // At the bottom, in as many lines as it takes; of more than there is room for, the first ones.
  void Caption(std::string_view text) const;
  // Pixels of a dot of text: large pictures have text of double size.
  int32_t TextSize() const;

 private:
  ImageInfo info_;
};

int32_t TextHeight(int32_t size);
int32_t TextWidth(std::string_view text, int32_t size);

// The text in lines of at most so many pixels, broken at blanks where there are any; a line has at
// least one character.
std::vector<std::string> LinesOf(std::string_view text, int32_t size, int32_t width);

}  // namespace front
