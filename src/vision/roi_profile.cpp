// The pixels along the outline of a region's first contour, and their statistics.
#include <algorithm>
#include <cmath>

#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "regions/descriptors.h"
#include "utilities/lines.h"
#include "vision/oval_path.h"
#include "vision/result_table.h"

namespace zel {
namespace {

// Contours of one and of two points, in integers.
constexpr int64_t POINT_LENGTH = 4;
constexpr int64_t CORNERS_LENGTH = 6;

constexpr float NO_MINIMUM = 1e38f;  // the samples' extremes begin here, and at its negative

struct Profile {
  WorkArray<float> samples;
  WorkArray<PointInt> points;
  int64_t count = 0;
  PointInt start{}, end{};

  void Add(PointInt point) { points[static_cast<size_t>(count++)] = point; }
};

bool Holds(const PixelView& view, PointInt point) {
  return point.x >= 0 && point.x < view.width && point.y >= 0 && point.y < view.height;
}

// ---- outlines as lines

// A line as clipped, and how many of its points count.
struct OutlineLine {
  KernelLine line;
  int64_t points;
};

OutlineLine Clipped(const PixelView& view, const KernelLine& line, bool isChain) {
  OutlineLine clipped{line, 0};
  if (!LineClipToSize(view.width, view.height, &clipped.line)) return clipped;
  clipped.points = LineSteps(clipped.line).points() - (isChain ? 1 : 0);
  return clipped;
}

// The lines that an outline is made of.
class OutlineLines {
 public:
  OutlineLines(const PixelView& view, const FlatContour& contour)
      : view_(view), contour_(contour) {}

  int64_t count() const {
    switch (contour_.type) {
      case ROI_LINE:
        return 1;
      case ROI_RECT:
        return 4;
      default:
        return contour_.PointCount() - 1;
    }
  }
  // A chain's lines leave their last point to the next one.
  bool IsChain() const { return contour_.type != ROI_LINE && contour_.type != ROI_RECT; }
  OutlineLine operator[](int64_t index) const {
    if (contour_.type == ROI_RECT) return Clipped(view_, SideOf(index), false);
    const PointInt from = contour_.Point(index);
    const PointInt to = contour_.Point(index + 1);
    return Clipped(view_, {from.x, from.y, to.x, to.y}, IsChain());
  }

 private:
  // Clockwise from the top, each without the corner that the one before it has.
  KernelLine SideOf(int64_t index) const {
    const PointInt a = contour_.Point(0);
    const PointInt b = contour_.Point(1);
    const auto [x1, x2] = std::minmax(a.x, b.x);
    const auto [y1, y2] = std::minmax(a.y, b.y);
    const int32_t right = SumWrapped(x2, -1);
    const int32_t bottom = SumWrapped(y2, -1);
    const int32_t below = SumWrapped(y1, 1);
    switch (index) {
      case 0:
        return {x1, y1, right, y1};
      case 1:
        return {right, below, right, bottom};
      case 2:
        return {SumWrapped(x2, -2), bottom, x1, bottom};
      default:
        return {x1, SumWrapped(y2, -2), x1, below};
    }
  }

  const PixelView& view_;
  const FlatContour& contour_;
};

bool HasArea(const FlatContour& contour) {
  const PointInt a = contour.Point(0);
  const PointInt b = contour.Point(1);
  return a.x != b.x && a.y != b.y;
}

void LineAdd(const OutlineLine& line, Profile* profile) {
  LineSteps steps(line.line);
  PointInt at{line.line.startX, line.line.startY};
  for (int64_t i = 0; i < line.points; i++) {
    profile->Add(at);
    const LinePoint step = steps.Next();
    at = {at.x + step.x, at.y + step.y};
  }
}

Status LinesFollow(const PixelView& view, const FlatContour& contour, Profile* profile) {
  const OutlineLines lines(view, contour);
  int64_t points = 0;
  for (int64_t i = 0; i < lines.count(); i++) points += lines[i].points;
  if (points == 0) return STATUS_OK;
  if (!TableMake(&profile->points, points)) return STATUS_MEMORY_FULL;
  for (int64_t i = 0; i < lines.count(); i++) LineAdd(lines[i], profile);

  profile->start = profile->points[0];
  profile->end = profile->points[static_cast<size_t>(points) - 1];
  if (lines.IsChain()) {
    const KernelLine last = lines[lines.count() - 1].line;
    profile->start = {last.startX, last.startY};
    profile->end = {last.endX, last.endY};
  }
  return STATUS_OK;
}

// ---- other outlines

Status PointFollow(const PixelView& view, PointInt point, Profile* profile) {
  if (!Holds(view, point)) return STATUS_OK;
  if (!TableMake(&profile->points, 1)) return STATUS_MEMORY_FULL;
  profile->Add(point);
  profile->start = profile->end = point;
  return STATUS_OK;
}

Status OvalFollow(const PixelView& view, const FlatContour& contour, Profile* profile) {
  const PointInt a = contour.Point(0);
  const PointInt b = contour.Point(1);
  const PixelBox box{a.x, a.y, int64_t{b.x} - 1, int64_t{b.y} - 1};
  if (box.IsOutside(view.width, view.height)) return STATUS_OK;
  Status status = STATUS_OK;
  if (box.Width() < 2 || box.Height() < 2) {
    status = PointFollow(view, a, profile);
  } else if (box.IsInside(view.width, view.height)) {
    OvalPath path;
    status = path.Make(box);
    if (status == STATUS_OK && !TableMake(&profile->points, path.count())) {
      status = STATUS_MEMORY_FULL;
    }
    for (int64_t i = 0; i < path.count() && status == STATUS_OK; i++) profile->Add(path[i]);
  }
  profile->start = a;
  profile->end = b;
  return status;
}

Status OutlineFollow(const PixelView& view, const FlatContour& contour, Profile* profile) {
  switch (contour.type) {
    case ROI_POINT:
      if (contour.length != POINT_LENGTH) return STATUS_OK;
      return PointFollow(view, contour.Point(0), profile);
    case ROI_RECT:
      if (contour.length != CORNERS_LENGTH || !HasArea(contour)) return STATUS_OK;
      return LinesFollow(view, contour, profile);
    case ROI_LINE:
      if (contour.length != CORNERS_LENGTH) return STATUS_OK;
      return LinesFollow(view, contour, profile);
    case ROI_OVAL:
      if (contour.length != CORNERS_LENGTH) return STATUS_OK;
      return OvalFollow(view, contour, profile);
    case ROI_POLYGON:
    case ROI_FREEHAND:
    case ROI_POLYLINE:
    case ROI_FREELINE:
      if (contour.length < CORNERS_LENGTH) return STATUS_OK;
      return LinesFollow(view, contour, profile);
    default:
      return STATUS_OK;
  }
}

// ---- samples

template <class T>
void SamplesTake(const PixelView& view, Profile* profile) {
  for (int64_t i = 0; i < profile->count; i++) {
    const PointInt point = profile->points[static_cast<size_t>(i)];
    profile->samples[static_cast<size_t>(i)] = *view.At<T>(point.x, point.y);
  }
}

Status SamplesRead(const PixelView& view, Profile* profile) {
  if (!TableMake(&profile->samples, profile->count)) return STATUS_MEMORY_FULL;
  switch (view.type) {
    case IMAGE_U8:
      SamplesTake<uint8_t>(view, profile);
      break;
    case IMAGE_I16:
      SamplesTake<int16_t>(view, profile);
      break;
    default:
      SamplesTake<float>(view, profile);
  }
  return STATUS_OK;
}

ProfileReport ReportOf(const Profile& profile) {
  ProfileReport report{};
  if (profile.count == 0) return report;
  report.startX = profile.start.x;
  report.startY = profile.start.y;
  report.endX = profile.end.x;
  report.endY = profile.end.y;
  report.minimum = NO_MINIMUM;
  report.maximum = -NO_MINIMUM;
  double sum = 0;
  double squares = 0;
  for (int64_t i = 0; i < profile.count; i++) {
    const float sample = profile.samples[static_cast<size_t>(i)];
    if (sample < report.minimum) report.minimum = sample;
    if (sample > report.maximum) report.maximum = sample;
    const auto value = static_cast<double>(sample);
    sum += value;
    squares += value * value;
  }
  const auto count = static_cast<double>(profile.count);
  const double mean = sum / count;
  const double variance = squares / count - mean * mean;
  report.mean = static_cast<float>(mean);
  report.deviation = static_cast<float>(variance < 0 ? 0.0 : std::sqrt(variance));
  report.sampleCount = static_cast<int32_t>(profile.count);
  return report;
}

// What cannot be sampled is no failure.
Status RoiProfile(ImageRef reference, const RoiDescriptor* roi, Profile* profile) {
  ScopedVector vector;
  Status status = vector.Create();
  if (status == STATUS_OK) status = RoiToVector(roi, vector.handle());
  if (status != STATUS_OK) return status;
  Image* image = nullptr;
  if (ImageLookup(reference, &image) != STATUS_OK || !TypeIsScalar(image->type)) return STATUS_OK;
  const PixelView view = ViewOf(*image);
  FlatContours contours(vector.handle());
  FlatContour contour{};
  if (view.IsEmpty() || !contours.Next(&contour)) return STATUS_OK;
  if (contour.marker != ROI_MARKER_EXTERNAL) return STATUS_OK;
  status = OutlineFollow(view, contour, profile);
  return status != STATUS_OK ? status : SamplesRead(view, profile);
}

}  // namespace
}  // namespace zel

int32_t ZEL_ROIProfile(ImageRef image, const RoiDescriptor* roi, float** samples, int32_t* count,
                       ProfileReport* report, PointInt** points) {
  zel::Profile profile;
  const zel::Status status =
      !samples || !points ? zel::STATUS_NULL_POINTER : zel::RoiProfile(image, roi, &profile);
  if (status == zel::STATUS_OK) {
    if (report) *report = zel::ReportOf(profile);
    zel::TableHandOver(&profile.samples, samples);
    zel::TableHandOver(&profile.points, points);
    zel::CountTell(profile.count, count);
  }
  return ZEL_ProcessError("ZEL_ROIProfile", status);
}
