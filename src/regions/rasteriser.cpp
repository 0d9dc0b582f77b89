// Regions painted into masks.
#include "regions/rasteriser.h"

#include <algorithm>
#include <cstring>

#include "core/images.h"
#include "core/numbers.h"
#include "regions/descriptors.h"
#include "regions/painter.h"

namespace zel {
namespace {

struct Size {
  int64_t width, height;
};

// What a mask becomes. Shapes are clipped to the frame, which can be larger than a model.
struct MaskPlan {
  Size mask, frame;
  int32_t left, top;  // of the frame
  bool hasModel;
  bool hasContours;
};

// No image is wider than 2^31 - 1, so that this odd width stays.
int64_t Even(int64_t width) {
  return width == INT32_MAX ? width : width + (width & 1);
}

MaskPlan PlanOf(const Image& mask, ImageRef model, Handle vector) {
  Image* image = nullptr;
  Size size{0, 0};
  if (ImageLookup(model, &image) == STATUS_OK) size = {image->width, image->height};
  MaskPlan plan{};
  plan.hasModel = size.width > 0 && size.height > 0;

  KernelRect bounds{};
  plan.hasContours = RoiBounds(vector, &bounds) == STATUS_OK;
  if (plan.hasModel && plan.hasContours &&
      (size.width < bounds.right || size.height < bounds.bottom)) {
    plan.mask = size;
    plan.frame = {Even(bounds.right), bounds.bottom};
    return plan;
  }
  if (!plan.hasModel) {
    size = plan.hasContours
               ? Size{int64_t{bounds.right} - bounds.left, int64_t{bounds.bottom} - bounds.top}
               : Size{mask.width, mask.height};
    plan.left = bounds.left;
    plan.top = bounds.top;
  }
  plan.mask = {Even(size.width), size.height};
  plan.frame = plan.mask;
  return plan;
}

// External contours first, whatever their order, so that holes are cut out of all of them.
void ContoursPaint(Handle vector, uint8_t value, Painter* painter) {
  struct Pass {
    int32_t marker;
    uint8_t value;
  };
  for (const Pass& pass : {Pass{ROI_MARKER_EXTERNAL, value}, Pass{ROI_MARKER_INTERNAL, 0}}) {
    FlatContours contours(vector);
    for (FlatContour contour{}; contours.Next(&contour);) {
      if (contour.marker == pass.marker && !painter->Paint(contour, pass.value)) return;
    }
    if (contours.IsBroken()) return;
  }
}

void PixelsFill(const PixelView& view, uint8_t value) {
  for (int32_t y = 0; y < view.height; y++) {
    std::memset(view.Row<void>(y), value, static_cast<size_t>(view.width));
  }
}

}  // namespace

Status MaskFromRoi(ImageRef reference, ImageRef model, Handle vector, uint8_t value,
                   bool* clipped) {
  *clipped = false;
  Image* mask = nullptr;
  Status status = ImageLookup(reference, &mask);
  if (status != STATUS_OK) return status;
  const MaskPlan plan = PlanOf(*mask, model, vector);
  if (plan.mask.width > INT32_MAX || plan.mask.height > INT32_MAX) return STATUS_MEMORY_FULL;

  const auto storedHeight =
      static_cast<int32_t>(std::clamp<int64_t>(plan.frame.height, 0, plan.mask.height));
  const auto storedWidth =
      static_cast<int32_t>(std::clamp<int64_t>(plan.frame.width, 0, plan.mask.width));
  PolygonFill fill;
  status = fill.Prepare(LargestPolygon(vector), storedHeight, storedWidth);
  if (status == STATUS_OK) {
    status = ImageLayoutSize(mask, static_cast<int32_t>(plan.mask.width),
                             static_cast<int32_t>(plan.mask.height), true);
  }
  if (status != STATUS_OK || mask->type != IMAGE_U8) return status;

  const PixelView view = ViewOf(*mask);
  if (!plan.hasContours) {
    PixelsFill(view, value);
    return STATUS_OK;
  }
  ImageClearAll(mask);
  if (!plan.hasModel) {
    mask->offsetX = plan.left;
    mask->offsetY = plan.top;
  }
  const PixelView stored = view.Columns(0, std::min(storedWidth, view.width))
                               .Rows(0, std::min(storedHeight, view.height));
  if (stored.IsEmpty()) return STATUS_OK;
  const Painter::Frame frame{static_cast<int32_t>(plan.frame.width),
                             static_cast<int32_t>(plan.frame.height), plan.left, plan.top};
  Painter painter(stored, frame, &fill);
  ContoursPaint(vector, value, &painter);
  *clipped = painter.IsClipped();
  return STATUS_OK;
}

}  // namespace zel

int32_t ZEL_ROIToMask(ImageRef mask, ImageRef model, const RoiDescriptor* roi, uint32_t fillValue) {
  zel::ScopedVector vector;
  zel::Status status = vector.Create();
  if (status == zel::STATUS_OK) status = zel::RoiToVector(roi, vector.handle());
  bool clipped = false;
  if (status == zel::STATUS_OK) {
    status =
        zel::MaskFromRoi(mask, model, vector.handle(), static_cast<uint8_t>(fillValue), &clipped);
  }
  return ZEL_ProcessError("ZEL_ROIToMask", status);
}
