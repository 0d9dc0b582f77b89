// Particle measurement: one sweep over the runs, with sums by particle, then the outer perimeters.
#include <algorithm>
#include <cmath>

#include "core/numbers.h"
#include "particles/particle_contour.h"
#include "particles/particle_holes.h"
#include "particles/particle_scan.h"
#include "particles/report_table.h"

namespace zel {
namespace {

// 1 + 2 + .. + (n - 1), exact.
uint64_t SumBelow(uint64_t n) {
  return n == 0 ? 0 : n * (n - 1) / 2;
}

// The squares of 0 to n - 1, modulo 2^64.
uint64_t SumOfSquaresBelow(uint64_t n) {
  const uint64_t sum = SumBelow(n);
  return sum % 3 == 0 ? sum / 3 * (2 * n - 1) : sum * ((2 * n - 1) / 3);
}

// Sums of a run are kept in 32 bits, the upper ones lost, and added in single precision.
void Accumulate(float* sum, uint64_t value) {
  *sum = static_cast<float>(static_cast<double>(*sum) + static_cast<int32_t>(value));
}
void Accumulate(float* sum, float other) {
  *sum = static_cast<float>(static_cast<double>(*sum) + static_cast<double>(other));
}

// The sweep of one image. Particles are sets of runs; a set's report is kept under its least
// number. Until the end the width and height of its rectangle hold the right end and the bottom
// end.
class ParticleSweep {
 public:
  ParticleSweep(const PixelBits& bits, bool connectivity8, float xStep, float yStep)
      : bits_(bits),
        holes_(table_, &runs_, &sets_, &lastRows_, connectivity8),
        connectivity8_(connectivity8),
        xStep_(xStep),
        yStep_(yStep) {}

  // False when there is no memory.
  [[nodiscard]] bool Sweep();
  uint32_t CountParticles() const;
  void Write(ParticleReport* reports) const;

 private:
  bool MakeRoom(uint64_t sets);
  bool AddRow(int32_t y);
  void NotePassed(uint32_t above, uint32_t place) {
    uint32_t& first = runs_[above].firstBelow;
    first = first == 0 ? place : first;
  }
  uint32_t NewParticle(int32_t x, int32_t y);
  uint32_t Merge(uint32_t a, uint32_t b);
  bool AddHole(uint32_t particle, int32_t y, uint32_t place);

  const PixelBits& bits_;
  RunTable table_;
  WorkArray<SweptRun> runs_;  // by place in the table
  DisjointSets sets_;
  HoleFinder holes_;
  bool connectivity8_;
  float xStep_, yStep_;

  // By set.
  WorkArray<ParticleReport> reports_;
  WorkArray<int32_t> firstColumns_;  // of the particle's first run, which is on its top row
  WorkArray<int32_t> lastRows_;
  uint64_t capacity_ = 0;
};

int32_t Overlap(Run a, Run b) {
  return std::min(a.end, b.end) - std::max(a.start, b.start);
}

void AddRun(Run run, int32_t y, int32_t overlap, ParticleReport* report) {
  const int32_t length = run.end - run.start;
  const auto start = static_cast<uint64_t>(run.start);
  const auto end = static_cast<uint64_t>(run.end);
  const auto row = static_cast<uint64_t>(y);
  const uint64_t sumX = SumBelow(end) - SumBelow(start);
  const uint64_t sumY = static_cast<uint64_t>(length) * row;
  Accumulate(&report->sumX, sumX);
  Accumulate(&report->sumY, sumY);
  Accumulate(&report->sumXX, SumOfSquaresBelow(end) - SumOfSquaresBelow(start));
  Accumulate(&report->sumYY, sumY * row);
  Accumulate(&report->sumXY, row * sumX);
  report->projectionX += length - overlap;
  report->area += length;
  report->nbRuns++;
  report->rect.left = std::min(report->rect.left, run.start);
  report->rect.width = std::max(report->rect.width, run.end);
  report->rect.height = y + 1;
  if (length > report->longestSegment) {
    report->longestSegment = length;
    report->longestSegmentX = run.start;
    report->longestSegmentY = y;
  }
}

// Whether a's longest run is the one to keep: the first in raster order of equally long ones.
bool LongestIsBetter(const ParticleReport& a, const ParticleReport& b) {
  if (a.longestSegment != b.longestSegment) return a.longestSegment > b.longestSegment;
  if (a.longestSegmentY != b.longestSegmentY) return a.longestSegmentY < b.longestSegmentY;
  return a.longestSegmentX < b.longestSegmentX;
}

bool ParticleSweep::Sweep() {
  if (!table_.Extract(bits_) || !runs_.AllocateZeroed(table_.size()) ||
      !sets_.Create(table_.size())) {
    return false;
  }
  for (uint32_t place = 0; place < table_.size(); place++) runs_[place].run = table_[place];
  for (int32_t y = 0; y < table_.height(); y++) {
    if (!AddRow(y)) return false;
  }
  return true;
}

bool ParticleSweep::MakeRoom(uint64_t sets) {
  if (sets <= capacity_) return true;
  const uint64_t grown = sets + capacity_;
  if (!reports_.Resize(grown) || !firstColumns_.Resize(grown) || !lastRows_.Resize(grown)) {
    return false;
  }
  capacity_ = grown;
  return true;
}

uint32_t ParticleSweep::NewParticle(int32_t x, int32_t y) {
  const uint32_t set = sets_.Add();
  reports_[set] = {};
  reports_[set].rect = {y, x, 0, 0};
  firstColumns_[set] = x;
  return set;
}

// Links are taken from right to left, and a run is added when all its particles are one: the order
// shows in the last bit of the sums.
bool ParticleSweep::AddRow(int32_t y) {
  const uint32_t rowEnd = table_.RowEnd(y);
  if (!MakeRoom(uint64_t{sets_.count()} + rowEnd - table_.RowBegin(y))) return false;
  const int32_t reach = connectivity8_ ? 1 : 0;
  uint32_t above = table_.RowBegin(y - 1);
  for (uint32_t place = table_.RowBegin(y); place < rowEnd; place++) {
    const Run run = runs_[place].run;
    for (; runs_[above].run.end + reach <= run.start; above++) NotePassed(above, place);
    const uint32_t first = above;
    runs_[place].firstAbove = first;
    uint32_t set = 0;
    int32_t overlap = 0;
    if (runs_[first].run.start >= run.end + reach) {
      set = NewParticle(run.start, y);
    } else {
      NotePassed(above, place);
      while (runs_[above + 1].run.start < run.end + reach) NotePassed(++above, place);
      set = sets_.Find(runs_[above].label);
      overlap = Overlap(runs_[above].run, run);
      for (uint32_t link = above; link-- > first;) {
        overlap += Overlap(runs_[link].run, run);
        const uint32_t other = sets_.Find(runs_[link].label);
        if (other != set) {
          set = Merge(set, other);
        } else if (!AddHole(set, y - 1, link)) {
          return false;
        }
      }
    }
    runs_[place].label = set;
    lastRows_[set] = y;
    AddRun(run, y, overlap, &reports_[set]);
  }
  return true;
}

uint32_t ParticleSweep::Merge(uint32_t a, uint32_t b) {
  const uint32_t set = sets_.Join(a, b);
  const uint32_t gone = set == a ? b : a;
  ParticleReport& low = reports_[set];
  const ParticleReport& high = reports_[gone];
  low.area += high.area;
  low.nbHoles += high.nbHoles;
  low.holesArea += high.holesArea;
  Accumulate(&low.holesPerimeter, high.holesPerimeter);
  Accumulate(&low.sumX, high.sumX);
  Accumulate(&low.sumY, high.sumY);
  Accumulate(&low.sumXX, high.sumXX);
  Accumulate(&low.sumYY, high.sumYY);
  Accumulate(&low.sumXY, high.sumXY);
  low.projectionX += high.projectionX;
  low.nbRuns += high.nbRuns;
  low.rect.left = std::min(low.rect.left, high.rect.left);
  low.rect.top = std::min(low.rect.top, high.rect.top);
  low.rect.width = std::max(low.rect.width, high.rect.width);
  low.rect.height = std::max(low.rect.height, high.rect.height);
  if (LongestIsBetter(high, low)) {
    low.longestSegment = high.longestSegment;
    low.longestSegmentX = high.longestSegmentX;
    low.longestSegmentY = high.longestSegmentY;
  }
  lastRows_[set] = std::max(lastRows_[set], lastRows_[gone]);
  return set;
}

// All holes of a particle together have at least the perimeter of a disk of their area, in pixels.
bool ParticleSweep::AddHole(uint32_t particle, int32_t y, uint32_t place) {
  HoleShape hole{};
  if (!holes_.Find(y, place, &hole)) return false;
  ParticleReport& report = reports_[particle];
  report.nbHoles++;
  report.holesArea += hole.area;
  const double perimeter =
      hole.isGap ? GapPerimeter(hole.area, xStep_, yStep_)
                 : ContourPerimeter(bits_, hole.x - 1, hole.y, Contour::Hole, xStep_, yStep_);
  report.holesPerimeter =
      static_cast<float>(static_cast<double>(report.holesPerimeter) + perimeter);
  const double least = 2.0 * std::sqrt(report.holesArea * PI);
  if (least > static_cast<double>(report.holesPerimeter)) {
    report.holesPerimeter = static_cast<float>(least);
  }
  return true;
}

uint32_t ParticleSweep::CountParticles() const {
  uint32_t particles = 0;
  for (uint32_t set = 0; set < sets_.count(); set++) particles += sets_.IsLeast(set);
  return particles;
}

void ParticleSweep::Write(ParticleReport* reports) const {
  const Contour contour = connectivity8_ ? Contour::Particle8 : Contour::Particle4;
  const auto pixelArea = static_cast<double>(xStep_ * yStep_);
  for (uint32_t set = 0; set < sets_.count(); set++) {
    if (!sets_.IsLeast(set)) continue;
    ParticleReport& report = *reports++;
    report = reports_[set];
    report.calibratedArea = static_cast<float>(report.area * pixelArea);
    const double perimeter =
        ContourPerimeter(bits_, firstColumns_[set], report.rect.top, contour, xStep_, yStep_);
    report.perimeter = perimeter > 0.0 ? static_cast<float>(perimeter) : 0.0f;
    report.rect.width -= report.rect.left;
    report.rect.height -= report.rect.top;
  }
}

Status MeasureParticles(ImageRef reference, bool connectivity8, Handle reports,
                        int32_t* nbReports) {
  Image* image = nullptr;
  Status status = ParticleImageLookup(reference, &TypeIsU8, connectivity8, &image);
  if (status != STATUS_OK) return status;

  PixelBits bits;
  ParticleSweep sweep(bits, connectivity8, image->xStep, image->yStep);
  if (!bits.Create(ViewOf(*image)) || !sweep.Sweep()) return STATUS_MEMORY_FULL;
  const uint32_t particles = sweep.CountParticles();
  status = VectorResize(reports, sizeof(ParticleReport), particles);
  if (status != STATUS_OK) return status;
  sweep.Write(VectorData<ParticleReport>(reports));
  *nbReports = static_cast<int32_t>(particles);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_Particle(ImageRef image, uint16_t connectivity8, ParticleReport** reports,
                     int32_t* nbReports) {
  return zel::ParticleExport("ZEL_Particle", &zel::MeasureParticles, image, connectivity8, reports,
                             nbReports);
}
