// Bands on all cores: the units of a pass (rows, or the columns of one long row) are shared out
// among the library's workers when the image is large enough to gain from it.
#pragma once

#include <cstdint>

namespace zel {

// A part of a pass, computed by one thread. The bands of a pass cover each unit once, in any order
// and at once: a pass writes nothing that two bands share, so that its results are the same bits
// for any number of workers.
struct Band {
  int64_t begin, end;  // units
  int32_t worker;  // below BandWorkersFor(bytes); two bands of the same worker never run at once
};

struct BandPlan {
  int64_t units;
  // That the pass reads and writes. One that computes longer on them than an addition of bytes
  // counts them several times: 10,000 are some 0.3 us.
  int64_t bytes;
  int64_t alignment = 1;   // bands begin at multiples of it: 64 for columns
  int64_t startUnits = 0;  // a band of a pass with a running state starts with the work of so many
};

// The number of threads that compute, the caller among them: what ORLUNE_PTK_THREADS said at first
// use, or all processors that the process may use.
int32_t BandWorkers();

// How many of them a pass of so many bytes gets at most, 1 or more. Memory that each worker needs
// is allocated for so many before the pass; nothing is allocated inside a band.
int32_t BandWorkersFor(int64_t bytes);

// For tests: the number of workers (0 asks the environment again) and the least bytes for each (0:
// the measured ones).
void BandsForce(int32_t workers, int64_t bytesAWorker);

// For BandsRun, which knows the type of the work and keeps small passes from paying for it.
using BandWork = void (*)(const void* work, const Band& band);
void BandsShare(const BandPlan& plan, BandWork run, const void* work);
extern int64_t bandBytesAWorker;

// Runs work(const Band&) over all units. It is one band on the caller's thread when the bytes don't
// repay waking a worker, and inside another pass. Callers come one at a time; a second one computes
// alone.
template <class Work>
void BandsRun(const BandPlan& plan, const Work& work) {
  if (plan.bytes < 2 * bandBytesAWorker) {
    if (plan.units > 0) work(Band{0, plan.units, 0});
    return;
  }
  BandsShare(
      plan, [](const void* of, const Band& band) { (*static_cast<const Work*>(of))(band); }, &work);
}

}  // namespace zel
