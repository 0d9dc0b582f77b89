// Particles put together from runs: each run joins the runs of the row above that it touches.
#include "particles/particle_scan.h"

#include "core/kernels.h"

namespace zel {
namespace {

// Joins the runs of a row to those of the row above. Answers how many provisional labels a scan
// pixel by pixel would have handed out on this row: one for each run whose first pixel has none of
// its neighbours above set, whether or not the run meets a particle further on.
uint32_t RowJoin(const Run* above, const uint32_t* aboveLabels, const Run* run, uint32_t* label,
                 int32_t reach, DisjointSets* sets) {
  uint32_t provisional = 0;
  for (; run->start < RUN_SENTINEL.start; run++, label++) {
    while (above->end + reach <= run->start) above++, aboveLabels++;
    provisional += above->start > run->start + reach;
    const int32_t end = run->end + reach;
    if (above->start >= end) {
      *label = sets->Add();
      continue;
    }
    uint32_t set = sets->Find(*aboveLabels);
    while (above[1].start < end) {
      above++, aboveLabels++;
      if (*aboveLabels == set) continue;  // the common case spares the search
      const uint32_t other = sets->Find(*aboveLabels);
      if (other != set) set = sets->Join(set, other);
    }
    *label = set;
  }
  return provisional;
}

}  // namespace

void ParticleRunsFind(const PixelGrid& grid, int32_t type, bool connectivity8,
                      ParticleRuns* particles, Status* status) {
  const RunTable& runs = particles->runs;
  if (!particles->runs.Extract(grid, type) || !particles->labels.Allocate(runs.size()) ||
      !particles->numbers.Create(runs.size())) {
    *status = STATUS_MEMORY_FULL;
    return;
  }
  // Columns that two runs may lie apart and still touch.
  const int32_t reach = connectivity8 ? 1 : 0;
  uint32_t* labels = particles->labels.data();
  uint32_t provisional = 0;
  for (int32_t y = 0; y < grid.height; y++) {
    const uint32_t above = runs.RowBegin(y - 1);
    const uint32_t row = runs.RowBegin(y);
    provisional += RowJoin(runs.data() + above, labels + above, runs.data() + row, labels + row,
                           reach, &particles->numbers);
    if (provisional > PROVISIONAL_LABEL_LIMIT) {
      *status = STATUS_MEMORY_FULL;
      return;
    }
  }
  particles->count = static_cast<int32_t>(particles->numbers.Renumber());
}

void ParticleScan(const ParticleScanRequest* request, ImageRef source, ImageRef labels,
                  Handle* table, const int16_t* connectivity8, int32_t* nbParticles,
                  Status* status) {
  if (!TypeIsInteger(request->sourceType) || request->labelType != IMAGE_I16) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  *status = BorderZero(source);
  if (*status == STATUS_OK) *status = BorderZero(labels);
  if (*status == STATUS_OK) *status = HandleAlloc(table, sizeof(EquivalenceTable));
  if (*status != STATUS_OK) return;

  const auto width = static_cast<int32_t>(request->width);
  const auto height = static_cast<int32_t>(request->height);
  const int64_t sourceBytes = request->sourceType == IMAGE_U8 ? 1 : 2;
  const PixelGrid from = {static_cast<uint8_t*>(request->source),
                          request->sourcePitch * sourceBytes, width, height};
  const PixelGrid to = {static_cast<uint8_t*>(request->labels), request->labelPitch * int64_t{2},
                        width, height};
  ParticleRuns particles;
  ParticleRunsFind(from, request->sourceType, *connectivity8 != 0, &particles, status);
  if (*status != STATUS_OK) {
    HandleFree(*table);
    *table = 0;
    return;
  }

  // Runs know their particle's number before any label is written, so labels are numbers already.
  const uint32_t* numbers = particles.numbers.Numbers();
  for (int32_t y = 0; y < height; y++) {
    const uint32_t row = particles.runs.RowBegin(y);
    runRows().labelsI16(to.Row<uint8_t>(y), width, particles.runs.data() + row,
                        particles.labels.data() + row, numbers);
  }
  auto* equivalence = VectorData<EquivalenceTable>(*table);
  for (int32_t n = 0; n <= particles.count; n++) {
    equivalence->numbers[n] = static_cast<uint16_t>(n);
  }
  *nbParticles = particles.count;
}

}  // namespace zel
