// Regions: the pixels of an image that a mask placed on it leaves to the statistics.
#include "statistics/histogram.h"
#include "core/kernels.h"

namespace zel {

void PixelRegionOf(ImageRef image, ImageRef mask, PixelRegion* region, Status* status) {
  const Image* record = ImageLookup(image, status);
  if (!record) return;
  PlacedMask placed{};
  const bool masked = mask != 0 && mask != image;
  if (masked) {
    MaskPlace(image, mask, &placed, status);
    if (*status != STATUS_OK) return;
  }

  *region = {};
  region->type = record->type;
  region->width = masked ? placed.overlap.width : record->width;
  region->height = masked ? placed.overlap.height : record->height;
  int32_t pixelBytes = 0;
  if (PixelSize(record->type, &pixelBytes) != STATUS_OK) return;  // nothing that could be walked
  if (region->width < 1 || region->height < 1) return;

  const PixelGrid grid = PixelGridOf(*record);
  region->pixels = grid.origin + placed.overlap.imageY * grid.pitch +
                   int64_t{placed.overlap.imageX} * pixelBytes;
  region->pitch = grid.pitch;
  region->mask = placed.pixels;
  region->maskPitch = placed.pitch;
}

}  // namespace zel
