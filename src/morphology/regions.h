// Regions: sets of touching runs, some of them marked. What keeps, removes or fills whole particles
// asks which these are.
#pragma once

#include <cstdint>

#include "core/status.h"
#include "particles/particle_scan.h"

namespace zel {

class Regions {
 public:
  // All regions of set or of clear pixels of a U8 image, none of them marked. STATUS_MEMORY_FULL.
  Status Find(const PixelView& view, RunsOf pixels, bool connectivity8);

  const RunTable& runs() const { return runs_; }

  // Of the run at a place.
  void Mark(uint32_t place) {
    const uint32_t set = sets_.Find(labels_[place]);
    if (set != MARKED) sets_.Join(set, MARKED);
  }
  bool IsMarked(uint32_t place) { return sets_.Find(labels_[place]) == MARKED; }

  // Those that touch the image's edge.
  void MarkEdge();

 private:
  // The least number, so that it stands for each set that joins it.
  static constexpr uint32_t MARKED = 0;

  RunTable runs_;
  WorkArray<uint32_t> labels_;
  DisjointSets sets_;
  int32_t width_ = 0;
};

// Writes a value over the runs of all regions that are marked, or of all that are not.
void RegionsFill(Regions* regions, bool marked, uint8_t value, const PixelView& view);

// The pixels of one image in another of its type and size, which may be the same.
void PixelsCopy(const PixelView& from, const PixelView& to);
// Sets all pixels to 0.
void PixelsClear(const PixelView& view);

}  // namespace zel
