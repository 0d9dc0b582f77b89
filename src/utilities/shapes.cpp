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

PixelBox BoxOf(int32_t top, int32_t left, int32_t height, int32_t width) {
  return {left, top, int64_t{left} + width - 1, int64_t{top} + height - 1};
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
  return ZEL_ProcessError("ZEL_DrawLine",
                          zel::Draw({source, destination}, line, {mode, value}, &zel::LineDraw));
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
