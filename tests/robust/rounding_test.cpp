// Where all that goes in and comes out are integers, results don't depend on the way in which the
// caller has its floats rounded.
#include <gtest/gtest.h>

#include <cfenv>
#include <functional>
#include <string>
#include <vector>

#include "harness/test_image.h"

namespace {

using test::TestImage;

constexpr int32_t WIDTH = 203;  // no multiple of any group, with whole groups too
constexpr int32_t HEIGHT = 19;

class Rounding {
 public:
  explicit Rounding(int way) { std::fesetround(way); }
  Rounding(const Rounding&) = delete;
  Rounding& operator=(const Rounding&) = delete;
  ~Rounding() { std::fesetround(FE_TONEAREST); }
};

std::vector<uint32_t> Counters(const TestImage& image, const TestImage* mask, int32_t classes,
                               float min, float max) {
  std::vector<uint32_t> counters(HISTOGRAM_CLASSES_LIMIT, 0xA5A5A5A5);
  EXPECT_EQ(
      ZEL_Histogram(image, mask ? ImageRef{*mask} : 0, classes, min, max, counters.data(), nullptr),
      0);
  return counters;
}

void ExpectSameCountersInEachRounding(const TestImage& image, const TestImage* mask,
                                      int32_t classes, float min, float max) {
  const std::vector<uint32_t> nearest = Counters(image, mask, classes, min, max);
  for (const int way : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
    const Rounding rounding(way);
    EXPECT_EQ(Counters(image, mask, classes, min, max), nearest)
        << classes << " classes from " << min << " to " << max << ", rounding " << way;
  }
}

TEST(Rounding, DoesNotChangeTheClassesOfIntegers) {
  TestImage mask(IMAGE_U8, WIDTH, HEIGHT, 0, 3);
  for (int32_t x = 0; x < WIDTH; x += 3) mask.Set<uint8_t>(x, 5, 0);
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage image(type, WIDTH, HEIGHT, 0, 7);
    for (const TestImage* over :
         {static_cast<const TestImage*>(nullptr), static_cast<const TestImage*>(&mask)}) {
      for (int32_t classes = 1; classes <= 256; classes++) {
        ExpectSameCountersInEachRounding(image, over, classes, 0, 0);
        ExpectSameCountersInEachRounding(image, over, classes, 3, 200);
      }
      ExpectSameCountersInEachRounding(image, over, 4095, -32768, 32767);
    }
  }
}

using Call = std::function<int32_t(const TestImage& first, const TestImage& second,
                                   const TestImage& destination)>;

struct NamedCall {
  const char* name;
  Call call;
};

const std::vector<NamedCall>& IntegerCalls() {
  static const std::vector<NamedCall> calls = {
      {"add", [](auto& a, auto& b, auto& to) { return ZEL_Add(a, b, to, 0); }},
      {"add 7.9", [](auto& a, auto&, auto& to) { return ZEL_Add(a, 0, to, 7.9f); }},
      {"subtract", [](auto& a, auto& b, auto& to) { return ZEL_Subtract(a, b, to, 0); }},
      {"multiply", [](auto& a, auto& b, auto& to) { return ZEL_Multiply(a, b, to, 0); }},
      {"divide", [](auto& a, auto& b, auto& to) { return ZEL_Divide(a, b, to, 0); }},
      {"divide by 3", [](auto& a, auto&, auto& to) { return ZEL_Divide(a, 0, to, 3); }},
      {"modulo", [](auto& a, auto& b, auto& to) { return ZEL_Modulo(a, b, to, 0); }},
      {"modulo 7", [](auto& a, auto&, auto& to) { return ZEL_Modulo(a, 0, to, 7); }},
      {"times 3 through", [](auto& a, auto& b, auto& to) { return ZEL_MulDiv(a, b, to, 3); }},
      {"mean",
       [](auto& a, auto& b, auto& to) { return ZEL_Compare(a, b, to, COMPARISON_MEAN, 0); }},
      {"keep above 99",
       [](auto& a, auto&, auto& to) { return ZEL_Compare(a, 0, to, COMPARISON_KEEP_ABOVE, 99); }},
      {"threshold", [](auto& a, auto&, auto& to) { return ZEL_Threshold(a, to, 20, 90, 5, 1); }},
      {"edges", [](auto& a, auto&, auto& to) { return ZEL_GrayEdge(a, 0, to, EDGE_SOBEL, 9); }},
      {"smoothing", [](auto& a, auto&, auto& to) { return ZEL_LowPass(a, 0, to, 3, 3, 40); }},
      {"median", [](auto& a, auto&, auto& to) { return ZEL_NthOrder(a, 0, to, 5, 5, 12); }},
      {"label", [](auto& a, auto&, auto& to) { return ZEL_Label(a, to, 1, nullptr); }},
  };
  return calls;
}

TEST(Rounding, DoesNotChangeWhatIntegersGive) {
  for (const int32_t type : {IMAGE_U8, IMAGE_I16}) {
    const TestImage first(type, WIDTH, HEIGHT, 2, 7);
    const TestImage second(type, WIDTH, HEIGHT, 2, 8);
    const TestImage destination(type, WIDTH, HEIGHT, 2, 9);
    for (const NamedCall& named : IntegerCalls()) {
      ASSERT_EQ(named.call(first, second, destination), 0) << named.name;
      const std::vector<uint8_t> nearest = destination.Pixels();
      for (const int way : {FE_UPWARD, FE_DOWNWARD, FE_TOWARDZERO}) {
        const Rounding rounding(way);
        ASSERT_EQ(named.call(first, second, destination), 0) << named.name;
        EXPECT_EQ(destination.Pixels(), nearest)
            << named.name << " of type " << type << ", rounding " << way;
      }
    }
  }
}

}  // namespace
