// The steps that kernels share.
#include "core/kernels.h"

namespace zel {

ImageRef DestinationOfSameType(ImageRef source, ImageRef destination, Status* status) {
  if (destination == 0 || destination == source) return source;
  const Image* from = ImageLookup(source, status);
  const Image* to = from ? ImageLookup(destination, status) : nullptr;
  if (to && to->type != from->type) *status = STATUS_DESTINATION_TYPE_DIFFERS;
  return destination;
}

void DestinationLikeSource(ImageRef source, ImageRef destination, Status* status) {
  if (destination == source) return;
  *status = ImageCopyInfo(source, destination);
  if (*status != STATUS_OK) return;
  const Image* from = ImageLookup(source, status);
  if (from) *status = ImageSetSize(destination, from->width, from->height);
}

ReplacementImage::~ReplacementImage() {
  if (reference_ == 0) return;
  Status status = written_ ? ImageSwap(replaced_, reference_) : STATUS_OK;
  const Status destroyed = ImageDestroy(reference_);
  if (status == STATUS_OK) status = destroyed;
  if (*status_ == STATUS_OK) *status_ = status;
}

bool ReplacementImage::Create(ImageRef replaced, const Image& like) {
  replaced_ = replaced;
  *status_ = ImageCreateLike(&reference_, like);
  return *status_ == STATUS_OK;
}

Status ScratchImage::Create(int16_t type, int32_t width, int32_t height, int32_t border) {
  Image like{};
  like.xStep = 1.0f;
  like.yStep = 1.0f;
  like.type = type;
  like.width = width;
  like.height = height;
  like.border = border;
  return ImageCreateLike(&reference_, like);
}

void MaskPlace(ImageRef image, ImageRef mask, PlacedMask* placed, Status* status) {
  const Image* record = ImageLookup(mask, status);
  if (!record) return;
  if (record->type != IMAGE_U8) {
    *status = STATUS_BAD_TYPE;
    return;
  }
  *status = MaskOverlap(image, mask, &placed->overlap);
  if (*status != STATUS_OK) return;
  const PixelGrid grid = PixelGridOf(*record);
  placed->pixels = nullptr;
  placed->pitch = grid.pitch;
  if (!placed->IsEmpty()) {
    placed->pixels = grid.At<uint8_t>(placed->overlap.maskX, placed->overlap.maskY);
  }
}

}  // namespace zel
