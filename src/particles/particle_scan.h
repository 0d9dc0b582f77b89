// The particle scanner: connected sets of non-zero pixels, found and numbered.
#pragma once

#include <cstdint>

#include "core/handles.h"
#include "engine/operands.h"
#include "particles/runs.h"

namespace zel {

// A scan may hand out so many provisional labels, one where a pixel is set and none of its
// neighbours before it is: left and above, with 8-connectivity also above-left and above-right.
// Beyond that it fails with STATUS_MEMORY_FULL, since labels are kept in 16 bits.
constexpr uint32_t PROVISIONAL_LABEL_LIMIT = 65535;

// The border that an image needs for particle work.
constexpr int32_t ParticleBorder(bool connectivity8) {
  return connectivity8 ? 2 : 1;
}

// The image whose particles a call works on. STATUS_BAD_IMAGE, STATUS_BAD_TYPE and
// STATUS_BORDER_TOO_SMALL.
Status ParticleImageLookup(ImageRef reference, TypeTest takesType, bool connectivity8,
                           Image** image);

// The particles of an image as runs.
struct ParticleRuns {
  RunTable runs;
  WorkArray<uint32_t> labels;  // of each place in the run table: an index into the numbers
  DisjointSets numbers;        // from label to the particle's number
  int32_t count = 0;
};

// Joins runs that touch: those of each row to those of the row above. Each gets the number of a set
// that was added to `sets` for it or for one that it touches. Answers how many provisional labels a
// scan pixel by pixel would have handed out.
uint32_t RunsConnect(const RunTable& runs, bool connectivity8, uint32_t* labels,
                     DisjointSets* sets);

// Particles are numbered from 1 in raster order of their first pixels. STATUS_MEMORY_FULL also
// when there are too many provisional labels.
Status ParticleRunsFind(const PixelView& view, bool connectivity8, ParticleRuns* particles);

// Writes every pixel of a U8 or I16 image: the low bits of its particle's number, or 0.
void LabelsWrite(const ParticleRuns& particles, const PixelView& view);

// What a caller prepares for ParticleScan.
struct ParticleScanRequest {
  int32_t sourceType;    // IMAGE_U8 or IMAGE_I16
  int32_t labelType;     // must be IMAGE_I16
  void* source;          // pixel (0, 0)
  void* labels;          // pixel (0, 0)
  uint32_t sourcePitch;  // pixels from one row to the next
  uint32_t labelPitch;
  uint32_t width, height;  // of both images
};

// From a label in a label image to the number of its particle. Label 0 is no particle.
struct EquivalenceTable {
  uint16_t numbers[PROVISIONAL_LABEL_LIMIT + 1];
};

// Labels the particles of a U8 or I16 image in an I16 image of its size. The caller has made sure
// that both images have the ParticleBorder; both borders are 0 afterwards. *nbParticles must be 0
// on entry. On success it is the number of particles, and *table a block with an EquivalenceTable
// which the caller frees. STATUS_BAD_TYPE for other types; STATUS_MEMORY_FULL as above, with the
// label image's pixels untouched.
Status ParticleScan(const ParticleScanRequest& request, ImageRef source, ImageRef labels,
                    Handle* table, bool connectivity8, int32_t* nbParticles);

}  // namespace zel
