// Area and bounding rectangle of each particle, straight from its runs.
#include <algorithm>

#include "particles/particle_scan.h"
#include "particles/report_table.h"

namespace zel {
namespace {

// Left and top only come down from here, so a particle that lies wholly beyond column or row 65535
// reports that one.
constexpr int32_t FARTHEST_START = 65535;

// Until all runs are in, a rectangle's width and height hold its right and bottom ends.
void ParticlesSum(const ParticleRuns& particles, double pixelArea, BasicParticleReport* reports) {
  const RunTable& runs = particles.runs;
  const uint32_t* numbers = particles.numbers.Numbers();
  uint32_t begun = 0;  // particles appear in the order of their numbers
  for (int32_t y = 0; y < runs.height(); y++) {
    for (uint32_t i = runs.RowBegin(y); i < runs.RowEnd(y); i++) {
      const Run run = runs[i];
      const uint32_t number = numbers[particles.labels[i]];
      BasicParticleReport& report = reports[number - 1];
      if (number > begun) {
        begun = number;
        report = {0, 0.0f, {std::min(y, FARTHEST_START), FARTHEST_START, 0, 0}};
      }
      report.area += run.end - run.start;
      report.rect.left = std::min(report.rect.left, run.start);
      report.rect.width = std::max(report.rect.width, run.end);
      report.rect.height = y + 1;
    }
  }
  for (int32_t i = 0; i < particles.count; i++) {
    BasicParticleReport& report = reports[i];
    report.calibratedArea = static_cast<float>(report.area * pixelArea);
    report.rect.width -= report.rect.left;
    report.rect.height -= report.rect.top;
  }
}

Status BasicParticle(ImageRef reference, bool connectivity8, Handle reports, int32_t* nbReports) {
  Image* image = nullptr;
  Status status = ParticleImageLookup(reference, &TypeIsU8, connectivity8, &image);
  if (status == STATUS_OK) status = BorderZero(reference);
  if (status != STATUS_OK) return status;

  ParticleRuns particles;
  status = ParticleRunsFind(ViewOf(*image), connectivity8, &particles);
  if (status != STATUS_OK) return status;
  const auto count = static_cast<uint64_t>(particles.count);
  status = VectorResize(reports, sizeof(BasicParticleReport), count);
  if (status != STATUS_OK) {
    // The caller's table is emptied, not left with records of another image.
    VectorResize(reports, sizeof(BasicParticleReport), 0);
    return status;
  }
  ParticlesSum(particles, static_cast<double>(image->xStep) * static_cast<double>(image->yStep),
               VectorData<BasicParticleReport>(reports));
  *nbReports = particles.count;
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_BasicParticle(ImageRef image, uint16_t connectivity8, BasicParticleReport** reports,
                          int32_t* nbReports) {
  return zel::ParticleExport("ZEL_BasicParticle", &zel::BasicParticle, image, connectivity8,
                             reports, nbReports);
}
