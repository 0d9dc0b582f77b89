#include "harness/session/session.h"

#include "platform/memory_desktop.h"

namespace test {

Session::Session() {
  zel::DesktopUse(&zel::MEMORY_DESKTOP);
}

Session::~Session() {
  ZEL_free(particles);
  ZEL_free(basic);
  ZEL_free(regions);
  ZEL_free(circles);
}

uint64_t Session::Digest() const {
  uint64_t digest = 0xCBF29CE484222325u;
  const auto add = [&digest](const void* data, size_t size) {
    const auto* bytes = static_cast<const uint8_t*>(data);
    for (size_t i = 0; i < size; i++) digest = (digest ^ bytes[i]) * 0x100000001B3u;
  };
  add(outputs.data(), outputs.size());
  for (const ImageRef image :
       {u8, other, mask, i16, sgl, complex, rgb, target, target16, targetFloat}) {
    ImageInfo info{};
    if (image == 0 || ZEL_GetImageInfo(image, &info) != 0) continue;
    add(&info.width, sizeof(info.width));
    add(&info.height, sizeof(info.height));
    add(&info.type, sizeof(info.type));
    add(&info.xStep, sizeof(info.xStep));
    for (int32_t y = 0; y < info.height; y++) {
      add(static_cast<const uint8_t*>(info.firstPixel) + int64_t{y} * info.lineBytes,
          static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes));
    }
  }
  return digest;
}

const std::vector<Step>& Steps() {
  static const auto steps = [] {
    std::vector<Step> all;
    for (const auto& family :
         {CORE_STEPS, UTILITY_STEPS, POINT_STEPS, STATISTICS_STEPS, PARTICLE_STEPS, FILTER_STEPS,
          GEOMETRY_STEPS, MORPHOLOGY_STEPS, PARTICLE_FILTER_STEPS, SHAPE_STEPS, COLOUR_STEPS,
          FREQUENCY_STEPS, FILE_STEPS, REGION_STEPS, VISION_STEPS, BARCODE_STEPS, DIALS_STEPS,
          WINDOW_STEPS}) {
      all.insert(all.end(), family.begin(), family.end());
    }
    return all;
  }();
  return steps;
}

}  // namespace test
