// Circles: particles measured by the maxima of their distance map.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/numbers.h"
#include "engine/operands.h"
#include "morphology/distance_planes.h"
#include "morphology/distance_rows.h"
#include "morphology/whole_images.h"
#include "particles/particle_scan.h"
#include "particles/report_table.h"
#include "utilities/lines.h"

namespace zel {
namespace {

constexpr int32_t WINDOW = 2;  // pixels around one that a maximum is the largest of

// Marks the pixels that are not below any within two rows and columns, but for those nearer to the
// image's edge.
void MaximaMark(const PixelView& map, const PixelView& marks, uint8_t* memory) {
  PixelsClear(marks);
  for (int32_t y = WINDOW; y < map.height - WINDOW; y++) {
    const uint8_t* rows[2 * WINDOW + 1];
    for (int32_t i = 0; i <= 2 * WINDOW; i++) rows[i] = map.Row<uint8_t>(y + i - WINDOW);
    distanceRows().maxima(rows, marks.Row<uint8_t>(y), map.width, memory);
  }
}

// Whether a pixel's plateau goes on to a pixel that is no maximum: a higher one lies there.
bool TouchesHigher(const PixelView& map, const PixelView& marks, int32_t x, int32_t y) {
  const uint8_t value = *map.At<uint8_t>(x, y);
  for (int32_t row = y - 1; row <= y + 1; row++) {
    for (int32_t column = x - 1; column <= x + 1; column++) {
      if (*marks.At<uint8_t>(column, row) == 0 && *map.At<uint8_t>(column, row) == value) {
        return true;
      }
    }
  }
  return false;
}

// In each direction a pixel sees what has become of those before it.
void PlateausReject(const PixelView& map, const PixelView& marks) {
  const auto look = [&](int32_t x, int32_t y) {
    uint8_t* mark = marks.At<uint8_t>(x, y);
    if (*mark != 0 && TouchesHigher(map, marks, x, y)) *mark = 0;
  };
  const int32_t right = map.width - WINDOW - 1;
  const int32_t bottom = map.height - WINDOW - 1;
  for (int32_t y = WINDOW; y <= bottom; y++) {
    for (int32_t x = WINDOW; x <= right; x++) look(x, y);
  }
  for (int32_t y = bottom; y >= WINDOW; y--) {
    for (int32_t x = right; x >= WINDOW; x--) look(x, y);
  }
}

// Sums of coordinates.
struct Sums {
  int64_t x, y;
};

// The centres of the maxima, with the map's value at the last pixel of each as its radius.
void CirclesMeasure(const ParticleRuns& maxima, const PixelView& map, Sums* sums,
                    CircleReport* circles) {
  const RunTable& runs = maxima.runs;
  for (int32_t n = 0; n < maxima.count; n++) circles[n] = {};
  for (int32_t y = 0; y < runs.height(); y++) {
    for (uint32_t i = runs.RowBegin(y); i < runs.RowEnd(y); i++) {
      const Run run = runs[i];
      const uint32_t circle = maxima.numbers.Numbers()[maxima.labels[i]] - 1;
      const int64_t pixels = run.end - run.start;
      sums[circle].x += pixels * (int64_t{run.start} + run.end - 1) / 2;
      sums[circle].y += pixels * y;
      circles[circle].nbPixels += static_cast<int32_t>(pixels);
      circles[circle].radius = *map.At<uint8_t>(run.end - 1, y);
    }
  }
  for (int32_t n = 0; n < maxima.count; n++) {
    CircleReport& circle = circles[n];
    const int32_t pixels = std::max(circle.nbPixels, 1);  // each has one at least
    circle.x = static_cast<int32_t>(sums[n].x / pixels);
    circle.y = static_cast<int32_t>(sums[n].y / pixels);
  }
}

struct RadiusRange {
  float least, most;  // in units of the calibration
  double scale;

  // A limit that is NaN includes nothing.
  bool Includes(int32_t radius) const {
    const double length = radius * scale;
    return length >= static_cast<double>(least) && length <= static_cast<double>(most);
  }
};

// Writes the numbers of the maxima of accepted circles. Bytes hold 255 from there on; numbers
// beyond 16 bits with sign hold 0.
void MaximaWrite(ParticleRuns* maxima, const bool* accepted, const PixelView& to) {
  uint32_t* numbers = maxima->numbers.Numbers();
  for (uint32_t i = 0; i < maxima->numbers.count(); i++) {
    const uint32_t number = numbers[i];
    const bool shows = accepted[number - 1] && number <= INT16_MAX;
    numbers[i] = shows ? std::min(number, uint32_t{UINT8_MAX}) : 0;
  }
  LabelsWrite(*maxima, to);
}

// Draws circles as polygons into a U8 image.
class CirclePainter {
 public:
  explicit CirclePainter(const PixelView& to) : to_(to) {}

  void Draw(const CircleReport& circle) const;

 private:
  static constexpr int32_t STEP = 10;  // degrees from corner to corner
  static constexpr double RADIANS = 0.017453293;
  static constexpr uint8_t VALUE = 255;

  struct Offset {
    int32_t x, y;
  };

  static Offset CornerAt(int32_t degrees, int32_t radius) {
    const double angle = degrees * RADIANS;
    return {CutSaturated(std::cos(angle) * radius + 0.5),
            CutSaturated(std::sin(angle) * radius + 0.5)};
  }
  LinePoint Limited(int32_t x, int32_t y) const {
    return {std::clamp(x, 0, to_.width - 1), std::clamp(y, 0, to_.height - 1)};
  }
  void DrawQuadrant(const CircleReport& circle, int32_t signX, int32_t signY) const;
  void DrawLine(LinePoint from, LinePoint to) const;

  PixelView to_;
};

void CirclePainter::DrawLine(LinePoint from, LinePoint to) const {
  LineSteps steps({from.x, from.y, to.x, to.y});
  LinePoint point = from;
  *to_.At<uint8_t>(point.x, point.y) = VALUE;
  for (int64_t i = 1; i < steps.points(); i++) {
    const LinePoint step = steps.Next();
    point = {point.x + step.x, point.y + step.y};
    *to_.At<uint8_t>(point.x, point.y) = VALUE;
  }
}

void CirclePainter::DrawQuadrant(const CircleReport& circle, int32_t signX, int32_t signY) const {
  LinePoint last = Limited(circle.x + signX * circle.radius, circle.y);
  for (int32_t degrees = 0; degrees <= 90; degrees += STEP) {
    const Offset corner = CornerAt(degrees, circle.radius);
    const LinePoint next = Limited(circle.x + signX * corner.x, circle.y + signY * corner.y);
    DrawLine(last, next);
    last = next;
  }
}

void CirclePainter::Draw(const CircleReport& circle) const {
  for (const int32_t signX : {1, -1}) {
    for (const int32_t signY : {1, -1}) DrawQuadrant(circle, signX, signY);
  }
}

// What is found before anything is written.
struct CircleWork {
  DistancePlanes planes;
  ScratchImage map, marks;
  WorkArray<uint8_t> memory;
  ParticleRuns maxima;
  WorkArray<Sums> sums;
  WorkArray<bool> accepted;
};

// The maxima of the distance map. STATUS_MEMORY_FULL, also where there are too many.
Status MaximaFind(const PixelView& source, CircleWork* work) {
  Status status = work->planes.Find(source);
  for (ScratchImage* image : {&work->map, &work->marks}) {
    if (status == STATUS_OK) status = image->Create(IMAGE_U8, source.width, source.height, 0);
  }
  if (status != STATUS_OK) return status;
  if (!work->memory.Allocate(static_cast<uint64_t>(source.width))) return STATUS_MEMORY_FULL;
  const PixelView map = ViewOf(*work->map.image());
  const PixelView marks = ViewOf(*work->marks.image());
  work->planes.Write(map);
  MaximaMark(map, marks, work->memory.data());
  PlateausReject(map, marks);
  return ParticleRunsFind(marks, true, &work->maxima);
}

// Negates the radius of each circle that is not accepted.
void CirclesTest(const RadiusRange& range, int32_t count, CircleReport* circles, bool* accepted) {
  for (int32_t n = 0; n < count; n++) {
    accepted[n] = range.Includes(circles[n].radius);
    if (!accepted[n]) circles[n].radius = -circles[n].radius;
  }
}

Status CirclesFind(const PixelView& source, const RadiusRange& range, CircleWork* work,
                   Handle reports) {
  Status status = MaximaFind(source, work);
  if (status != STATUS_OK) return status;
  const auto count = static_cast<uint64_t>(work->maxima.count);
  if (!work->sums.AllocateZeroed(count) || !work->accepted.Allocate(count)) {
    return STATUS_MEMORY_FULL;
  }
  status = VectorResize(reports, sizeof(CircleReport), count);
  if (status != STATUS_OK) {
    // The caller's table is emptied, not left with records of another image.
    VectorResize(reports, sizeof(CircleReport), 0);
    return status;
  }
  auto* circles = VectorData<CircleReport>(reports);
  CirclesMeasure(work->maxima, ViewOf(*work->map.image()), work->sums.data(), circles);
  CirclesTest(range, work->maxima.count, circles, work->accepted.data());
  return STATUS_OK;
}

void CirclesDraw(CircleWork* work, const CircleReport* circles, const PixelView& to) {
  const int32_t count = work->maxima.count;
  MaximaWrite(&work->maxima, work->accepted.data(), to);
  const CirclePainter painter(to);
  for (int32_t n = 0; n < count; n++) {
    if (circles[n].radius > 0) painter.Draw(circles[n]);
  }
}

Status Circles(ImageRef source, ImageRef destination, float minRadius, float maxRadius,
               Handle reports, int32_t* nbCircles) {
  Operands operands;
  operands.Source(source, &TypeIsU8);
  operands.Destination(destination, IMAGE_U8, STATUS_BAD_TYPE);
  operands.TakeSize();
  operands.TakeInfo();
  if (operands.HasFailed()) return operands.status();
  const Image& image = operands.source();
  const PixelView from = operands.From();
  if (from.IsEmpty()) return VectorResize(reports, sizeof(CircleReport), 0);

  const double step = (static_cast<double>(image.xStep) + static_cast<double>(image.yStep)) / 2;
  CircleWork work;
  const Status status =
      CirclesFind(from, {minRadius, maxRadius, step == 0 ? 1.0 : step}, &work, reports);
  if (status != STATUS_OK) return status;
  CirclesDraw(&work, VectorData<CircleReport>(reports), operands.To());
  *nbCircles = work.maxima.count;
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Circles(ImageRef source, ImageRef dest, float minRadius, float maxRadius,
                    CircleReport** reports, int32_t* nbCircles) {
  return zel::ReportsExport("ZEL_Circles", reports, nbCircles,
                            [&](zel::Handle table, int32_t* count) {
                              return zel::Circles(source, dest, minRadius, maxRadius, table, count);
                            });
}
