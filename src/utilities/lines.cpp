// Lines clipped to an image, walked, and their pixels read and written.
#include "utilities/lines.h"

#include <algorithm>

#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "utilities/array_exchange.h"

namespace zel {
namespace {

// Where a point lies outside the image.
enum OutCode : uint32_t { OUT_BELOW = 1, OUT_ABOVE = 2, OUT_RIGHT = 4, OUT_LEFT = 8 };

struct ClipEnd {
  int64_t x, y;
  uint32_t code;
};

uint32_t CodeOfX(int64_t x, int32_t width) {
  return x < 0 ? OUT_LEFT : x > width - 1 ? OUT_RIGHT : 0u;
}

uint32_t CodeOfY(int64_t y, int32_t height) {
  return y < 0 ? OUT_ABOVE : y > height - 1 ? OUT_BELOW : 0u;
}

// a * b / c, truncated. Differences of coordinates have 33 bits, or 61.
int64_t ProductQuotient(int64_t a, int64_t b, int64_t c) {
  __extension__ using Wide = __int128;
  return static_cast<int64_t>(Wide{a} * b / c);
}

// Where the line crosses column x, or row y. The result lies between its ends.
int64_t CrossingY(const ClipEnd& start, const ClipEnd& end, int64_t x) {
  return end.y + ProductQuotient(end.y - start.y, x - end.x, end.x - start.x);
}

int64_t CrossingX(const ClipEnd& start, const ClipEnd& end, int64_t y) {
  return end.x + ProductQuotient(end.x - start.x, y - end.y, end.y - start.y);
}

}  // namespace

bool LineClipToSize(int32_t width, int32_t height, const WideLine& line, KernelLine* clipped) {
  if (width < 1 || height < 1) return false;
  const auto codeOf = [&](int64_t x, int64_t y) { return CodeOfX(x, width) | CodeOfY(y, height); };
  ClipEnd start{line.startX, line.startY, codeOf(line.startX, line.startY)};
  ClipEnd end{line.endX, line.endY, codeOf(line.endX, line.endY)};
  if ((start.code & end.code) != 0) return false;

  struct Edge {
    uint32_t out;
    int32_t x;
  };
  for (const auto& [out, x] : {Edge{OUT_LEFT, 0}, Edge{OUT_RIGHT, width - 1}}) {
    if (((start.code ^ end.code) & out) == 0) continue;
    ClipEnd& outside = (start.code & out) != 0 ? start : end;
    const int64_t y = CrossingY(start, end, x);
    outside = {x, y, CodeOfY(y, height)};
    if ((start.code & end.code) != 0) return false;
  }
  // No line is given up any more: what is left of it crosses the image.
  if (((start.code ^ end.code) & OUT_ABOVE) != 0) {
    ClipEnd& outside = (start.code & OUT_ABOVE) != 0 ? start : end;
    outside = {CrossingX(start, end, 0), 0, 0};
  }
  if (((start.code ^ end.code) & OUT_BELOW) != 0) {
    ClipEnd& outside = (start.code & OUT_BELOW) != 0 ? start : end;
    outside = {CrossingX(start, end, height - 1), height - 1, 0};
  }
  *clipped = {static_cast<int32_t>(start.x), static_cast<int32_t>(start.y),
              static_cast<int32_t>(end.x), static_cast<int32_t>(end.y)};
  return true;
}

bool LineClipToSize(int32_t width, int32_t height, KernelLine* line) {
  return LineClipToSize(width, height, {line->startX, line->startY, line->endX, line->endY}, line);
}

Status LineClip(ImageRef reference, KernelLine* line, uint16_t* visible) {
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status == STATUS_OK) *visible = LineClipToSize(image->width, image->height, line) ? 1 : 0;
  return status;
}

LineSteps::LineSteps(const KernelLine& line) {
  const int64_t dx = int64_t{line.endX} - line.startX;
  const int64_t dy = int64_t{line.endY} - line.startY;
  const int64_t width = dx < 0 ? -dx : dx;
  const int64_t height = dy < 0 ? -dy : dy;
  const int64_t major = std::max(width, height);
  const int64_t minor = std::min(width, height);
  points_ = major + 1;
  error_ = 2 * minor - major;
  onMajor_ = 2 * minor;
  onBoth_ = 2 * minor - 2 * major;
  lessOnMinor_ = 2 * major;
  diagonal_ = {dx < 0 ? -1 : 1, dy < 0 ? -1 : 1};
  straight_ = height > width ? LinePoint{0, diagonal_.y} : LinePoint{diagonal_.x, 0};
}

LinePoint LineSteps::Skip(int64_t steps) {
  const int64_t major = points_ - 1;
  const int64_t both = major == 0 ? 0 : (onMajor_ * steps + major) / (2 * major);
  error_ += onMajor_ * steps - 2 * major * both;
  const auto straight = static_cast<int32_t>(steps - both);
  const auto diagonal = static_cast<int32_t>(both);
  return {straight_.x * straight + diagonal_.x * diagonal,
          straight_.y * straight + diagonal_.y * diagonal};
}

Status LineWalk(const KernelLine& line, bool relative, Handle vector, int32_t* count) {
  LineSteps steps(line);
  *count = Clamped(steps.points(), 0, INT32_MAX);
  const Status status =
      VectorResize(vector, sizeof(LinePoint), static_cast<uint64_t>(steps.points()));
  if (status != STATUS_OK) return status;
  auto* points = VectorData<LinePoint>(vector);
  points[0] = relative ? LinePoint{0, 0} : LinePoint{line.startX, line.startY};
  for (int64_t i = 1; i < steps.points(); i++) {
    const LinePoint step = steps.Next();
    points[i] = relative ? step : LinePoint{points[i - 1].x + step.x, points[i - 1].y + step.y};
  }
  return STATUS_OK;
}

namespace {

constexpr int64_t LINE_RUN = 256;  // pixels on their way between image and array

template <class T>
void LineToArray(const Image& image, const KernelLine& line, int64_t count, int32_t arrayType,
                 void* array) {
  LinePixels<T> pixels(ViewOf(image), line);
  T buffer[LINE_RUN];
  for (int64_t done = 0; done < count; done += LINE_RUN) {
    const int64_t run = std::min(LINE_RUN, count - done);
    for (int64_t i = 0; i < run; i++) buffer[i] = *pixels.Take();
    PixelsToArray(buffer, image.type, run, array, arrayType, done);
  }
}

template <class T>
void LineFromArray(const Image& image, const KernelLine& line, int64_t count, int32_t arrayType,
                   const void* array) {
  LinePixels<T> pixels(ViewOf(image), line);
  T buffer[LINE_RUN];
  for (int64_t done = 0; done < count; done += LINE_RUN) {
    const int64_t run = std::min(LINE_RUN, count - done);
    PixelsFromArray(array, arrayType, done, image.type, buffer, run);
    for (int64_t i = 0; i < run; i++) *pixels.Take() = buffer[i];
  }
}

Status GetLine(ImageRef reference, KernelLine line, int32_t arrayType, void* array,
               int32_t* count) {
  if (!array) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  const Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  int64_t points = 0;  // a line outside is no failure, whatever the type
  if (LineClipToSize(image->width, image->height, &line)) {
    points = LineSteps(line).points();
    switch (image->type) {
      case IMAGE_U8:
        LineToArray<uint8_t>(*image, line, points, arrayType, array);
        break;
      case IMAGE_I16:
        LineToArray<int16_t>(*image, line, points, arrayType, array);
        break;
      case IMAGE_SGL:
        LineToArray<float>(*image, line, points, arrayType, array);
        break;
      default:
        return STATUS_BAD_TYPE;
    }
  }
  if (count) *count = static_cast<int32_t>(points);
  return STATUS_OK;
}

Status SetLine(ImageRef reference, KernelLine line, int32_t arrayType, const void* array,
               int32_t count) {
  if (!array && count > 0) return STATUS_NULL_POINTER;
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status == STATUS_OK && TypeIsScalar(image->type)) {
    status = ArrayCountCheck(image->type, count);
  }
  if (status != STATUS_OK || !LineClipToSize(image->width, image->height, &line)) return status;
  const int64_t written = std::min(LineSteps(line).points(), int64_t{count});
  switch (image->type) {
    case IMAGE_U8:
      LineFromArray<uint8_t>(*image, line, written, arrayType, array);
      return STATUS_OK;
    case IMAGE_I16:
      LineFromArray<int16_t>(*image, line, written, arrayType, array);
      return STATUS_OK;
    case IMAGE_SGL:
      LineFromArray<float>(*image, line, written, arrayType, array);
      return STATUS_OK;
    default:
      return STATUS_BAD_TYPE;
  }
}

}  // namespace
}  // namespace zel

int32_t ZEL_GetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, void* array, int32_t* count) {
  const zel::KernelLine line{startX, startY, endX, endY};
  return ZEL_ProcessError("ZEL_GetLine", zel::GetLine(image, line, arrayType, array, count));
}

int32_t ZEL_SetLine(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                    int32_t arrayType, const void* array, int32_t count) {
  const zel::KernelLine line{startX, startY, endX, endY};
  return ZEL_ProcessError("ZEL_SetLine", zel::SetLine(image, line, arrayType, array, count));
}
