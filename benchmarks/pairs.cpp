#include "benchmarks/pairs.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>

namespace bench {
namespace {

constexpr char OURS[] = "ours";

struct Row {
  std::string name;
  std::string peer;
  double pixels;
  double ours = 0;  // least processor time of a call, in ns
  double theirs = 0;
};

std::vector<Row>& Rows() {
  static std::vector<Row> rows;
  return rows;
}

std::vector<void (*)()>& Families() {
  static std::vector<void (*)()> families;
  return families;
}

void Register(const std::string& name, std::function<void()> call) {
  benchmark::RegisterBenchmark(name.c_str(), [call = std::move(call)](benchmark::State& state) {
    for (auto _ : state) call();
  })->Unit(benchmark::kNanosecond);
}

// Keeps the least time of each side and prints the table when all is done.
class PairReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      if (run.run_type != Run::RT_Iteration) continue;
      const std::string name = run.run_name.function_name;
      const size_t slash = name.rfind('/');
      for (Row& row : Rows()) {
        if (row.name != name.substr(0, slash)) continue;
        double& least = name.substr(slash + 1) == OURS ? row.ours : row.theirs;
        const double time = run.GetAdjustedCPUTime();
        least = least == 0 ? time : std::min(least, time);
      }
    }
  }

  void Finalize() override {
    std::printf("%-44s %11s %10s  %-12s %10s %7s\n", "operation/type/size", "ours ns", "ns/px",
                "peer", "ns/px", "ratio");
    for (const Row& row : Rows()) {
      if (row.ours == 0) continue;
      std::printf("%-44s %11.0f %10.4f", row.name.c_str(), row.ours, row.ours / row.pixels);
      if (row.theirs > 0) {
        std::printf("  %-12s %10.4f %7.2f", row.peer.c_str(), row.theirs / row.pixels,
                    row.theirs / row.ours);
      }
      std::printf("\n");
    }
  }
};

uint32_t NextRandom(uint64_t* state) {
  *state ^= *state << 13;
  *state ^= *state >> 7;
  *state ^= *state << 17;
  return static_cast<uint32_t>(*state >> 24);
}

uint8_t* RowOf(ImageRef image, int32_t y) {
  void* address = nullptr;
  if (ZEL_GetPixelAddress(image, 0, y, &address) != 0) std::abort();
  return static_cast<uint8_t*>(address);
}

}  // namespace

Family::Family(void (*registerPairs)()) {
  Families().push_back(registerPairs);
}

void Pair(const std::string& operation, const std::string& type, int32_t width, int32_t height,
          const std::string& peer, std::function<void()> ours, std::function<void()> theirs) {
  const std::string name =
      operation + "/" + type + "/" + std::to_string(width) + "x" + std::to_string(height);
  Rows().push_back({name, peer, static_cast<double>(width) * height});
  Register(name + "/" + OURS, std::move(ours));
  if (theirs) Register(name + "/" + peer, std::move(theirs));
}

ImageRef MakeDestination(int32_t type, int32_t border) {
  ImageRef image = 0;
  if (ZEL_Create(&image, static_cast<int16_t>(type), border) != 0) std::abort();
  return image;
}

ImageRef MakeImage(int32_t type, int32_t width, int32_t height, int32_t border, uint64_t seed) {
  const ImageRef image = MakeDestination(type, border);
  if (ZEL_SetImageSize(image, width, height) != 0) std::abort();
  ImageInfo info{};
  ZEL_GetImageInfo(image, &info);
  uint64_t state = seed * 0x9E3779B97F4A7C15u + 99;
  const bool floats = type == IMAGE_SGL || type == IMAGE_COMPLEX;
  for (int32_t y = 0; y < height; y++) {
    uint8_t* row = RowOf(image, y);
    for (int32_t i = 0; i < width * info.pixelBytes; i += floats ? 4 : 1) {
      const uint32_t random = NextRandom(&state);
      if (floats) {
        const float value = static_cast<float>(random % 51200) / 200.0f;
        std::memcpy(row + i, &value, 4);
      } else {
        row[i] = static_cast<uint8_t>(random);
      }
    }
  }
  return image;
}

ImageRef MakeBlobs(int32_t width, int32_t height, int32_t border) {
  const ImageRef image = MakeDestination(IMAGE_U8, border);
  ZEL_SetImageSize(image, width, height);  // fresh pixels are 0
  uint64_t state = 4242;
  const int32_t blobs = std::max(6, width * height / 2600);
  const auto radii = static_cast<uint32_t>(std::clamp(std::min(width, height) / 8, 1, 18));
  for (int32_t i = 0; i < blobs; i++) {
    const auto centreX = static_cast<int32_t>(NextRandom(&state) % static_cast<uint32_t>(width));
    const auto centreY = static_cast<int32_t>(NextRandom(&state) % static_cast<uint32_t>(height));
    const auto radius = static_cast<int32_t>(4 + NextRandom(&state) % radii);
    const int32_t hollow = i % 5 == 0 ? radius / 2 : 0;
    for (int32_t y = std::max(0, centreY - radius); y < std::min(height, centreY + radius); y++) {
      uint8_t* row = RowOf(image, y);
      for (int32_t x = std::max(0, centreX - radius); x < std::min(width, centreX + radius); x++) {
        const int32_t dx = x - centreX;
        const int32_t dy = y - centreY;
        const int32_t distance = dx * dx + dy * dy;
        if (distance < radius * radius && distance >= hollow * hollow) row[x] = 255;
      }
    }
  }
  return image;
}

ImageRef MakeNoise(int32_t width, int32_t height, int32_t border, int32_t grain) {
  const ImageRef image = MakeImage(IMAGE_U8, width, height, border, 7);
  for (int32_t y = 0; y < height; y++) {
    uint8_t* row = RowOf(image, y);
    const uint8_t* grains = RowOf(image, y / grain * grain);
    for (int32_t x = 0; x < width; x++) {
      row[x] = (grains[x / grain * grain] & 1) != 0 ? 255 : 0;
    }
  }
  return image;
}

#if defined(HAVE_OPENCV)
cv::Mat MatOf(ImageRef image) {
  ImageInfo info{};
  ZEL_GetImageInfo(image, &info);
  constexpr int types[] = {CV_8UC1, CV_16SC1, CV_32FC1, CV_32FC2, CV_8UC4};
  cv::Mat mat(info.height, info.width, types[info.type]);
  for (int32_t y = 0; y < info.height; y++) {
    std::memcpy(mat.ptr(y), RowOf(image, y),
                static_cast<size_t>(info.width) * static_cast<size_t>(info.pixelBytes));
  }
  return mat;
}
#endif

}  // namespace bench

int main(int argc, char** argv) {
  ZEL_SetErrorMode(ERROR_MODE_SILENT);
#if defined(HAVE_OPENCV)
  cv::setNumThreads(1);
#endif
  for (void (*registerPairs)() : bench::Families()) registerPairs();

  // Short repetitions, interleaved, so that both sides of a pair see the same machine.
  std::vector<char*> arguments(argv, argv + argc);
  std::string interleave = "--benchmark_enable_random_interleaving=true";
  std::string repetitions = "--benchmark_repetitions=7";
  std::string shortest = "--benchmark_min_time=0.02";
  arguments.insert(arguments.begin() + 1, {interleave.data(), repetitions.data(), shortest.data()});
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
  bench::PairReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  return 0;
}
