// The pictures that calls are measured on: ours with borders, and the same pixels for the peer.
#pragma once

#include <any>
#include <array>
#include <cstdint>
#include <opencv2/core.hpp>
#include <string>
#include <vector>

#include "orlune_ptk.h"

namespace bench {

struct Size {
  int32_t width, height;
  bool operator==(const Size&) const = default;
};

// What the first image shows: random pixels; or, in U8 of 0 and 255, disks and rings that cover a
// fifth of it, noise of single pixels, or noise of squares of which there are about 200,000 at most
// (labels have 16 bits).
enum class Scene { Random, Blobs, Noise, CoarseNoise };

struct Kind {
  int32_t type;
  Scene scene = Scene::Random;
  bool operator==(const Kind&) const = default;
};

std::string NameOf(Size size);
std::string NameOf(Kind kind);

// What our call works on. All but the destinations is shared by several cases: look, don't touch.
struct Images {
  Size size;
  int32_t type;    // of a and b
  ImageRef a, b;   // a shows the scene, b random pixels
  ImageRef mask;   // Scene::Blobs
  ImageRef noise;  // Scene::Noise
  ImageRef to;     // a destination, empty at first
  ImageRef other;  // another one
  std::vector<uint8_t> array;
  std::string path;
};

// What the peer's call works on: the same pixels, without borders, as its users have them.
struct Mats {
  cv::Mat a, b, mask, noise, to, other;
  std::array<cv::Mat, 4> scratch;  // kept from call to call, as a program would
  std::string path;
  std::any own;  // what a peer needs that is no matrix
};

// Owns the pictures of a kind, size and border.
class Pictures {
 public:
  Pictures(Kind kind, Size size, int32_t border);
  ~Pictures();
  Pictures(const Pictures&) = delete;
  Pictures& operator=(const Pictures&) = delete;

  bool Are(Kind kind, Size size, int32_t border) const;
  // Sets out empty destinations of this type.
  void SetOut(int32_t type);

  Images images{};
  Mats mats;

 private:
  void ClearAway();

  Kind kind_;
  int32_t border_;
};

}  // namespace bench
