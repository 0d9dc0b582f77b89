// Lines, rectangles and ovals drawn into images, by a value or by inverting what is there. Shapes
// are clipped before they are walked: time hangs on the image, not on the coordinates.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "core/pixel_types.h"
#include "engine/operands.h"
#include "utilities/lines.h"

namespace zel {
namespace {

struct DrawImages {
  ImageRef source, destination;
};

struct Pen {
  int32_t mode;  // a DrawMode
  float value;

  bool Inverts() const { return mode == DRAW_INVERT_FRAME || mode == DRAW_INVERT_PAINT; }
  bool Paints() const { return mode == DRAW_PAINT || mode == DRAW_INVERT_PAINT; }
};

// ---- pixels side by side

// What pixels become: a value, or what is left of a sum, by pixel type.
struct Ink {
  double value;  // to be cut for integers
  int32_t sum;
  float floatSum;
};

using SpanDraw = void (*)(void* pixels, int64_t count, const Ink& ink);

template <class T>
void SpanPaint(void* pixels, int64_t count, const Ink& ink) {
  std::fill_n(static_cast<T*>(pixels), count, CutLow<T>(ink.value));
}
template <>
void SpanPaint<float>(void* pixels, int64_t count, const Ink& ink) {
  std::fill_n(static_cast<float*>(pixels), count, static_cast<float>(ink.value));
}

void BytesInvert(void* pixels, int64_t count, const Ink&) {
  auto* bytes = static_cast<uint8_t*>(pixels);
  for (int64_t i = 0; i < count; i++) bytes[i] = static_cast<uint8_t>(~bytes[i]);
}
void WordsInvert(void* pixels, int64_t count, const Ink& ink) {
  auto* words = static_cast<int16_t*>(pixels);
  for (int64_t i = 0; i < count; i++) words[i] = static_cast<int16_t>(ink.sum - words[i]);
}
void FloatsInvert(void* pixels, int64_t count, const Ink& ink) {
  auto* floats = static_cast<float*>(pixels);
  for (int64_t i = 0; i < count; i++) floats[i] = ink.floatSum - floats[i];
}

// The sum of the smallest and the largest pixel, which start from these; 0 where they are equal.
template <class T, class Sum>
Sum RangeSum(const PixelView& view, Sum smallest, Sum largest) {
  for (int32_t y = 0; y < view.height; y++) {
    const T* row = view.Row<T>(y);
    for (int32_t x = 0; x < view.width; x++) {
      const Sum pixel = row[x];
      smallest = pixel < smallest ? pixel : smallest;
      largest = pixel > largest ? pixel : largest;
    }
  }
  return smallest == largest ? Sum{0} : smallest + largest;
}

// Where shapes are drawn. What lies beyond the image is left out.
struct Canvas {
  PixelView view;
  SpanDraw draw;
  Ink ink;

  // Columns from `first` to `last`, both ends included.
  void Row(int64_t y, int64_t first, int64_t last) const {
    if (y < 0 || y >= view.height) return;
    first = std::max<int64_t>(first, 0);
    last = std::min<int64_t>(last, view.width - 1);
    if (first <= last) draw(view.Row<uint8_t>(y) + first * view.pixelBytes, last - first + 1, ink);
  }
};

Canvas CanvasOf(const Operands& operands, const Pen& pen) {
  Canvas canvas{.view = operands.To(), .draw = nullptr, .ink = {}};
  canvas.ink.value = static_cast<double>(pen.value);
  const bool inverts = pen.Inverts();
  switch (canvas.view.type) {
    case IMAGE_U8:
      canvas.draw = inverts ? &BytesInvert : &SpanPaint<uint8_t>;
      break;
    case IMAGE_I16:
      canvas.draw = inverts ? &WordsInvert : &SpanPaint<int16_t>;
      if (inverts) canvas.ink.sum = RangeSum<int16_t, int32_t>(canvas.view, INT32_MAX, 0);
      break;
    default:
      canvas.draw = inverts ? &FloatsInvert : &SpanPaint<float>;
      if (inverts) canvas.ink.floatSum = RangeSum<float, float>(canvas.view, 1e38f, -1e38f);
  }
  return canvas;
}

// ---- shapes

// Rows and columns, both ends included.
struct Box {
  int64_t left, top, right, bottom;

  int64_t Width() const { return right - left + 1; }
  int64_t Height() const { return bottom - top + 1; }
};

Box BoxOf(int32_t top, int32_t left, int32_t height, int32_t width) {
  return {left, top, int64_t{left} + width - 1, int64_t{top} + height - 1};
}

bool IsOutside(const Box& box, const PixelView& view) {
  return box.right < 0 || box.left >= view.width || box.bottom < 0 || box.top >= view.height;
}

void LineDraw(const Canvas& canvas, const KernelLine& given, const Pen&) {
  KernelLine line = given;
  if (!LineClipToSize(canvas.view.width, canvas.view.height, &line)) return;
  LineSteps steps(line);
  LinePoint at{line.startX, line.startY};
  for (int64_t i = 0; i < steps.points(); i++) {
    canvas.Row(at.y, at.x, at.x);
    const LinePoint step = steps.Next();
    at = {at.x + step.x, at.y + step.y};
  }
}

void BoxDraw(const Canvas& canvas, const Box& box, const Pen& pen) {
  if (IsOutside(box, canvas.view) || box.Width() < 1 || box.Height() < 1) return;
  const int64_t top = std::max<int64_t>(box.top, 0);
  const int64_t bottom = std::min<int64_t>(box.bottom, canvas.view.height - 1);
  for (int64_t y = top; y <= bottom; y++) {
    if (pen.Paints() || y == box.top || y == box.bottom) {
      canvas.Row(y, box.left, box.right);
    } else {
      canvas.Row(y, box.left, box.left);
      if (box.right != box.left) canvas.Row(y, box.right, box.right);
    }
  }
}

// The oval that fills a box of W x H pixels. With u and v twice the distance of a pixel from the
// middle in columns and rows, the pixel belongs to it where H^2 u^2 + W^2 v^2 <= W^2 H^2, or where
// it lies in a middle column or row, of which an even size has two.
class Oval {
 public:
  explicit Oval(const Box& box) : box_(box), width_(box.Width()), height_(box.Height()) {}

  // Without the middle columns and rows: u and v of any size.
  bool EllipseHolds(int64_t x, int64_t y) const {
    const Wide u = Size(Magnitude(2 * (x - box_.left) + 1 - width_));
    const Wide v = Size(Magnitude(2 * (y - box_.top) + 1 - height_));
    if (u > Size(width_) || v > Size(height_)) return false;
    return Square(Size(height_) * u) <= Rest(v);
  }

  // The first column of a row, which ends at the mirrored one; that beyond the middle for a row
  // that is not in the box.
  int64_t First(int64_t y) const {
    const int64_t v = Magnitude(2 * (y - box_.top) + 1 - height_);
    if (v > height_) return box_.right + 1;
    if (v <= 1) return box_.left;
    return box_.left + (width_ - 1 - Reach(v)) / 2;
  }
  int64_t Mirrored(int64_t x) const { return box_.left + box_.right - x; }

 private:
  __extension__ using Wide = unsigned __int128;

  static int64_t Magnitude(int64_t value) { return value < 0 ? -value : value; }
  static Wide Size(int64_t side) { return static_cast<Wide>(side); }
  static Wide Square(Wide value) { return value * value; }
  // Of what H^2 u^2 may be in a row. Sides have 31 bits, so that all products fit.
  Wide Rest(Wide v) const { return Square(Size(width_)) * (Square(Size(height_)) - Square(v)); }
  // The largest u in a row: of the width's parity, and at least that of the middle.
  int64_t Reach(int64_t v) const {
    const Wide rest = Rest(Size(v));
    const auto holds = [&](int64_t u) { return Square(Size(height_) * Size(u)) <= rest; };
    const auto h = static_cast<double>(height_);
    const double share = std::sqrt((h - static_cast<double>(v)) * (h + static_cast<double>(v))) / h;
    const int64_t least = (width_ - 1) & 1;
    auto u = std::max(static_cast<int64_t>(static_cast<double>(width_) * share), least);
    u -= (u ^ least) & 1;
    while (u > least && !holds(u)) u -= 2;
    while (u + 2 < width_ && holds(u + 2)) u += 2;
    return u;
  }

  Box box_;
  int64_t width_, height_;
};

// Of pixels that an outline has in a row: all that have a pixel outside the oval above, below or
// beside them. Rows are the shorter the further they are from the middle.
void OutlineDraw(const Canvas& canvas, const Oval& oval, int64_t y) {
  const int64_t first = oval.First(y);
  const int64_t last = oval.Mirrored(first);
  const int64_t inside = std::max({first + 1, oval.First(y - 1), oval.First(y + 1)});
  const int64_t insideLast = oval.Mirrored(inside);
  if (inside > insideLast) {
    canvas.Row(y, first, last);
  } else {
    canvas.Row(y, first, inside - 1);
    canvas.Row(y, insideLast + 1, last);
  }
}

enum class Coverage { NOTHING, ALL_OF_IMAGE, PART };

// An oval that lies beyond all corners of the image, and its centre too, counts as outside, even
// where it reaches in over an edge.
Coverage CoverageOf(const Box& box, const Oval& oval, const PixelView& view) {
  const int64_t right = view.width - 1;
  const int64_t bottom = view.height - 1;
  if (box.left >= 0 && box.top >= 0 && box.right <= right && box.bottom <= bottom) {
    return Coverage::PART;
  }
  int32_t corners = 0;
  for (const int64_t y : {int64_t{0}, bottom}) {
    for (const int64_t x : {int64_t{0}, right}) corners += oval.EllipseHolds(x, y) ? 1 : 0;
  }
  if (corners == 4) return Coverage::ALL_OF_IMAGE;
  const int64_t centreX = box.left + box.Width() / 2;
  const int64_t centreY = box.top + box.Height() / 2;
  const bool hasCentre = centreX >= 0 && centreX <= right && centreY >= 0 && centreY <= bottom;
  return corners == 0 && !hasCentre ? Coverage::NOTHING : Coverage::PART;
}

void OvalDraw(const Canvas& canvas, const Box& box, const Pen& pen) {
  if (IsOutside(box, canvas.view)) return;
  if (box.Width() < 2 || box.Height() < 2) return BoxDraw(canvas, box, pen);
  const Oval oval(box);
  const Coverage coverage = CoverageOf(box, oval, canvas.view);
  if (coverage == Coverage::NOTHING) return;
  if (coverage == Coverage::ALL_OF_IMAGE) {
    if (pen.Paints()) BoxDraw(canvas, box, pen);
    return;
  }
  const int64_t top = std::max<int64_t>(box.top, 0);
  const int64_t bottom = std::min<int64_t>(box.bottom, canvas.view.height - 1);
  for (int64_t y = top; y <= bottom; y++) {
    if (pen.Paints()) {
      canvas.Row(y, oval.First(y), oval.Mirrored(oval.First(y)));
    } else {
      OutlineDraw(canvas, oval, y);
    }
  }
}

// ---- images

template <class Shape>
Status Draw(const DrawImages& images, const Shape& shape, const Pen& given,
            void (*draw)(const Canvas& canvas, const Shape& shape, const Pen& pen)) {
  Operands operands;
  operands.Source(images.source, &TypeIsScalar);
  operands.Destination(images.destination);
  operands.TakePixels();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  const Pen pen{std::clamp<int32_t>(given.mode, DRAW_FRAME, DRAW_INVERT_PAINT), given.value};
  draw(CanvasOf(operands, pen), shape, pen);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_DrawLine(ImageRef source, ImageRef destination, int32_t startX, int32_t startY,
                     int32_t endX, int32_t endY, int32_t mode, float value) {
  const zel::KernelLine line{startX, startY, endX, endY};
  return ZEL_ProcessError("ZEL_DrawLine",
                          zel::Draw({source, destination}, line, {mode, value}, &zel::LineDraw));
}

int32_t ZEL_DrawRect(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value) {
  const zel::Box box = zel::BoxOf(top, left, height, width);
  return ZEL_ProcessError("ZEL_DrawRect",
                          zel::Draw({source, destination}, box, {mode, value}, &zel::BoxDraw));
}

int32_t ZEL_DrawOval(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value) {
  const zel::Box box = zel::BoxOf(top, left, height, width);
  return ZEL_ProcessError("ZEL_DrawOval",
                          zel::Draw({source, destination}, box, {mode, value}, &zel::OvalDraw));
}
