// The turn of a part between two images, from the pixels on a circle.
#include <algorithm>
#include <cmath>

#include "core/images.h"
#include "core/numbers.h"
#include "core/pixel_types.h"
#include "core/status.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr double FULL_TURN = 6.28318548;
constexpr int32_t MOST_SAMPLES = 361;
constexpr int32_t SHIFTS_AT_ONCE = 8;

struct Circle {
  PointFloat reference, test;  // centres
  int32_t radius;
};

bool Fits(const Image& image, PointFloat centre, int32_t radius) {
  const auto x = static_cast<double>(centre.x);
  const auto y = static_cast<double>(centre.y);
  return image.width > 0 && image.height > 0 && x + radius <= image.width && x - radius >= 0 &&
         y + radius <= image.height && y - radius >= 0;
}

float PixelAt(const PixelView& view, float x, float y) {
  const int32_t column = Clamped(CutLow<int32_t>(static_cast<double>(x)), 0, view.width - 1);
  const int32_t row = Clamped(CutLow<int32_t>(static_cast<double>(y)), 0, view.height - 1);
  switch (view.type) {
    case IMAGE_U8:
      return *view.At<uint8_t>(column, row);
    case IMAGE_I16:
      return *view.At<int16_t>(column, row);
    default:
      return *view.At<float>(column, row);
  }
}

void SmallestSubtract(float* samples, int32_t count) {
  float smallest = samples[0];
  for (int32_t i = 1; i < count; i++) {
    if (samples[i] < smallest) smallest = samples[i];
  }
  for (int32_t i = 0; i < count; i++) samples[i] -= smallest;
}

// The shift of the reference at which both agree best. Each sum runs over the samples in their
// order; several shifts are summed side by side.
int32_t BestShift(const float* reference, const float* test, int32_t count) {
  double shifted[2 * MOST_SAMPLES + SHIFTS_AT_ONCE] = {};
  double fixed[MOST_SAMPLES];
  for (int32_t i = 0; i < 2 * count; i++) shifted[i] = static_cast<double>(reference[i % count]);
  for (int32_t i = 0; i < count; i++) fixed[i] = static_cast<double>(test[i]);

  int32_t best = 0;
  double largest = 0;
  for (int32_t first = 0; first < count; first += SHIFTS_AT_ONCE) {
    double sums[SHIFTS_AT_ONCE] = {};
    for (int32_t j = 0; j < count; j++) {
      for (int32_t k = 0; k < SHIFTS_AT_ONCE; k++) sums[k] += shifted[first + j + k] * fixed[j];
    }
    for (int32_t k = 0; k < std::min(SHIFTS_AT_ONCE, count - first); k++) {
      if (first + k != 0 && !(sums[k] > largest)) continue;
      best = first + k;
      largest = sums[k];
    }
  }
  return best;
}

struct Turn {
  int32_t shift, samples;
};

Status DetectRotation(ImageRef referenceImage, ImageRef testImage, const Circle& circle,
                      int32_t precision, Turn* turn) {
  Image* reference = nullptr;
  Image* test = nullptr;
  Status status = ImageLookup(referenceImage, &reference);
  if (status == STATUS_OK) status = ImageLookup(testImage, &test);
  if (status != STATUS_OK) return status;
  if (!TypeIsScalar(reference->type) || !TypeIsScalar(test->type)) return STATUS_BAD_TYPE;
  if (!Fits(*reference, circle.reference, circle.radius) ||
      !Fits(*test, circle.test, circle.radius)) {
    return STATUS_IMAGE_TOO_SMALL;
  }
  if (precision < 1) return STATUS_INVALID_PARAMETER;

  const PixelView referenceView = ViewOf(*reference);
  const PixelView testView = ViewOf(*test);
  const float wayX = circle.test.x - circle.reference.x;
  const float wayY = circle.test.y - circle.reference.y;
  const int32_t count = 360 / precision + 1;
  const double step = FULL_TURN / count;
  float ofReference[MOST_SAMPLES] = {};
  float ofTest[MOST_SAMPLES] = {};
  for (int32_t i = 0; i < count; i++) {
    const auto x = static_cast<float>(std::cos(i * step) * circle.radius +
                                      static_cast<double>(circle.reference.x));
    const auto y = static_cast<float>(std::sin(i * step) * circle.radius +
                                      static_cast<double>(circle.reference.y));
    ofReference[i] = PixelAt(referenceView, x, y);
    ofTest[i] = PixelAt(testView, x + wayX, y + wayY);
  }
  SmallestSubtract(ofReference, count);
  SmallestSubtract(ofTest, count);
  *turn = {BestShift(ofReference, ofTest, count), count};
  return STATUS_OK;
}

}  // namespace
}  // namespace zel

int32_t ZEL_DetectRotation(ImageRef reference, ImageRef test, PointFloat testCentre,
                           PointFloat referenceCentre, int32_t radius, int32_t precision,
                           double* angleRadians, double* angleDegrees) {
  zel::Turn turn{};
  const zel::Status status =
      !angleRadians || !angleDegrees
          ? zel::STATUS_NULL_POINTER
          : zel::DetectRotation(reference, test, {referenceCentre, testCentre, radius}, precision,
                                &turn);
  if (status == zel::STATUS_OK) {
    *angleDegrees = 360.0 * turn.shift / turn.samples;
    *angleRadians = static_cast<double>(turn.shift) / turn.samples * zel::FULL_TURN;
  }
  return ZEL_ProcessError("ZEL_DetectRotation", status);
}
