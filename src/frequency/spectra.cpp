// Looking up, checking and settling the images of operations on spectra.
#include "frequency/spectra.h"

namespace zel {

Status LookupOfTypes(ImageRef reference, TypeTest takesType, Status refusal, Image** image) {
  const Status status = ImageLookup(reference, image);
  if (status != STATUS_OK) return status;
  return takesType((*image)->type) ? STATUS_OK : refusal;
}

Status SettleDestination(Image* source, ImageRef reference, TypeTest takesType, Image** to) {
  *to = source;
  Status status = reference == 0 ? STATUS_OK : ImageLookup(reference, to);
  if (status != STATUS_OK || *to == source) return status;
  status = ImageCopyInfo(*source, *to);
  if (status == STATUS_OK) status = ImageLayoutSize(*to, source->width, source->height, true);
  if (status != STATUS_OK || takesType((*to)->type)) return status;
  ImageLayoutSize(*to, 0, 0, true);
  return STATUS_DESTINATION_TYPE_DIFFERS;
}

Status SettleDestination(Image* source, ImageRef reference, Image** to) {
  const TypeTest isOfSource = source->type == IMAGE_SGL
                                  ? TypeTest{[](int32_t type) { return type == IMAGE_SGL; }}
                                  : TypeTest{&TypeIsComplex};
  return SettleDestination(source, reference, isOfSource, to);
}

}  // namespace zel
