// Histogram, quantification, centroid and profile.
#include <array>

#include "harness/session/session.h"

namespace test {
namespace {

int32_t Histogram(Session& s) {
  std::array<uint32_t, 40> counts{};
  HistogramReport report{};
  const int32_t result = ZEL_Histogram(s.i16, s.mask, 40, 0, 0, counts.data(), &report);
  s.Out(counts);
  s.Out(report);
  return result;
}

int32_t Profile(Session& s) {
  std::array<float, 64> profile{};
  LineProfileReport report{};
  int32_t count = 0;
  const int32_t result =
      ZEL_LineProfile(s.u8, 0, 3, 36, 20, ARRAY_SGL, profile.data(), &count, &report);
  s.Out(profile);
  s.Out(report);
  return result;
}

constexpr Step ROWS[] = {
    {"ZEL_Histogram", &Histogram},
    {"ZEL_Quantify",
     [](Session& s) {
       QuantifyReport global{};
       int32_t count = 0;
       const int32_t result = ZEL_Quantify(s.i16, s.mask, &global, &s.regions, &count);
       s.Out(global);
       s.Out(count);
       if (s.regions) s.Out(s.regions[0]);
       return result;
     }},
    {"ZEL_Centroid",
     [](Session& s) {
       float x = 0;
       float y = 0;
       const int32_t result = ZEL_Centroid(s.sgl, s.mask, &x, &y);
       s.Out(x);
       s.Out(y);
       return result;
     }},
    {"ZEL_LineProfile", &Profile},
};

}  // namespace

constinit const std::span<const Step> STATISTICS_STEPS{ROWS};

}  // namespace test
