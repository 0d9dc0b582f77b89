// A shared library that computes in bands, for the program that loads and unloads it.
#include <atomic>
#include <chrono>
#include <thread>

#include "engine/bands.h"

// Runs a pass in which each worker takes part. Returns their number, or 0 when they don't come.
extern "C" __attribute__((visibility("default"))) int ComputeInBands() {
  using Clock = std::chrono::steady_clock;
  const int workers = zel::BandWorkers();
  std::atomic<unsigned> seen{0};
  std::atomic<int> arrived{0};
  zel::BandsRun({.units = workers, .bytes = 100000000}, [&](const zel::Band& band) {
    const unsigned bit = 1u << band.worker;
    if ((seen.fetch_or(bit) & bit) == 0) arrived++;
    const auto limit = Clock::now() + std::chrono::seconds(10);
    while (arrived < workers && Clock::now() < limit) std::this_thread::yield();
  });
  return arrived == workers ? workers : 0;
}
