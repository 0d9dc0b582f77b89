// Resampling by natural cubic splines, along each row and then down each column of the result.
#include "utilities/resample_spline.h"

#include <algorithm>

#include "engine/bands.h"

namespace zel {
namespace {

constexpr int64_t LANES = SPLINE_LANES;
constexpr int64_t EFFORT = 8;  // of a number, in bytes that are added

int64_t GroupsOf(int64_t lines) {
  return (lines + LANES - 1) / LANES;
}

// Lanes beyond the last line of a group compute on what the lanes held before.
void LinesAlong(const ResampleViews& views, int64_t group, SplineMemory* memory,
                const SplineMemory::Lanes& lanes) {
  const SplineRows& rows = splineRows();
  const int32_t numbers = views.NumbersAPixel();
  const int64_t lines = int64_t{views.y.size} * numbers;
  const int64_t first = group * LANES;
  const int64_t used = std::min(LANES, lines - first);
  for (int64_t k = 0; k < used; k++) {
    const int64_t row = views.y.first + (first + k) / numbers;
    const int64_t number = (first + k) % numbers;
    const uint8_t* from =
        views.source.Row<uint8_t>(row) + int64_t{views.x.first} * views.source.pixelBytes + number;
    rows.load.For(views.source.type)(from, numbers, lanes.samples + k, views.x.size);
  }
  const SplineLines along{lanes.samples, LANES, views.x.size};
  rows.sweep(along, memory->pivots(), lanes.seconds);
  rows.evaluate(along, lanes.seconds, views.x.step, lanes.results, views.x.results);
  for (int64_t k = 0; k < used; k++) {
    double* to = memory->Row((first + k) / numbers) + (first + k) % numbers;
    for (int64_t i = 0; i < views.x.results; i++) to[i * numbers] = lanes.results[i * LANES + k];
  }
}

void RowsWiden(const ResampleViews& views, const Band& band, SplineMemory* memory) {
  // The lanes of one row follow each other: a row is loaded as its numbers come.
  const auto widen = resampleRows().widen.For(views.source.type);
  for (int64_t y = band.begin; y < band.end; y++) {
    const uint8_t* from = views.source.Row<uint8_t>(views.y.first + y) +
                          int64_t{views.x.first} * views.source.pixelBytes;
    widen(from, memory->Row(y), views.x.size * views.NumbersAPixel());
  }
}

void LinesDown(const ResampleViews& views, int64_t group, SplineMemory* memory,
               const SplineMemory::Lanes& lanes) {
  const SplineRows& rows = splineRows();
  const int64_t numbers = int64_t{views.x.results} * views.NumbersAPixel();
  const int64_t first = group * LANES;
  const auto used = static_cast<int32_t>(std::min(LANES, numbers - first));
  const SplineLines down{memory->Row(0) + first, memory->pitch(), views.y.size};
  rows.sweep(down, memory->pivots(), lanes.seconds);
  rows.evaluate(down, lanes.seconds, views.y.step, lanes.results, views.y.results);
  const DownRows store = resampleRows().down.For(views.result.type).one;
  const int64_t numberBytes = views.result.pixelBytes / views.NumbersAPixel();
  for (int64_t y = 0; y < views.y.results; y++) {
    const double* values = lanes.results + y * LANES;
    store(&values, 0.0, views.result.Row<uint8_t>(y) + first * numberBytes, used);
  }
}

void RowsStore(const ResampleViews& views, const Band& band, SplineMemory* memory) {
  const DownRows store = resampleRows().down.For(views.result.type).one;
  for (int64_t y = band.begin; y < band.end; y++) {
    const double* values = memory->Row(y);
    store(&values, 0.0, views.result.Row<void>(y), views.x.results * views.NumbersAPixel());
  }
}

// Calls work(group, lanes) for groups of lines.
template <class Work>
void GroupsRun(int64_t lines, int64_t length, SplineMemory* memory, const Work& work) {
  BandsRun({.units = GroupsOf(lines), .bytes = EFFORT * lines * length}, [&](const Band& band) {
    const SplineMemory::Lanes lanes = memory->OfWorker(band.worker);
    for (int64_t group = band.begin; group < band.end; group++) work(group, lanes);
  });
}

}  // namespace

Status SplineMemory::Allocate(const ResampleAxis& x, const ResampleAxis& y, int32_t numbersAPixel) {
  samples_ = std::max(x.size, y.size);
  results_ = std::max(x.results, y.results);
  pitch_ = GroupsOf(int64_t{x.results} * numbersAPixel) * LANES;
  const auto rowNumbers = static_cast<uint64_t>(pitch_) * static_cast<uint64_t>(y.size);
  const int64_t bytes = EFFORT * numbersAPixel *
                        std::max(int64_t{y.size} * (int64_t{x.size} + x.results),
                                 int64_t{x.results} * (int64_t{y.size} + y.results));
  const int64_t workers = BandWorkersFor(bytes);
  const auto laneNumbers = static_cast<uint64_t>((2 * samples_ + results_) * LANES * workers);
  if (!pivots_.Allocate(static_cast<uint64_t>(samples_)) || !rows_.AllocateZeroed(rowNumbers) ||
      !lanes_.AllocateZeroed(laneNumbers)) {
    return STATUS_MEMORY_FULL;
  }
  pivots_[0] = {1.0, 0.0};
  for (int64_t i = 1; i < samples_; i++) {
    const auto at = static_cast<size_t>(i);
    const double divisor = 0.5 * pivots_[at - 1].factor + 2.0;
    pivots_[at] = {divisor, -0.5 / divisor};
  }
  return STATUS_OK;
}

void SplineRun(const ResampleViews& views, SplineMemory* memory) {
  const int32_t numbers = views.NumbersAPixel();
  const int64_t rowNumbers = int64_t{views.x.results} * numbers;
  if (views.x.Changes()) {
    GroupsRun(int64_t{views.y.size} * numbers, int64_t{views.x.size} + views.x.results, memory,
              [&](int64_t group, const SplineMemory::Lanes& lanes) {
                LinesAlong(views, group, memory, lanes);
              });
  } else {
    BandsRun({.units = views.y.size, .bytes = EFFORT * views.y.size * rowNumbers},
             [&](const Band& band) { RowsWiden(views, band, memory); });
  }
  if (views.y.Changes()) {
    GroupsRun(rowNumbers, int64_t{views.y.size} + views.y.results, memory,
              [&](int64_t group, const SplineMemory::Lanes& lanes) {
                LinesDown(views, group, memory, lanes);
              });
  } else {
    BandsRun({.units = views.y.size, .bytes = EFFORT * views.y.size * rowNumbers},
             [&](const Band& band) { RowsStore(views, band, memory); });
  }
}

}  // namespace zel
