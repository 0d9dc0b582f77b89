// The labelled image: every pixel of a particle has the particle's number.
#include <algorithm>

#include "particles/particle_scan.h"

namespace zel {
namespace {

constexpr uint32_t LARGEST_LABEL_U8 = 255;  // stands for all particles from there on

// All runs are known before the first label is written, so the source can be the destination.
Status Label(ImageRef source, ImageRef destination, bool connectivity8, int32_t* nbParticles) {
  *nbParticles = 0;
  Image* from = nullptr;
  Status status = ParticleImageLookup(source, &TypeIsInteger, connectivity8, &from);
  if (status != STATUS_OK) return status;

  Image* to = from;
  if (destination != 0 && destination != source) {
    status = ImageLookup(destination, &to);
    if (status == STATUS_OK) status = ImageLayoutSize(to, from->width, from->height, true);
    if (status != STATUS_OK) return status;
    // A destination that labels can be scanned into has its border cleared as the source has.
    if (to->type == IMAGE_I16 && to->border >= ParticleBorder(connectivity8)) {
      status = BorderZero(destination);
    }
  }
  if (status == STATUS_OK) status = BorderZero(source);
  if (status != STATUS_OK) return status;

  ParticleRuns particles;
  status = ParticleRunsFind(ViewOf(*from), connectivity8, &particles);
  if (status != STATUS_OK) return status;
  *nbParticles = particles.count;
  if (!TypeIsInteger(to->type)) return STATUS_DESTINATION_UNSUPPORTED;
  if (to->type == IMAGE_U8) {
    uint32_t* numbers = particles.numbers.Numbers();
    for (uint32_t i = 0; i < particles.numbers.count(); i++) {
      numbers[i] = std::min(numbers[i], LARGEST_LABEL_U8);
    }
  }
  LabelsWrite(particles, ViewOf(*to));
  return ImageCopyInfo(*from, to);
}

}  // namespace
}  // namespace zel

int32_t ZEL_Label(ImageRef source, ImageRef dest, uint16_t connectivity8, int32_t* nbParticles) {
  int32_t count = 0;
  return ZEL_ProcessError("ZEL_Label", zel::Label(source, dest, connectivity8 != 0,
                                                  nbParticles ? nbParticles : &count));
}
