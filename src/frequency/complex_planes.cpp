// Planes out of complex images and back into them.
#include "frequency/complex_planes.h"

#include <cstring>

#include "core/numbers.h"
#include "frequency/complex_planes_rows.h"
#include "frequency/spectra.h"
#include "orlune_ptk.h"

namespace zel {

void PlaneExtract(const PixelView& from, int32_t plane, const PixelView& to) {
  const int32_t limited = Clamped(plane, COMPLEX_PLANE_REAL, COMPLEX_PLANE_PHASE);
  PointWalk({.first = from, .second = {}, .result = to, .mask = {}},
            complexPlaneRows().extract[limited][to.type], NoRule{});
}

void PlaneReplace(const PixelView& from, int32_t plane, const PixelView& to) {
  PointWalk({.first = from, .second = to, .result = to, .mask = {}},
            complexPlaneRows().replace[plane == 0 ? 0 : 1][from.type], NoRule{});
}

Status SizeForPlane(Image* image, int32_t width, int32_t height) {
  if (image->width == width && image->height == height) return STATUS_OK;
  const Status status = ImageLayoutSize(image, width, height, true);
  if (status != STATUS_OK) return status;
  const PixelView pixels = ViewOf(*image);
  for (int64_t y = 0; y < pixels.height; y++) {
    std::memset(pixels.Row<void>(y), 0, static_cast<size_t>(pixels.RowBytes()));
  }
  return STATUS_OK;
}

namespace {

Status ExtractComplexPlane(ImageRef source, ImageRef destination, int32_t plane) {
  Image* from = nullptr;
  Status status = LookupOfTypes(source, &TypeIsComplex, STATUS_COMPLEX_EXPECTED, &from);
  Image* to = nullptr;
  if (status == STATUS_OK) {
    status = SettleDestination(from, destination, &TypeIsScalarOrComplex, &to);
  }
  if (status == STATUS_OK) PlaneExtract(ViewOf(*from), plane, ViewOf(*to));
  return status;
}

Status ReplaceComplexPlane(ImageRef source, ImageRef destination, int32_t plane) {
  Image* from = nullptr;
  Status status = ImageLookup(source, &from);
  if (status != STATUS_OK) return status;
  Image* to = nullptr;
  status = LookupOfTypes(destination == 0 ? source : destination, &TypeIsComplex,
                         STATUS_COMPLEX_EXPECTED, &to);
  if (status != STATUS_OK) return status;
  if (!TypeIsScalarOrComplex(from->type)) return STATUS_DESTINATION_TYPE_DIFFERS;
  status = ImageCopyInfo(*from, to);
  if (status == STATUS_OK) status = SizeForPlane(to, from->width, from->height);
  if (status == STATUS_OK) PlaneReplace(ViewOf(*from), plane, ViewOf(*to));
  return status;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ExtractComplexPlane(ImageRef source, ImageRef destination, int32_t plane) {
  return ZEL_ProcessError("ZEL_ExtractComplexPlane",
                          zel::ExtractComplexPlane(source, destination, plane));
}

int32_t ZEL_ReplaceComplexPlane(ImageRef source, ImageRef destination, int32_t plane) {
  return ZEL_ProcessError("ZEL_ReplaceComplexPlane",
                          zel::ReplaceComplexPlane(source, destination, plane));
}
