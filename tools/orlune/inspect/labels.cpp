// Particles as runs of pixels in rows.
#include "orlune/inspect/labels.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <numeric>
#include <utility>

namespace front {
namespace {

using pictures::Image;
using pictures::Row;

// Which runs belong together: each set is known by its first run.
class Sets {
 public:
  void Add() { parents_.push_back(static_cast<uint32_t>(parents_.size())); }
  uint32_t FirstOf(uint32_t run) {
    while (parents_[run] != run) run = parents_[run] = parents_[parents_[run]];
    return run;
  }
  void Join(uint32_t a, uint32_t b) {
    a = FirstOf(a);
    b = FirstOf(b);
    if (a != b) parents_[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<uint32_t> parents_;
};

// Eight pixels at once: a mask has long runs of what is set and what is not.
constexpr int32_t GROUP = 8;

uint64_t GroupAt(const uint8_t* row) {
  uint64_t group = 0;
  std::memcpy(&group, row, sizeof group);
  return group;
}

// The first zero byte has its highest bit set, and none before it; 0 where there is none.
uint64_t ZerosOf(uint64_t group) {
  constexpr uint64_t ONES = 0x0101010101010101, HIGH = 0x8080808080808080;
  return (group - ONES) & ~group & HIGH;
}

// Which byte has the first bit that is set.
static_assert(std::endian::native == std::endian::little);
int32_t FirstByte(uint64_t bits) {
  return std::countr_zero(bits) / 8;
}

int32_t NextSet(const uint8_t* row, int32_t x, int32_t width) {
  const auto isEmpty = [&](int32_t at) {
    return (GroupAt(row + at) | GroupAt(row + at + GROUP) | GroupAt(row + at + 2 * GROUP) |
            GroupAt(row + at + 3 * GROUP)) == 0;
  };
  while (x + 4 * GROUP <= width && isEmpty(x)) x += 4 * GROUP;
  for (; x + GROUP <= width; x += GROUP) {
    const uint64_t group = GroupAt(row + x);
    if (group != 0) return x + FirstByte(group);
  }
  while (x < width && row[x] == 0) ++x;
  return x;
}

int32_t NextZero(const uint8_t* row, int32_t x, int32_t width) {
  for (; x + GROUP <= width; x += GROUP) {
    const uint64_t zeros = ZerosOf(GroupAt(row + x));
    if (zeros != 0) return x + FirstByte(zeros);
  }
  while (x < width && row[x] != 0) ++x;
  return x;
}

void AppendRow(const uint8_t* row, int32_t width, int32_t y, std::vector<PixelRun>* runs) {
  for (int32_t x = NextSet(row, 0, width); x < width;) {
    const int32_t end = NextZero(row, x, width);
    runs->push_back({.y = y, .start = x, .end = end});
    x = NextSet(row, end, width);
  }
}

}  // namespace

Labels LabelRuns(const Image& mask, bool eightConnected) {
  const ImageInfo info = mask.Info();
  Labels labels{.width = info.width, .height = info.height, .count = 0, .runs = {}};
  std::vector<PixelRun>& runs = labels.runs;
  const int32_t reach = eightConnected ? 1 : 0;
  Sets sets;
  size_t above = 0, here = 0;  // where the rows' runs begin
  for (int32_t y = 0; y < info.height; ++y) {
    above = std::exchange(here, runs.size());
    AppendRow(Row<uint8_t>(info, y), info.width, y, &runs);
    size_t other = above;
    for (size_t run = here; run < runs.size(); ++run) {
      sets.Add();
      while (other < here && runs[other].end + reach <= runs[run].start) ++other;
      for (size_t i = other; i < here && runs[i].start < runs[run].end + reach; ++i) {
        sets.Join(static_cast<uint32_t>(i), static_cast<uint32_t>(run));
      }
    }
  }
  for (size_t run = 0; run < runs.size(); ++run) {
    const uint32_t first = sets.FirstOf(static_cast<uint32_t>(run));
    runs[run].label = first == run ? ++labels.count : runs[first].label;
  }
  return labels;
}

LabelPicture::LabelPicture(const Labels& labels)
    : width_(labels.width),
      height_(labels.height),
      pitch_(static_cast<size_t>(labels.width) + 2),
      pixels_(pitch_ * (static_cast<size_t>(labels.height) + 2)) {
  for (const PixelRun& run : labels.runs) {
    uint32_t* row = pixels_.data() + static_cast<size_t>(run.y + 1) * pitch_ + 1;
    std::fill(row + run.start, row + run.end, run.label);
  }
}

}  // namespace front
