// Pens and the brush.
#include "display/pens.h"

#include <algorithm>

#include "core/numbers.h"
#include "display/painting.h"

namespace zel {
namespace {

constexpr int64_t PEN_VALUES = 16;
constexpr int64_t BRUSH_VALUES = 265;  // without a pattern
constexpr int64_t BRUSH_HEIGHT = 263;
constexpr int64_t BRUSH_WIDTH = 264;

uint32_t ColourOf(const int32_t* values) {
  const auto level = [values](int64_t i) { return static_cast<uint32_t>(values[i]) & 255; };
  return level(0) << 16 | level(1) << 8 | level(2);
}

int32_t* PutColour(uint32_t colour, int32_t* to) {
  for (const uint32_t shift : {16U, 8U, 0U}) *to++ = static_cast<int32_t>(colour >> shift & 255);
  return to;
}

}  // namespace

void ShapeColourSet(const int32_t* values, int64_t count) {
  if (count < 3) return;
  display.pens.shapeFinal.foreground = ColourOf(values);
  display.pens.pointFinal.foreground = ColourOf(values);
  for (int32_t window = 0; window < SHARED_WINDOWS; window++) WindowMarkDirty(window);
}

void PenSet(const int32_t* values, int64_t count) {
  if (count < PEN_VALUES) return;
  DesktopPen& pen = display.pens.custom;
  pen.foreground = ColourOf(values);
  pen.background = ColourOf(values + 3);
  for (int64_t row = 0; row < 8; row++) pen.pattern[row] = static_cast<uint8_t>(values[6 + row]);
  pen.width = static_cast<int16_t>(values[14]);
  pen.mode = static_cast<int16_t>(values[15]);
}

Status PenAnswer(const DisplayOutput& output) {
  const DesktopPen& pen = display.pens.custom;
  int32_t values[PEN_VALUES - 1];
  int32_t* to = PutColour(pen.background, PutColour(pen.foreground, values));
  to = std::copy_n(pen.pattern, 8, to);
  *to = pen.width;
  return output.Put(values, PEN_VALUES - 1);
}

Status BrushSet(const int32_t* values, int64_t count) {
  if (count < BRUSH_VALUES) return STATUS_OK;
  const int64_t height = values[BRUSH_HEIGHT];
  const int64_t width = values[BRUSH_WIDTH];
  if (height < 0 || width < 0 || height * width > count - BRUSH_VALUES) return STATUS_OK;
  if (display.brush == 0) {
    const Status status = VectorNew(&display.brush);
    if (status != STATUS_OK) return status;
  }
  const int64_t kept = BRUSH_VALUES + height * width;
  const Status status = VectorResize(display.brush, sizeof(int32_t), static_cast<uint64_t>(kept));
  if (status == STATUS_OK) std::copy_n(values, kept, VectorData<int32_t>(display.brush));
  return status;
}

Status BrushAnswer(const DisplayOutput& output) {
  uint32_t count = 0;
  if (display.brush != 0) VectorCount(display.brush, &count);
  if (count >= BRUSH_VALUES) return output.Put(VectorData<int32_t>(display.brush), count);
  const int32_t unset[BRUSH_VALUES] = {};
  return output.Put(unset, BRUSH_VALUES);
}

}  // namespace zel
