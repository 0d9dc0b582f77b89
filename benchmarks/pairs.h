// Pairs: an operation of ours and the same of a peer, on the same pixels.
//
// A family file says which pairs it has and nothing else: see operators.cpp. To add one, write
//
//   {.operation = "add",
//    .kinds = SCALARS,
//    .ours = [](Images& i) { return ZEL_Add(i.a, i.b, i.to, 0); },
//    .theirs = [](Mats& m) { cv::add(m.a, m.b, m.to); }},
//
// and the program measures it for every kind of pixels and every size, by turns with its peer, on
// one thread and on all cores.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "benchmarks/pictures.h"

namespace bench {

// The fixed cost of a call, an image that fits the caches, and one that doesn't.
inline const std::vector<Size> SIZES = {{64, 64}, {1920, 1080}, {4096, 4096}};

inline const std::vector<Kind> SCALARS = {{IMAGE_U8}, {IMAGE_I16}, {IMAGE_SGL}};
inline const std::vector<Kind> INTEGERS = {{IMAGE_U8}, {IMAGE_I16}};

// Pixels that a call works on, by which its time is divided.
inline double Area(Size size) {
  return static_cast<double>(size.width) * size.height;
}
inline double Line(Size size) {
  return std::max(size.width, size.height);
}
inline double OnePixel(Size) {
  return 1;
}

constexpr int32_t SAME_TYPE = -1;
constexpr int32_t BORDER = 8;
constexpr char OPENCV[] = "OpenCV";
// A peer that is no library: the loop that a program would have instead. Not in the means.
constexpr char PLAIN_LOOP[] = "plain loop";

struct Pair {
  std::string operation;
  std::vector<Kind> kinds = {{IMAGE_U8}};
  std::vector<Size> sizes = SIZES;
  int32_t result = SAME_TYPE;  // pixel type of `to`
  int32_t border = BORDER;     // of all images
  double (*pixels)(Size) = Area;
  std::function<int32_t(Images&, Mats&)> prepare = nullptr;  // once, untimed
  std::function<int32_t(Images&)> ours = nullptr;            // its status: a failure ends the run
  std::string peer = OPENCV;
  std::function<void(Mats&)> theirs = nullptr;  // none: no peer has this
};

struct Family {
  std::string name;   // of its page
  std::string title;  // ... as a heading
  std::string notes;  // what the peers compute, and where that differs; Markdown
  std::vector<Pair> pairs;
};

// Each family file hands its pairs over at file scope.
struct Registration {
  explicit Registration(Family family);
};

// All that were handed over, by name.
const std::vector<Family>& Families();

// A pair on pixels of one kind and size.
struct Case {
  const Family* family;
  const Pair* pair;
  Kind kind;
  Size size;
  std::string Name() const;  // family/operation/kind/size
};

// Those whose name the regular expression is found in, at the named sizes only if there are any.
std::vector<Case> CasesFor(const std::string& filter, const std::vector<std::string>& sizes);

}  // namespace bench
