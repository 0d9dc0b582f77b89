// Images turned about their centre.
#include <algorithm>
#include <cmath>

#include "engine/bands.h"
#include "engine/operands.h"
#include "geometry/geometry.h"
#include "geometry/outside.h"
#include "geometry/rotate_rows.h"

namespace zel {
namespace {

// Kept: the number that pictures in the field were turned by.
constexpr double RADIANS_A_DEGREE = 0.017453292776760863;

// 512 times a sine or cosine as a whole number; only positive ones are rounded up.
int32_t FixedPoint(double value) {
  const double scaled = 512.0 * value;
  const double whole = std::trunc(scaled);
  return static_cast<int32_t>(whole) + (scaled - whole > 0.5 ? 1 : 0);
}

struct Turn {
  int32_t sine, cosine;

  explicit Turn(float angle) {
    const double degrees = std::isfinite(angle) ? static_cast<double>(angle) : 0.0;
    const double radians = degrees * RADIANS_A_DEGREE;
    sine = FixedPoint(std::sin(radians));
    cosine = FixedPoint(std::cos(radians));
  }
};

// Columns of a row of results.
struct Span {
  int64_t begin, end;

  Span And(const Span& other) const {
    const Span both{std::max(begin, other.begin), std::min(end, other.end)};
    return both.begin < both.end ? both : Span{begin, begin};
  }
};

int64_t FloorDivide(int64_t number, int64_t by) {  // by > 0
  return number >= 0 ? number / by : -((by - 1 - number) / by);
}

// A position on one axis along a row of results: it moves by a step from each to the next.
struct PositionLine {
  int64_t first, step;

  // Where it lies from `low` to `high`.
  Span Within(int64_t low, int64_t high, const Span& of) const {
    if (step == 0) return first >= low && first <= high ? of : Span{of.begin, of.begin};
    if (step < 0) return PositionLine{-first, -step}.Within(-high, -low, of);
    return of.And({-FloorDivide(first - low, step), FloorDivide(high - first, step) + 1});
  }
  // Whether it is the same modulo 2^32 in all of a row.
  bool FitsInt32(int32_t columns) const {
    const int64_t last = first + step * (columns - 1);
    return std::min(first, last) >= INT32_MIN && std::max(first, last) <= INT32_MAX;
  }
};

struct RotateViews {
  PixelView from, to;
};

struct RotateWork {
  Turn turn;
  bool interpolates;
  RotateRule rule;
  RotateRoutines routines;
  OutsidePixel outside;
};

// One row of results: the outside is filled, what lies well inside goes without tests.
void RowRotate(const RotateViews& views, const RotateWork& work, int64_t row) {
  const int64_t width = views.from.width;
  const int64_t height = views.from.height;
  const int64_t u = -(width - 1);
  const int64_t v = 2 * row - (height - 1);
  const PositionLine x{512 * (width - 1) + u * work.turn.cosine - v * work.turn.sine,
                       2 * work.turn.cosine};
  const PositionLine y{512 * (height - 1) + v * work.turn.cosine + u * work.turn.sine,
                       2 * work.turn.sine};

  const Span whole{0, width};
  Span covered = whole;
  Span inside{0, 0};
  if (x.FitsInt32(views.to.width) && y.FitsInt32(views.to.width)) {
    // Positions of 512 and less before a pixel, and behind the last one, are still nearest to it;
    // those between pixels of the image are joined from a whole pixel before it on.
    const int64_t before = work.interpolates ? POSITION_ONE : POSITION_ONE / 2;
    const int64_t behind = work.interpolates ? 1 : POSITION_ONE / 2;
    covered = x.Within(-before, width * POSITION_ONE - behind, whole)
                  .And(y.Within(-before, height * POSITION_ONE - behind, whole));
    // The position from which on a pixel is the one that is read first.
    const int64_t start = work.interpolates ? 0 : -(POSITION_ONE / 2 - 1);
    const int64_t below = work.interpolates ? 1 : 0;
    const int64_t endX = (width - work.routines.reach) * POSITION_ONE + start;
    const int64_t endY = (height - below) * POSITION_ONE + start;
    inside = x.Within(start, endX - 1, covered).And(y.Within(start, endY - 1, covered));
  }

  uint8_t* to = views.to.Row<uint8_t>(row);
  const int64_t bytes = views.to.pixelBytes;
  const auto run = [&](RotateRow routine, int64_t begin, int64_t end) {
    if (begin >= end) return;
    routine(work.rule, static_cast<uint32_t>(x.first + begin * x.step),
            static_cast<uint32_t>(y.first + begin * y.step), to + begin * bytes,
            static_cast<int32_t>(end - begin));
  };
  work.outside.FillColours(to, covered.begin);
  if (inside.begin >= inside.end) inside = {covered.end, covered.end};
  run(work.routines.anywhere, covered.begin, inside.begin);
  run(work.routines.inside, inside.begin, inside.end);
  run(work.routines.anywhere, inside.end, covered.end);
  work.outside.FillColours(to + covered.end * bytes, width - covered.end);
}

const RotateRoutines& RoutinesFor(const RotateMethod& method, int32_t type) {
  switch (type) {
    case IMAGE_U8:
      return method.u8;
    case IMAGE_I16:
      return method.i16;
    case IMAGE_SGL:
      return method.sgl;
    default:
      return method.rgb;
  }
}

Status Rotate(ImageRef source, ImageRef destination, float angle, float fill, bool interpolates) {
  Operands operands;
  operands.Source(source, &TypeCanBeMoved);
  operands.Destination(destination);
  if (operands.HasFailed()) return operands.status();
  operands.WriteSized(operands.source().width, operands.source().height);
  if (operands.HasFailed()) return operands.status();
  operands.Written();

  const RotateViews views{operands.From(), operands.To()};
  const Turn turn(angle);
  const OutsidePixel outside(views.to.type, fill);
  const RotateRows& rows = rotateRows();
  const RotateWork work{
      .turn = turn,
      .interpolates = interpolates,
      .rule = {.origin = views.from.origin,
               .pitch = views.from.pitch,
               .width = views.from.width,
               .height = views.from.height,
               .stepX = static_cast<uint32_t>(2 * turn.cosine),
               .stepY = static_cast<uint32_t>(2 * turn.sine),
               .outside = outside.bits},
      .routines = RoutinesFor(interpolates ? rows.bilinear : rows.nearest, views.to.type),
      .outside = outside};
  constexpr int64_t effort = 8;
  BandsRun({.units = views.to.height, .bytes = effort * views.to.Bytes()}, [&](const Band& band) {
    for (int64_t row = band.begin; row < band.end; row++) RowRotate(views, work, row);
  });
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Rotate(ImageRef source, ImageRef dest, float angle, float fill, int32_t interpolate) {
  return ZEL_ProcessError("ZEL_Rotate", zel::Rotate(source, dest, angle, fill, interpolate != 0));
}
