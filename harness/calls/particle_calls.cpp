// Labelling and measurement of particles.
#include "harness/calls/calls.h"
#include "harness/calls/draws.h"

namespace test {
namespace {

using namespace draw;

BasicParticleReport** BasicReports(Playground& play) {
  return play.BasicReports();
}
ParticleReport** Reports(Playground& play) {
  return play.ParticleReports();
}

int32_t ParticleCoeffs(Playground& play) {
  const struct {
    ImageRef image;
    uint32_t measures;
    int32_t reports;
  } a{Source(play), play.input().Below(8), Below<6>(play) - 1};
  const struct {
    ParticleReport* reports;
    uint32_t* measures;
  } b{play.ArrayOf<ParticleReport>(Held(a.reports)), play.OutputOf<uint32_t>(a.measures)};
  for (uint32_t i = 0; b.measures && i < a.measures; i++) b.measures[i] = play.input().Below(52);
  play.model().Gives(b.measures);
  auto* coefficients = play.OutputOf<float>(Held(a.reports) * a.measures);
  return ZEL_ParticleCoeffs(a.image, b.measures, a.measures, b.reports, a.reports, coefficients);
}

int32_t ParticleDiscrim(Playground& play) {
  const struct {
    ImageRef image;
    uint32_t criteria;
    int32_t reports;
  } a{Source(play), play.input().Below(5), Below<6>(play) - 1};
  const uint32_t used = std::max(a.criteria, 1u);  // of no criteria the first one
  const struct {
    ParticleReport* reports;
    ParticleCriterion* criteria;
  } b{play.ArrayOf<ParticleReport>(Held(a.reports)), play.OutputOf<ParticleCriterion>(used)};
  for (uint32_t i = 0; b.criteria && i < used; i++) {
    b.criteria[i] = {play.input().Byte(), Float(play), Float(play)};
  }
  play.model().Gives(b.criteria);
  play.model().Lends(b.reports);
  auto* kept = Output<int32_t>(play);
  return ZEL_ParticleDiscrim(a.image, b.criteria, a.criteria, b.reports, a.reports, kept);
}

constexpr Leftovers OF_COUNTS[] = {{ANY_FAILURE, OUTPUTS}};
constexpr Leftovers OF_LABEL[] = {{ANY_FAILURE, OUTPUTS}, {-101, SIZE}, {-312, SIZE}};
// Those before the unknown measure are written.
constexpr Leftovers OF_COEFFICIENTS[] = {{-801, OUTPUTS}};

constexpr ApiCall ROWS[] = {
    {56, "ZEL_Label", Call<ZEL_Label, FramedSource, FramedDestination, Below<3>, Output<int32_t>>,
     STATUS, OF_LABEL},
    {57, "ZEL_BasicParticle",
     Call<ZEL_BasicParticle, FramedSource, Below<3>, BasicReports, Output<int32_t>>, STATUS,
     OF_COUNTS},
    {58, "ZEL_Particle", Call<ZEL_Particle, Source, Below<3>, Reports, Output<int32_t>>, STATUS,
     OF_COUNTS},
    {59, "ZEL_ParticleCoeffs", ParticleCoeffs, STATUS, OF_COEFFICIENTS},
    {60, "ZEL_ParticleDiscrim", ParticleDiscrim},
};

}  // namespace

constinit const std::span<const ApiCall> PARTICLE_CALLS{ROWS};

}  // namespace test
