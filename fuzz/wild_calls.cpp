// As many wild calls as one asks for, from seeds counted up, without a fuzzer: in any build, and
// watched by any tool. A broken world stops it. Prints how often the exports were called, which
// were never seen to succeed or to fail, and a number that stands for all results. usage:
// wild_calls CALLS [FIRST_SEED]
#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "harness/calls/calls.h"
#include "harness/checks.h"
#include "harness/digest.h"
#include "harness/test_image.h"

namespace {

constexpr int CALLS_A_SEED = 32;
constexpr size_t BYTES_A_SEED = 800;

// A sequence of calls on small images, and a file that some of them read.
void RunSeed(uint64_t seed, test::Digest* digest) {
  test::Random random(seed);
  std::vector<uint8_t> bytes(BYTES_A_SEED);
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random.Next());
  test::SetBudget(seed % 64 == 0);
  test::Input input(bytes.data(), bytes.size());
  test::MemoryFiles files;
  files.Put("a", {'O', 'R', 'L', 'N', 0, 1, 0, 1, 0, 8, 0, 1, 0, 2});
  {
    test::Playground play(&input);
    test::RunCalls(&play, CALLS_A_SEED);
    digest->AddImages();
  }
  test::CheckEnd(files);
}

uint64_t CallsMade() {
  uint64_t made = 0;
  for (const test::ApiCall& call : test::ApiCalls()) {
    const test::CallCounts counts = test::CountsOf(call);
    made += counts.succeeded + counts.failed;
  }
  return made;
}

void PrintCounts() {
  const char* rarest = "";
  uint64_t least = UINT64_MAX;
  for (const test::ApiCall& call : test::ApiCalls()) {
    const test::CallCounts counts = test::CountsOf(call);
    if (counts.succeeded + counts.failed < least) {
      least = counts.succeeded + counts.failed;
      rarest = call.name;
    }
    if (counts.succeeded == 0) std::printf("never succeeded: %s\n", call.name);
    if (counts.failed == 0) std::printf("never failed: %s\n", call.name);
  }
  std::printf("exports: %zu, each called at least %" PRIu64 " times (%s)\n",
              test::ApiCalls().size(), least, rarest);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 2 || argc > 3) {
    std::fprintf(stderr, "usage: wild_calls CALLS [FIRST_SEED]\n");
    return 2;
  }
  const uint64_t wanted = std::strtoull(argv[1], nullptr, 10);
  uint64_t seed = argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1;
  test::Digest digest;
  for (uint64_t made = 0; made < wanted; made = CallsMade()) {
    for (const uint64_t end = seed + 100; seed < end; seed++) RunSeed(seed, &digest);
  }
  PrintCounts();
  std::printf("calls: %" PRIu64 "\n", CallsMade());
  std::printf("digest: %016" PRIx64 "\n", digest.value());
  return 0;
}
