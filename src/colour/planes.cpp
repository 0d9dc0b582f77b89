// Planes out of colour images and back into them.
#include "colour/components.h"
#include "core/images.h"
#include "core/pixel_types.h"
#include "engine/bands.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

// The components that a call names; 0 for those that it doesn't.
struct PlaneReferences {
  ImageRef planes[COLOUR_PLANES];

  bool HasNone() const { return planes[0] == 0 && planes[1] == 0 && planes[2] == 0; }
  bool HasAll() const { return planes[0] != 0 && planes[1] != 0 && planes[2] != 0; }
  bool HasOnlyFirst() const { return planes[0] != 0 && planes[1] == 0 && planes[2] == 0; }
  bool AreOne(int32_t a, int32_t b) const { return planes[a] != 0 && planes[a] == planes[b]; }
};

// A pixel, with what it costs to work out hues beside an addition of bytes.
int64_t WorkOf(const PixelView& colors, int32_t mode) {
  const int64_t bytesAPixel = mode == MODE_RGB ? 8 : 64;
  return bytesAPixel * colors.width * colors.height;
}

Status LookupOfType(ImageRef reference, int32_t type, Image** image) {
  const Status status = ImageLookup(reference, image);
  if (status != STATUS_OK) return status;
  return (*image)->type == type ? STATUS_OK : STATUS_BAD_TYPE;
}

// A plane takes calibration and size of the image that it comes from. The calibration comes first:
// an image of another type has it already when it is refused.
Status SettlePlane(const Image& source, ImageRef reference, Image** plane) {
  Status status = ImageLookup(reference, plane);
  if (status == STATUS_OK) status = ImageCopyInfo(source, *plane);
  if (status != STATUS_OK) return status;
  if ((*plane)->type != IMAGE_U8) return STATUS_BAD_TYPE;
  return ImageLayoutSize(*plane, source.width, source.height, true);
}

// Planes that are not wanted have no origin.
void Split(const PixelView& colors, const PixelView (&planes)[COLOUR_PLANES], int32_t mode) {
  const ComponentSet components = ComponentsOf(mode);
  BandsRun({.units = colors.height, .bytes = WorkOf(colors, mode)}, [&](const Band& band) {
    for (int64_t y = band.begin; y < band.end; y++) {
      for (int32_t p = 0; p < COLOUR_PLANES; p++) {
        if (!planes[p].origin) continue;
        components.planes[p](colors.Row<const RGBValue>(y), planes[p].Row<uint8_t>(y),
                             colors.width);
      }
    }
  });
}

Status ExtractColorPlanes(ImageRef reference, const PlaneReferences& wanted, int32_t mode) {
  Image* image = nullptr;
  Status status = LookupOfType(reference, IMAGE_RGB, &image);
  Image* planes[COLOUR_PLANES] = {};
  for (int32_t p = 0; p < COLOUR_PLANES && status == STATUS_OK; p++) {
    if (wanted.planes[p] != 0) status = SettlePlane(*image, wanted.planes[p], &planes[p]);
  }
  if (status != STATUS_OK) return status;
  if (wanted.AreOne(0, 1) || wanted.AreOne(1, 2) || wanted.AreOne(0, 2)) return STATUS_SAME_IMAGE;
  // Kept: without a mode the first plane stays where it is the only one.
  if (!IsColourMode(mode) && wanted.HasOnlyFirst()) return STATUS_OK;
  PixelView views[COLOUR_PLANES];
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    if (planes[p]) views[p] = ViewOf(*planes[p]);
  }
  Split(ViewOf(*image), views, mode);
  return STATUS_OK;
}

// Planes that are not given have no origin. `source`: without an origin where all are.
void Merge(const PixelView& source, const PixelView (&planes)[COLOUR_PLANES],
           const PixelView& destination, int32_t mode) {
  const MergeRoutine merge = MergeOf(mode);
  if (!merge) return;
  const auto row = [](const PixelView& view, int64_t y) {
    return view.origin ? view.Row<const uint8_t>(y) : nullptr;
  };
  BandsRun({.units = destination.height, .bytes = WorkOf(destination, mode)},
           [&](const Band& band) {
             for (int64_t y = band.begin; y < band.end; y++) {
               merge({source.origin ? source.Row<const RGBValue>(y) : nullptr,
                      {row(planes[0], y), row(planes[1], y), row(planes[2], y)},
                      destination.Row<RGBValue>(y),
                      destination.width});
             }
           });
}

bool SameSize(const Image& a, const Image& b) {
  return a.width == b.width && a.height == b.height;
}

// All three planes, of one size and U8.
Status CheckWholePlanes(const PlaneReferences& given, Image* (&planes)[COLOUR_PLANES]) {
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    const Status status = ImageLookup(given.planes[p], &planes[p]);
    if (status != STATUS_OK) return status;
  }
  if (!SameSize(*planes[0], *planes[1]) || !SameSize(*planes[0], *planes[2])) {
    return STATUS_SIZE_DIFFERS;
  }
  for (const Image* plane : planes) {
    if (plane->type != IMAGE_U8) return STATUS_BAD_TYPE;
  }
  return STATUS_OK;
}

// One or two planes, U8 and of the source's size.
Status CheckSomePlanes(const Image& source, const PlaneReferences& given,
                       Image* (&planes)[COLOUR_PLANES]) {
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    if (given.planes[p] == 0) continue;
    const Status status = LookupOfType(given.planes[p], IMAGE_U8, &planes[p]);
    if (status != STATUS_OK) return status;
    if (!SameSize(source, *planes[p])) return STATUS_SIZE_DIFFERS;
  }
  return STATUS_OK;
}

Status ReplaceColorPlanes(ImageRef source, ImageRef destination, const PlaneReferences& given,
                          int32_t mode) {
  if (given.HasNone()) return STATUS_OK;
  if (source == 0 && destination == 0) return STATUS_BAD_IMAGE;
  Status status = STATUS_OK;
  if (source != 0 && destination != 0) status = ImageCopyInfo(source, destination);
  if (source == 0) source = destination;
  if (destination == 0) destination = source;

  Image* from = nullptr;  // none where all is in the planes
  Image* planes[COLOUR_PLANES] = {};
  if (status == STATUS_OK && given.HasAll()) {
    status = CheckWholePlanes(given, planes);
  } else if (status == STATUS_OK) {
    status = LookupOfType(source, IMAGE_RGB, &from);
    if (status == STATUS_OK) status = CheckSomePlanes(*from, given, planes);
  }
  Image* to = nullptr;
  if (status == STATUS_OK) status = LookupOfType(destination, IMAGE_RGB, &to);
  if (status != STATUS_OK) return status;
  const Image& like = from ? *from : *planes[0];
  status = ImageLayoutSize(to, like.width, like.height, true);
  if (status != STATUS_OK) return status;

  PixelView views[COLOUR_PLANES];
  for (int32_t p = 0; p < COLOUR_PLANES; p++) {
    if (planes[p]) views[p] = ViewOf(*planes[p]);
  }
  Merge(from ? ViewOf(*from) : PixelView{}, views, ViewOf(*to), mode);
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ExtractColorPlanes(ImageRef image, ImageRef plane1, ImageRef plane2, ImageRef plane3,
                               int32_t mode) {
  return ZEL_ProcessError("ZEL_ExtractColorPlanes",
                          zel::ExtractColorPlanes(image, {{plane1, plane2, plane3}}, mode));
}

// The name in the report has no s.
int32_t ZEL_ReplaceColorPlanes(ImageRef source, ImageRef destination, ImageRef plane1,
                               ImageRef plane2, ImageRef plane3, int32_t mode) {
  return ZEL_ProcessError(
      "ZEL_ReplaceColorPlane",
      zel::ReplaceColorPlanes(source, destination, {{plane1, plane2, plane3}}, mode));
}
