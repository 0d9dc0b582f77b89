#include "harness/session/session.h"

namespace test {

Session::~Session() {
  ZEL_free(particles);
  ZEL_free(basic);
  ZEL_free(regions);
  ZEL_free(circles);
}

uint64_t Session::Digest() const {
  test::Digest digest;
  digest.Add(outputs.value());
  for (const ImageRef image :
       {u8, other, mask, i16, sgl, complex, rgb, target, target16, targetFloat}) {
    digest.AddImage(image);
  }
  return digest.value();
}

const std::vector<StepFamily>& StepFamilies() {
  static const std::vector<StepFamily> families = {
      {"core", CORE_STEPS},
      {"utilities", UTILITY_STEPS},
      {"point", POINT_STEPS},
      {"statistics", STATISTICS_STEPS},
      {"particles", PARTICLE_STEPS},
      {"filters", FILTER_STEPS},
      {"geometry", GEOMETRY_STEPS},
      {"morphology", MORPHOLOGY_STEPS},
      {"particle-filters", PARTICLE_FILTER_STEPS},
      {"shapes", SHAPE_STEPS},
      {"colour", COLOUR_STEPS},
      {"frequency", FREQUENCY_STEPS},
      {"files", FILE_STEPS},
      {"regions", REGION_STEPS},
      {"vision", VISION_STEPS},
      {"barcodes", BARCODE_STEPS},
      {"dials", DIALS_STEPS},
  };
  return families;
}

}  // namespace test
