// One scripted session that calls the exports with arguments that succeed. What stands here needs
// the exports alone, and gives the same results on every machine.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "harness/digest.h"
#include "orlune_ptk.h"

namespace test {

struct Session {
  static constexpr int32_t WIDTH = 37;
  static constexpr int32_t HEIGHT = 23;

  ImageRef u8 = 0;
  ImageRef other = 0;  // U8, of the same size
  ImageRef mask = 0;
  ImageRef i16 = 0;
  ImageRef sgl = 0;
  ImageRef complex = 0;
  ImageRef rgb = 0;
  ImageRef target = 0;  // U8, a destination
  ImageRef target16 = 0;
  ImageRef targetFloat = 0;
  ParticleReport* particles = nullptr;
  int32_t particleCount = 0;
  BasicParticleReport* basic = nullptr;
  QuantifyReport* regions = nullptr;
  CircleReport* circles = nullptr;
  // What the step that ran last gave out besides images.
  test::Digest outputs;

  Session() = default;
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  template <class T>
  void Out(const T& value) {
    outputs.Add(value);
  }
  template <class T, size_t count>
  void Out(const std::array<T, count>& values) {
    Out(values.data(), count);
  }
  template <class T>
  void Out(const T* values, size_t count) {
    for (size_t i = 0; i < count; i++) Out(values[i]);
  }
  // A number of all pixels, sizes, calibrations and outputs.
  uint64_t Digest() const;
};

struct Step {
  const char* name;                  // the export that it is about
  int32_t (*run)(Session& session);  // its result; may be run again after a failure
};

// The steps of each family, in the order in which they run.
extern const std::span<const Step> CORE_STEPS;
extern const std::span<const Step> UTILITY_STEPS;
extern const std::span<const Step> POINT_STEPS;
extern const std::span<const Step> STATISTICS_STEPS;
extern const std::span<const Step> PARTICLE_STEPS;
extern const std::span<const Step> FILTER_STEPS;
extern const std::span<const Step> GEOMETRY_STEPS;
extern const std::span<const Step> MORPHOLOGY_STEPS;
extern const std::span<const Step> PARTICLE_FILTER_STEPS;
extern const std::span<const Step> SHAPE_STEPS;
extern const std::span<const Step> COLOUR_STEPS;
extern const std::span<const Step> FREQUENCY_STEPS;
extern const std::span<const Step> FILE_STEPS;
extern const std::span<const Step> REGION_STEPS;
extern const std::span<const Step> VISION_STEPS;
extern const std::span<const Step> BARCODE_STEPS;
extern const std::span<const Step> DIALS_STEPS;

// All of them, by name.
struct StepFamily {
  std::string name;
  std::span<const Step> steps;
};
const std::vector<StepFamily>& StepFamilies();

}  // namespace test
