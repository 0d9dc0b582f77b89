// Equalisation of colour images: a chain of exported functions, each of which reports its own
// failure.
#include "core/images.h"
#include "orlune_ptk.h"

namespace zel {
namespace {

constexpr int32_t CLASSES = 256;

// The temporary plane of one call.
class PlaneImage {
 public:
  PlaneImage() = default;
  PlaneImage(const PlaneImage&) = delete;
  PlaneImage& operator=(const PlaneImage&) = delete;
  ~PlaneImage() {
    if (reference_ != 0) ZEL_Dispose(reference_);
  }
  bool Create() { return ZEL_Create(&reference_, IMAGE_U8, 0) == 0; }
  ImageRef reference() const { return reference_; }

 private:
  ImageRef reference_ = 0;
};

// One plane of the source equalised and put into the destination. False when a step failed.
bool EqualizePlane(ImageRef source, ImageRef destination, ImageRef plane, int32_t number,
                   int32_t mode) {
  const auto only = [&](int32_t p) { return p == number ? plane : 0; };
  uint32_t counts[CLASSES];
  HistogramReport report{};
  return ZEL_ExtractColorPlanes(source, only(1), only(2), only(3), mode) == 0 &&
         ZEL_Histogram(plane, 0, CLASSES, 0.0f, 255.0f, counts, &report) == 0 &&
         ZEL_Equalize(plane, 0, 0, counts, CLASSES, &report, 0.0f, 255.0f) == 0 &&
         ZEL_ReplaceColorPlanes(source, destination, only(1), only(2), only(3), mode) == 0;
}

// Kept: each plane is put beside the source's others, so that in another destination only the last
// one is equalised.
void ColorEqualize(ImageRef source, ImageRef destination, bool allPlanes) {
  PlaneImage plane;
  if (!plane.Create()) return;
  if (!allPlanes) {
    EqualizePlane(source, destination, plane.reference(), 3, MODE_HSL);
    return;
  }
  for (int32_t number = 1; number <= 3; number++) {
    if (!EqualizePlane(source, destination, plane.reference(), number, MODE_RGB)) return;
  }
}

}  // namespace
}  // namespace zel

int32_t ZEL_ColorEqualize(ImageRef source, ImageRef destination, int32_t allPlanes) {
  zel::ColorEqualize(source, destination, allPlanes != 0);
  return 0;
}
