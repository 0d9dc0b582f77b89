// Labelling and measurement of particles.
#include <array>
#include <vector>

#include "harness/session/session.h"

namespace test {
namespace {

int32_t Coefficients(Session& s) {
  std::array<uint32_t, 50> measures{};
  for (uint32_t i = 0; i < 50; i++) measures[i] = i;
  std::vector<float> values(static_cast<size_t>(s.particleCount) * 50);
  const int32_t result =
      ZEL_ParticleCoeffs(s.u8, measures.data(), 50, s.particles, s.particleCount, values.data());
  s.Out(values.data(), values.size());
  return result;
}

int32_t Discriminate(Session& s) {
  std::vector<ParticleReport> reports(s.particles, s.particles + s.particleCount);
  const ParticleCriterion criterion{MEASURE_AREA_PIXELS, 10, 1000};
  int32_t kept = 0;
  const int32_t result =
      ZEL_ParticleDiscrim(s.u8, &criterion, 1, reports.data(), s.particleCount, &kept);
  s.Out(reports.data(), reports.size());
  s.Out(kept);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_Label",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_Label(s.u8, s.target, 1, &count);
       s.Out(count);
       return result;
     }},
    {"ZEL_Label",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_Label(s.u8, s.target16, 0, &count);
       s.Out(count);
       return result;
     }},
    {"ZEL_BasicParticle",
     [](Session& s) {
       int32_t count = 0;
       const int32_t result = ZEL_BasicParticle(s.u8, 1, &s.basic, &count);
       if (result == 0) s.Out(s.basic, static_cast<size_t>(count));
       return result;
     }},
    {"ZEL_Particle",
     [](Session& s) {
       const int32_t result = ZEL_Particle(s.u8, 1, &s.particles, &s.particleCount);
       if (result == 0) s.Out(s.particles, static_cast<size_t>(s.particleCount));
       return result;
     }},
    {"ZEL_ParticleCoeffs", &Coefficients},
    {"ZEL_ParticleDiscrim", &Discriminate},
};

}  // namespace

constinit const std::span<const Step> PARTICLE_STEPS{ROWS};

}  // namespace test
