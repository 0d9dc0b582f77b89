// The labelled image: every pixel of a particle has the particle's number.
#include <algorithm>

#include "particles/particle_scan.h"
#include "core/kernels.h"

namespace zel {
namespace {

constexpr uint32_t LARGEST_LABEL_U8 = 255;  // stands for all particles from there on

void LabelsWrite(const ParticleRuns& particles, const Image& image) {
  const auto write = image.type == IMAGE_U8 ? runRows().labelsU8 : runRows().labelsI16;
  const PixelGrid grid = PixelGridOf(image);
  const uint32_t* numbers = particles.numbers.Numbers();
  for (int32_t y = 0; y < grid.height; y++) {
    const uint32_t row = particles.runs.RowBegin(y);
    write(grid.Row<uint8_t>(y), grid.width, particles.runs.data() + row,
          particles.labels.data() + row, numbers);
  }
}

// All runs are known before the first label is written, so the source can be the destination.
void LabelKernel(ImageRef source, ImageRef destination, uint16_t* connectivity8,
                 int32_t* nbParticles, Status* status) {
  *nbParticles = 0;
  *connectivity8 = *connectivity8 != 0;
  const int32_t border = ParticleBorder(*connectivity8 != 0);
  const Image* from = ImageLookup(source, status);
  if (!from) return;
  if (!TypeIsInteger(from->type)) {
    *status = STATUS_BAD_TYPE;
  } else if (from->border < border) {
    *status = STATUS_BORDER_TOO_SMALL;
  }
  if (*status != STATUS_OK) return;

  const Image* to = from;
  if (destination != 0 && destination != source) {
    to = ImageLookup(destination, status);
    if (!to) return;
    *status = ImageSetSize(destination, from->width, from->height);
    if (*status != STATUS_OK) return;
    // A destination that labels can be scanned into has its border cleared as the source has.
    if (to->type == IMAGE_I16 && to->border >= border) *status = BorderZero(destination);
  }
  if (*status == STATUS_OK) *status = BorderZero(source);
  if (*status != STATUS_OK) return;

  ParticleRuns particles;
  ParticleRunsFind(PixelGridOf(*from), from->type, *connectivity8 != 0, &particles, status);
  if (*status != STATUS_OK) return;
  *nbParticles = particles.count;
  if (!TypeIsInteger(to->type)) {
    *status = STATUS_DESTINATION_UNSUPPORTED;
    return;
  }
  if (to->type == IMAGE_U8) {
    uint32_t* numbers = particles.numbers.Numbers();
    for (uint32_t i = 0; i < particles.numbers.count(); i++) {
      numbers[i] = std::min(numbers[i], LARGEST_LABEL_U8);
    }
  }
  LabelsWrite(particles, *to);
  if (to != from) *status = ImageCopyInfo(source, destination);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Label(ImageRef source, ImageRef dest, uint16_t connectivity8, int32_t* nbParticles) {
  zel::Status status = 0;
  int32_t count = 0;
  zel::LabelKernel(source, dest, &connectivity8, &count, &status);
  if (nbParticles) *nbParticles = count;
  return ZEL_ProcessError("ZEL_Label", status);
}
