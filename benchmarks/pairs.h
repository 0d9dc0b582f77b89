// Benchmarks in pairs: an operation of ours and the same of a peer, on the same pixels, in one run.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "orlune_ptk.h"

#if defined(HAVE_OPENCV)
#include <opencv2/core.hpp>
#endif

namespace bench {

// Registers "operation/type/size" with our call and, where it is given, the peer's. Both are timed
// in the thread's processor time, their repetitions interleaved, and the table at the end gives the
// least of each and the ratio peer / ours.
void Pair(const std::string& operation, const std::string& type, int32_t width, int32_t height,
          const std::string& peer, std::function<void()> ours, std::function<void()> theirs);

// Each family registers its pairs through one of these at file scope.
struct Family {
  explicit Family(void (*registerPairs)());
};

// An image of ours, owned for the run of the program, with repeatable random pixels.
ImageRef MakeImage(int32_t type, int32_t width, int32_t height, int32_t border = 0,
                   uint64_t seed = 1);
// Owned for the run and empty: a destination.
ImageRef MakeDestination(int32_t type, int32_t border = 0);
// A binary U8 scene of round blobs, some of them rings, that cover a fifth of the image; or of
// noise that sets every other square of `grain` pixels on average.
ImageRef MakeBlobs(int32_t width, int32_t height, int32_t border);
ImageRef MakeNoise(int32_t width, int32_t height, int32_t border, int32_t grain = 1);

#if defined(HAVE_OPENCV)
// A copy of the pixels: U8, I16, SGL, RGB (4 channels) and complex (2 channels).
cv::Mat MatOf(ImageRef image);
#endif

// The sizes of the table: a call's fixed cost, a full-HD image, and one beyond the caches.
inline const std::vector<std::pair<int32_t, int32_t>> SIZES = {{64, 64}, {1920, 1080}};

}  // namespace bench
