// Automatic thresholds, against references that are written over sorted pixels or from scratch for
// every split.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <numeric>
#include <vector>

#include "core/heap.h"
#include "harness/test_image.h"

namespace {

using test::Random;
using test::TestImage;

using Counts = std::array<int64_t, 256>;

// An image of just these pixels, in a shuffled order, and others around them.
TestImage ImageOf(const std::vector<uint8_t>& pixels, int32_t width) {
  const auto height = static_cast<int32_t>(pixels.size()) / width;
  TestImage image(IMAGE_U8, width, height, 2, 77);
  for (int32_t i = 0; i < width * height; i++) {
    image.Set(i % width, i / width, pixels[static_cast<size_t>(i)]);
  }
  return image;
}

Counts CountsOf(const TestImage& image) {
  Counts counts{};
  for (const uint8_t pixel : image.Pixels()) counts[pixel]++;
  return counts;
}

// Pixels of many kinds of histograms.
std::vector<uint8_t> RandomPixels(uint64_t seed, size_t number) {
  Random random(seed);
  std::vector<uint8_t> pixels(number);
  const int32_t kind = static_cast<int32_t>(seed % 7);
  const int32_t low = random.Between(0, 200);
  const int32_t high = random.Between(low, 255);
  const int32_t levels = random.Between(1, 12);
  for (uint8_t& pixel : pixels) {
    int32_t value = 0;
    switch (kind) {
      case 0:
        value = random.Between(0, 255);
        break;
      case 1:
        value = random.Between(low, high);
        break;
      case 2:  // two humps
        value = (random.Next() & 3) == 0 ? low / 2 + random.Between(0, 20)
                                         : 200 + random.Between(-30, 30);
        break;
      case 3:  // few levels
        value = low + random.Between(0, levels) * (255 - low) / (levels + 1);
        break;
      case 4:  // triangular
        value = (random.Between(0, 255) + random.Between(0, 255)) / 2;
        break;
      case 5:  // mostly dark
        value = random.Between(0, random.Between(0, random.Between(0, 255)));
        break;
      default:  // both ends
        value = (random.Next() & 1) == 0 ? random.Between(0, 3) : random.Between(252, 255);
        break;
    }
    pixel = static_cast<uint8_t>(value);
  }
  return pixels;
}

double Mean(const std::vector<uint8_t>& pixels, double fallback) {
  if (pixels.empty()) return fallback;
  int64_t sum = 0;
  for (const uint8_t pixel : pixels) sum += pixel;
  return static_cast<double>(sum) / static_cast<double>(pixels.size());
}

template <class Test>
std::vector<uint8_t> Only(const std::vector<uint8_t>& pixels, Test test) {
  std::vector<uint8_t> some;
  std::copy_if(pixels.begin(), pixels.end(), std::back_inserter(some), test);
  return some;
}

float Half(double a, double b) {
  return static_cast<float>((a + b) * 0.5);
}

int32_t ClusteringReference(const std::vector<uint8_t>& pixels) {
  std::map<int32_t, int64_t> bins;
  for (const uint8_t pixel : pixels) bins[pixel]++;
  std::vector<std::pair<int32_t, int64_t>> list(bins.begin(), bins.end());
  if (list.size() <= 2) return 0;
  const double half = 0.5 * static_cast<double>(pixels.size());
  size_t index = 1;
  int64_t sum = list[0].second;
  for (; static_cast<double>(sum) < half && index != list.size() - 1; index++) {
    sum += list[index].second;
  }
  const int64_t bin = list[index - 1].second;
  if (bin < sum && 2.0 * (static_cast<double>(sum) - half) >= static_cast<double>(bin)) index -= 1;
  float t = static_cast<float>(list[index - 1].first) + 0.5f;
  for (int32_t round = 0; round < 20; round++) {
    const double old = static_cast<double>(t);
    const auto below = Only(pixels, [&](uint8_t p) { return p == 0 || p < old; });
    const auto above = Only(pixels, [&](uint8_t p) { return p != 0 && p >= old; });
    const auto m1 = static_cast<float>(Mean(below, old * 0.5));
    const auto m2 = static_cast<float>(Mean(above, (old + 255.0) * 0.5));
    t = Half(static_cast<double>(m1), static_cast<double>(m2));
    if (std::fabs(static_cast<double>(t) - old) <= 0.1) break;
  }
  const auto whole = static_cast<int32_t>(t);
  return static_cast<float>(whole) < t ? whole + 1 : whole;
}

int32_t EntropyReference(const Counts& counts) {
  std::vector<double> n(256);
  std::vector<double> e(256);
  for (size_t i = 0; i < 256; i++) {
    n[i] = static_cast<double>(counts[i] + 1);
    e[i] = static_cast<double>(static_cast<float>(n[i] * std::log(n[i])));
  }
  // For images this small, all sums are exact in whatever order.
  double best = -1e30;
  int32_t t = 0;
  for (int32_t i = 1; i <= 254; i++) {
    const auto sum = [i](const std::vector<double>& terms, bool left) {
      double total = 0.0;
      for (int32_t k = 0; k < 256; k++) {
        if ((k >= 1 && k <= i) == left) total += terms[static_cast<size_t>(k)];
      }
      return total;
    };
    const double value = std::log(sum(n, false) * sum(n, true)) -
                         (sum(e, false) / sum(n, false) + sum(e, true) / sum(n, true));
    if (value > best) {
      best = value;
      t = i;
    }
  }
  return t;
}

int32_t MetricReference(const std::vector<uint8_t>& pixels, const Counts& counts, int32_t lo,
                        int32_t hi) {
  double best = 1e30;
  int32_t t = lo;
  for (int32_t s = lo; s <= hi; s++) {
    double sums[2] = {0.0, 0.0};
    const double means[2] = {Mean(Only(pixels, [s](uint8_t p) { return p < s; }), 0.0),
                             Mean(Only(pixels, [s](uint8_t p) { return p >= s; }), 0.0)};
    for (int32_t i = 0; i < 256; i++) {
      const int32_t side = i < s ? 0 : 1;
      sums[side] +=
          std::fabs(i - means[side]) * static_cast<double>(counts[static_cast<size_t>(i)]);
    }
    if (sums[0] + sums[1] < best) {
      best = sums[0] + sums[1];
      t = s;
    }
  }
  return t;
}

int32_t MomentsReference(const std::vector<uint8_t>& pixels, const Counts& counts, int32_t lo,
                         int32_t hi) {
  double best = 1e30;
  int32_t t = hi;
  for (int32_t s = lo; s < hi; s++) {
    double m[4] = {0.0, 0.0, 0.0, 0.0};  // from scratch for every split
    for (int32_t i = lo; i <= s; i++) {
      const double p =
          static_cast<double>(counts[static_cast<size_t>(i)]) / static_cast<double>(pixels.size());
      int64_t power = 1;
      for (double& sum : m) {
        sum += static_cast<double>(power) * p;
        power *= i;
      }
    }
    const double w = m[0];
    const double v = 1.0 - w;
    if (!(v > 1e-10)) continue;
    const double d = std::sqrt((m[2] - m[1] * m[1]) / v * w);
    for (const double sign : {1.0, -1.0}) {
      const double plus = m[1] + sign * d;
      const double minus = (m[1] - plus * v) / w;
      if (!(minus >= lo) || !(minus <= s) || !(plus > s) || !(plus <= hi)) continue;
      const double error = std::fabs(minus * minus * minus * w + plus * plus * plus * v - m[3]);
      if (error < best) {
        t = s;
        best = error;
      }
    }
  }
  return t;
}

int32_t InterclassReference(const std::vector<uint8_t>& pixels, int32_t lo, int32_t hi) {
  double a = lo;
  double b = hi;
  int32_t t = 0;
  for (int32_t round = 0; round < 20; round++) {
    const double mid = (a + b) * 0.5;
    const double mean1 = Mean(Only(pixels, [&](uint8_t p) { return p == lo || p < mid; }), NAN);
    const double mean2 = Mean(Only(pixels, [&](uint8_t p) { return p >= std::floor(mid); }), NAN);
    const auto next = static_cast<double>(Half(mean1, mean2));
    t = static_cast<int32_t>(next);
    (next < mid ? b : a) = t;
    if (!(std::fabs(next - mid) > 1.0)) break;
  }
  return t;
}

int32_t Reference(int32_t method, const TestImage& image) {
  const std::vector<uint8_t> pixels = image.Pixels();
  const Counts counts = CountsOf(image);
  if (method == AUTOB_CLUSTERING) return ClusteringReference(pixels);
  if (method == AUTOB_ENTROPY) return EntropyReference(counts);
  if (pixels.empty()) return 255;
  const auto [lowest, highest] = std::minmax_element(pixels.begin(), pixels.end());
  if (*lowest == *highest) return *lowest;
  switch (method) {
    case AUTOB_METRIC:
      return MetricReference(pixels, counts, *lowest, *highest);
    case AUTOB_MOMENTS:
      return MomentsReference(pixels, counts, *lowest, *highest);
    default:
      return InterclassReference(pixels, *lowest, *highest);
  }
}

int32_t ThresholdOf(const TestImage& image, int32_t method) {
  int32_t threshold = -77;
  EXPECT_EQ(ZEL_AutoBThreshold(image, method, ARRAY_U8, nullptr, &threshold), 0);
  return threshold;
}

class AutoBThreshold : public testing::TestWithParam<int32_t> {};
INSTANTIATE_TEST_SUITE_P(Methods, AutoBThreshold, testing::Range(0, 5));

TEST_P(AutoBThreshold, FindsWhatTheRuleFindsOnRandomHistograms) {
  for (uint64_t seed = 1; seed <= 210; seed++) {
    const auto width = static_cast<int32_t>(seed % 23 + 1);
    const TestImage image =
        ImageOf(RandomPixels(seed, static_cast<size_t>(width) * (seed % 40 + 1)), width);
    ASSERT_EQ(ThresholdOf(image, GetParam()), Reference(GetParam(), image)) << "seed " << seed;
  }
}

TEST_P(AutoBThreshold, FindsWhatTheRuleFindsOnUniformAndTwoLevelImages) {
  for (const int32_t low : {0, 1, 7, 128, 254, 255}) {
    for (const int32_t high : {0, 1, 8, 129, 254, 255}) {
      for (const size_t lows : {size_t{1}, size_t{10}, size_t{19}, size_t{20}}) {
        std::vector<uint8_t> pixels(20, static_cast<uint8_t>(high));
        std::fill_n(pixels.begin(), lows, static_cast<uint8_t>(low));
        const TestImage image = ImageOf(pixels, 5);
        ASSERT_EQ(ThresholdOf(image, GetParam()), Reference(GetParam(), image))
            << lows << " of " << low << ", else " << high;
      }
    }
  }
}

TEST_P(AutoBThreshold, TheTableIsOneFromTheThresholdOn) {
  const TestImage image = ImageOf(RandomPixels(2, 300), 20);
  const std::vector<uint8_t> before = image.Block();
  const int32_t threshold = ThresholdOf(image, GetParam());
  std::vector<double> doubles(257, -9.0);
  std::vector<uint16_t> words(257, 999);
  ASSERT_EQ(ZEL_AutoBThreshold(image, GetParam(), ARRAY_DBL, doubles.data(), nullptr), 0);
  ASSERT_EQ(ZEL_AutoBThreshold(image, GetParam(), ARRAY_U16, words.data(), nullptr), 0);
  for (size_t i = 0; i < 256; i++) {
    EXPECT_EQ(doubles[i], static_cast<int32_t>(i) < threshold ? 0.0 : 1.0);
    EXPECT_EQ(words[i], static_cast<int32_t>(i) < threshold ? 0 : 1);
  }
  EXPECT_EQ(doubles[256], -9.0);
  EXPECT_EQ(words[256], 999);
  EXPECT_EQ(image.Block(), before);
}

TEST(AutoThreshold, AUniformImageHasThresholdZeroByClustering) {
  const TestImage image = ImageOf(std::vector<uint8_t>(12, 90), 4);
  int32_t threshold = -1;
  std::vector<int8_t> lookup(256, 5);
  ASSERT_EQ(ZEL_AutoBThreshold(image, AUTOB_CLUSTERING, ARRAY_I8, lookup.data(), &threshold), 0);
  EXPECT_EQ(threshold, 0);
  EXPECT_EQ(lookup, std::vector<int8_t>(256, 1));
}

TEST(AutoThreshold, AnImageWithoutPixelsHasAThresholdByEachMethod) {
  const TestImage image(IMAGE_U8, 0, 0, 1);
  EXPECT_EQ(ThresholdOf(image, AUTOB_CLUSTERING), 0);
  EXPECT_EQ(ThresholdOf(image, AUTOB_ENTROPY), Reference(AUTOB_ENTROPY, image));
  EXPECT_EQ(ThresholdOf(image, AUTOB_ENTROPY), 128);
  EXPECT_EQ(ThresholdOf(image, AUTOB_METRIC), 255);
  EXPECT_EQ(ThresholdOf(image, AUTOB_MOMENTS), 255);
  EXPECT_EQ(ThresholdOf(image, AUTOB_INTERCLASS), 255);
}

TEST(AutoThreshold, OtherMethodsAndCountsSucceedAndWriteNothing) {
  const TestImage bytes(IMAGE_U8, 3, 3);
  const TestImage words(IMAGE_I16, 3, 3);
  for (const ImageRef image : {ImageRef{bytes}, ImageRef{words}, ImageRef{0}, ImageRef{99999}}) {
    for (const int32_t arrayType : {int32_t{ARRAY_I16}, int32_t{ARRAY_U8}, 5, -1}) {
      std::vector<uint16_t> lookup(256, 4711);
      const std::vector<uint16_t> before = lookup;
      int32_t threshold = 4711;
      ThresholdClass classes[1] = {{1.0f, 2.0f, 3.0f, 4}};
      for (const int32_t method : {-1, 5, INT32_MAX, INT32_MIN}) {
        EXPECT_EQ(ZEL_AutoBThreshold(image, method, arrayType, lookup.data(), &threshold), 0);
      }
      for (const int32_t count : {1, 257, 0, -5, INT32_MAX}) {
        EXPECT_EQ(ZEL_AutoMThreshold(image, count, arrayType, lookup.data(), classes), 0);
      }
      EXPECT_EQ(lookup, before);
      EXPECT_EQ(threshold, 4711);
      EXPECT_EQ(classes[0].useNew, 4);
    }
  }
}

TEST(AutoThreshold, FailuresWriteNothing) {
  const TestImage words(IMAGE_I16, 3, 3);
  const TestImage noWords(IMAGE_I16, 0, 0);
  const TestImage nothing(IMAGE_U8, 0, 0);
  std::vector<uint16_t> lookup(256, 4711);
  const std::vector<uint16_t> before = lookup;
  int32_t threshold = 4711;
  ThresholdClass classes[2] = {{1.0f, 2.0f, 3.0f, 4}, {}};
  for (const int32_t arrayType : {ARRAY_I16, ARRAY_I32}) {
    EXPECT_EQ(ZEL_AutoBThreshold(0, 0, arrayType, lookup.data(), &threshold), -200);
    EXPECT_EQ(ZEL_AutoBThreshold(99999, 4, arrayType, lookup.data(), &threshold), -200);
    EXPECT_EQ(ZEL_AutoBThreshold(words, 1, arrayType, lookup.data(), &threshold), -301);
    EXPECT_EQ(ZEL_AutoMThreshold(99999, 2, arrayType, lookup.data(), classes), -200);
    EXPECT_EQ(ZEL_AutoMThreshold(words, 2, arrayType, lookup.data(), classes), -301);
    EXPECT_EQ(ZEL_AutoMThreshold(noWords, 2, arrayType, lookup.data(), classes), -301);
    EXPECT_EQ(ZEL_AutoMThreshold(nothing, 2, arrayType, lookup.data(), classes), -306);
  }
  EXPECT_EQ(lookup, before);
  EXPECT_EQ(threshold, 4711);
  EXPECT_EQ(classes[0].rangeMin, 1.0f);
  char name[256];
  ZEL_GetLastError(name);
  EXPECT_STREQ(name, "ZEL_AutoMThreshold");
}

TEST(AutoThreshold, AnUnknownArrayTypeLeavesTheTableAndDeliversTheRest) {
  const TestImage image = ImageOf(RandomPixels(4, 200), 10);
  std::vector<uint16_t> lookup(256, 4711);
  int32_t threshold = -1;
  ThresholdClass classes[3] = {};
  ASSERT_EQ(ZEL_AutoBThreshold(image, AUTOB_ENTROPY, 5, lookup.data(), &threshold), 0);
  ASSERT_EQ(ZEL_AutoMThreshold(image, 3, 9, lookup.data(), classes), 0);
  EXPECT_EQ(lookup, std::vector<uint16_t>(256, 4711));
  EXPECT_EQ(threshold, Reference(AUTOB_ENTROPY, image));
  EXPECT_EQ(classes[2].newValue, 2.0f);
}

// Thresholds of several classes by the rule, over sorted pixels.
std::vector<double> ThresholdsReference(std::vector<uint8_t> pixels, int32_t n) {
  std::sort(pixels.begin(), pixels.end());
  std::vector<uint8_t> levels = pixels;
  levels.erase(std::unique(levels.begin(), levels.end()), levels.end());
  const auto count = [&](size_t at) {
    return static_cast<double>(std::count(pixels.begin(), pixels.end(), levels[at]));
  };
  const auto found = static_cast<int32_t>(levels.size());
  std::vector<float> b(static_cast<size_t>(n) + 1, 0.0f);
  const auto at = [](int32_t i) { return static_cast<size_t>(i); };
  if (n >= found) {
    const int32_t d = n - found;
    for (int32_t i = 0; i < found; i++) b[at(d + 1 + i)] = levels[at(i)];
    for (int32_t k = d + 1; k < n; k++) {
      b[at(k)] = Half(static_cast<double>(b[at(k)]), static_cast<double>(b[at(k + 1)]));
    }
  } else {
    b[at(n)] = 256.0f;
    const auto target =
        static_cast<double>(static_cast<float>(static_cast<double>(pixels.size()) / n));
    size_t p = 0;
    for (int32_t c = 1; c < n; c++) {
      double sum = count(p++);
      while (levels.size() - p > at(n - c) && sum < target) sum += count(p++);
      const double last = count(p - 1);
      if (sum > last && last <= 2.0 * (sum - target)) p--;
      b[at(c)] = static_cast<float>(levels[p - 1]) + 0.5f;
    }
    for (int32_t round = 0; round < 40; round++) {
      std::vector<float> m(at(n));
      std::vector<size_t> weight(at(n));
      for (int32_t k = 0; k < n; k++) {
        const auto from = static_cast<double>(b[at(k)]);
        const auto to = static_cast<double>(b[at(k + 1)]);
        const auto own = Only(pixels, [&](uint8_t q) { return q >= from && q < to; });
        weight[at(k)] = own.size();
        m[at(k)] = static_cast<float>(Mean(own, (from + to) * 0.5));
      }
      if (weight.front() == 0) m.front() = m[1];
      if (weight.back() == 0) m.back() = m[at(n - 2)];
      for (int32_t k = 1; k < n - 1; k++) {
        if (weight[at(k)] != 0) continue;
        m[at(k)] = weight[at(k - 1)] >= weight[at(k + 1)] ? m[at(k - 1)] : m[at(k + 1)];
      }
      double largest = 0.0;
      for (int32_t k = 1; k < n; k++) {
        const float next = Half(static_cast<double>(m[at(k - 1)]), static_cast<double>(m[at(k)]));
        largest =
            std::max(largest, std::fabs(static_cast<double>(next) - static_cast<double>(b[at(k)])));
        b[at(k)] = next;
      }
      if (!(largest > 0.1)) break;
    }
  }
  return std::vector<double>(b.begin() + 1, b.end() - 1);
}

void CheckClasses(const TestImage& image, int32_t count) {
  const std::vector<double> thresholds = ThresholdsReference(image.Pixels(), count);
  std::vector<int16_t> lookup(256, -1);
  std::vector<ThresholdClass> classes(static_cast<size_t>(count) + 1);
  std::memset(classes.data(), 0xA5, classes.size() * sizeof(ThresholdClass));
  ASSERT_EQ(ZEL_AutoMThreshold(image, count, ARRAY_I16, lookup.data(), classes.data()), 0);
  for (int32_t i = 0; i < 256; i++) {
    // Each threshold at or below the level, or with the level as its whole part, is behind it.
    int32_t expected = 0;
    for (const double threshold : thresholds) expected += std::floor(threshold) <= i ? 1 : 0;
    ASSERT_EQ(lookup[static_cast<size_t>(i)], expected) << "level " << i << " of " << count;
  }
  for (int32_t c = 0; c < count; c++) {
    const ThresholdClass& given = classes[static_cast<size_t>(c)];
    const double begin = c == 0 ? 0.0 : thresholds[static_cast<size_t>(c - 1)];
    const double end = c == count - 1 ? 256.0 : thresholds[static_cast<size_t>(c)];
    ASSERT_EQ(static_cast<double>(given.rangeMin), std::ceil(begin)) << c << " of " << count;
    ASSERT_EQ(static_cast<double>(given.rangeMax), std::ceil(end) - 1.0) << c << " of " << count;
    ASSERT_EQ(static_cast<int32_t>(given.newValue), c);
    uint32_t slot = 0;
    std::memcpy(&slot, reinterpret_cast<const char*>(&given) + 12, sizeof slot);
    ASSERT_EQ(slot, 32768u) << "the upper half is 0";
  }
  uint32_t behind = 0;
  std::memcpy(&behind, &classes[static_cast<size_t>(count)], sizeof behind);
  ASSERT_EQ(behind, 0xA5A5A5A5u);
}

TEST(AutoThreshold, SeveralClassesFollowTheRuleOnRandomHistograms) {
  for (uint64_t seed = 1; seed <= 140; seed++) {
    const auto width = static_cast<int32_t>(seed % 31 + 1);
    const TestImage image =
        ImageOf(RandomPixels(seed, static_cast<size_t>(width) * (seed % 30 + 1)), width);
    for (const int32_t count : {2, 3, 4, 5, 8, 13, 40, 256}) CheckClasses(image, count);
  }
}

TEST(AutoThreshold, TwoLevelsInFourClasses) {
  std::vector<uint8_t> pixels(30, 200);
  std::fill_n(pixels.begin(), 11, uint8_t{10});
  const TestImage image = ImageOf(pixels, 6);
  EXPECT_EQ(ThresholdsReference(image.Pixels(), 4), (std::vector<double>{0.0, 0.0, 105.0}));
  ThresholdClass classes[4];
  ASSERT_EQ(ZEL_AutoMThreshold(image, 4, ARRAY_U8, nullptr, classes), 0);
  EXPECT_EQ(classes[0].rangeMax, -1.0f);
  EXPECT_EQ(classes[2].rangeMin, 0.0f);
  EXPECT_EQ(classes[2].rangeMax, 104.0f);
  EXPECT_EQ(classes[3].rangeMin, 105.0f);
  EXPECT_EQ(classes[3].rangeMax, 255.0f);
  CheckClasses(image, 4);
  CheckClasses(ImageOf(std::vector<uint8_t>(9, 255), 3), 5);
  CheckClasses(ImageOf(std::vector<uint8_t>(9, 0), 3), 2);
}

TEST(AutoThreshold, ClassesServeMultiThreshold) {
  const TestImage image = ImageOf(RandomPixels(2, 600), 30);
  ThresholdClass classes[3];
  ASSERT_EQ(ZEL_AutoMThreshold(image, 3, ARRAY_U8, nullptr, classes), 0);
  const TestImage result(IMAGE_U8, 1, 1);
  ASSERT_EQ(ZEL_MultiThreshold(image, result, 3, classes), 0);
  for (int32_t y = 0; y < image.height(); y++) {
    for (int32_t x = 0; x < image.width(); x++) {
      const float pixel = image.Get<uint8_t>(x, y);
      ASSERT_EQ(result.Get<uint8_t>(x, y), pixel > classes[1].rangeMax   ? 2
                                           : pixel > classes[0].rangeMax ? 1
                                                                         : 0);
    }
  }
}

}  // namespace
