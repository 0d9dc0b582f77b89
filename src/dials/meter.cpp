// Meters read: the line from the base to the arc that is darkest, or lightest.
#include <algorithm>

#include "core/images.h"
#include "core/numbers.h"
#include "dials/meter_angle.h"
#include "platform/message_box.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// The mean of the pixels of a clipped line, summed and rounded as in a line profile.
template <class T, class Sum>
float MeanOf(const PixelView& view, const KernelLine& line) {
  LineSteps steps(line);
  const T* pixel = view.At<T>(line.startX, line.startY);
  const int64_t pitch = view.pitch / static_cast<int64_t>(sizeof(T));
  Sum sum = *pixel;
  for (int64_t i = 1; i < steps.points(); i++) {
    const LinePoint step = steps.Next();
    pixel += step.x + step.y * pitch;
    sum += *pixel;
  }
  return static_cast<float>(sum) / static_cast<float>(steps.points());
}

using LineMean = float (*)(const PixelView& view, const KernelLine& line);

LineMean LineMeanFor(int32_t type) {
  switch (type) {
    case IMAGE_U8:
      return &MeanOf<uint8_t, uint32_t>;
    case IMAGE_I16:
      return &MeanOf<int16_t, float>;
    case IMAGE_SGL:
      return &MeanOf<float, float>;
    default:
      return nullptr;
  }
}

KernelLine LineBetween(PointFloat start, PointFloat end) {
  const auto cut = [](float coordinate) { return CutSaturated(static_cast<double>(coordinate)); };
  return {cut(start.x), cut(start.y), cut(end.x), cut(end.y)};
}

// The point whose line to the base is the darkest, or the lightest, first.
Status FindNeedle(const Image& image, PointFloat base, const PointFloat* arc, int32_t count,
                  bool isLight, int32_t* needle) {
  const PixelView view = ViewOf(image);
  const LineMean meanOf = LineMeanFor(image.type);
  float best = 1e38f;
  *needle = 0;
  for (int32_t i = 0; i < count; i++) {
    KernelLine line = LineBetween(arc[i], base);
    float mean = 0.0f;
    if (LineClipToSize(image.width, image.height, &line)) {
      if (!meanOf) return STATUS_BAD_TYPE;
      mean = meanOf(view, line);
    }
    const float rank = isLight ? -mean : mean;
    if (rank < best) {
      best = rank;
      *needle = i;
    }
  }
  return STATUS_OK;
}

Status ReadMeter(ImageRef reference, PointFloat base, const PointFloat* arc, int32_t count,
                 bool isLight, float* percent, PointFloat* needleTip) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  int32_t needle = 0;
  status = FindNeedle(*image, base, arc, count, isLight, &needle);
  if (status != STATUS_OK) return status;

  float angle = 0.0f;
  float full = 0.0f;
  status = AngleAround(arc[0], arc[needle], base, READING_TURN, &angle);
  if (status == STATUS_OK) status = AngleAround(arc[0], arc[count - 1], base, READING_TURN, &full);
  if (status != STATUS_OK) return status;
  if (full == 0.0f) return STATUS_DIVIDED_BY_ZERO;
  *percent = static_cast<float>(static_cast<double>(angle) / static_cast<double>(full) * 100.0);
  *needleTip = arc[needle];
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_ReadMeter(ImageRef image, float baseX, float baseY, const PointFloat* arc,
                      int32_t count, int32_t lightNeedle, float* percent, PointFloat* needleTip) {
  zel::Status status = zel::STATUS_OK;
  if (image == 0) {
    status = zel::STATUS_IMAGE_MISSING;
  } else if (count < 2) {
    status = zel::STATUS_INVALID_PARAMETER;
  } else if (!arc) {
    zel::MessageBoxInUse().show("ZEL_ReadMeter", "Arc Points not provided");
    status = zel::STATUS_NO_OUTPUT;
  } else if (!percent || !needleTip) {
    status = zel::STATUS_NO_OUTPUT;
  } else {
    status =
        zel::ReadMeter(image, {baseX, baseY}, arc, count, lightNeedle != 0, percent, needleTip);
  }
  return ZEL_ProcessError("ZEL_ReadMeter", status);
}
