// ZEL_ShapeMatch: the particles of an image that have the shape of a template.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "core/rectangles.h"
#include "particles/particle_scan.h"
#include "statistics/sums_rows.h"
#include "vision/result_table.h"
#include "vision/shape_moments.h"

namespace zel {
namespace {

// What of a template is looked for.
struct TemplateShape {
  int64_t area = 0;      // the sum of its bytes
  ShapeMoments moments;  // of its pixels of value 1
};

TemplateShape TemplateShapeOf(const PixelView& view) {
  TemplateShape shape;
  if (view.IsEmpty()) return shape;
  PixelSums sums;
  for (int32_t y = 0; y < view.height; y++) {
    const uint8_t* row = view.Row<uint8_t>(y);
    const uint8_t* end = row + view.width;
    sumsRows().add[IMAGE_U8](row, view.width, &sums);
    const uint8_t* at = row;
    while ((at = static_cast<const uint8_t*>(std::memchr(at, 1, static_cast<size_t>(end - at))))) {
      const uint8_t* start = at;
      at = std::find_if(at, end, [](uint8_t pixel) { return pixel != 1; });
      shape.moments.AddRun({static_cast<int32_t>(start - row), static_cast<int32_t>(at - row)}, y);
    }
  }
  shape.area = static_cast<int64_t>(sums.sum);  // whole, and far too small to be rounded
  return shape;
}

// One particle of the source.
struct Particle {
  ShapeMoments moments;
  int32_t left, top, right, bottom;  // the first and last columns and rows
  double distance;                   // of its invariants from the template's
  uint32_t number;                   // among the matches, from 1; 0 for none
};

uint32_t NumberOf(const ParticleRuns& found, uint32_t place) {
  return found.numbers.Numbers()[found.labels[place]];
}

void ParticlesMeasure(const ParticleRuns& found, Particle* particles) {
  for (int32_t n = 0; n < found.count; n++) {
    particles[n] = {};
    particles[n].left = particles[n].top = INT32_MAX;
  }
  for (int32_t y = 0; y < found.runs.height(); y++) {
    for (uint32_t i = found.runs.RowBegin(y); i < found.runs.RowEnd(y); i++) {
      const Run run = found.runs[i];
      Particle& particle = particles[NumberOf(found, i) - 1];
      particle.moments.AddRun(run, y);
      particle.left = std::min(particle.left, run.start);
      particle.right = std::max(particle.right, run.end - 1);
      particle.top = std::min(particle.top, y);
      particle.bottom = y;
    }
  }
}

struct MatchRule {
  double tolerance;
  bool scaleInvariant;
};

bool HasSize(const Particle& particle, int64_t area) {
  const auto pixels = static_cast<double>(particle.moments.count);
  const auto wanted = static_cast<double>(area);
  return std::fabs(pixels - wanted) < 0.1 * wanted;
}

// How far a particle may be from the template, and what it scores then.
class Limit {
 public:
  Limit(const ShapeInvariants& wanted, double tolerance) : limit_(tolerance * wanted.Length()) {}

  bool Holds(double distance) const { return distance <= limit_; }
  // From 1 at the limit to 1000. A limit too near or too far to be divided by gives 1000.
  float ScoreOf(double distance) const {
    const double scale = 999.0 / limit_;
    if (limit_ == 0.0 || !std::isfinite(limit_) || !std::isfinite(scale)) return 1000.0f;
    return static_cast<float>((limit_ - distance) * scale + 1.0);
  }

 private:
  double limit_;
};

// Numbers the particles that match, in their order. Answers how many.
int32_t ParticlesMatch(const TemplateShape& shape, const MatchRule& rule, const Limit& limit,
                       int32_t count, Particle* particles) {
  const ShapeInvariants wanted = ShapeInvariants::Of(shape.moments);
  uint32_t matches = 0;
  for (int32_t n = 0; n < count; n++) {
    Particle& particle = particles[n];
    if (!rule.scaleInvariant && !HasSize(particle, shape.area)) continue;
    particle.distance = ShapeInvariants::Of(particle.moments).DistanceTo(wanted);
    if (limit.Holds(particle.distance)) particle.number = ++matches;
  }
  return static_cast<int32_t>(matches);
}

// What a report is made of: all matches whose number reads the same in the result.
struct Shown {
  int32_t left = WHOLE_IMAGE_EXTENT, top = WHOLE_IMAGE_EXTENT, right = 0, bottom = 0;
  int64_t area = 0;
  int64_t sumX = 0, sumY = 0;

  void Add(const Particle& particle) {
    left = std::min(left, particle.left);
    top = std::min(top, particle.top);
    right = std::max(right, particle.right);
    bottom = std::max(bottom, particle.bottom);
    area += static_cast<int64_t>(particle.moments.count);
    sumX += static_cast<int64_t>(particle.moments.x);
    sumY += static_cast<int64_t>(particle.moments.y);
  }

  ShapeReport Report(float score) const {
    ShapeReport report{};
    const KernelRect corners{left, top, right, bottom};
    RectToApi(&corners, &report.rect);
    if (area > 0) {
      report.centreX = static_cast<int32_t>(sumX / area);
      report.centreY = static_cast<int32_t>(sumY / area);
    }
    report.area = static_cast<int32_t>(area);
    report.score = score;
    return report;
  }
};

// A number reads as the pixels of the result hold it: in bytes beyond 255 from 0 again, so that the
// first reports take in the pixels of later ones, which stay empty. Kept.
void ReportsFill(const Particle* particles, int32_t count, int32_t resultType, const Limit& limit,
                 Shown* shown, ShapeReport* reports) {
  const uint32_t mask = resultType == IMAGE_U8 ? UINT8_MAX : UINT16_MAX;
  int64_t matches = 0;
  for (int32_t n = 0; n < count; n++) {
    const uint32_t number = particles[n].number;
    if (number == 0) continue;
    if ((number & mask) != 0) shown[(number & mask) - 1].Add(particles[n]);
    reports[matches++].score = limit.ScoreOf(particles[n].distance);
  }
  for (int64_t i = 0; i < matches; i++) reports[i] = shown[i].Report(reports[i].score);
}

// What is known of a call before its result is written.
struct MatchWork {
  ParticleRuns found;
  TemplateShape shape;
  WorkArray<Particle> particles;
  WorkArray<Shown> shown;
  WorkArray<ShapeReport> reports;
  int32_t matches = 0;
};

// The images of a call in the order of its failures; the template is read before a destination that
// it may be takes the source's size.
struct MatchImages {
  ImageRef source, templateImage, destination;
  bool connectivity8;
};

Status SourceScan(const MatchImages& images, MatchWork* work, Image** source) {
  Image* pattern = nullptr;
  Status status = ImageLookup(images.source, source);
  if (status == STATUS_OK) status = ImageLookup(images.templateImage, &pattern);
  if (status == STATUS_OK) {
    status = ParticleImageLookup(images.source, &TypeIsInteger, images.connectivity8, source);
  }
  if (status == STATUS_OK) status = BorderZero(images.source);
  if (status == STATUS_OK) {
    status = ParticleRunsFind(ViewOf(**source), images.connectivity8, &work->found);
  }
  if (status != STATUS_OK) return status;
  if (pattern->type != IMAGE_U8) return STATUS_BAD_TYPE;
  work->shape = TemplateShapeOf(ViewOf(*pattern));
  return STATUS_OK;
}

// The particles that match, and their reports.
Status MatchesFind(const MatchRule& rule, int32_t resultType, MatchWork* work) {
  const int32_t count = work->found.count;
  if (!work->particles.Allocate(static_cast<uint64_t>(count))) return STATUS_MEMORY_FULL;
  Particle* particles = work->particles.data();
  ParticlesMeasure(work->found, particles);
  const Limit limit(ShapeInvariants::Of(work->shape.moments), rule.tolerance);
  work->matches = ParticlesMatch(work->shape, rule, limit, count, particles);
  if (!TableMake(&work->shown, work->matches) || !TableMake(&work->reports, work->matches)) {
    return STATUS_MEMORY_FULL;
  }
  std::fill_n(work->shown.data(), work->matches, Shown{});
  ReportsFill(particles, count, resultType, limit, work->shown.data(), work->reports.data());
  return STATUS_OK;
}

void ResultWrite(MatchWork* work, const PixelView& to) {
  uint32_t* numbers = work->found.numbers.Numbers();
  for (uint32_t i = 0; i < work->found.numbers.count(); i++) {
    numbers[i] = work->particles[numbers[i] - 1].number;
  }
  LabelsWrite(work->found, to);
}

Status ShapeMatch(const MatchImages& images, const MatchRule& rule, MatchWork* work) {
  Image* source = nullptr;
  Status status = SourceScan(images, work, &source);
  if (status != STATUS_OK || work->shape.area == 0) return status;

  Image* to = source;
  if (images.destination != 0 && images.destination != images.source) {
    status = ImageLookup(images.destination, &to);
    if (status != STATUS_OK) return status;
    if (to->type != source->type) return STATUS_DESTINATION_TYPE_DIFFERS;
  }
  status = MatchesFind(rule, to->type, work);
  if (status == STATUS_OK && to != source) {
    status = ImageCopyInfo(*source, to);
    if (status == STATUS_OK) status = ImageLayoutSize(to, source->width, source->height, true);
  }
  if (status == STATUS_OK) ResultWrite(work, ViewOf(*to));
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ShapeMatch(ImageRef source, ImageRef templateImage, ImageRef dest,
                       uint16_t connectivity, double tolerance, int32_t scaleInvariant,
                       int32_t* matchCount, ShapeReport** reports) {
  if (!reports) return ZEL_ProcessError("ZEL_ShapeMatch", zel::STATUS_NULL_POINTER);
  zel::MatchWork work;
  const zel::Status status = zel::ShapeMatch({source, templateImage, dest, connectivity != 0},
                                             {tolerance, scaleInvariant != 0}, &work);
  if (status == zel::STATUS_OK) zel::TableHandOver(&work.reports, reports);
  zel::CountTell(status == zel::STATUS_OK ? work.matches : 0, matchCount);
  return ZEL_ProcessError("ZEL_ShapeMatch", status);
}
