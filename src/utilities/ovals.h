// Ovals over the pixels of a box, row by row.
#pragma once

#include <cstdint>

namespace zel {

// Rows and columns, both ends included.
struct PixelBox {
  int64_t left, top, right, bottom;

  int64_t Width() const { return right - left + 1; }
  int64_t Height() const { return bottom - top + 1; }
  bool IsOutside(int64_t width, int64_t height) const {
    return right < 0 || left >= width || bottom < 0 || top >= height;
  }
  bool IsInside(int64_t width, int64_t height) const {
    return left >= 0 && top >= 0 && right < width && bottom < height;
  }
};

// The oval that fills a box of W x H pixels, sides of at most 32 bits. With u and v twice the
// distance of a pixel from the middle in columns and rows, the pixel belongs to it where
// H^2 u^2 + W^2 v^2 <= W^2 H^2, or where it lies in a middle column or row, of which an even size
// has two. A box less than 2 pixels wide or high has none: it is drawn as a rectangle.
class Oval {
 public:
  explicit Oval(const PixelBox& box) : box_(box), width_(box.Width()), height_(box.Height()) {}

  // Without the middle columns and rows: u and v of any size.
  bool EllipseHolds(int64_t x, int64_t y) const;

  // The first column of a row, which ends at the mirrored one; that beyond the middle for a row
  // that is not in the box.
  int64_t First(int64_t y) const;
  int64_t Mirrored(int64_t x) const { return box_.left + box_.right - x; }

 private:
  __extension__ using Wide = unsigned __int128;

  static Wide Size(int64_t side) { return static_cast<Wide>(side); }
  static Wide Square(Wide value) { return value * value; }
  Wide Rest(Wide v) const;
  int64_t Reach(int64_t v) const;

  PixelBox box_;
  int64_t width_, height_;
};

// Columns side by side; none where the last one is before the first.
struct Columns {
  int64_t first, last;
};

// What an outline has in a row: all pixels of the oval that have a pixel outside it above, below or
// beside them. Where nothing is between both parts they are one, and the right one is empty.
struct OvalOutline {
  Columns left, right;
};
OvalOutline OvalOutlineOf(const Oval& oval, int64_t y);

// What an oval that is not wholly outside covers of an image. One that lies beyond all corners of
// the image, and its centre too, counts as outside, even where it reaches in over an edge.
enum class OvalCoverage { NOTHING, ALL_OF_IMAGE, PART };
OvalCoverage OvalCoverageOf(const PixelBox& box, int64_t width, int64_t height);

}  // namespace zel
