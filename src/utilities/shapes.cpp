// Lines, rectangles and ovals drawn into images, by a value or by inverting what is there. Shapes
// are clipped before they are walked: time hangs on the image, not on the coordinates.
#include <algorithm>

#include "core/numbers.h"
#include "core/pixel_types.h"
#include "engine/operands.h"
#include "utilities/lines.h"
#include "utilities/ovals.h"

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

// ---- what pixels become

// A value, or what is left of a sum, by pixel type.
struct Ink {
  double value;  // to be cut for integers
  int32_t sum;
  float floatSum;
};

template <class T>
struct Painted {
  using Pixel = T;
  T value;
  explicit Painted(const Ink& ink) : value(CutLow<T>(ink.value)) {}
  T operator()(T) const { return value; }
};
template <>
struct Painted<float> {
  using Pixel = float;
  float value;
  explicit Painted(const Ink& ink) : value(static_cast<float>(ink.value)) {}
  float operator()(float) const { return value; }
};

template <class T>
struct Inverted {
  using Pixel = T;
  int32_t sum;
  explicit Inverted(const Ink& ink) : sum(ink.sum) {}
  T operator()(T pixel) const { return static_cast<T>(sum - pixel); }
};
template <>
struct Inverted<float> {
  using Pixel = float;
  float sum;
  explicit Inverted(const Ink& ink) : sum(ink.floatSum) {}
  float operator()(float pixel) const { return sum - pixel; }
};

// Pixels side by side, and those of a line that lies in the image.
struct DrawRoutines {
  void (*span)(void* pixels, int64_t count, const Ink& ink);
  void (*line)(const PixelView& view, const KernelLine& line, const Ink& ink);
};

template <class Rule>
void SpanDraw(void* pixels, int64_t count, const Ink& ink) {
  const Rule rule(ink);
  auto* first = static_cast<typename Rule::Pixel*>(pixels);
  std::transform(first, first + count, first, rule);
}

template <class Rule>
void LineDraw(const PixelView& view, const KernelLine& line, const Ink& ink) {
  const Rule rule(ink);
  LinePixels<typename Rule::Pixel> pixels(view, line);
  for (int64_t i = pixels.count(); i > 0; i--) {
    auto* pixel = pixels.Take();
    *pixel = rule(*pixel);
  }
}

template <class Rule>
constexpr DrawRoutines DRAW_BY = {.span = &SpanDraw<Rule>, .line = &LineDraw<Rule>};

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
  DrawRoutines draw;
  Ink ink;

  // Columns from `first` to `last`, both ends included.
  void Row(int64_t y, int64_t first, int64_t last) const {
    if (y < 0 || y >= view.height) return;
    first = std::max<int64_t>(first, 0);
    last = std::min<int64_t>(last, view.width - 1);
    if (first > last) return;
    draw.span(view.Row<uint8_t>(y) + first * view.pixelBytes, last - first + 1, ink);
  }
};

Canvas CanvasOf(const Operands& operands, const Pen& pen) {
  Canvas canvas{.view = operands.To(), .draw = {}, .ink = {}};
  canvas.ink.value = static_cast<double>(pen.value);
  const bool inverts = pen.Inverts();
  switch (canvas.view.type) {
    case IMAGE_U8:
      canvas.draw = inverts ? DRAW_BY<Inverted<uint8_t>> : DRAW_BY<Painted<uint8_t>>;
      canvas.ink.sum = UINT8_MAX;
      break;
    case IMAGE_I16:
      canvas.draw = inverts ? DRAW_BY<Inverted<int16_t>> : DRAW_BY<Painted<int16_t>>;
      if (inverts) canvas.ink.sum = RangeSum<int16_t, int32_t>(canvas.view, INT32_MAX, 0);
      break;
    default:
      canvas.draw = inverts ? DRAW_BY<Inverted<float>> : DRAW_BY<Painted<float>>;
      if (inverts) canvas.ink.floatSum = RangeSum<float, float>(canvas.view, 1e38f, -1e38f);
  }
  return canvas;
}

// ---- shapes

PixelBox BoxOf(int32_t top, int32_t left, int32_t height, int32_t width) {
  return {left, top, int64_t{left} + width - 1, int64_t{top} + height - 1};
}

void VisibleLineDraw(const Canvas& canvas, const KernelLine& given, const Pen&) {
  KernelLine line = given;
  if (!LineClipToSize(canvas.view.width, canvas.view.height, &line)) return;
  canvas.draw.line(canvas.view, line, canvas.ink);
}

void BoxDraw(const Canvas& canvas, const PixelBox& box, const Pen& pen) {
  if (box.IsOutside(canvas.view.width, canvas.view.height) || box.Width() < 1 || box.Height() < 1)
    return;
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

void OvalDraw(const Canvas& canvas, const PixelBox& box, const Pen& pen) {
  if (box.IsOutside(canvas.view.width, canvas.view.height)) return;
  if (box.Width() < 2 || box.Height() < 2) return BoxDraw(canvas, box, pen);
  const Oval oval(box);
  const OvalCoverage coverage = OvalCoverageOf(box, canvas.view.width, canvas.view.height);
  if (coverage == OvalCoverage::NOTHING) return;
  if (coverage == OvalCoverage::ALL_OF_IMAGE) {
    if (pen.Paints()) BoxDraw(canvas, box, pen);
    return;
  }
  const int64_t top = std::max<int64_t>(box.top, 0);
  const int64_t bottom = std::min<int64_t>(box.bottom, canvas.view.height - 1);
  for (int64_t y = top; y <= bottom; y++) {
    if (pen.Paints()) {
      canvas.Row(y, oval.First(y), oval.Mirrored(oval.First(y)));
    } else {
      const OvalOutline outline = OvalOutlineOf(oval, y);
      canvas.Row(y, outline.left.first, outline.left.last);
      canvas.Row(y, outline.right.first, outline.right.last);
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
  return ZEL_ProcessError(
      "ZEL_DrawLine", zel::Draw({source, destination}, line, {mode, value}, &zel::VisibleLineDraw));
}

int32_t ZEL_DrawRect(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value) {
  const zel::PixelBox box = zel::BoxOf(top, left, height, width);
  return ZEL_ProcessError("ZEL_DrawRect",
                          zel::Draw({source, destination}, box, {mode, value}, &zel::BoxDraw));
}

int32_t ZEL_DrawOval(ImageRef source, ImageRef destination, int32_t top, int32_t left,
                     int32_t height, int32_t width, int32_t mode, float value) {
  const zel::PixelBox box = zel::BoxOf(top, left, height, width);
  return ZEL_ProcessError("ZEL_DrawOval",
                          zel::Draw({source, destination}, box, {mode, value}, &zel::OvalDraw));
}
