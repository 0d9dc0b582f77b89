// How a pass is cut into bands, and how many workers it is worth.
#include "engine/bands.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdlib>
#include <cstring>

#include "platform/threads.h"
#include "platform/workers.h"

namespace zel {
namespace {

// Measured with two workers and an addition of bytes: after a rest of 0.5 ms the call costs the
// caller 2.5 us more, and the worker begins after 17 us (2 and 6 right after another call). They
// break even at 600,000 bytes (330,000), gain a third at 1,000,000 (half) and then double the
// speed.
constexpr int64_t BYTES_A_WORKER = 262144;
// Small enough that the last band of a worker, or one that began late, does not keep the others
// waiting; large enough that taking one (50 ns) costs little beside it.
constexpr int64_t BYTES_A_BAND = 65536;
constexpr int64_t BANDS_A_WORKER = 16;
// Bands are so many times as long as their start, where that leaves one for each worker; as few
// bands are, each worker gets as many.
constexpr int64_t UNITS_A_START_UNIT = 8;

std::atomic<int32_t> bandWorkers{0};  // 0: not yet asked for

int32_t WorkersWanted() {
  const char* wanted = std::getenv("ORLUNE_PTK_THREADS");
  uint32_t count = 0;
  if (wanted) {
    const char* end = wanted + std::strlen(wanted);
    const auto [rest, fault] = std::from_chars(wanted, end, count);
    if (rest != end) count = 0;
    if (rest == end && fault == std::errc::result_out_of_range) count = WORKERS_AT_MOST;
  }
  if (count == 0) count = static_cast<uint32_t>(ThreadsInUse().processors());
  return static_cast<int32_t>(std::min<uint32_t>(count, WORKERS_AT_MOST));
}

// What the threads of a pass share.
struct BandPass {
  BandWork run;
  const void* work;
  int64_t units;
  int64_t bandUnits;
  std::atomic<int64_t> begin;  // of the next band to be taken
};

void TakeBands(void* context, int32_t worker) {
  BandPass& pass = *static_cast<BandPass*>(context);
  for (;;) {
    const int64_t begin = pass.begin.fetch_add(pass.bandUnits);
    if (begin >= pass.units) return;
    pass.run(pass.work, {begin, std::min(begin + pass.bandUnits, pass.units), worker});
  }
}

int64_t CeilDivide(int64_t number, int64_t by) {
  return (number + by - 1) / by;
}

int64_t BandUnits(const BandPlan& plan, int64_t workers) {
  const int64_t bytesABand = std::min(BYTES_A_BAND, bandBytesAWorker);
  int64_t bands = std::clamp(plan.bytes / bytesABand, workers, workers * BANDS_A_WORKER);
  if (plan.startUnits > 0) {
    const int64_t rounds = plan.units / (UNITS_A_START_UNIT * plan.startUnits * workers);
    bands = std::min(bands, workers * std::max<int64_t>(rounds, 1));
  }
  const int64_t units = std::max(CeilDivide(plan.units, bands), plan.startUnits);
  return CeilDivide(units, plan.alignment) * plan.alignment;
}

}  // namespace

int64_t bandBytesAWorker = BYTES_A_WORKER;

int32_t BandWorkers() {
  int32_t workers = bandWorkers.load(std::memory_order_relaxed);
  if (workers == 0) {
    workers = WorkersWanted();
    bandWorkers.store(workers, std::memory_order_relaxed);
  }
  return workers;
}

int32_t BandWorkersFor(int64_t bytes) {
  return static_cast<int32_t>(std::clamp<int64_t>(bytes / bandBytesAWorker, 1, BandWorkers()));
}

void BandsForce(int32_t workers, int64_t bytesAWorker) {
  WorkersJoin();  // their numbers may be too high from now on
  bandWorkers.store(workers);
  bandBytesAWorker = bytesAWorker > 0 ? bytesAWorker : BYTES_A_WORKER;
}

void BandsShare(const BandPlan& plan, BandWork run, const void* work) {
  if (plan.units <= 0) return;
  const int64_t workers = BandWorkersFor(plan.bytes);
  const int64_t bandUnits = workers > 1 ? BandUnits(plan, workers) : plan.units;
  const int64_t bands = CeilDivide(plan.units, bandUnits);
  if (workers < 2 || bands < 2) {
    run(work, {0, plan.units, 0});
    return;
  }
  BandPass pass{run, work, plan.units, bandUnits, {0}};
  WorkersRun(static_cast<int32_t>(std::min(workers, bands)) - 1, &TakeBands, &pass);
}

}  // namespace zel
