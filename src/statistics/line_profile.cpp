// The gray profile along a line and its statistics.
#include "statistics/line_profile.h"

#include <cmath>

#include "core/images.h"
#include "engine/array_convert.h"
#include "statistics/pixel_sums.h"
#include "utilities/lines.h"

namespace zel {
namespace {

// Sums of samples in 32-bit floats, rounded at each addition: it shows on long lines and is kept.
struct ProfileSums {
  float sum;
  float squares;
  float min, max;
};

float SumOf(float sum, float sample) {
  return sum + sample;
}

uint32_t SumOf(uint32_t sum, uint8_t sample) {
  return sum + sample;  // wraps
}

template <class T, class Sum>
ProfileSums Sample(const Image& image, const KernelLine& line, float* samples, int64_t count) {
  const T* pixel = ViewOf(image).At<T>(line.startX, line.startY);
  const int64_t lineWidth = image.lineWidth;
  LineSteps steps(line);
  Sum sum = 0;
  float squares = 0.0f;
  float min = EXTREME_NONE;
  float max = -EXTREME_NONE;
  for (int64_t i = 0;;) {
    const float sample = *pixel;
    samples[i] = sample;
    sum = SumOf(sum, *pixel);
    const double value = static_cast<double>(sample);
    squares = static_cast<float>(static_cast<double>(squares) + value * value);
    if (sample < min) min = sample;
    if (sample > max) max = sample;
    if (++i == count) break;
    const LinePoint step = steps.Next();
    pixel += step.x + step.y * lineWidth;
  }
  return {static_cast<float>(sum), squares, min, max};
}

// In 32-bit floats throughout.
LineProfileReport ReportOf(const KernelLine& line, const ProfileSums& sums, int64_t count) {
  const auto number = static_cast<float>(count);
  const float mean = sums.sum / number;
  const float variance = sums.squares / number - mean * mean;
  const float deviation = variance < 0.0f ? 0.0f : std::sqrt(variance);
  return {line.startX, line.startY, line.endX,
          line.endY,   sums.min,    sums.max,
          mean,        deviation,   static_cast<int32_t>(count)};
}

}  // namespace

Status LineProfileKernel(ImageRef reference, const KernelRect* line, LineProfileResult* out) {
  Image* image = nullptr;
  Status status = ImageLookup(reference, &image);
  if (status != STATUS_OK) return status;
  KernelLine clipped{line->left, line->top, line->right, line->bottom};
  const bool visible = LineClipToSize(image->width, image->height, &clipped);
  const int64_t count = visible ? LineSteps(clipped).points() : 0;
  status = VectorResize(out->profile, sizeof(float), static_cast<uint64_t>(count));
  if (status != STATUS_OK) return status;
  out->report = {};
  if (!visible) return STATUS_OK;

  auto* samples = VectorData<float>(out->profile);
  ProfileSums sums{};
  switch (image->type) {
    case IMAGE_U8:
      sums = Sample<uint8_t, uint32_t>(*image, clipped, samples, count);
      break;
    case IMAGE_I16:
      sums = Sample<int16_t, float>(*image, clipped, samples, count);
      break;
    case IMAGE_SGL:
      sums = Sample<float, float>(*image, clipped, samples, count);
      break;
    default:
      return STATUS_BAD_TYPE;
  }
  out->report = ReportOf(clipped, sums, count);
  return STATUS_OK;
}

}  // namespace zel

int32_t ZEL_LineProfile(ImageRef image, int32_t startX, int32_t startY, int32_t endX, int32_t endY,
                        int32_t arrayType, void* profile, int32_t* nbPixels,
                        LineProfileReport* report) {
  const zel::KernelRect line{startX, startY, endX, endY};
  zel::ScopedVector samples;
  zel::Status status = samples.Create();
  zel::LineProfileResult result{samples.handle(), {}};
  if (status == zel::STATUS_OK) status = zel::LineProfileKernel(image, &line, &result);
  if (status == zel::STATUS_OK) {
    const int32_t count = result.report.nbPixels;
    if (profile) {
      zel::ArrayConvert(zel::VectorData<float>(samples.handle()), ARRAY_SGL, profile, arrayType,
                        count);
    }
    if (nbPixels) *nbPixels = count;
    if (report) *report = result.report;
  }
  return ZEL_ProcessError("ZEL_LineProfile", status);
}
