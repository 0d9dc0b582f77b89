#include "harness/family_digests.h"

#include <algorithm>
#include <array>
#include <iomanip>
#include <sstream>

#include "harness/digest.h"
#include "harness/session/session.h"
#include "harness/sweep/sweep.h"
#include "harness/test_image.h"

namespace test {
namespace {

constexpr int32_t WIDTH = 1300;
constexpr int32_t HEIGHT = 900;

void AddHistogram(const TestImage& image, Digest* digest) {
  std::array<uint32_t, 256> counts{};
  HistogramReport report{};
  digest->Add(ZEL_Histogram(image, 0, 256, 0, 0, counts.data(), &report));
  digest->Add(counts);
  digest->Add(report.mean);
  digest->Add(report.stdDev);
}

// One call after another, each on what the last one left.
uint64_t DigestOfLargeImages() {
  Digest digest;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const TestImage first(type, WIDTH, HEIGHT, 3, 1);
    const TestImage second(type, WIDTH, HEIGHT, 3, 2);
    const TestImage result(type, 1, 1, 3, 3);
    const TestImage mask(IMAGE_U8, WIDTH - 100, HEIGHT - 50, 0, 4);
    ZEL_SetImageOffset(mask, 33, 7);
    const auto add = [&](int32_t status) {
      digest.Add(status);
      digest.AddImage(result);
    };
    add(ZEL_Add(first, second, result, 0));
    add(ZEL_Multiply(first, 0, result, 1.7f));
    add(ZEL_Divide(first, second, result, 0));
    add(ZEL_Compare(first, second, result, COMPARISON_MEAN, 0));
    add(ZEL_Mask(first, mask, result));
    add(ZEL_Threshold(first, result, 20, 90, 7, 1));
    add(ZEL_MathLookup(first, mask, result, MATH_SQRT, 0, 0, 0));
    add(ZEL_Equalize(first, mask, result, nullptr, 0, nullptr, 0, 0));
    add(ZEL_GrayEdge(first, mask, result, EDGE_SIGMA, 9));
    add(ZEL_GrayEdge(first, mask, result, EDGE_SOBEL, 9));
    add(ZEL_LowPass(first, 0, result, 5, 3, 20));
    add(ZEL_NthOrder(first, 0, result, 3, 3, 4));
    add(ZEL_NthOrder(first, mask, result, 7, 5, 20));
    AddHistogram(first, &digest);
    const TestImage floats(IMAGE_SGL, 1, 1);
    digest.Add(ZEL_Convert(first, floats));
    digest.AddImage(floats);
  }
  return digest.value();
}

// Of each family's steps: the script is one, as they work on what those before them left.
std::vector<FamilyDigest> DigestsOfSteps(std::ostream& complaints) {
  std::vector<FamilyDigest> digests;
  Session session;
  for (const StepFamily& family : StepFamilies()) {
    Digest digest;
    for (const Step& step : family.steps) {
      session.outputs = {};
      const int32_t status = step.run(session);
      if (status != 0) complaints << step.name << " answered " << status << '\n';
      digest.Add(status);
      digest.Add(session.Digest());
    }
    digests.push_back({family.name, digest.value()});
  }
  return digests;
}

}  // namespace

std::vector<FamilyDigest> DigestsOfFamilies(std::ostream& complaints) {
  std::vector<FamilyDigest> digests = DigestsOfSteps(complaints);
  ZEL_CloseSys();
  for (const SweepFamily& sweep : SweepFamilies()) {
    const auto found = std::find_if(digests.begin(), digests.end(), [&](const FamilyDigest& one) {
      return one.family == sweep.name;
    });
    Digest digest;
    digest.Add(found->digest);
    RunSweep(sweep, &digest);
    found->digest = digest.value();
  }
  digests.push_back({"large-images", DigestOfLargeImages()});
  ZEL_CloseSys();
  return digests;
}

void WriteDigests(const std::vector<FamilyDigest>& digests, std::ostream& out) {
  for (const FamilyDigest& one : digests) {
    out << one.family << ' ' << std::hex << std::setw(16) << std::setfill('0') << one.digest
        << std::dec << '\n';
  }
}

bool ReadDigests(std::istream& in, std::vector<FamilyDigest>* digests) {
  digests->clear();
  for (std::string line; std::getline(in, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    FamilyDigest one{};
    if (!(words >> one.family)) continue;
    std::string rest;
    if (!(words >> std::hex >> one.digest) || words >> rest) return false;
    digests->push_back(one);
  }
  return !digests->empty();
}

std::string FirstDifference(const std::vector<FamilyDigest>& expected,
                            const std::vector<FamilyDigest>& actual) {
  const size_t count = std::max(expected.size(), actual.size());
  for (size_t i = 0; i < count; i++) {
    if (i >= actual.size()) return expected[i].family;
    if (i >= expected.size()) return actual[i].family;
    if (expected[i].family != actual[i].family || expected[i].digest != actual[i].digest) {
      return actual[i].family;
    }
  }
  return {};
}

}  // namespace test
