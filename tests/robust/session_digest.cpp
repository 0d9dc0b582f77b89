// Runs the session that calls every export, and some calls on images that are large enough for all
// workers, and prints a number that stands for all results. It is the same for every build,
// processor level and number of workers.
#include <array>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "harness/digest.h"
#include "harness/memory_files.h"
#include "harness/session/session.h"
#include "harness/test_image.h"

namespace {

constexpr int32_t WIDTH = 1300;
constexpr int32_t HEIGHT = 900;

void Require(int32_t result, const char* what) {
  if (result == 0) return;
  std::fprintf(stderr, "%s answered %d\n", what, result);
  std::exit(1);
}

uint64_t DigestOfSession() {
  test::Digest digest;
  const test::MemoryFiles files;
  test::Session session;
  for (const test::Step& step : test::Steps()) {
    session.outputs.clear();
    Require(step.run(session), step.name);
    digest.Add(session.Digest());
  }
  ZEL_CloseSys();
  return digest.value();
}

void AddHistogram(const test::TestImage& image, test::Digest* digest) {
  std::array<uint32_t, 256> counts{};
  HistogramReport report{};
  Require(ZEL_Histogram(image, 0, 256, 0, 0, counts.data(), &report), "ZEL_Histogram");
  digest->Add(counts);
  digest->Add(report.mean);
  digest->Add(report.stdDev);
}

// One call after another, each on what the last one left.
uint64_t DigestOfLargeImages() {
  test::Digest digest;
  for (const int32_t type : {IMAGE_U8, IMAGE_I16, IMAGE_SGL}) {
    const test::TestImage first(type, WIDTH, HEIGHT, 3, 1);
    const test::TestImage second(type, WIDTH, HEIGHT, 3, 2);
    const test::TestImage result(type, 1, 1, 3, 3);
    const test::TestImage mask(IMAGE_U8, WIDTH - 100, HEIGHT - 50, 0, 4);
    ZEL_SetImageOffset(mask, 33, 7);
    const auto add = [&](int32_t status, const char* name) {
      Require(status, name);
      digest.AddImage(result);
    };
    add(ZEL_Add(first, second, result, 0), "ZEL_Add");
    add(ZEL_Multiply(first, 0, result, 1.7f), "ZEL_Multiply");
    add(ZEL_Divide(first, second, result, 0), "ZEL_Divide");
    add(ZEL_Compare(first, second, result, COMPARISON_MEAN, 0), "ZEL_Compare");
    add(ZEL_Mask(first, mask, result), "ZEL_Mask");
    add(ZEL_Threshold(first, result, 20, 90, 7, 1), "ZEL_Threshold");
    add(ZEL_MathLookup(first, mask, result, MATH_SQRT, 0, 0, 0), "ZEL_MathLookup");
    add(ZEL_Equalize(first, mask, result, nullptr, 0, nullptr, 0, 0), "ZEL_Equalize");
    for (const int32_t method : {EDGE_SIGMA, EDGE_SOBEL}) {
      add(ZEL_GrayEdge(first, mask, result, method, 9), "ZEL_GrayEdge");
    }
    add(ZEL_LowPass(first, 0, result, 5, 3, 20), "ZEL_LowPass");
    add(ZEL_NthOrder(first, 0, result, 3, 3, 4), "ZEL_NthOrder");
    add(ZEL_NthOrder(first, mask, result, 7, 5, 20), "ZEL_NthOrder");
    AddHistogram(first, &digest);
    const test::TestImage floats(IMAGE_SGL, 1, 1);
    Require(ZEL_Convert(first, floats), "ZEL_Convert");
    digest.AddImage(floats);
  }
  ZEL_CloseSys();
  return digest.value();
}

}  // namespace

int main() {
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
  std::printf("session %016" PRIx64 "\n", DigestOfSession());
  std::printf("large images %016" PRIx64 "\n", DigestOfLargeImages());
  return 0;
}
