// Looking up, checking and settling the images of a call.
#include "engine/operands.h"

namespace zel {

ReplacementImage::~ReplacementImage() {
  if (reference_ == 0) return;
  if (written_) ImageSwap(replaced_, reference_);
  ImageDestroy(reference_);
}

Status ReplacementImage::Create(ImageRef replaced, const Image& like) {
  replaced_ = replaced;
  Status status = ImageCreateLike(&reference_, like);
  if (status == STATUS_OK) status = ImageLookup(reference_, &image_);
  return status;
}

Status ScratchImage::Create(int16_t type, int32_t width, int32_t height, int32_t border) {
  Image like{};
  like.type = type;
  like.width = width;
  like.height = height;
  like.border = border;
  const Status status = ImageCreateLike(&reference_, like);
  return status != STATUS_OK ? status : ImageLookup(reference_, &image_);
}

Status MaskPlace(const Image& image, ImageRef mask, PlacedMask* placed) {
  Image* record = nullptr;
  const Status status = ImageLookup(mask, &record);
  if (status != STATUS_OK) return status;
  if (record->type != IMAGE_U8) return STATUS_BAD_TYPE;
  *placed = {};
  placed->overlap = MaskOverlap(image, *record);
  if (placed->overlap.IsEmpty()) return STATUS_OK;
  const PixelView view = ViewOf(*record);
  placed->view = {view.At<uint8_t>(placed->overlap.maskX, placed->overlap.maskY), view.pitch};
  return STATUS_OK;
}

Status RegionOf(ImageRef image, ImageRef mask, Region* region) {
  Image* record = nullptr;
  const Status status = ImageLookup(image, &record);
  return status != STATUS_OK ? status : RegionOf(*record, mask == image ? 0 : mask, region);
}

Status RegionOf(const Image& image, ImageRef mask, Region* region) {
  *region = {ViewOf(image), {}};
  if (mask == 0) return STATUS_OK;
  PlacedMask placed{};
  const Status status = MaskPlace(image, mask, &placed);
  if (status == STATUS_OK) *region = {region->view.Part(placed.overlap), placed.view};
  return status;
}

void Operands::Source(ImageRef reference, TypeTest takesType, Status refusal) {
  sourceReference_ = reference;
  status_ = ImageLookup(reference, &source_);
  if (status_ == STATUS_OK && !takesType(source_->type)) status_ = refusal;
}

void Operands::Border(BorderFill fill, int32_t width) {
  BorderAtLeast(width);
  BorderFilled(fill);
}

void Operands::BorderAtLeast(int32_t width) {
  if (!HasFailed() && source_->border < width) status_ = STATUS_BORDER_TOO_SMALL;
}

void Operands::BorderFilled(BorderFill fill) {
  if (HasFailed() || source_->border == 0) return;
  switch (fill) {
    case BORDER_MIRROR:
      status_ = BorderMirror(sourceReference_);
      break;
    case BORDER_REPLICATE:
      status_ = BorderReplicate(sourceReference_);
      break;
    default:
      status_ = BorderZero(sourceReference_);
  }
}

void Operands::Destination(ImageRef reference) {
  if (HasFailed()) return;
  Destination(reference, source_->type, STATUS_DESTINATION_TYPE_DIFFERS);
}

void Operands::Destination(ImageRef reference, int32_t type, Status refusal) {
  DestinationOfAnyType(reference);
  if (!HasFailed() && destination_->type != type) status_ = refusal;
}

void Operands::DestinationOfAnyType(ImageRef reference) {
  if (HasFailed()) return;
  destinationReference_ = reference == 0 ? sourceReference_ : reference;
  status_ = ImageLookup(destinationReference_, &destination_);
}

void Operands::Mask(ImageRef reference) {
  if (HasFailed() || reference == 0 || reference == sourceReference_) return;
  maskReference_ = reference;
  hasMask_ = true;
  status_ = MaskPlace(*source_, reference, &mask_);
}

void Operands::WriteBeside(InPlace inPlace) {
  if (HasFailed()) return;
  const bool isSource = destinationReference_ == sourceReference_;
  const bool isMask = hasMask_ && destinationReference_ == maskReference_;
  if (!isMask && !(isSource && inPlace == CANNOT_RUN_IN_PLACE)) return;
  status_ = replacement_.Create(destinationReference_, *destination_);
  if (status_ == STATUS_OK) destination_ = replacement_.image();
}

void Operands::WriteSized(int64_t width, int64_t height) {
  if (HasFailed()) return;
  if (width < 1 || height < 1) width = height = 0;
  if (width > INT32_MAX || height > INT32_MAX) {
    status_ = STATUS_MEMORY_FULL;
    return;
  }
  Image sized = *source_;
  sized.width = static_cast<int32_t>(width);
  sized.height = static_cast<int32_t>(height);
  if (destination_ == source_) {
    status_ = replacement_.Create(destinationReference_, sized);
    if (!HasFailed()) destination_ = replacement_.image();
  } else {
    status_ = ImageLayoutSize(destination_, sized.width, sized.height, true);
  }
  TakeInfo();
}

void Operands::TakeSize() {
  if (HasFailed() || destination_ == source_) return;
  status_ = ImageLayoutSize(destination_, source_->width, source_->height, true);
}

void Operands::TakeInfo() {
  if (!HasFailed()) status_ = ImageCopyInfo(*source_, destination_);
}

void Operands::TakePixels() {
  if (HasFailed()) return;
  status_ = ImageCopyPixels(*source_, destination_);
  if (!HasFailed()) Written();
}

PixelView Operands::Selected(const Image& image) const {
  if (HasFailed()) return {};
  const PixelView view = ViewOf(image);
  return hasMask_ ? view.Part(mask_.overlap) : view;
}

PixelView Operands::From() const {
  return HasFailed() ? PixelView{} : Selected(*source_);
}

PixelView Operands::To() const {
  return HasFailed() ? PixelView{} : Selected(*destination_);
}

}  // namespace zel
