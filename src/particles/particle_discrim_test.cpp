#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::Random;

// The value that a criterion tests: one of both is used, or none.
struct Tested {
  bool none = true;
  bool whole = false;
  int32_t integer = 0;
  float real = 0.0f;
};

Tested FieldOf(const ParticleReport& r, uint32_t number) {
  const auto whole = [](int64_t value) {
    return Tested{false, true, static_cast<int32_t>(static_cast<uint32_t>(value)), 0.0f};
  };
  const auto real = [](float value) { return Tested{false, false, 0, value}; };
  switch (number) {
    case 0:
      return whole(r.area);
    case 1:
      return real(r.calibratedArea);
    case 2:
      return whole(r.nbHoles);
    case 3:
      return whole(r.holesArea);
    case 10:
      return whole(r.rect.left);
    case 11:
      return whole(r.rect.top);
    case 12:
      return whole(int64_t{r.rect.left} + r.rect.width);
    case 13:
      return whole(int64_t{r.rect.top} + r.rect.height);
    case 14:
      return whole(r.rect.width);
    case 15:
      return whole(r.rect.height);
    case 16:
      return whole(r.longestSegment);
    case 17:
      return whole(r.longestSegmentX);
    case 18:
      return whole(r.longestSegmentY);
    case 19:
      return real(r.perimeter);
    case 20:
      return real(r.holesPerimeter);
    case 21:
      return real(r.sumX);
    case 22:
      return real(r.sumY);
    case 23:
      return real(r.sumXX);
    case 24:
      return real(r.sumYY);
    case 25:
      return real(r.sumXY);
    case 26:
      return whole(r.projectionX);
    case 27:
      return whole(r.nbRuns);
    default:
      return {};
  }
}

bool Passes(const ParticleReport& r, const ParticleCriterion& c) {
  const Tested field = FieldOf(r, c.measure);
  if (field.none) return true;
  if (field.whole) {
    return static_cast<double>(field.integer) >= static_cast<double>(c.lower) &&
           static_cast<float>(field.integer) <= c.upper;
  }
  return field.real >= c.lower && field.real <= c.upper;
}

// Removes one record after the other and moves the rest of the table down each time.
int32_t Reference(const std::vector<ParticleCriterion>& criteria,
                  std::vector<ParticleReport>* reports) {
  size_t count = reports->size();
  for (size_t i = 0; i < count;) {
    bool kept = true;
    for (const ParticleCriterion& c : criteria) kept = kept && Passes((*reports)[i], c);
    if (kept) {
      i++;
      continue;
    }
    for (size_t j = i + 1; j < count; j++) (*reports)[j - 1] = (*reports)[j];
    count--;
  }
  return static_cast<int32_t>(count);
}

ParticleReport RandomReport(Random* random) {
  const auto whole = [&] { return random->Between(-20, 20); };
  const auto real = [&] { return random->Float(-20.0f, 20.0f); };
  return {whole(), real(),  real(), whole(), whole(), real(),  {whole(), whole(), whole(), whole()},
          real(),  real(),  real(), real(),  real(),  whole(), whole(),
          whole(), whole(), whole()};
}

bool SameBytes(const std::vector<ParticleReport>& a, const std::vector<ParticleReport>& b) {
  return std::memcmp(a.data(), b.data(), a.size() * sizeof(ParticleReport)) == 0;
}

TEST(ParticleDiscrim, RandomTablesAreReducedAsByMovingRecords) {
  Random random(3);
  for (int32_t round = 0; round < 3000; round++) {
    std::vector<ParticleReport> reports;
    for (int32_t i = random.Between(1, 12); i > 0; i--) reports.push_back(RandomReport(&random));
    std::vector<ParticleCriterion> criteria;
    for (int32_t i = random.Between(1, 3); i > 0; i--) {
      const float low = static_cast<float>(random.Between(-20, 5));
      criteria.push_back({static_cast<uint32_t>(random.Between(0, 30)), low,
                          low + static_cast<float>(random.Between(0, 40))});
    }
    std::vector<ParticleReport> expected = reports;
    const int32_t expectedCount = Reference(criteria, &expected);
    int32_t kept = -1;
    ASSERT_EQ(ZEL_ParticleDiscrim(0, criteria.data(), static_cast<uint32_t>(criteria.size()),
                                  reports.data(), static_cast<int32_t>(reports.size()), &kept),
              0);
    ASSERT_EQ(kept, expectedCount);
    ASSERT_TRUE(SameBytes(reports, expected)) << "round " << round;
  }
}

TEST(ParticleDiscrim, EachCriterionTestsItsField) {
  Random random(8);
  for (uint32_t number = 0; number < 40; number++) {
    for (int32_t round = 0; round < 50; round++) {
      std::vector<ParticleReport> reports = {RandomReport(&random)};
      const Tested field = FieldOf(reports[0], number);
      const float value = field.whole ? static_cast<float>(field.integer) : field.real;
      for (const auto& [lower, upper] : {std::pair{value, value},
                                         {std::nextafter(value, 100.0f), 100.0f},
                                         {-100.0f, std::nextafter(value, -100.0f)}}) {
        const ParticleCriterion criterion = {number, lower, upper};
        int32_t kept = -1;
        ASSERT_EQ(ZEL_ParticleDiscrim(4242, &criterion, 1, reports.data(), 1, &kept), 0);
        EXPECT_EQ(kept, field.none || lower == upper ? 1 : 0) << number;
      }
    }
  }
}

TEST(ParticleDiscrim, BehindTheKeptRecordsAllAreTheLastOne) {
  std::vector<ParticleReport> reports(6);
  for (int32_t i = 0; i < 6; i++) reports[static_cast<size_t>(i)].area = i;
  const ParticleCriterion even = {0, 2.0f, 3.0f};
  int32_t kept = 0;
  ASSERT_EQ(ZEL_ParticleDiscrim(0, &even, 1, reports.data(), 6, &kept), 0);
  EXPECT_EQ(kept, 2);
  const int32_t areas[] = {2, 3, 5, 5, 5, 5};
  for (size_t i = 0; i < 6; i++) EXPECT_EQ(reports[i].area, areas[i]) << i;
}

TEST(ParticleDiscrim, CriteriaWithoutAFieldPassAll) {
  for (const uint32_t number : {4u, 5u, 9u, 28u, 30u, 49u, 1000u, 0xFFFFFFFFu}) {
    std::vector<ParticleReport> reports(3);
    const ParticleCriterion criterion = {number, 5.0f, -5.0f};
    int32_t kept = 0;
    EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 1, reports.data(), 3, &kept), 0);
    EXPECT_EQ(kept, 3) << number;
  }
}

TEST(ParticleDiscrim, AnIntegerIsRoundedBeforeItIsComparedWithTheUpperBound) {
  ParticleReport report{};
  report.area = (1 << 24) + 1;
  const ParticleCriterion upper = {0, 0.0f, 16777216.0f};
  int32_t kept = 0;
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &upper, 1, &report, 1, &kept), 0);
  EXPECT_EQ(kept, 1);
  // ... and not before the lower one.
  report.area = (1 << 24) + 3;  // rounds to 2^24 + 4
  const ParticleCriterion lower = {0, 16777220.0f, 1e9f};
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &lower, 1, &report, 1, &kept), 0);
  EXPECT_EQ(kept, 0);
}

TEST(ParticleDiscrim, NotANumberFailsOnEitherSide) {
  const float notANumber = std::numeric_limits<float>::quiet_NaN();
  ParticleReport report{};
  int32_t kept = -1;
  for (const uint32_t number : {0u, 1u}) {
    for (const ParticleCriterion& criterion :
         {ParticleCriterion{number, notANumber, 1.0f}, {number, -1.0f, notANumber}}) {
      EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 1, &report, 1, &kept), 0);
      EXPECT_EQ(kept, 0);
    }
  }
  report.calibratedArea = notANumber;
  const ParticleCriterion all = {1, -1e38f, 1e38f};
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &all, 1, &report, 1, &kept), 0);
  EXPECT_EQ(kept, 0);
}

TEST(ParticleDiscrim, WithoutCriteriaTheFirstOneIsUsedAllTheSame) {
  std::vector<ParticleReport> reports(3);
  reports[1].area = 9;
  ParticleCriterion criterion = {0xFFFFFFFFu, 5.0f, 10.0f};
  int32_t kept = -1;
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 0, reports.data(), 3, &kept), 0);
  EXPECT_EQ(kept, 3);
  EXPECT_EQ(reports[1].area, 9);
  EXPECT_EQ(ZEL_ParticleDiscrim(0, nullptr, 0, reports.data(), 3, &kept), 0);
  EXPECT_EQ(kept, 3);
  criterion.measure = 0;
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 0, reports.data(), 3, &kept), 0);
  EXPECT_EQ(kept, 1);
  EXPECT_EQ(reports[0].area, 9);
}

TEST(ParticleDiscrim, WithoutReportsNothingIsRead) {
  for (const int32_t count : {0, -1, INT32_MIN}) {
    int32_t kept = 7;
    EXPECT_EQ(ZEL_ParticleDiscrim(99, nullptr, 5, nullptr, count, &kept), 0);
    EXPECT_EQ(kept, 0);
  }
}

TEST(ParticleDiscrim, MissingTablesGive3009AndLeaveTheCount) {
  ParticleReport report{};
  const ParticleCriterion criterion = {0, 0.0f, 1.0f};
  int32_t kept = 7;
  EXPECT_EQ(ZEL_ParticleDiscrim(0, nullptr, 1, &report, 1, &kept), -3009);
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 1, nullptr, 1, &kept), -3009);
  EXPECT_EQ(kept, 7);
  char name[256];
  EXPECT_EQ(ZEL_GetLastError(name), -3009);
  EXPECT_STREQ(name, "ZEL_ParticleDiscrim");
  EXPECT_EQ(ZEL_ParticleDiscrim(0, &criterion, 1, &report, 1, nullptr), 0);
}

}  // namespace
