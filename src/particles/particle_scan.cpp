// Particles put together from runs: each run joins the runs of the row above that it touches.
#include "particles/particle_scan.h"

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

PixelView ViewOf(const ParticleScanRequest& request, int32_t type, void* pixels, uint32_t pitch) {
  const int32_t pixelBytes = PixelBytesOf(type);
  return {.origin = static_cast<uint8_t*>(pixels),
          .pitch = int64_t{pitch} * pixelBytes,
          .width = static_cast<int32_t>(request.width),
          .height = static_cast<int32_t>(request.height),
          .type = static_cast<int16_t>(type),
          .pixelBytes = static_cast<int16_t>(pixelBytes)};
}

}  // namespace

Status ParticleImageLookup(ImageRef reference, TypeTest takesType, bool connectivity8,
                           Image** image) {
  const Status status = ImageLookup(reference, image);
  if (status != STATUS_OK) return status;
  if (!takesType((*image)->type)) return STATUS_BAD_TYPE;
  return (*image)->border < ParticleBorder(connectivity8) ? STATUS_BORDER_TOO_SMALL : STATUS_OK;
}

uint32_t RunsConnect(const RunTable& runs, bool connectivity8, uint32_t* labels,
                     DisjointSets* sets) {
  // Columns that two runs may lie apart and still touch.
  const int32_t reach = connectivity8 ? 1 : 0;
  uint32_t provisional = 0;
  for (int32_t y = 0; y < runs.height(); y++) {
    const uint32_t above = runs.RowBegin(y - 1);
    const uint32_t row = runs.RowBegin(y);
    provisional +=
        RowJoin(runs.data() + above, labels + above, runs.data() + row, labels + row, reach, sets);
  }
  return provisional;
}

Status ParticleRunsFind(const PixelView& view, bool connectivity8, ParticleRuns* particles) {
  const RunTable& runs = particles->runs;
  if (!particles->runs.Extract(view) || !particles->labels.Allocate(runs.size()) ||
      !particles->numbers.Create(runs.size())) {
    return STATUS_MEMORY_FULL;
  }
  const uint32_t provisional =
      RunsConnect(runs, connectivity8, particles->labels.data(), &particles->numbers);
  if (provisional > PROVISIONAL_LABEL_LIMIT) return STATUS_MEMORY_FULL;
  particles->count = static_cast<int32_t>(particles->numbers.Renumber());
  return STATUS_OK;
}

void LabelsWrite(const ParticleRuns& particles, const PixelView& view) {
  const auto write = view.type == IMAGE_U8 ? runRows().labelsU8 : runRows().labelsI16;
  const uint32_t* numbers = particles.numbers.Numbers();
  for (int32_t y = 0; y < view.height; y++) {
    const uint32_t row = particles.runs.RowBegin(y);
    write(view.Row<void>(y), view.width, particles.runs.data() + row, particles.labels.data() + row,
          numbers);
  }
}

Status ParticleScan(const ParticleScanRequest& request, ImageRef source, ImageRef labels,
                    Handle* table, bool connectivity8, int32_t* nbParticles) {
  if (!TypeIsInteger(request.sourceType) || request.labelType != IMAGE_I16) {
    return STATUS_BAD_TYPE;
  }
  Status status = BorderZero(source);
  if (status == STATUS_OK) status = BorderZero(labels);
  if (status == STATUS_OK) status = HandleAlloc(table, sizeof(EquivalenceTable));
  if (status != STATUS_OK) return status;

  ParticleRuns particles;
  status =
      ParticleRunsFind(ViewOf(request, request.sourceType, request.source, request.sourcePitch),
                       connectivity8, &particles);
  if (status != STATUS_OK) {
    HandleFree(*table);
    *table = 0;
    return status;
  }
  // Runs know their particle's number before any label is written, so labels are numbers already.
  LabelsWrite(particles, ViewOf(request, request.labelType, request.labels, request.labelPitch));
  auto* equivalence = VectorData<EquivalenceTable>(*table);
  for (int32_t n = 0; n <= particles.count; n++) {
    equivalence->numbers[n] = static_cast<uint16_t>(n);
  }
  *nbParticles = particles.count;
  return STATUS_OK;
}

}  // namespace zel
