#include "engine/bands.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <vector>

namespace {

using namespace zel;

class Bands : public testing::TestWithParam<int32_t> {
 protected:
  void TearDown() override { BandsForce(0, 0); }
};

TEST_P(Bands, CoverEachUnitOnce) {
  BandsForce(GetParam(), 1);
  for (const int64_t units : {0, 1, 2, 3, 7, 64, 65, 1000, 1001}) {
    std::vector<std::atomic<int32_t>> covered(static_cast<size_t>(units));
    BandsRun({.units = units, .bytes = 1000}, [&](const Band& band) {
      for (int64_t unit = band.begin; unit < band.end; unit++) covered[static_cast<size_t>(unit)]++;
    });
    for (const auto& count : covered) EXPECT_EQ(count.load(), 1) << units;
  }
}

INSTANTIATE_TEST_SUITE_P(Workers, Bands, testing::Values(1, 2, 3, 8));

}  // namespace
