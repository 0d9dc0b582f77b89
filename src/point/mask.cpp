// Images cleared where a mask is 0 or does not reach.
#include <cstring>

#include "core/kernels.h"
#include "point/logic_rows.h"
#include "point/operands.h"

namespace zel {
namespace {

// Clears the pixel block but for a rectangle of the image.
void ClearOutside(const Image& image, const OverlapRect& kept) {
  const PixelGrid grid = PixelGridOf(image);
  int32_t pixelBytes = 1;
  PixelSize(image.type, &pixelBytes);
  uint8_t* from = VectorData<uint8_t>(image.pixels);
  for (int64_t y = kept.imageY; y < int64_t{kept.imageY} + kept.height; y++) {
    uint8_t* row = grid.Row<uint8_t>(y) + int64_t{kept.imageX} * pixelBytes;
    std::memset(from, 0, static_cast<size_t>(row - from));
    from = row + int64_t{kept.width} * pixelBytes;
  }
  const uint8_t* end = VectorData<uint8_t>(image.pixels) + HandleByteSize(image.pixels);
  std::memset(from, 0, static_cast<size_t>(end - from));
}

struct MaskImages {
  ImageRef source, mask, destination;
};

// The result is another image than source and mask here.
void MaskInto(const MaskImages& images, const OverlapRect& overlap, Status* status) {
  const Image* from = ImageLookup(images.source, status);
  const Image* over = from ? ImageLookup(images.mask, status) : nullptr;
  const Image* to = over ? ImageLookup(images.destination, status) : nullptr;
  if (!to) return;
  *status = ImageSetSize(images.destination, from->width, from->height);
  if (*status != STATUS_OK) return;
  *status = ImageCopyInfo(images.source, images.destination);
  if (*status != STATUS_OK) return;
  ClearOutside(*to, overlap);

  int32_t pixelBytes = 1;
  PixelSize(from->type, &pixelBytes);
  const int64_t offset = int64_t{overlap.imageX} * pixelBytes;
  RowOperation operation{};
  operation.type1 = from->type;
  operation.type2 = over->type;
  operation.source1 = PixelGridOf(*from).Row<uint8_t>(overlap.imageY) + offset;
  operation.source2 = PixelGridOf(*over).At<uint8_t>(overlap.maskX, overlap.maskY);
  operation.destination = PixelGridOf(*to).Row<uint8_t>(overlap.imageY) + offset;
  operation.stride1 = from->lineWidth;
  operation.stride2 = over->lineWidth;
  operation.strideDestination = to->lineWidth;
  operation.width = overlap.width;
  operation.height = overlap.height;
  MaskRows(operation, status);
}

// A result in place of the source or of the mask is made in a temporary image, since pixels that
// the mask does not cover have to be cleared.
void MaskKernel(ImageRef source, ImageRef mask, ImageRef destination, Status* status) {
  const Image* from = ImageLookup(source, status);
  if (!from) return;
  if (!TypeHasPixels(from->type)) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  const ImageRef target = DestinationOfSameType(source, destination, status);
  if (*status != STATUS_OK) return;
  const bool hasMask = mask != 0 && mask != source;
  PlacedMask placed{};
  if (hasMask) {
    MaskPlace(source, mask, &placed, status);
    if (*status != STATUS_OK || placed.IsEmpty()) return;
  }

  ReplacementImage replacement(status);
  ImageRef result = target;
  if (target == source || (hasMask && target == mask)) {
    const Image* like = ImageLookup(target, status);
    if (!like || !replacement.Create(target, *like)) return;
    result = replacement.reference();
  }
  if (hasMask) {
    MaskInto({source, mask, result}, placed.overlap, status);
  } else {
    *status = ImageCopyPixels(source, result);
  }
  if (*status == STATUS_OK) replacement.Written();
}

}  // namespace

void MaskRows(const RowOperation& operation, Status* status) {
  PixelWidth pixelWidth = PIXEL_1;
  switch (operation.type1) {
    case IMAGE_U8:
      break;
    case IMAGE_I16:
      pixelWidth = PIXEL_2;
      break;
    case IMAGE_SGL:
    case IMAGE_RGB:
      pixelWidth = PIXEL_4;
      break;
    case IMAGE_COMPLEX:
      pixelWidth = PIXEL_8;
      break;
    default:
      *status = STATUS_BAD_OPERAND_TYPE;
      return;
  }
  if (operation.type2 != IMAGE_U8) {
    *status = STATUS_BAD_OPERAND_TYPE;
    return;
  }
  Plane plane{};
  PlaneOf(operation, &plane);
  PlaneRun(logicRows().mask[pixelWidth], &plane);
}

}  // namespace zel

int32_t ZEL_Mask(ImageRef source, ImageRef mask, ImageRef destination) {
  zel::Status status = zel::STATUS_OK;
  zel::MaskKernel(source, mask, destination, &status);
  return ZEL_ProcessError("ZEL_Mask", status);
}
